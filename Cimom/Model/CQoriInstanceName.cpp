// Instance names: the order of their keys and the text of their path.
// SPDX-License-Identifier: Apache-2.0
#include "cimom/CQoriInstanceName.h"

#include <algorithm>
#include <string>
#include <vector>

#include "Cimom/Model/ModelPath.h"
#include "cimom/IQoriProperty.h"

namespace {

using KeyList = IQoriInstanceName::KeyList;

// Names have a key or two, so an insertion sort is enough; equal names keep their order.
QORSmrPtr<KeyList> sortedKeys(const QORSmrPtr<KeyList>& keys) {
  std::vector<QORSmrPtr<IQoriProperty>> sorted;
  if (!keys.IsNull()) {
    sorted.reserve(keys->entries());
    QORValSlistIterator<QORSmrPtr<IQoriProperty>> it(*keys);
    while (++it) {
      if (it.key().IsNull()) continue;
      const auto place = std::upper_bound(
          sorted.begin(), sorted.end(), it.key(),
          [](const auto& key, const auto& other) { return key->getName().compareTo(other->getName(), 0) < 0; });
      sorted.insert(place, it.key());
    }
  }
  QORSmrPtr<KeyList> list(new KeyList);
  for (const QORSmrPtr<IQoriProperty>& key : sorted) list->append(key);
  return list;
}

QORString pathText(const QORString& nameSpace, const QORString& className, const KeyList& keys) {
  std::string text;
  model::PathText path(text, nameSpace, className);
  QORValSlistIterator<QORSmrPtr<IQoriProperty>> it(keys);
  while (++it) {
    const IQoriProperty& key = *it.key();
    const QORSmrPtr<IQoriValue>& value = key.getValue();
    path.addKey(key.getName(), value.IsNull() ? QoriScalar() : value->scalar(),
                value.IsNull() ? *key.getType() : *value->getType());
  }
  return QORString(text);
}

QORSmrPtr<IQoriNameSpacePath> pathOrEmpty(const QORSmrPtr<IQoriNameSpacePath>& nameSpacePath) {
  if (!nameSpacePath.IsNull()) return nameSpacePath;
  return {new CQoriNameSpacePath(QORString::emptyString(), QORString::emptyString())};
}

}  // namespace

CQoriNameSpacePath::~CQoriNameSpacePath() = default;

CQoriInstanceName::CQoriInstanceName(const QORString& className, const QORSmrPtr<KeyList>& keys,
                                     const QORSmrPtr<IQoriNameSpacePath>& nameSpacePath)
    : _className(className),
      _nameSpacePath(pathOrEmpty(nameSpacePath)),
      _keys(sortedKeys(keys)),
      _path(pathText(_nameSpacePath->getNameSpace(), _className, *_keys)) {}

CQoriInstanceName::~CQoriInstanceName() = default;
