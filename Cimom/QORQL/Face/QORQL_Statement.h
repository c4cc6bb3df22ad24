// A statement from its text to its columns and rows.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_STATEMENT_H
#define QORQL_STATEMENT_H

#include <iosfwd>
#include <memory>
#include <vector>

#include "Cimom/QORQL/Explain/QORQL_Surprises.h"
#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "cmpbase.h"

class QORQL_Query;
class QORQL_SymbolTable;

// The result of one run: columns, and rows that are walked once. It lives on its
// own, also when its statement has gone. Belongs to one thread at a time; a
// moved-from result may only be assigned to and destroyed.
class QORQL_Result {
 public:
  using Column = QORQL_ResultReader::Column;

  QORQL_Result(QORQL_Result&& other) noexcept;
  QORQL_Result& operator=(QORQL_Result&& other) noexcept;
  ~QORQL_Result();

  // In the order of the select list, `*` as the properties that it stands for.
  const std::vector<Column>& columns() const noexcept;
  // Rows to come, FIRST n applied.
  QORuint64 rowCount() const noexcept;
  // Moves to the first row, then to the next; false past the last.
  bool next();
  // The value of a column in the current row; a null pointer for NULL. REQUIRES
  // next() to have been true, and index < columns().size(). THROWS what evaluation
  // throws (QoriBaseException).
  QORSmrPtr<IQoriValue> value(std::size_t index);
  // Its text; a null string (isNull()) for NULL. REQUIRES and THROWS as above.
  QORString text(std::size_t index);
  // A view of it, kind Null for NULL, which allocates nothing for numbers, texts
  // and booleans of properties; valid until the next view() of the column.
  // REQUIRES and THROWS as above.
  QoriScalar view(std::size_t index);
  // The class of the one object of the current row that all columns are
  // properties of, by their names; empty when there is no such object.
  QORString rowClass();

 private:
  friend class QORQL_Statement;
  struct Rows;

  explicit QORQL_Result(std::unique_ptr<Rows> rows) noexcept;

  std::unique_ptr<Rows> _rows;
};

// Parsed once, run any number of times. Keeps its texts. What it asks, it asks of
// the current object manager. Belongs to one thread at a time; several threads
// have statements of their own.
//
//   QORQL_Result rows = QORQL_Statement("SELECT Name FROM Shop_Item", "root/shop").run();
//   while (rows.next()) std::cout << rows.text(0) << '\n';
class QORQL_Statement {
 public:
  // Nothing is parsed yet. The language travels to the providers with the text.
  explicit QORQL_Statement(const QORString& text, const QORString& nameSpace = "root/cimv2",
                           const QORString& language = "DMTF:CQL");
  QORQL_Statement(QORQL_Statement&& other) noexcept;
  QORQL_Statement& operator=(QORQL_Statement&& other) noexcept;
  ~QORQL_Statement();

  // Tells which properties a class declares, so that `*` has columns, too, where
  // no row has an object of it; without this it has none then.
  void setDeclaredProperties(QORQL_ResultReader::Declared declared);

  // Parses the text and binds its names by the class repository, unless that has
  // been done; every operation below does it first. THROWS QORQL_ParseException
  // and QORQL_Exception; QORQL_faultOf tells what is wrong with the text and, with
  // QORQL_placeOf, where. Linear in its length.
  void parse();
  // Fetches, filters, joins, sorts and projects. With a stream (BORROWED, may be
  // null) the result is written to it as an XML table, as far as it came. THROWS
  // as parse(), QORQL_Exception, and what providers and values throw
  // (QoriBaseException); also what ends a result before its last row, so that a
  // result is a whole one; QORQL_StoppedException when the thread's monitor stops
  // it. The values of aggregates are the statement's: read them before the next run.
  QORQL_Result run(std::ostream* xml = nullptr);
  // Where the statement does not mean what someone who knows SQL expects. THROWS as parse().
  std::vector<QORQL_Surprise> surprises();

  // BORROW: the tree and its names, for QORQL_Explanation and visitors. THROW as parse().
  const QORQL_Query& query();
  const QORQL_SymbolTable& symbols();
  // As the constructor was given them.
  const QORString& text() const noexcept;
  const QORString& nameSpace() const noexcept;

 private:
  friend struct QORQL_Result::Rows;
  struct State;

  std::shared_ptr<State> _state;  // which results share
};

#endif
