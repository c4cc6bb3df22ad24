// A key may be a reference, whose keys may be references in their turn.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteNames.h"

#include <algorithm>

#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace remote {

namespace {

constexpr std::string_view kMark = "//";

QORSmrPtr<IQoriProperty> keyThere(const QORSmrPtr<IQoriProperty>& key, const QORString& here, const QORString& there) {
  const QORSmrPtr<IQoriValue> value = key->getValue();
  const QORSmrPtr<IQoriInstanceName> reference =
      value.IsNull() ? QORSmrPtr<IQoriInstanceName>() : value->getReference();
  if (reference.IsNull()) return key;
  const QORSmrPtr<IQoriValue> changed(new CQoriValue(nameThere(*reference, here, there)));
  return QORSmrPtr<IQoriProperty>(new CQoriProperty(key->getName(), key->getType(), changed));
}

}  // namespace

std::string classKey(const QORString& nameSpace, const QORString& className) {
  return std::string((QORString::toUpperCase(nameSpace) + ":" + QORString::toUpperCase(className)).view());
}

std::string_view serverOf(std::string_view nameSpace) {
  if (!nameSpace.starts_with(kMark)) return {};
  nameSpace.remove_prefix(kMark.size());
  return nameSpace.substr(0, nameSpace.find('/'));
}

std::string_view withoutServer(std::string_view nameSpace) {
  if (!nameSpace.starts_with(kMark)) return nameSpace;
  const std::size_t slash = std::min(nameSpace.find('/', kMark.size()), nameSpace.size() - 1);
  return nameSpace.substr(slash + 1);
}

QORSmrPtr<IQoriInstanceName> nameThere(const IQoriInstanceName& name, const QORString& here, const QORString& there) {
  const QORString given(withoutServer(name.getNameSpacePath()->getNameSpace().view()));
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  QORValSlistIterator<QORSmrPtr<IQoriProperty>> each(*name.getKeys());
  while (++each) keys->append(keyThere(each.key(), here, there));
  const QORSmrPtr<IQoriNameSpacePath> path(
      new CQoriNameSpacePath(QORString::emptyString(), given.isEqualCaseInsensitive(here) ? there : given));
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(name.getClassName(), keys, path));
}

}  // namespace remote
