// Classes that derive from one superclass share its keys, so that these nearly always tell an instance.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteIndex.h"

#include <utility>

namespace {

// "root/cimv2:.Id=1" of "root/cimv2:V_Volume.Id=1".
std::string withoutClass(std::string path, const QORString& className) {
  const std::size_t at = path.find(':' + std::string(className.view()) + '.');
  return at == std::string::npos ? path : path.erase(at + 1, className.length());
}

}  // namespace

void RemoteIndex::add(const QORSmrPtr<IQoriObject>& object) {
  std::string path;
  object->appendPath(path);
  _byKeys[withoutClass(path, object->getClassName())].push_back(object);
  _byPath.emplace(std::move(path), object);
}

RemoteIndex::Found RemoteIndex::find(const IQoriInstanceName& name) const {
  const std::string path(name.toString().view());
  if (const auto found = _byPath.find(path); found != _byPath.end()) return {found->second, false};
  const auto alike = _byKeys.find(withoutClass(path, name.getClassName()));
  if (alike == _byKeys.end()) return {};
  if (alike->second.size() > 1) return {{}, true};
  return {alike->second.front(), false};
}
