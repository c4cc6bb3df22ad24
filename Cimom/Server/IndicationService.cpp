// The face of the service, and the operation by which clients send indications.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/IndicationService.h"

#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Embedded/DeclarationHelpers.h"
#include "Cimom/Server/ExportMessages.h"
#include "Cimom/Server/IndicationState.h"
#include "Cimom/Server/ServerClasses.h"
#include "Cimom/Server/StatusCodes.h"
#include "Cimom/Server/WrittenInstance.h"

namespace {

void addUnlessThere(std::vector<CimInstanceProperty>& properties, const char* name,
                    const QORSmrPtr<IQoriValue>& value) {
  for (const CimInstanceProperty& each : properties) {
    if (each.name.isEqualCaseInsensitive(name)) return;
  }
  properties.push_back({name, value});
}

// THROWS CimStatusException: 4 for what is no indication, 5 for a class that is not there, and as writtenProperties().
QORSmrPtr<IQoriObject> indicationOf(const ServerCall& call, const QORString& nameSpace,
                                    const IndicationOrigin& origin) {
  const CimXmlInstance* const given = call.request.instance("NewIndication");
  if (given == nullptr)
    throw CimStatusException(cimstatus::kInvalidParameter, "the parameter NewIndication is missing");
  call.note.subject = given->className.view();
  const ServerClasses space(*call.manager, nameSpace);
  const ServerClasses::Class handle = space.require(given->className);
  const CQoriClass& model = ServerClasses::modelOf(handle);
  if (!embedded::hasFlag(model.qualifiersInForce(), "Indication") && !space.isA(given->className, "CIM_Indication")) {
    throw CimStatusException(cimstatus::kInvalidParameter,
                             std::string(given->className.view()) + " is no class of indications");
  }
  CimInstanceDeclaration declaration;
  declaration.className = given->className;
  declaration.properties = writtenProperties(*call.manager, space, model, *given);
  if (model.position("IndicationTime") >= 0) {
    addUnlessThere(declaration.properties, "IndicationTime", origin.now());
  }
  return call.manager->sink().makeObject(nameSpace, declaration);
}

}  // namespace

IndicationService::IndicationService(ServerStore& store, IndicationOptions options)
    : _state(std::make_shared<State>(store, std::move(options))) {}

IndicationService::~IndicationService() { _state->stop(); }

void IndicationService::prepare(EmbeddedObjectManager& manager) { _state->prepare(manager); }

std::unique_ptr<ServerEvents::Attachment> IndicationService::read(
    const std::shared_ptr<EmbeddedObjectManager>& manager) {
  return _state->read(manager);
}

InstanceWriter& IndicationService::writer() noexcept { return _state->writer(); }

void IndicationService::publish(const std::vector<QORSmrPtr<IQoriObject>>& indications, const QORString& nameSpace) {
  _state->publish(indications, nameSpace);
}

std::unique_ptr<ServerReply> IndicationService::takeExport(const ServerCall& call) {
  const QORString nameSpace =
      call.request.nameSpace.isEmpty() ? QORString(EmbeddedObjectManager::kDefaultNamespace) : call.request.nameSpace;
  _state->publish({indicationOf(call, nameSpace, _state->origin())}, nameSpace);
  return std::make_unique<WholeReply>(exportResponse(call.request.messageId));
}

ServerEvents::FilterNews IndicationService::filtersSince(QORuint64 version) const {
  return _state->filtersSince(version);
}

QORuint64 IndicationService::filtersVersion() const noexcept { return _state->filtersVersion(); }

void IndicationService::setWatcher(std::function<void()> watcher) { _state->setWatcher(std::move(watcher)); }

void IndicationService::waitForWatcher() { _state->waitForWatcher(); }
