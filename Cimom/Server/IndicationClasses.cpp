// Declares them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/IndicationClasses.h"

#include <initializer_list>
#include <utility>
#include <vector>

#include "Cimom/Server/InteropQualifiers.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;
using Type = QORSmrPtr<IQoriType>;

CimPropertyDeclaration property(const char* name, const Type& type, const Value& value = {}) {
  CimPropertyDeclaration declaration;
  declaration.name = name;
  declaration.type = type;
  declaration.defaultValue = value;
  return declaration;
}

CimPropertyDeclaration key(const char* name) {
  CimPropertyDeclaration declaration = property(name, CQoriType::string);
  declaration.qualifiers.push_back(interopFlag("Key"));
  return declaration;
}

CimPropertyDeclaration referenceKey(const char* name, const char* className) {
  CimPropertyDeclaration declaration = property(name, CQoriType::reference);
  declaration.referenceClass = className;
  declaration.qualifiers.push_back(interopFlag("Key"));
  return declaration;
}

Value number(int value) { return new CQoriValue(value, CQoriType::uint16); }

struct Declared {
  const char* name;
  const char* superClass;
  std::vector<CimPropertyDeclaration> properties;
  std::vector<const char*> flags = {};
};

std::vector<CimPropertyDeclaration> withKeys(std::vector<CimPropertyDeclaration> properties) {
  std::vector<CimPropertyDeclaration> all = {key("SystemCreationClassName"), key("SystemName"),
                                             key("CreationClassName"), key("Name")};
  for (CimPropertyDeclaration& each : properties) all.push_back(std::move(each));
  return all;
}

std::vector<Declared> subscriptionClasses() {
  return {
      {kFilterClass, kElementClass,
       withKeys({property("SourceNamespace", CQoriType::string),
                 property("SourceNamespaces", CQoriType::arrayOf(CQoriType::string)),
                 property("Query", CQoriType::string), property("QueryLanguage", CQoriType::string),
                 property("IndividualSubscriptionSupported", CQoriType::boolean,
                          new CQoriValue(true, CQoriType::boolean))})},
      {"CIM_ListenerDestination", kElementClass,
       withKeys({property("PersistenceType", CQoriType::uint16), property("OtherPersistenceType", CQoriType::string),
                 property("Destination", CQoriType::string), property("OtherProtocol", CQoriType::string),
                 property("Protocol", CQoriType::uint16)})},
      {kHandlerClass, "CIM_ListenerDestination", {}},
      {"CIM_AbstractIndicationSubscription",
       "",
       {property("OnFatalErrorPolicy", CQoriType::uint16, number(2)),
        property("OtherOnFatalErrorPolicy", CQoriType::string),
        property("FailureTriggerTimeInterval", CQoriType::uint64),
        property("SubscriptionState", CQoriType::uint16, number(2)),
        property("OtherSubscriptionState", CQoriType::string), property("TimeOfLastStateChange", CQoriType::datetime),
        property("SubscriptionDuration", CQoriType::uint64), property("SubscriptionStartTime", CQoriType::datetime),
        property("RepeatNotificationPolicy", CQoriType::uint16, number(2)),
        property("OtherRepeatNotificationPolicy", CQoriType::string),
        property("RepeatNotificationInterval", CQoriType::uint64), property("RepeatNotificationGap", CQoriType::uint64),
        property("RepeatNotificationCount", CQoriType::uint16)},
       {"Association", "Abstract"}},
      {kSubscriptionClass,
       "CIM_AbstractIndicationSubscription",
       {referenceKey("Filter", kFilterClass), referenceKey("Handler", "CIM_ListenerDestination")},
       {"Association"}},
  };
}

std::vector<Declared> serviceClasses() {
  return {
      {"CIM_Service",
       kElementClass,
       withKeys({property("Started", CQoriType::boolean), property("EnabledState", CQoriType::uint16, number(5))}),
       {"Abstract"}},
      {kIndicationServiceClass,
       "CIM_Service",
       {property("FilterCreationEnabled", CQoriType::boolean), property("DeliveryRetryAttempts", CQoriType::uint16),
        property("DeliveryRetryInterval", CQoriType::uint32), property("SubscriptionRemovalAction", CQoriType::uint16),
        property("SubscriptionRemovalTimeInterval", CQoriType::uint32)}},
      {kQueueClass,
       "",
       {key("Handler"), property("Destination", CQoriType::string), property("SequenceContext", CQoriType::string),
        property("NextSequenceNumber", CQoriType::sint64), property("Queued", CQoriType::uint64),
        property("Delivered", CQoriType::uint64), property("Dropped", CQoriType::uint64),
        property("FailedAttempts", CQoriType::uint64), property("LastError", CQoriType::string)}},
  };
}

void declareUnlessThere(EmbeddedObjectManager& manager, Declared declared) {
  CimClassDeclaration declaration;
  if (manager.describeClass(kSubscriptionSpace, declared.name, declaration)) return;
  declaration.name = declared.name;
  declaration.superClass = declared.superClass;
  declaration.properties = std::move(declared.properties);
  for (const char* name : declared.flags) declaration.qualifiers.push_back(interopFlag(name));
  manager.sink().declareClass(kSubscriptionSpace, declaration);
}

}  // namespace

std::string pathOf(const IQoriObject& object) {
  std::string path;
  object.appendPath(path);
  return path;
}

void declareIndicationClasses(EmbeddedObjectManager& manager) {
  manager.sink().createNamespace(kSubscriptionSpace);
  declareUnlessThere(manager, {kElementClass,
                               "",
                               {property("InstanceID", CQoriType::string), property("Caption", CQoriType::string),
                                property("Description", CQoriType::string), property("ElementName", CQoriType::string)},
                               {"Abstract"}});
  for (Declared& declared : subscriptionClasses()) declareUnlessThere(manager, std::move(declared));
  for (Declared& declared : serviceClasses()) declareUnlessThere(manager, std::move(declared));
}
