// Restrictions per class, and the texts that identify property lists.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/Restrictor.h"

#include <algorithm>
#include <cstddef>

#include "Cimom/Embedded/NameMap.h"

namespace embedded {

std::string propertyNamesKey(const CIMApi::PropertyNames& names) {
  if (names.IsNull()) return "*";
  std::string key;
  QORValSlistIterator<QORString> each(*names);
  while (++each) {
    const std::string_view name = each.key().view();
    key.append(std::to_string(name.size())).push_back(':');
    const std::size_t start = key.size();
    key.append(name);
    std::transform(key.begin() + static_cast<std::ptrdiff_t>(start), key.end(),
                   key.begin() + static_cast<std::ptrdiff_t>(start), foldCase);
  }
  return key;
}

QORSmrPtr<IQoriObject> Restrictor::apply(const CQoriClass& model, const QORSmrPtr<IQoriObject>& object) {
  if (_names.IsNull()) return object;
  if (_lastClass != &model) use(model);
  return _last->IsNull() ? object : ModelRestriction::apply(*_last, object);
}

void Restrictor::use(const CQoriClass& model) {
  const auto [found, isNew] = _byClass.try_emplace(&model);
  if (isNew) {
    const ModelLayout& layout = *model.shape()->layout;
    const QORSmrPtr<ModelRestriction> restriction = layout.restrictTo(*_names);
    if (restriction->positions().size() != layout.getPropertyCount()) found->second = restriction;
  }
  _lastClass = &model;
  _last = &found->second;
}

}  // namespace embedded
