// What the functions of a select list give on lazy rows.
// Tested by tests/unit/QORQL/LazyFunctionsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_LAZYRESULTS_H
#define QORQL_LAZYRESULTS_H

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_BoundExpression.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "cmpbase.h"

// Belongs to a projected table, whose rows are one block: a function's values are either computed when somebody asks,
// which only a look at the fetched objects may do, or were computed at once and stand by the numbers of the rows.
class QORQL_LazyResults {
 public:
  struct Function {
    QORString id;                                   // its name in the VALUES object
    std::shared_ptr<const QORQL_BoundValue> bound;  // null: computed at once
    std::vector<QORSmrPtr<IQoriValue>> values;      // by row, where they were
  };

  void add(Function&& function);
  // The number of the function of that id, ignoring case; -1 when there is none.
  QORsint32 find(const QORString& id) const;
  // Null for a function without a value on the row, which must have been selected by its block.
  QORSmrPtr<IQoriValue> value(std::size_t function, const QORQL_RowView& row) const;
  // The VALUES object of the row, a new one each time.
  QORSmrPtr<IQoriObject> object(const QORQL_RowView& row) const;
  // The rows have been put into another order: row i is what rows[i] was.
  void reorder(const std::vector<QORuint32>& rows);

 private:
  std::vector<Function> _functions;                     // in entry order
  std::unordered_map<std::string, QORsint32> _numbers;  // by id without regard to case
};

#endif
