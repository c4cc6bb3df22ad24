// Superclasses are declared first, as the sink wants it.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteClasses.h"

#include <algorithm>
#include <utility>

#include "Cimom/Remote/RemoteNames.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/CQoriType.h"

namespace {

constexpr QORuint32 kCimFailed = 1;

// Whatever ends it, a class can be asked for again.
class UnderWay {
 public:
  UnderWay(std::set<std::string>& all, const std::string& key) : _all(all), _key(key) {}
  UnderWay(const UnderWay&) = delete;
  UnderWay& operator=(const UnderWay&) = delete;
  ~UnderWay() { _all.erase(_key); }

 private:
  std::set<std::string>& _all;
  const std::string& _key;
};

[[noreturn]] void raise(const QORString& className, const QORString& message) {
  throw CQoriProviderException(className, message, kCimFailed);
}

}  // namespace

bool RemoteClasses::provide(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className) {
  if (!sink.findClass(nameSpace, className).IsNull()) return true;
  const std::lock_guard lock(_mutex);
  return provideLocked(sink, nameSpace, className);
}

QORSmrPtr<IQoriClass> RemoteClasses::find(CimDeclarationSink& sink, const QORString& nameSpace,
                                          const QORString& className) {
  QORSmrPtr<IQoriClass> found = sink.findClass(nameSpace, className);
  if (found.IsNull() && provide(sink, nameSpace, className)) found = sink.findClass(nameSpace, className);
  return found;
}

void RemoteClasses::forgetMissing() {
  const std::lock_guard lock(_mutex);
  std::erase_if(_fetched, [](const auto& entry) { return !entry.second.has_value(); });
}

bool RemoteClasses::forgetIncomplete() {
  const std::lock_guard lock(_mutex);
  for (const std::string& key : _incomplete) _fetched.erase(key);
  return !std::exchange(_incomplete, {}).empty();
}

bool RemoteClasses::provideLocked(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className) {
  if (!sink.findClass(nameSpace, className).IsNull()) return true;
  const std::optional<RemoteUnion>& fetched = declarationOf(nameSpace, className);
  if (!fetched.has_value()) return false;
  CimClassDeclaration declaration = fetched->declaration;
  const std::vector<QORString> superClasses = fetched->superClasses;
  const std::string key = remote::classKey(nameSpace, className);
  if (!_underWay.insert(key).second) raise(className, "class " + className + " derives from itself on the server");
  const UnderWay underWay(_underWay, key);
  if (_underWay.size() > CQoriClass::kMaximumDepth)
    raise(className, "class " + className + " has superclasses without end");
  try {
    for (const QORString& superClass : superClasses) {
      if (provideLocked(sink, nameSpace, superClass)) continue;
      raise(className, "the server has class " + className + ", but not its superclass " + superClass);
    }
    if (_hasServerNames) {
      remote::settleInheritance(sink, nameSpace, superClasses, declaration);
      addServerProperty(sink, nameSpace, declaration);
    }
    sink.createNamespace(nameSpace);
    sink.declareClass(nameSpace, declaration);
  } catch (const CQoriProviderException&) {
    throw;
  } catch (const QoriBaseException& refusal) {
    if (!sink.findClass(nameSpace, className).IsNull()) return true;  // another source was quicker
    raise(className, "class " + className + " of the server cannot be used: " + refusal.getMessage());
  }
  return true;
}

const std::optional<RemoteUnion>& RemoteClasses::declarationOf(const QORString& nameSpace, const QORString& className) {
  const std::string key = remote::classKey(nameSpace, className);
  const auto known = _fetched.find(key);
  if (known != _fetched.end()) return known->second;
  Fetched fetched = _fetch(nameSpace, className);
  std::optional<RemoteUnion> one;
  if (!fetched.declarations.empty()) one = remote::unionOf(std::move(fetched.declarations));
  if (one.has_value() && !fetched.isComplete) _incomplete.insert(key);
  return _fetched.emplace(key, std::move(one)).first->second;
}

void RemoteClasses::addServerProperty(CimDeclarationSink& sink, const QORString& nameSpace,
                                      CimClassDeclaration& declaration) const {
  CimPropertyDeclaration property;
  const bool isInherited = !declaration.superClass.isEmpty() &&
                           sink.describeProperty(nameSpace, declaration.superClass, kRemoteServerProperty, property);
  if (isInherited || remote::findProperty(declaration, kRemoteServerProperty) != nullptr) return;
  property = CimPropertyDeclaration();
  property.name = kRemoteServerProperty;
  property.type = CQoriType::string;
  declaration.properties.insert(declaration.properties.begin(), std::move(property));
}
