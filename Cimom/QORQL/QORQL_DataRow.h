// One row of the result table: whole objects, one for each class in scope.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_DATAROW_H
#define QORQL_DATAROW_H

#include "cimom/IQoriObject.h"
#include "cmpbase.h"

class QORQL_DataTable;
class QORQL_Evaluatable;

// A cell may hold a null pointer (an absent object, as in an outer join).
// Belongs to one thread at a time.
class QORQL_DataRow {
 public:
  using CellList = QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>>;

  QORQL_DataRow();
  // Shares the list. BORROWS the parent.
  QORQL_DataRow(const CellList& cells, QORQL_DataTable* parentTable);
  // A list of its own with the same objects, under the checks of addCell.
  QORQL_DataRow(const QORQL_DataRow& other);
  QORQL_DataRow& operator=(const QORQL_DataRow&) = delete;

  // Inserts at an existing place; past the end, null cells fill the gap. THROWS
  // QORQL_Exception (QORQL_INTERNAL_ERROR, logged) when the parent's columns do not allow it.
  void addCell(QORuint32 index, const QORSmrPtr<IQoriObject>& object);
  void addCells(const CellList& cells);
  CellList getAllCells() const { return _cells; }
  // THROWS QORBoundsException past the end.
  QORSmrPtr<IQoriObject> getCell(QORuint32 index) const;
  // By class name or alias; null without parent, for an empty name, no such column, or no such cell.
  QORSmrPtr<IQoriObject> getCell(const QORString& className) const;
  // The pseudo-object of function results in a projected row; null when there is none.
  QORSmrPtr<IQoriObject> getFunctionResults() const;
  QORuint32 getCellCount() const noexcept;
  // BORROWS: valid while the table lives.
  QORQL_DataTable* getParentTable() const noexcept { return _parentTable; }
  void setParentTable(QORQL_DataTable* parentTable) noexcept { _parentTable = parentTable; }

  // Null when the cell is. THROWS QORQL_Exception (QORQL_INVALID_COLUMN_NAME) when
  // the object has no such property; other exceptions are logged and give null.
  QORSmrPtr<IQoriProperty> getPropertyByName(const QORString& className, const QORString& propertyName) const;
  QORSmrPtr<IQoriValue> getPropertyValueByName(const QORString& className, const QORString& propertyName) const;
  // The same on an object that is not null.
  static QORSmrPtr<IQoriProperty> readProperty(const IQoriObject& object, const QORString& className,
                                               const QORString& propertyName);
  [[noreturn]] static void raiseNoProperty(const QORString& className, const QORString& propertyName);

  // The cell's instance name as a reference value; null when the cell is null.
  QORSmrPtr<IQoriValue> getInstanceName(const QORString& className) const;
  QORSmrPtr<IQoriValue> getFullInstanceName(const QORString& className) const;
  QORString GetHostAddress() const;
  QORString GetHostPort() const;

  // The folded result that a function node has on this row, while an expression
  // around an aggregate is computed. BORROWS the node.
  void setFunctionValue(const QORQL_Evaluatable* function, const QORSmrPtr<IQoriValue>& value);
  // True, with the value copied out, when this row carries one for the node.
  bool findFunctionValue(const QORQL_Evaluatable* function, QORSmrPtr<IQoriValue>& value) const;

 private:
  // Null for a column of -1 and for a cell that the row has not. REQUIRES a parent.
  QORSmrPtr<IQoriObject> cellOfColumn(QORsint32 column) const;

  CellList _cells;
  QORQL_DataTable* _parentTable = nullptr;
  const QORQL_Evaluatable* _function = nullptr;
  QORSmrPtr<IQoriValue> _functionValue;
};

#endif
