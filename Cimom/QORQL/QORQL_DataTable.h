// The result table that flows through execution.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_DATATABLE_H
#define QORQL_DATATABLE_H

#include <memory>
#include <vector>

#include "Cimom/QORQL/QORQL_AssociationTie.h"
#include "Cimom/QORQL/QORQL_DataRow.h"
#include "Cimom/QORQL/QORQL_TableHeader.h"
#include "cmpbase.h"

class QORQL_Extent;
class QORQL_LazyTable;

// Columns are added first, then rows. No row has more cells than the table has
// columns. Rows may not exist yet: the engine keeps a product of extents and
// makes the rows when someone looks at them (getRow, getRows, and every operation that
// changes rows). This has no visible effect except on time and memory. Used by one query
// on one thread.
class QORQL_DataTable {
 public:
  enum QORQL_CELLS_PRE_FILTERED {
    kCellsPreFiltered_unknown = 0,
    kCellsPreFiltered_allPreFiltered = 1,
    kCellsPreFiltered_someNotPreFiltered = 2
  };
  // Plain makes every row at once and runs the algorithms row by row; it exists
  // so that tests can compare the lazy mode with it.
  enum ExecutionMode { kExecutionLazy = 0, kExecutionPlain = 1 };

  using HeaderList = QORSmrPtr<QORValSlist<QORSmrPtr<QORQL_TableHeader>>>;
  using RowList = QORSmrPtr<QORValSlist<QORSmrPtr<QORQL_DataRow>>>;

  QORQL_DataTable();
  // The table has no columns whatever list is given; callers add them afterwards.
  explicit QORQL_DataTable(const HeaderList& headers);
  QORQL_DataTable(const QORQL_DataTable&) = delete;
  QORQL_DataTable& operator=(const QORQL_DataTable&) = delete;
  // Rows that others still hold have no parent table afterwards.
  ~QORQL_DataTable();

  // A null header is ignored; otherwise inserted at the index, and with
  // addToRows every row gains a null cell there. THROWS QORQL_Exception
  // (QORQL_INTERNAL_ERROR, logged) for an index past the end.
  void addColumn(const QORSmrPtr<QORQL_TableHeader>& header, QORuint32 index, QORboolean addToRows);
  // addColumn at index 0 (flag false) or 1 (flag true) for each header in order.
  void addColumns(const HeaderList& headers, QORboolean flag);
  // A null row is ignored. THROWS as addColumn for a row with too many cells.
  void addRow(const QORSmrPtr<QORQL_DataRow>& row);
  void addRows(const RowList& rows);
  // REQUIRES that `rows` is not the table's own list.
  void setRows(const RowList& rows);
  // Inserts a cell. THROWS as addColumn when row or column lies past the count.
  void addRowCell(QORuint32 row, QORuint32 column, const QORSmrPtr<IQoriObject>& object);
  // Makes the rows. THROWS QORBoundsException past the end.
  QORSmrPtr<QORQL_DataRow> getRow(QORuint32 index);
  // Makes the rows. Shared: callers see and change the table's own list.
  RowList getRows();
  // THROWS QORBoundsException past the end.
  QORSmrPtr<QORQL_TableHeader> getColumnHeader(QORuint32 index) const;
  HeaderList getColumnHeaderList() const { return _columnHeader; }
  // By name or alias, ignoring case; null, or -1, when there is none.
  QORSmrPtr<QORQL_TableHeader> getColumnHeaderByName(const QORString& name) const;
  QORsint32 getColumnIndex(const QORString& name) const;
  // May be null. THROWS as addRowCell, and QORBoundsException for a cell that the row has not.
  QORSmrPtr<IQoriObject> getCell(QORuint32 row, QORuint32 column);
  // Constant time, also while the rows do not exist yet.
  QORuint32 getRowCount() const noexcept;
  QORuint32 getColumnCount() const noexcept;

  // Host and port that references in the XML stream are written with; empty until set, as for an object manager that
  // has no address.
  void setServerAddressInfo(const QORString& address, const QORString& port);
  const QORString& GetHostAddress() const noexcept { return _hostAddress; }
  const QORString& GetHostPort() const noexcept { return _hostPort; }
  // Whether the providers of all classes so far have filtered their instances already, so that WHERE need not run:
  // true counts until one false has come. preFilterSet() is false until the first call.
  void setCellPreFiltered(QORboolean preFiltered) noexcept;
  QORboolean allCellsPreFiltered() const noexcept { return _cellsPreFiltered == kCellsPreFiltered_allPreFiltered; }
  QORboolean preFilterSet() const noexcept { return _cellsPreFiltered != kCellsPreFiltered_unknown; }
  // A mark that callers of evaluateOR() may leave on a table; the engine sets and reads none.
  QORboolean isUpdatedByNestedExpression() const noexcept { return _isUpdatedByNestedExpression; }
  void setUpdatedByNestedExpression(QORboolean updated) noexcept { _isUpdatedByNestedExpression = updated; }

  // Lazy until set. To be chosen before the table is executed on.
  void setExecutionMode(ExecutionMode mode) noexcept { _executionMode = mode; }
  ExecutionMode getExecutionMode() const noexcept { return _executionMode; }

  // For the engine's own parts.
  // Server address, pre-filter state and execution mode of another table.
  void inherit(const QORQL_DataTable& other);
  // A projected table: has it been through the select list, and where the cell
  // of each column stands in a row (identity when never set).
  bool isProjected() const noexcept { return _isProjected; }
  void setProjected(std::vector<QORuint32> cellOfColumn);
  // The column of function results; -1 when there is none. A class or alias of
  // its name comes before it where objects are looked up by name.
  void setFunctionColumn(QORsint32 column) noexcept { _functionColumn = column; }
  QORsint32 getFunctionColumn() const noexcept { return _functionColumn; }
  QORsint32 getObjectColumn(const QORString& name) const;
  QORuint32 cellOfColumn(QORuint32 column) const noexcept {
    return column < _cellOfColumn.size() ? _cellOfColumn[column] : column;
  }
  // Ties whose association class is no column yet: they apply as soon as it becomes one.
  void addOpenTie(const QORQL_AssociationTie& tie) { _openTies.push_back(tie); }
  bool hasOpenTie(const QORString& associationClass) const noexcept;
  // The open ties of an association class, in the order in which they came; they are no longer the table's.
  std::vector<QORQL_AssociationTie> takeOpenTies(const QORString& associationClass);
  // The rows that do not exist yet; null when they do.
  QORQL_LazyTable* lazy() const noexcept { return _lazy.get(); }
  // REQUIRES a table without rows.
  void setLazy(std::unique_ptr<QORQL_LazyTable> lazy);
  // A column with a further extent; the rows become their product with it.
  // REQUIRES lazy rows or no rows at all, and an extent without null objects.
  void addExtent(const QORSmrPtr<QORQL_TableHeader>& header, std::shared_ptr<const QORQL_Extent> extent);
  // Makes the rows, if they do not exist yet.
  void materialise();

 private:
  void checkCell(QORuint32 row, QORuint32 column) const;
  RowList& ownRows();
  // The first column of that name other than `leftOut`; -1 when there is none.
  QORsint32 findColumn(const QORString& name, QORsint32 leftOut) const;

  HeaderList _columnHeader;
  RowList _rows;  // null until somebody needs it
  QORboolean _isUpdatedByNestedExpression = false;
  QORString _hostAddress = QORString::emptyString();
  QORString _hostPort = QORString::emptyString();
  QORQL_CELLS_PRE_FILTERED _cellsPreFiltered = kCellsPreFiltered_unknown;
  ExecutionMode _executionMode = kExecutionLazy;
  bool _isProjected = false;
  std::vector<QORuint32> _cellOfColumn;
  QORsint32 _functionColumn = -1;
  std::unique_ptr<QORQL_LazyTable> _lazy;
  std::vector<QORQL_AssociationTie> _openTies;
};

#endif
