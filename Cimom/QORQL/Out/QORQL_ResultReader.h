// The result of a query as columns and rows of values, for callers that render
// it themselves.
#ifndef QORQL_RESULTREADER_H
#define QORQL_RESULTREADER_H

#include <functional>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_RowReader.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// Reads what a finished execute() left in its table: aggregates, the sort order
// and FIRST n hold. `*` is expanded into the properties that its objects have,
// class by class in FROM order, followed by the further properties of subclasses. BORROWS
// its arguments; one thread at a time. Rows that do not exist yet are not made.
class QORQL_ResultReader {
 public:
  struct Column {
    // The alias; of what is computed, as it was written; else the property where that is unique; else qualifier "."
    // property.
    QORString name;
    QORString typeName;  // the CIM type; empty when no row tells it
    bool isArray = false;
  };

  // The properties that a class declares, for `*` over a class of which no row has an object. Empty: no columns then.
  using Declared = std::function<std::vector<QORString>(const QORString& className)>;

  QORQL_ResultReader(const QORQL_Query& query, QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                     const Declared& declared = {});

  const std::vector<Column>& columns() const noexcept { return _columns; }
  // Rows to come, FIRST n applied.
  QORuint64 rowCount() const noexcept { return _rowCount; }
  // Moves to the first row, then to the next; false past the last.
  bool next();
  // The value of a column in the current row; null for NULL. THROWS what
  // evaluation throws. REQUIRES a current row and index < columns().size().
  QORSmrPtr<IQoriValue> value(std::size_t index);
  // The class of the one object of the current row that all columns are
  // properties of, by their names; empty when there is no such object.
  QORString rowClass();
  // The same as a view, valid until the next call of view() for the column, or
  // while the table lives where the column is a property; kind Null for NULL.
  // Numbers, texts and booleans of properties are not copied: nothing
  // is allocated. THROWS and REQUIRES as above.
  QoriScalar view(std::size_t index) {
    return _isAggregate ? aggregateView(index) : _reader.view(_sources[index].slot, _holders[index]);
  }

 private:
  // Where a column's values come from.
  struct Source {
    QORSmrPtr<QORQL_SelectedEntry> entry;
    QORString className;  // of a property that `*` or C.* expands to, read as it was fetched; empty: the entry itself
    QORString propertyName;
    std::size_t slot = 0;
  };

  void addEntry(const QORSmrPtr<QORQL_SelectedEntry>& entry);
  void addAllClasses(const QORSmrPtr<QORQL_SelectedEntry>& entry);
  void addClass(const QORSmrPtr<QORQL_SelectedEntry>& entry, const QORString& className);
  std::vector<QORString> declaredNames(const QORString& fromName) const;
  void nameColumns();
  static QORString shortNameOf(const Source& source);
  static QORString fullNameOf(const Source& source);
  void typeColumns();
  void findOnlyClass();
  QoriScalar aggregateView(std::size_t index) const;

  const QORQL_Query& _query;
  const Declared _declared;
  QORSmrPtr<QORQL_DataTable>& _table;
  QORQL_RowReader _reader;
  std::vector<Column> _columns;
  std::vector<Source> _sources;
  QORString _onlyClass;                         // that all columns are properties of; empty: none
  std::vector<QORSmrPtr<IQoriValue>> _holders;  // of the values that views see
  bool _isAggregate = false;
  QORuint64 _rowCount = 0;
  QORuint64 _next = 0;
};

#endif
