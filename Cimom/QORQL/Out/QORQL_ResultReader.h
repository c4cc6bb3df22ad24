// The result of a query as columns and rows of values, for callers that render
// it themselves.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_RESULTREADER_H
#define QORQL_RESULTREADER_H

#include <functional>
#include <memory>
#include <vector>

#include "cimom/IQoriValue.h"
#include "cmpbase.h"

class QORQL_DataTable;
class QORQL_Query;
class QORQL_RowReader;
class QORQL_SelectedEntry;
class QORQL_SymbolTable;

// Reads what a finished execute() left in its table: aggregates, the sort order
// and FIRST n hold. A later execute() of the query changes nothing here. `*` is expanded into the properties that its
// objects have, class by class in FROM order, followed by the further properties of subclasses. BORROWS its arguments;
// one thread at a time. Rows that do not exist yet are not made.
class QORQL_ResultReader {
 public:
  // One value of each row, told by its name and the type that its values have.
  struct Column {
    // The alias; of what is computed, as it was written; else the property where that is unique; else qualifier "."
    // property.
    QORString name;
    QORString typeName;  // the CIM type; empty when no row tells it
    bool isArray = false;
    // The property that it shows, and the class of FROM that the object is fetched as, in any case; empty for what is
    // computed.
    QORString className;
    QORString propertyName;
  };

  // The properties that a class declares, for `*` over a class of which no row has an object. Empty: no columns then.
  using Declared = std::function<std::vector<QORString>(const QORString& className)>;

  // REQUIRES the query, the symbol table and the table of one execution. Costs a pass over the rows where `*` or a type
  // needs it. THROWS what evaluation throws.
  QORQL_ResultReader(const QORQL_Query& query, QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                     const Declared& declared = {});
  QORQL_ResultReader(const QORQL_ResultReader&) = delete;
  QORQL_ResultReader& operator=(const QORQL_ResultReader&) = delete;
  ~QORQL_ResultReader();

  // In the order of the select list.
  const std::vector<Column>& columns() const noexcept { return _columns; }
  // Rows to come, FIRST n applied.
  QORuint64 rowCount() const noexcept { return _rowCount; }
  // Moves to the first row, then to the next; false past the last.
  bool next();
  // Goes back before the first row.
  void restart() noexcept;
  // The value of a column in the current row; null for NULL. THROWS what
  // evaluation throws. REQUIRES a current row and index < columns().size().
  QORSmrPtr<IQoriValue> value(std::size_t index);
  // The class of the one object of the current row that all columns are
  // properties of, by their names; empty when there is no such object.
  QORString rowClass();
  // The same as a view, kind Null for NULL, which allocates nothing for numbers,
  // texts and booleans of properties. Valid until the next view() of the column,
  // while reader and table live. THROWS and REQUIRES as above.
  QoriScalar view(std::size_t index) {
    const std::size_t offset = _cellOffsets[index];
    return _cells != nullptr && offset != kNoCell ? _cells[offset] : viewOf(index);
  }

 private:
  struct Source;
  static constexpr std::size_t kNoCell = ~std::size_t{0};

  void addEntry(const QORSmrPtr<QORQL_SelectedEntry>& entry);
  void addAllClasses(const QORSmrPtr<QORQL_SelectedEntry>& entry);
  void addClass(const QORSmrPtr<QORQL_SelectedEntry>& entry, const QORString& className);
  std::vector<QORString> declaredNames(const QORString& fromName) const;
  void nameColumns();
  static QORString shortNameOf(const Source& source);
  static QORString fullNameOf(const Source& source);
  // Whether the current row tells the type of the column.
  bool typeColumn(std::size_t index);
  void typeColumns();
  void tracePropertyOf(std::size_t index);
  void findOnlyClass();
  void findCells();
  void holdAggregates();
  QoriScalar viewOf(std::size_t index);
  QoriScalar aggregateView(std::size_t index) const;

  const QORQL_Query& _query;
  const Declared _declared;
  QORSmrPtr<QORQL_DataTable>& _table;
  std::unique_ptr<QORQL_RowReader> _reader;
  std::vector<Column> _columns;
  std::vector<Source> _sources;
  QORString _onlyClass;                         // that all columns are properties of; empty: none
  std::vector<QORSmrPtr<IQoriValue>> _holders;  // of the values that views see, and of aggregates
  std::vector<std::size_t> _cellOffsets;        // of each column in _cells; kNoCell: it is no property of every row
  const QoriScalar* _cells = nullptr;           // BORROWS: the current row's properties, once one has been looked at
  bool _showsCells = false;                     // whether the caller has looked at one
  bool _isAggregate = false;
  QORuint64 _rowCount = 0;
  QORuint64 _next = 0;
};

#endif
