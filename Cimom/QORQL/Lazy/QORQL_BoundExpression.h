// Expressions bound to the columns of a lazy table: columns are found once, and
// property positions once per layout, instead of by name on every row.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BOUNDEXPRESSION_H
#define QORQL_BOUNDEXPRESSION_H

#include <memory>

#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "Cimom/QORQL/Lazy/QORQL_PropertyColumn.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"

class QORQL_Comparison;
class QORQL_SelectedEntry;

// Computes on a row view what the tree computes on the row, with the same errors.
class QORQL_BoundValue {
 public:
  virtual ~QORQL_BoundValue() = default;
  // The value, null when there is none.
  virtual QORSmrPtr<IQoriValue> value(const QORQL_RowView& row) const = 0;
  // A view of the value: of the row's object or, through `holder`, of a value
  // that was made. Valid while both live.
  virtual QoriScalar view(const QORQL_RowView& row, QORSmrPtr<IQoriValue>& holder) const {
    holder = value(row);
    return holder.IsNull() ? QoriScalar() : holder->scalar();
  }
  // BORROWS: the column when this is a property that is read without error; null otherwise.
  virtual const QORQL_PropertyColumn* propertyColumn() const noexcept { return nullptr; }
  // BORROWS: the value when it is the same for all rows; null otherwise.
  virtual const QoriScalar* constant() const noexcept { return nullptr; }
};

// Both sides of a comparison in their bound forms; null where a side has none.
struct QORQL_BoundSides {
  std::unique_ptr<QORQL_BoundValue> left;
  std::unique_ptr<QORQL_BoundValue> right;
};

// Finds the bound form of a node on a lazy table.
class QORQL_Binder {
 public:
  // BORROWS the table, which must keep its lazy rows while bound values are used.
  explicit QORQL_Binder(const QORQL_DataTable& table) : _table(table) {}

  // Null when the node must be evaluated through a row: function calls other
  // than OBJECTPATH, array elements, comparisons, objects without layout.
  std::unique_ptr<QORQL_BoundValue> bind(const QORSmrPtr<QORQL_Evaluatable>& node) const;
  QORQL_BoundSides bindSides(const QORQL_Comparison& comparison) const;
  std::unique_ptr<QORQL_BoundValue> bindProperty(const QORString& className, const QORString& propertyName) const;
  // The same of the object as it was fetched; NULL where it lacks the property.
  std::unique_ptr<QORQL_BoundValue> bindFetched(const QORString& className, const QORString& propertyName) const;
  std::unique_ptr<QORQL_BoundValue> bindEntry(const QORQL_SelectedEntry& entry) const;
  // The extent column of a class or alias; -1 when the table has none.
  QORsint32 sourceColumn(const QORString& className) const;

 private:
  // Whether the name is that of the function results, which are bound by their entries alone.
  bool namesResults(const QORString& className) const;
  std::unique_ptr<QORQL_BoundValue> bindFactor(const class QORQL_Factor& factor) const;
  std::unique_ptr<QORQL_BoundValue> bindFunction(const class QORQL_Function& function) const;
  template <class Node>
  std::unique_ptr<QORQL_BoundValue> bindChain(const Node& node) const;

  const QORQL_DataTable& _table;
};

#endif
