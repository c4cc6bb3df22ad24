// Instance names: the order of their keys and the text of their path.
#include "cimom/CQoriInstanceName.h"

#include <algorithm>
#include <vector>

#include "cimom/IQoriProperty.h"

namespace {

using KeyList = IQoriInstanceName::KeyList;

// Names have a key or two, so an insertion sort does; equal names keep their order.
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
  const QORSmrPtr<KeyList> list(new KeyList);
  for (const QORSmrPtr<IQoriProperty>& key : sorted) list->append(key);
  return list;
}

void appendQuoted(QORString& path, const QORString& text) {
  path += '"';
  std::string_view rest = text.view();
  for (std::size_t special; (special = rest.find_first_of("\"\\")) != std::string_view::npos;) {
    path.append(rest.substr(0, special));
    path += '\\';
    path += rest[special];
    rest.remove_prefix(special + 1);
  }
  path.append(rest);
  path += '"';
}

void appendKey(QORString& path, const IQoriProperty& key) {
  path += key.getName();
  path += '=';
  const QORSmrPtr<IQoriValue>& value = key.getValue();
  if (value.IsNull()) {
    path += "NULL";
    return;
  }
  const QoriScalar scalar = value->scalar();
  if (scalar.isNumber() || scalar.kind == QoriScalarKind::Boolean) {
    path += value->toString();
  } else {
    appendQuoted(path, value->toString());
  }
}

QORString pathText(const QORString& nameSpace, const QORString& className, const KeyList& keys) {
  QORString path;
  path.reserve(nameSpace.length() + className.length() + 64);
  if (!nameSpace.isEmpty()) {
    path += nameSpace;
    path += ':';
  }
  path += className;
  char separator = '.';
  QORValSlistIterator<QORSmrPtr<IQoriProperty>> it(keys);
  while (++it) {
    path += separator;
    separator = ',';
    appendKey(path, *it.key());
  }
  return path;
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
