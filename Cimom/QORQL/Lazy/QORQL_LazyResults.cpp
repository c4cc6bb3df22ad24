// Values by row follow a sort; bound ones go with their objects.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_LazyResults.h"

#include <utility>

#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_Text.h"
#include "cimom/CQoriProperty.h"

void QORQL_LazyResults::add(Function&& function) {
  _numbers.emplace(QORQL_foldedName(function.id), static_cast<QORsint32>(_functions.size()));
  _functions.push_back(std::move(function));
}

QORsint32 QORQL_LazyResults::find(const QORString& id) const {
  const auto found = _numbers.find(QORQL_foldedName(id));
  return found == _numbers.end() ? -1 : found->second;
}

QORSmrPtr<IQoriValue> QORQL_LazyResults::value(std::size_t function, const QORQL_RowView& row) const {
  const Function& read = _functions[function];
  return read.bound == nullptr ? read.values[row.number()] : read.bound->value(row);
}

QORSmrPtr<IQoriObject> QORQL_LazyResults::object(const QORQL_RowView& row) const {
  const auto properties = QORSmrPtr<CQoriBaseObject::PropertyList>::Make();
  for (std::size_t i = 0; i < _functions.size(); ++i) {
    properties->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(_functions[i].id, value(i, row), true)));
  }
  return QORQL_SelectList::valuesObject(properties);
}

void QORQL_LazyResults::reorder(const std::vector<QORuint32>& rows) {
  for (Function& function : _functions) {
    if (function.bound != nullptr) continue;
    std::vector<QORSmrPtr<IQoriValue>> values;
    values.reserve(rows.size());
    for (const QORuint32 row : rows) values.push_back(std::move(function.values[row]));
    function.values = std::move(values);
  }
}
