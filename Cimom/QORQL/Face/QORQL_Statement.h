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

// The result of one run: columns, and rows that are walked. It may be read
// when its statement has gone. With its statement and the statement's other
// results it shares the parsed text: all of them together belong to one thread
// at a time. A moved-from result may only be
// assigned to and destroyed.
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
  // Goes back before the first row, for callers that look at rows before they show them; what is computed is
  // computed again.
  void restart() noexcept;
  // The value of a column in the current row; a null pointer for NULL. REQUIRES
  // next() to have been true, and index < columns().size(). THROWS what evaluation
  // throws (QoriBaseException).
  QORSmrPtr<IQoriValue> value(std::size_t index);
  // Its text; a null string (isNull()) for NULL. REQUIRES and THROWS as above.
  QORString text(std::size_t index);
  // A view of it, kind Null for NULL, which allocates nothing for numbers, texts
  // and booleans of properties. Valid until the next view() of the column, while
  // the result lives. REQUIRES and THROWS as above.
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

// Parsed once, run any number of times. Keeps copies of its texts. Classes and
// instances are those of the process's object manager. A statement and its results
// together belong to one thread at a time; threads that run at the same time have
// a statement each. A moved-from statement may only be assigned to and destroyed.
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

  // For `*` over a class of which no row has an object: the function is called with
  // the class's name, and `*` has the columns that it names; without a function
  // (the default, or an empty one) it has no columns there. The statement keeps a
  // copy, which later runs call on their thread; what it throws, run() throws.
  void setDeclaredProperties(QORQL_ResultReader::Declared declared);

  // Parses the text and binds its names by the class repository, unless that has
  // been done; every operation below does it first. THROWS QORQL_ParseException
  // and QORQL_Exception; QORQL_faultOf tells what is wrong with the text and, with
  // QORQL_placeOf, where. Linear in its length.
  void parse();
  // Fetches, filters, joins, sorts and projects. With a stream (BORROWED until the
  // call returns, may be null) the result is also written as an XML table; when the
  // call throws, the stream has what was written before. THROWS as parse(),
  // QORQL_Exception, what providers and values throw (QoriBaseException), and
  // QORQL_StoppedException when the thread's monitor stops it. It throws as well
  // what QORQL_Query::execute only logs, an error that ends the rows early: a result
  // that is returned has all of its rows, and later runs leave it as it is.
  QORQL_Result run(std::ostream* xml = nullptr);
  // Where the statement does not mean what someone who knows SQL expects. THROWS as parse().
  std::vector<QORQL_Surprise> surprises();

  // The types that what the select list computes has by the classes' declarations, whatever rows there are: "uint64",
  // "sint64" or "real64" for each column, empty where nothing tells. No element at all for a list with `*`. THROWS as
  // parse().
  std::vector<QORString> computedTypes();

  // The parsed text and its names, for QORQL_Explanation and visitors; parsed only
  // once, so the references are good as long as the statement or one of its results
  // lives, and moving them changes nothing. THROW as parse().
  const QORQL_Query& query();
  const QORQL_SymbolTable& symbols();
  // As the constructor was given them; the references are good as long.
  const QORString& text() const noexcept;
  const QORString& nameSpace() const noexcept;

 private:
  friend struct QORQL_Result::Rows;
  struct State;

  std::shared_ptr<State> _state;  // which results share
};

#endif
