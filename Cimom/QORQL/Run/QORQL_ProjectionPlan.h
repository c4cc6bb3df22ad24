// Which classes and properties a select list keeps: the same for every row.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROJECTIONPLAN_H
#define QORQL_PROJECTIONPLAN_H

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_FewList.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "cmpbase.h"

class QORQL_SymbolTable;

class QORQL_ProjectionPlan {
 public:
  // One thing that is kept, in the order in which the entries name them.
  struct Item {
    QORString className;     // the symbol's class name, which names the cell
    QORString written;       // the class or alias as the entry has it
    QORString propertyName;  // empty: every property, or none when only the object's name is read
    bool namesObjectOnly = false;
    bool isForSort = false;  // named by the sort key alone: a property that the object lacks fails in the sort
    bool keepsAll() const noexcept { return propertyName.isEmpty() && !namesObjectOnly; }
  };

  // For a run of the list on `table`. The silent run before a sort also keeps
  // what the sort key names; a run on a projected table does not.
  QORQL_ProjectionPlan(const QORQL_SelectList& list, const QORQL_SymbolTable& symbols, const QORQL_DataTable& table);

  using Items = QORQL_FewList<Item, 4>;

  const Items& items() const noexcept { return _items; }
  bool hasFunctions() const noexcept { return _hasFunctions; }

 private:
  void addEntry(const QORQL_SelectedEntry& entry);
  void addColumns(const QORQL_DataTable& table);
  // What the references of an expression name.
  void addExpression(const QORSmrPtr<QORQL_Evaluatable>& expression);
  void add(const QORString& className, const QORString& propertyName);

  const QORQL_SymbolTable& _symbols;
  bool _isForSort = false;
  Items _items;
  bool _hasFunctions = false;
};

#endif
