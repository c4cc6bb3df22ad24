// Completes and checks them before anything is written.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/SubscriptionRules.h"

#include <algorithm>
#include <atomic>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/IndicationClasses.h"
#include "Cimom/Server/ServerClasses.h"
#include "Cimom/Server/StatusCodes.h"
#include "cimom/CQoriValue.h"

namespace {

bool isOf(const QORString& className, const char* name) { return className.isEqualCaseInsensitive(name); }

CimInstanceProperty* findProperty(CimInstanceDeclaration& declaration, const char* name) {
  const auto found = std::find_if(declaration.properties.begin(), declaration.properties.end(),
                                  [&](const CimInstanceProperty& each) { return isOf(each.name, name); });
  return found == declaration.properties.end() ? nullptr : &*found;
}

// A name that no other one has: the series is of this process alone.
QORString newName(const IndicationOrigin& origin) {
  static std::atomic<QORuint64> count{0};
  return QORString(origin.series + "name-" + std::to_string(++count));
}

void fill(CimInstanceDeclaration& declaration, const char* property, const QORString& value) {
  CimInstanceProperty* const given = findProperty(declaration, property);
  const QORSmrPtr<IQoriValue> text(new CQoriValue(value));
  if (given == nullptr) {
    declaration.properties.push_back({property, text});
  } else if (given->value.IsNull() || given->value->toString().isEmpty()) {
    given->value = text;
  }
}

}  // namespace

bool isSubscriptionClass(const QORString& nameSpace, const QORString& className) {
  return isOf(nameSpace, kSubscriptionSpace) &&
         (isOf(className, kFilterClass) || isOf(className, kHandlerClass) || isOf(className, kSubscriptionClass));
}

void SubscriptionRules::checkOther(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                                   const QORString& className) {
  if (!isOf(nameSpace, kSubscriptionSpace)) return;
  const ServerClasses space(manager, nameSpace);
  for (const char* known : {kFilterClass, kHandlerClass, kSubscriptionClass}) {
    if (!space.isA(className, known)) continue;
    throw CimStatusException(cimstatus::kInvalidParameter,
                             "a " + std::string(className.view()) + " would not be in force: create a " + known);
  }
}

void SubscriptionRules::checkNumber(const QORString& nameSpace, const QORString& className) {
  if (!isOf(nameSpace, kSubscriptionSpace) || !isOf(className, kIndicationServiceClass)) return;
  throw CimStatusException(cimstatus::kNotSupported,
                           std::string("there is one ") + kIndicationServiceClass + ", which can be modified alone");
}

void SubscriptionRules::checkSettings(const IQoriObject& before, const std::vector<CimInstanceProperty>& properties) {
  if (!isOf(before.getNameSpace(), kSubscriptionSpace) || !isOf(before.getClassName(), kIndicationServiceClass)) return;
  for (const CimInstanceProperty& each : properties) {
    const bool isSetting = isOf(each.name, "DeliveryRetryAttempts") || isOf(each.name, "DeliveryRetryInterval");
    if (!isSetting || !each.value.IsNull()) continue;
    throw CimStatusException(cimstatus::kInvalidParameter, std::string(each.name.view()) + " needs a value");
  }
}

void SubscriptionRules::tryFilter(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                  CimInstanceDeclaration declaration) {
  if (!isOf(nameSpace, kSubscriptionSpace) || !isOf(declaration.className, kFilterClass)) return;
  for (const char* key : {"SystemCreationClassName", "SystemName", "CreationClassName", "Name"}) {
    fill(declaration, key, declaration.className);
  }
  readFilter(*manager.sink().makeObject(kSubscriptionSpace, declaration));
}

void SubscriptionRules::complete(CimInstanceDeclaration& declaration) const {
  if (!isOf(declaration.className, kSubscriptionClass)) {
    fill(declaration, "SystemCreationClassName", "CIM_ComputerSystem");
    fill(declaration, "SystemName", QORString(_origin.host));
    fill(declaration, "CreationClassName", declaration.className);
    fill(declaration, "Name", newName(_origin));
    const QORString given(findProperty(declaration, "CreationClassName")->value->toString());
    if (!given.isEqualCaseInsensitive(declaration.className)) {
      throw CimStatusException(cimstatus::kInvalidParameter, "CreationClassName is \"" + std::string(given.view()) +
                                                                 "\", and the class is " +
                                                                 std::string(declaration.className.view()));
    }
  } else if (findProperty(declaration, "SubscriptionStartTime") == nullptr) {
    declaration.properties.push_back({"SubscriptionStartTime", _origin.now()});
  }
  checkObject(*_manager.sink().makeObject(kSubscriptionSpace, declaration));
}

void SubscriptionRules::checkObject(const IQoriObject& object) const {
  const QORString& className = object.getClassName();
  if (isOf(className, kFilterClass)) {
    readFilter(object);
  } else if (isOf(className, kHandlerClass)) {
    readDestination(object);
  } else {
    const Subscription subscription = readSubscription(object);
    if (!_table.hasFilter(subscription.filter)) {
      throw CimStatusException(cimstatus::kInvalidParameter, "there is no filter " + subscription.filter);
    }
    if (_table.findHandler(subscription.handler) == nullptr) {
      throw CimStatusException(cimstatus::kInvalidParameter,
                               "there is no listener destination " + subscription.handler);
    }
  }
}

CimInstanceDeclaration SubscriptionRules::changed(const IQoriObject& before,
                                                  const std::vector<CimInstanceProperty>& properties) {
  CimInstanceDeclaration declaration;
  declaration.className = before.getClassName();
  for (QORuint32 i = 0; i < before.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> property(before.getPropertyAt(i));
    declaration.properties.push_back({property->getName(), property->getValue()});
  }
  for (const CimInstanceProperty& each : properties) {
    CimInstanceProperty* const given = findProperty(declaration, each.name.c_str());
    if (given != nullptr) given->value = each.value;
  }
  return declaration;
}

void SubscriptionRules::check(const IQoriObject& before, const std::vector<CimInstanceProperty>& properties) const {
  checkObject(*_manager.sink().makeObject(kSubscriptionSpace, changed(before, properties)));
}

void SubscriptionRules::checkRemoval(const IQoriObject& before) const {
  const Subscription* const referring = _table.firstReferring(pathOf(before));
  if (referring == nullptr) return;
  throw CimStatusException(cimstatus::kFailed,
                           "the subscription " + referring->path + " refers to it: delete that first");
}
