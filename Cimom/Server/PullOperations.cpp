// An open asks the object manager for all instances at once, whose list is shared with it where it keeps one, and the
// pulls write them: none is copied.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/PullOperations.h"

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/EnumerationParameters.h"
#include "Cimom/Server/EnumerationReply.h"
#include "Cimom/Server/ServerObjects.h"

namespace {

using Kind = EnumerationContexts::Kind;
using Want = ServerObjects::Want;

constexpr QORuint64 kObjectBytes = 256;  // of one that nobody else holds; most are smaller or shared

class ObjectItems final : public EnumerationItems {
 public:
  ObjectItems(const CIMApi::Instances& objects, Kind kind, const QORString& host)
      : _objects(objects), _kind(kind), _host(host), _at(*_objects) {
    _hasNext = ++_at;
  }
  bool hasNext() const override { return _hasNext; }
  QORuint64 heldBytes() const override { return _objects->entries() * kObjectBytes; }
  void writeNext(CimXmlWriter& writer) override {
    const QORSmrPtr<IQoriObject>& object = _at.key();
    if (_kind == Kind::Paths) {
      writer.writeInstancePath(*object->getInstanceName(), _host);
    } else {
      writer.writeInstanceWithPath(*object, _host);
    }
    _hasNext = ++_at;
  }

 private:
  const CIMApi::Instances _objects;
  const Kind _kind;
  const QORString _host;
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

class PullOperations {
 public:
  PullOperations(const std::shared_ptr<EnumerationContexts>& contexts, const ServerLimits& limits)
      : _contexts(contexts), _limits(limits) {}

  std::unique_ptr<ServerReply> open(const ServerCall& call, Find find, Kind kind) const {
    const EnumerationParameters parameters(call.request, _limits);
    refuseFilter(call.request);
    EnumerationContexts::Turn turn = _contexts->open(call, kind, parameters.betweenPulls);
    const CIMApi::Instances found = find(ServerObjects(call), kind == Kind::Paths ? Want::Names : Want::Instances);
    turn.setItems(std::make_unique<ObjectItems>(found, kind, call.host));
    return std::make_unique<EnumerationReply>(call, std::move(turn), parameters.most);
  }

  std::unique_ptr<ServerReply> pull(const ServerCall& call, Kind kind) const {
    const std::string name = nameOf(call);
    const std::optional<QORuint64> most = call.request.number("MaxObjectCount");
    if (!most) throw CimStatusException(cimstatus::kInvalidParameter, "MaxObjectCount is needed");
    return std::make_unique<EnumerationReply>(call, _contexts->take(call, name, kind), *most);
  }

  std::unique_ptr<ServerReply> close(const ServerCall& call) const {
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

struct Opening {
  const char* operation;
  Find find;
  Kind kind;
};
constexpr Opening kOpenings[] = {{"OpenEnumerateInstances", enumerated, Kind::InstancesWithPath},
                                 {"OpenEnumerateInstancePaths", enumerated, Kind::Paths},
                                 {"OpenAssociatorInstances", associated, Kind::InstancesWithPath},
                                 {"OpenAssociatorInstancePaths", associated, Kind::Paths},
                                 {"OpenReferenceInstances", referring, Kind::InstancesWithPath},
                                 {"OpenReferenceInstancePaths", referring, Kind::Paths}};

}  // namespace

void addPullOperations(ServerOperations& operations, const std::shared_ptr<EnumerationContexts>& contexts,
                       const ServerLimits& limits) {
  const auto pulls = std::make_shared<const PullOperations>(contexts, limits);
  for (const Opening& opening : kOpenings) {
    operations.add(opening.operation,
                   [pulls, opening](const ServerCall& call) { return pulls->open(call, opening.find, opening.kind); });
  }
  const auto addPull = [&](const char* operation, Kind kind) {
    operations.add(operation, [pulls, kind](const ServerCall& call) { return pulls->pull(call, kind); });
  };
  addPull("PullInstancesWithPath", Kind::InstancesWithPath);
  addPull("PullInstancePaths", Kind::Paths);
  addPull("PullInstances", Kind::Instances);
  operations.add("CloseEnumeration", [pulls](const ServerCall& call) { return pulls->close(call); });
}
