// Classes in short form, and a provider for each of them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/InteropModel.h"

#include <unistd.h>

#include <climits>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Cimom/Embedded/EmbeddedState.h"
#include "Cimom/Embedded/OuterCalls.h"
#include "Cimom/Server/InteropQualifiers.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;
using Type = QORSmrPtr<IQoriType>;
using Properties = std::vector<std::pair<const char*, Value>>;
using State = EmbeddedObjectManager::State;

constexpr const char* kModelRoot = "CIM_ManagedElement";
constexpr const char* kNameSpaceClass = "CIM_Namespace";
constexpr const char* kManagerClass = "CIM_ObjectManager";
constexpr const char* kMechanismClass = "CIM_ObjectManagerCommunicationMechanism";

QORString hostName() {
  char name[HOST_NAME_MAX + 1] = "";
  const bool isKnown = gethostname(name, sizeof name - 1) == 0 && name[0] != '\0';
  return QORString(isKnown ? name : "localhost");
}

Value textValue(const QORString& value) { return Value(new CQoriValue(value)); }

Value number(QORuint16 value) { return Value(new CQoriValue(value, CQoriType::uint16)); }

Value flag(bool value) { return Value(new CQoriValue(value, CQoriType::boolean)); }

Value array(std::vector<Value> values, const Type& type) {
  const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List);
  for (Value& value : values) elements->append(std::move(value));
  return Value(new CQoriValue(elements, CQoriType::arrayOf(type)));
}

CimPropertyDeclaration modelProperty(const char* name, const Type& type) {
  CimPropertyDeclaration declaration;
  declaration.name = name;
  declaration.type = type;
  return declaration;
}

CimPropertyDeclaration modelKey(const char* name) {
  CimPropertyDeclaration declaration = modelProperty(name, CQoriType::string);
  declaration.qualifiers.push_back(interopFlag("Key"));
  return declaration;
}

void declare(EmbeddedObjectManager& manager, const char* name, const char* superClass,
             std::vector<CimPropertyDeclaration> properties) {
  CimClassDeclaration declaration;
  if (manager.describeClass(kInteropNameSpace, name, declaration)) return;
  declaration.name = name;
  declaration.superClass = superClass;
  declaration.properties = std::move(properties);
  if (*superClass == '\0') declaration.qualifiers.push_back(interopFlag("Abstract"));
  manager.sink().declareClass(kInteropNameSpace, declaration);
}

void declareClasses(EmbeddedObjectManager& manager) {
  const Type numbers = CQoriType::arrayOf(CQoriType::uint16);
  const Type texts = CQoriType::arrayOf(CQoriType::string);
  declare(manager, kModelRoot, "",
          {modelProperty("InstanceID", CQoriType::string), modelProperty("Caption", CQoriType::string),
           modelProperty("Description", CQoriType::string), modelProperty("ElementName", CQoriType::string)});
  declare(manager, kNameSpaceClass, kModelRoot,
          {modelKey("SystemCreationClassName"), modelKey("SystemName"), modelKey("ObjectManagerCreationClassName"),
           modelKey("ObjectManagerName"), modelKey("CreationClassName"), modelKey("Name")});
  declare(manager, kManagerClass, kModelRoot,
          {modelKey("SystemCreationClassName"), modelKey("SystemName"), modelKey("CreationClassName"), modelKey("Name"),
           modelProperty("OperationalStatus", numbers), modelProperty("Started", CQoriType::boolean),
           modelProperty("GatherStatisticalData", CQoriType::boolean)});
  declare(manager, kMechanismClass, kModelRoot,
          {modelKey("SystemCreationClassName"), modelKey("SystemName"), modelKey("CreationClassName"), modelKey("Name"),
           modelProperty("CommunicationMechanism", CQoriType::uint16),
           modelProperty("FunctionalProfilesSupported", numbers),
           modelProperty("MultipleOperationsSupported", CQoriType::boolean),
           modelProperty("AuthenticationMechanismsSupported", numbers), modelProperty("Version", CQoriType::string),
           modelProperty("QueryLanguagesSupported", texts)});
}

// Hands out what a function tells; properties that the class in force does not have are left out.
class InteropProvider final : public InstanceProvider {
 public:
  using Instances = std::function<std::vector<Properties>()>;

  InteropProvider(const char* className, Instances instances)
      : _className(className), _instances(std::move(instances)) {}

  QORString getClassName() const override { return _className; }
  void enumerate(const Request& request, const Emit& emit) override {
    for (const Properties& properties : _instances()) {
      std::vector<Value> values;
      for (const QORString& name : request.propertyNames) values.push_back(valueOf(properties, name));
      emit(std::move(values));
    }
  }

 private:
  static Value valueOf(const Properties& properties, const QORString& name) {
    for (const auto& [known, value] : properties) {
      if (name.isEqualCaseInsensitive(known)) return value;
    }
    return {};
  }

  const char* const _className;
  const Instances _instances;
};

// The keys that all three have, and the name to show.
Properties named(const char* className, const QORString& name, const QORString& shown) {
  return {{"SystemCreationClassName", textValue("CIM_ComputerSystem")},
          {"SystemName", textValue(hostName())},
          {"CreationClassName", textValue(className)},
          {"Name", textValue(name)},
          {"ElementName", textValue(shown)}};
}

QORString managerName() { return "qorql:" + hostName(); }

std::vector<QORString> nameSpacesOf(const State& state) {
  std::vector<QORString> names;
  const std::shared_lock<std::shared_mutex> lock(state.store->mutex());
  for (const auto& space : state.store->nameSpaces()) {
    if (!space->isPending) names.push_back(space->name);
  }
  return names;
}

std::vector<Properties> nameSpaceInstances(const std::weak_ptr<State>& state) {
  std::vector<Properties> instances;
  const std::shared_ptr<State> held = state.lock();
  if (held == nullptr) return instances;
  std::vector<QORString> names = nameSpacesOf(*held);
  if (held->outer != nullptr) embedded::addOuterNames(names, held->outer->nameSpaces());
  for (const QORString& name : names) {
    Properties properties = named(kNameSpaceClass, name, name);
    properties.emplace_back("ObjectManagerCreationClassName", textValue(kManagerClass));
    properties.emplace_back("ObjectManagerName", textValue(managerName()));
    instances.push_back(std::move(properties));
  }
  return instances;
}

std::vector<Properties> managerInstances() {
  Properties properties = named(kManagerClass, managerName(), "QORQL");
  properties.emplace_back("Description", textValue("A query engine and its object manager"));
  properties.emplace_back("OperationalStatus", array({number(2)}, CQoriType::uint16));
  properties.emplace_back("Started", flag(true));
  properties.emplace_back("GatherStatisticalData", flag(false));
  return {properties};
}

// In the numbers of the class: reading, changing instances, associations, queries, qualifiers, indications.
Value profiles(const ServerTraits& traits) {
  std::vector<Value> told;
  for (const int profile : {2, 5, 6, 7, 8, 9}) {
    if (traits.isWritable || (profile != 5 && profile != 9)) told.push_back(number(static_cast<QORuint16>(profile)));
  }
  return array(std::move(told), CQoriType::uint16);
}

std::vector<Properties> mechanismInstances(const ServerTraits& traits) {
  constexpr QORuint16 kNone = 2;
  constexpr QORuint16 kBasic = 3;
  Properties properties = named(kMechanismClass, "cim-xml", "CIM-XML over HTTP");
  properties.emplace_back("CommunicationMechanism", number(2));
  properties.emplace_back("FunctionalProfilesSupported", profiles(traits));
  properties.emplace_back("MultipleOperationsSupported", flag(false));
  properties.emplace_back("AuthenticationMechanismsSupported",
                          array({number(traits.asksForUsers ? kBasic : kNone)}, CQoriType::uint16));
  properties.emplace_back("Version", textValue("1.4"));
  properties.emplace_back(
      "QueryLanguagesSupported",
      array({textValue("DMTF:CQL"), textValue("CIM:CQL"), textValue("CQL"), textValue("WQL")}, CQoriType::string));
  return {properties};
}

void serve(EmbeddedObjectManager& manager, const char* className, InteropProvider::Instances instances) {
  const auto there = manager.ownInstances(kInteropNameSpace, className, {});
  if (!there.IsNull() && there->entries() > 0) return;
  manager.registerProvider(kInteropNameSpace, std::make_shared<InteropProvider>(className, std::move(instances)));
}

}  // namespace

void addInteropModel(EmbeddedObjectManager& manager, const ServerTraits& traits) {
  manager.sink().createNamespace(kInteropNameSpace);
  declareInteropQualifiers(manager);
  declareClasses(manager);
  const std::weak_ptr<State> state = manager.state();
  serve(manager, kNameSpaceClass, [state] { return nameSpaceInstances(state); });
  serve(manager, kManagerClass, &managerInstances);
  serve(manager, kMechanismClass, [traits] { return mechanismInstances(traits); });
}
