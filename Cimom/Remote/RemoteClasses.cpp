// Superclasses are declared first, as the sink wants it.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteClasses.h"

#include <algorithm>
#include <utility>

#include "cimom/CQoriProviderException.h"
#include "cimom/CQoriType.h"

const char* const RemoteClasses::kServerProperty = "__SERVER";

namespace {

constexpr QORuint32 kCimFailed = 1;

std::string keyOf(const QORString& nameSpace, const QORString& className) {
  return std::string((QORString::toUpperCase(nameSpace) + ":" + QORString::toUpperCase(className)).view());
}

// BORROWS; null when there is none.
CimPropertyDeclaration* findProperty(CimClassDeclaration& declaration, const QORString& name) {
  const auto found =
      std::find_if(declaration.properties.begin(), declaration.properties.end(),
                   [&name](const CimPropertyDeclaration& own) { return own.name.isEqualCaseInsensitive(name); });
  return found == declaration.properties.end() ? nullptr : &*found;
}

// Integers with a sign, integers without, reals; 0 for all others.
int familyOf(CQoriType::Code code) noexcept {
  if (code > CQoriType::Code::Real64) return 0;
  if (code >= CQoriType::Code::Real32) return 3;
  return static_cast<int>(code) % 2 == 0 ? 1 : 2;
}

// Whether the one type has all values of the other, and more.
bool isWider(const IQoriType& one, const IQoriType& other) {
  const CQoriType::Code code = CQoriType::codeOf(one);
  const CQoriType::Code otherCode = CQoriType::codeOf(other);
  const bool isAlike = one.isArray() == other.isArray() && familyOf(code) == familyOf(otherCode);
  return isAlike && familyOf(code) != 0 && code > otherCode;
}

// Where servers have different versions of a class it has the properties of all of them; what they
// tell in different ways is as the first of them has it, but a number as the one with the widest type has it.
CimClassDeclaration unionOf(std::vector<CimClassDeclaration>&& declarations) {
  CimClassDeclaration all = std::move(declarations.front());
  for (std::size_t i = 1; i < declarations.size(); ++i) {
    for (CimPropertyDeclaration& property : declarations[i].properties) {
      CimPropertyDeclaration* const known = findProperty(all, property.name);
      if (known == nullptr) {
        all.properties.push_back(std::move(property));
      } else if (isWider(*property.type, *known->type)) {
        *known = std::move(property);
      }
    }
  }
  return all;
}

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
  const std::optional<CimClassDeclaration>& fetched = declarationOf(nameSpace, className);
  if (!fetched.has_value()) return false;
  CimClassDeclaration declaration = *fetched;
  const QORString& superClass = declaration.superClass;
  const std::string key = keyOf(nameSpace, className);
  if (!_underWay.insert(key).second) raise(className, "class " + className + " derives from itself on the server");
  const UnderWay underWay(_underWay, key);
  if (_underWay.size() > CQoriClass::kMaximumDepth)
    raise(className, "class " + className + " has superclasses without end");
  try {
    if (!superClass.isEmpty() && !provideLocked(sink, nameSpace, superClass)) {
      raise(className, "the server has class " + className + ", but not its superclass " + superClass);
    }
    if (_hasServerNames) addServerProperty(sink, nameSpace, declaration);
    sink.createNamespace(nameSpace);
    sink.declareClass(nameSpace, declaration);
  } catch (const CQoriProviderException&) {
    throw;
  } catch (const QoriBaseException& refusal) {
    raise(className, "class " + className + " of the server cannot be used: " + refusal.getMessage());
  }
  return true;
}

const std::optional<CimClassDeclaration>& RemoteClasses::declarationOf(const QORString& nameSpace,
                                                                       const QORString& className) {
  const std::string key = keyOf(nameSpace, className);
  const auto known = _fetched.find(key);
  if (known != _fetched.end()) return known->second;
  Fetched fetched = _fetch(nameSpace, className);
  std::optional<CimClassDeclaration> one;
  if (!fetched.declarations.empty()) one = unionOf(std::move(fetched.declarations));
  if (one.has_value() && !fetched.isComplete) _incomplete.insert(key);
  return _fetched.emplace(key, std::move(one)).first->second;
}

void RemoteClasses::addServerProperty(CimDeclarationSink& sink, const QORString& nameSpace,
                                      CimClassDeclaration& declaration) const {
  CimPropertyDeclaration property;
  const bool isInherited = !declaration.superClass.isEmpty() &&
                           sink.describeProperty(nameSpace, declaration.superClass, kServerProperty, property);
  if (isInherited || findProperty(declaration, kServerProperty) != nullptr) return;
  property = CimPropertyDeclaration();
  property.name = kServerProperty;
  property.type = CQoriType::string;
  declaration.properties.insert(declaration.properties.begin(), std::move(property));
}
