// An open asks the object manager for all instances at once, whose list is shared with it where it keeps one, and the
// pulls write them: none is copied.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/PullOperations.h"

#include <vector>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/EnumerationParameters.h"
#include "Cimom/Server/EnumerationReply.h"
#include "Cimom/Server/InstancesReply.h"
#include "Cimom/Server/ServerObjects.h"
#include "Cimom/Server/ServerParameters.h"

namespace {

using Kind = EnumerationContexts::Kind;
using Want = ServerObjects::Want;

constexpr QORuint64 kObjectBytes = 256;  // of one that nobody else holds; most are smaller or shared

class ObjectItems final : public EnumerationItems {
 public:
  ObjectItems(const ServerCall& call, const CIMApi::Instances& objects, Kind kind)
      : _objects(objects), _kind(kind), _host(call.host), _origins(originsFor(call)), _at(*_objects) {
    _hasNext = ++_at;
  }
  bool hasNext() const override { return _hasNext; }
  QORuint64 heldBytes() const override { return _objects->entries() * kObjectBytes; }
  void writeNext(CimXmlWriter& writer) override {
    const QORSmrPtr<IQoriObject>& object = _at.key();
    if (_kind == Kind::Paths) {
      writer.writeInstancePath(*object->getInstanceName(), _host);
    } else {
      writer.setOrigins(_origins.get());
      writer.writeInstanceWithPath(*object, _host);
    }
    _hasNext = ++_at;
  }

 private:
  const CIMApi::Instances _objects;
  const Kind _kind;
  const QORString _host;
  const std::shared_ptr<const InstanceOrigins> _origins;  // null: they are not asked for
  QORValSlistIterator<QORSmrPtr<IQoriObject>> _at;
  bool _hasNext = false;
};

// How an open finds its instances.
using Find = CIMApi::Instances (*)(const ServerObjects& objects, Want want);

CIMApi::Instances enumerated(const ServerObjects& objects, Want want) { return objects.instances(want); }
CIMApi::Instances associated(const ServerObjects& objects, Want want) {
  return objects.associators(want, "InstanceName");
}
CIMApi::Instances referring(const ServerObjects& objects, Want want) {
  return objects.references(want, "InstanceName");
}

// Parameters of operations, by their names.
using ParameterNames = std::vector<const char*>;

// An open: the list that it gives, in which form, and what its calls may say.
struct Opening {
  const char* operation;
  Find find;
  Kind kind;
  ParameterNames parameters;
};

Opening openingOf(const char* operation, Find find, Kind kind, const ParameterNames& finding) {
  ParameterNames all = {"FilterQueryLanguage", "FilterQuery", "OperationTimeout", "ContinueOnError", "MaxObjectCount"};
  all.insert(all.end(), finding.begin(), finding.end());
  if (kind != Kind::Paths) {
    all.insert(all.end(), {"IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
  }
  return {operation, find, kind, all};
}

std::vector<Opening> openings() {
  const ParameterNames ofClass = {"ClassName"};
  const ParameterNames ofClassWithThoseBelow = {"ClassName", "DeepInheritance", "LocalOnly"};
  const ParameterNames ofAssociators = {"InstanceName", "AssocClass", "ResultClass", "Role", "ResultRole"};
  const ParameterNames ofReferences = {"InstanceName", "ResultClass", "Role"};
  return {openingOf("OpenEnumerateInstances", enumerated, Kind::InstancesWithPath, ofClassWithThoseBelow),
          openingOf("OpenEnumerateInstancePaths", enumerated, Kind::Paths, ofClass),
          openingOf("OpenAssociatorInstances", associated, Kind::InstancesWithPath, ofAssociators),
          openingOf("OpenAssociatorInstancePaths", associated, Kind::Paths, ofAssociators),
          openingOf("OpenReferenceInstances", referring, Kind::InstancesWithPath, ofReferences),
          openingOf("OpenReferenceInstancePaths", referring, Kind::Paths, ofReferences)};
}

class PullOperations {
 public:
  PullOperations(const std::shared_ptr<EnumerationContexts>& contexts, const ServerLimits& limits)
      : _contexts(contexts), _limits(limits) {}

  std::unique_ptr<ServerReply> open(const ServerCall& call, const Opening& opening) const {
    serverparameters::allowOnly(call, opening.parameters);
    ServerObjects(call).requireNameSpace();
    const EnumerationParameters parameters(call.request, _limits);
    refuseFilter(call.request);
    EnumerationContexts::Turn turn = _contexts->open(call, opening.kind, parameters.betweenPulls);
    call.request.flag("IncludeQualifiers", false);
    const Want want = opening.kind == Kind::Paths ? Want::Names : Want::Instances;
    turn.setItems(std::make_unique<ObjectItems>(call, opening.find(ServerObjects(call), want), opening.kind));
    return std::make_unique<EnumerationReply>(call, std::move(turn), parameters.most);
  }

  std::unique_ptr<ServerReply> pull(const ServerCall& call, Kind kind) const {
    serverparameters::allowOnly(call, {"EnumerationContext", "MaxObjectCount"});
    const std::string name = nameOf(call);
    const std::optional<QORuint32> most = call.request.number("MaxObjectCount");
    if (!most) throw CimStatusException(cimstatus::kInvalidParameter, "MaxObjectCount is needed");
    return std::make_unique<EnumerationReply>(call, _contexts->take(call, name, kind), *most);
  }

  std::unique_ptr<ServerReply> close(const ServerCall& call) const {
    serverparameters::allowOnly(call, {"EnumerationContext"});
    _contexts->close(call, nameOf(call));
    return std::make_unique<WholeReply>(CimXmlResponse(call.request.messageId, call.request.operation).finish());
  }

 private:
  static std::string nameOf(const ServerCall& call) {
    ServerObjects(call).requireNameSpace();
    const std::optional<QORString> name = call.request.text("EnumerationContext");
    if (!name) throw CimStatusException(cimstatus::kInvalidParameter, "EnumerationContext is needed");
    return std::string(name->view());
  }

  const std::shared_ptr<EnumerationContexts> _contexts;
  const ServerLimits _limits;
};

}  // namespace

void addPullOperations(ServerOperations& operations, const std::shared_ptr<EnumerationContexts>& contexts,
                       const ServerLimits& limits) {
  const auto pulls = std::make_shared<const PullOperations>(contexts, limits);
  for (const Opening& opening : openings()) {
    operations.add(opening.operation, [pulls, opening](const ServerCall& call) { return pulls->open(call, opening); });
  }
  const auto addPull = [&](const char* operation, Kind kind) {
    operations.add(operation, [pulls, kind](const ServerCall& call) { return pulls->pull(call, kind); });
  };
  addPull("PullInstancesWithPath", Kind::InstancesWithPath);
  addPull("PullInstancePaths", Kind::Paths);
  addPull("PullInstances", Kind::Instances);
  operations.add("CloseEnumeration", [pulls](const ServerCall& call) { return pulls->close(call); });
}
