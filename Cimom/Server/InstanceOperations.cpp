// Lists come from ServerObjects; changes go to the writer once they fit the class.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/InstanceOperations.h"

#include <algorithm>
#include <string>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlPathReader.h"
#include "Cimom/Embedded/ClientCalls.h"
#include "Cimom/Embedded/EmbeddedState.h"
#include "Cimom/Embedded/OuterCalls.h"
#include "Cimom/Embedded/RepositoryError.h"
#include "Cimom/Server/InstancesReply.h"
#include "Cimom/Server/ServerObjects.h"
#include "Cimom/Server/ServerParameters.h"
#include "Cimom/Server/StatusCodes.h"
#include "Cimom/Server/SubscriptionRules.h"
#include "Cimom/Server/WrittenInstance.h"

namespace {

using Reply = std::unique_ptr<ServerReply>;
using Names = std::optional<std::vector<QORString>>;
using embedded::CimStatus;

[[noreturn]] void raise(CimStatus status, const std::string& message) {
  throw CimStatusException(static_cast<QORuint32>(status), message);
}

bool contains(const std::vector<QORString>& names, const QORString& name) {
  return std::any_of(names.begin(), names.end(),
                     [&](const QORString& each) { return each.isEqualCaseInsensitive(name); });
}

// The properties of an instance that a call asks for: those that are listed, and of these, if it says so, those that
// the instance's own class declares. Null: all.
CIMApi::PropertyNames namesOf(const ServerCall& call, const IQoriInstanceName& name) {
  const Names listed = call.request.texts("PropertyList");
  const bool isLocalOnly = call.request.flag("LocalOnly", true);
  if (!listed && !isLocalOnly) return {};
  CIMApi::PropertyNames names(new QORValSlist<QORString>);
  CimClassDeclaration declaration;
  if (isLocalOnly) call.manager->describeClass(call.request.nameSpace, name.getClassName(), declaration);
  if (!isLocalOnly) {
    for (const QORString& each : *listed) names->append(each);
  }
  for (const CimPropertyDeclaration& each : declaration.properties) {
    if (!listed || contains(*listed, each.name)) names->append(each.name);
  }
  return names;
}

Reply getInstance(const ServerCall& call) {
  serverparameters::allowOnly(call,
                              {"InstanceName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
  const QORSmrPtr<IQoriInstanceName> name = ServerObjects(call).requireName("InstanceName");
  call.request.flag("IncludeQualifiers", false);
  const QORSmrPtr<IQoriObject> found = CIMApi().getInstance(call.request.nameSpace, name, namesOf(call, *name),
                                                            CIMApi::DefaultTimeout, nullptr, nullptr, nullptr);
  if (found.IsNull()) raise(CimStatus::NotFound, "there is no instance " + std::string(name->toString().view()));
  const CIMApi::Instances one(new QORValSlist<QORSmrPtr<IQoriObject>>);
  one->append(found);
  return replyWithInstances(call.request, one, originsFor(call),
                            [](CimXmlWriter& writer, const IQoriObject& object) { writer.writeInstance(object); });
}

Reply enumerateInstances(const ServerCall& call) {
  serverparameters::allowOnly(
      call, {"ClassName", "LocalOnly", "DeepInheritance", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
  call.request.flag("IncludeQualifiers", false);
  const CIMApi::Instances found = ServerObjects(call).instances(ServerObjects::Want::Instances, true);
  return replyWithInstances(call.request, found, originsFor(call),
                            [](CimXmlWriter& writer, const IQoriObject& object) { writer.writeNamedInstance(object); });
}

Reply enumerateInstanceNames(const ServerCall& call) {
  serverparameters::allowOnly(call, {"ClassName"});
  const CIMApi::Instances found = ServerObjects(call).instances(ServerObjects::Want::Names);
  return replyWithInstances(call.request, found, {}, [](CimXmlWriter& writer, const IQoriObject& object) {
    writer.writeInstanceName(*object.getInstanceName());
  });
}

// Instances of live classes and of those of outer servers are not for this one to make.
void requireOwnClass(const ServerCall& call, const CQoriClass& model) {
  const QORString& name = model.getClassName();
  const std::shared_ptr<OuterSource>& outer = call.manager->state()->outer;
  const bool isOthers = contains(call.manager->liveClassNames(call.request.nameSpace), name) ||
                        (outer != nullptr && contains(outer->classNames(call.request.nameSpace), name));
  if (!isOthers) return;
  throw CimStatusException(cimstatus::kNotSupported,
                           "instances of class " + std::string(name.view()) + " cannot be created here");
}

// A key that no path can tell makes an instance that nobody can ask for.
void requireShortKeys(const CQoriClass& model, const CimInstanceDeclaration& declaration) {
  for (const CimInstanceProperty& property : declaration.properties) {
    if (property.value.IsNull() || !model.isKey(static_cast<QORuint32>(model.position(property.name)))) continue;
    if (property.value->toString().length() <= CimXmlPathReader::kMaximumKey) continue;
    raise(CimStatus::InvalidParameter, "instance of " + std::string(model.getClassName().view()) + ": key " +
                                           std::string(property.name.view()) + " is longer than " +
                                           std::to_string(CimXmlPathReader::kMaximumKey) + " bytes");
  }
}

Reply createInstance(const ServerCall& call, InstanceWriter& writer) {
  serverparameters::allowOnly(call, {"NewInstance"});
  const ServerClasses space(*call.manager, call.request.nameSpace);
  const CimXmlInstance& given = serverparameters::instance(call.request, "NewInstance");
  const ServerClasses::Class handle = space.require(given.className);
  const CQoriClass& model = ServerClasses::modelOf(handle);
  requireOwnClass(call, model);
  const CimInstanceDeclaration declaration{model.getClassName(), writtenProperties(*call.manager, space, model, given)};
  requireShortKeys(model, declaration);
  // What is left out of a subscription is filled in.
  if (!isSubscriptionClass(call.request.nameSpace, declaration.className)) {
    requireValues(model, declaration.properties);
  }
  const QORSmrPtr<IQoriInstanceName> made = writer.create(*call.leaseForChange(), call.request.nameSpace, declaration);
  CimXmlResponse response(call.request.messageId, call.request.operation);
  response.values().writeInstanceName(*made);
  return std::make_unique<WholeReply>(response.finish());
}

Reply emptyReply(const ServerCall& call) {
  return std::make_unique<WholeReply>(CimXmlResponse(call.request.messageId, call.request.operation).finish());
}

// An instance that outer servers alone have is there, but not to be changed; one that a path puts there is none of
// here.
void refuseOthers(const ServerCall& call, const QORSmrPtr<IQoriInstanceName>& name) {
  const std::shared_ptr<EmbeddedObjectManager::State>& state = call.manager->state();
  if (state->outer == nullptr) return;
  const QORString& nameSpace = call.request.nameSpace;
  if (!embedded::getInstance(*state->store, nameSpace, name, {}).IsNull()) return;
  if (embedded::outerObject(*state, {nameSpace, name->getClassName(), {}}, *name).IsNull()) {
    if (!name->getNameSpacePath()->getNameSpace().beginsWith("//")) return;
    raise(CimStatus::NotFound, "instance " + std::string(name->toString().view()) + " does not exist");
  }
  throw CimStatusException(cimstatus::kNotSupported, "instance " + std::string(name->toString().view()) +
                                                         " is of another server and cannot be changed here");
}

// What is to be set: all that is given; or what is listed, which takes the class's default where nothing is given,
// unless it is a key.
std::vector<CimInstanceProperty> changesOf(const CQoriClass& model, std::vector<CimInstanceProperty> given,
                                           const Names& listed) {
  if (!listed) return given;
  std::vector<CimInstanceProperty> changes;
  for (const QORString& name : *listed) {
    const QORsint32 position = model.position(name);
    if (position < 0) {
      raise(CimStatus::NoSuchProperty,
            "class " + std::string(model.getClassName().view()) + " has no property " + std::string(name.view()));
    }
    const CimPropertyDeclaration& declared = model.properties()[static_cast<std::size_t>(position)];
    const auto isIt = [&](const CimInstanceProperty& each) { return each.name.isEqualCaseInsensitive(name); };
    if (std::any_of(changes.begin(), changes.end(), isIt)) continue;
    const auto found = std::find_if(given.begin(), given.end(), isIt);
    if (found == given.end() && model.isKey(static_cast<QORuint32>(position))) continue;
    changes.push_back(found == given.end() ? CimInstanceProperty{declared.name, declared.defaultValue} : *found);
  }
  return changes;
}

// A stored instance keeps what its class says is not written; others are the writer's to refuse.
std::vector<CimInstanceProperty> allowedFor(const ServerCall& call, const CQoriClass& model,
                                            const QORSmrPtr<IQoriInstanceName>& name,
                                            std::vector<CimInstanceProperty> changes) {
  if (contains(call.manager->liveClassNames(call.request.nameSpace), model.getClassName())) return changes;
  const QORSmrPtr<IQoriObject> now =
      embedded::getInstance(*call.manager->state()->store, call.request.nameSpace, name, {});
  if (now.IsNull()) return changes;
  requireChangedValues(model, changes);
  return allowedChanges(model, *now, std::move(changes));
}

Reply modifyInstance(const ServerCall& call, InstanceWriter& writer) {
  serverparameters::allowOnly(call, {"ModifiedInstance", "IncludeQualifiers", "PropertyList"});
  const ServerClasses space(*call.manager, call.request.nameSpace);
  const CimXmlInstance& given = serverparameters::instance(call.request, "ModifiedInstance");
  const Names listed = call.request.texts("PropertyList");
  if (given.name.IsNull()) raise(CimStatus::InvalidParameter, "ModifiedInstance has no name");
  if (!given.className.isEqualCaseInsensitive(given.name->getClassName())) {
    raise(CimStatus::InvalidParameter, "ModifiedInstance is of another class than its name");
  }
  const ServerClasses::Class handle = space.require(given.className);
  const CQoriClass& model = ServerClasses::modelOf(handle);
  const QORSmrPtr<IQoriInstanceName> name = ServerObjects(call).requireName(given.name);
  refuseOthers(call, name);
  const std::vector<CimInstanceProperty> changes =
      allowedFor(call, model, name, changesOf(model, writtenProperties(*call.manager, space, model, given), listed));
  writer.modify(*call.leaseForChange(), name, changes);
  return emptyReply(call);
}

Reply deleteInstance(const ServerCall& call, InstanceWriter& writer) {
  serverparameters::allowOnly(call, {"InstanceName"});
  const QORSmrPtr<IQoriInstanceName> name = ServerObjects(call).requireName("InstanceName");
  refuseOthers(call, name);
  writer.remove(*call.leaseForChange(), name);
  return emptyReply(call);
}

}  // namespace

std::unique_ptr<ServerReply> refuseChange(const ServerCall& /*call*/) {
  throw CimStatusException(cimstatus::kAccessDenied,
                           "this server is read-only; it takes changes when it is started with --writable");
}

std::shared_ptr<const InstanceOrigins> originsFor(const ServerCall& call) {
  if (!call.request.flag("IncludeClassOrigin", false)) return {};
  return std::make_shared<const InstanceOrigins>(ServerClasses(*call.manager, call.request.nameSpace));
}

void addInstanceOperations(ServerOperations& operations, InstanceWriter* writer) {
  operations.add("GetInstance", &getInstance);
  operations.add("EnumerateInstances", &enumerateInstances);
  operations.add("EnumerateInstanceNames", &enumerateInstanceNames);
  using Change = Reply (*)(const ServerCall&, InstanceWriter&);
  for (const auto& [name, change] : {std::pair<const char*, Change>("CreateInstance", &createInstance),
                                     std::pair<const char*, Change>("ModifyInstance", &modifyInstance),
                                     std::pair<const char*, Change>("DeleteInstance", &deleteInstance)}) {
    if (writer == nullptr) {
      operations.add(name, &refuseChange);
    } else {
      operations.add(name, [change = change, writer](const ServerCall& call) { return change(call, *writer); });
    }
  }
}
