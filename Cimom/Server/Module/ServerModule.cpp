// Hands out what the library is made of.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerModule.h"

#include <systemd/sd-daemon.h>

#include <optional>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlObjects.h"
#include "Cimom/Embedded/EmbeddedState.h"
#include "Cimom/Server/AssociationOperations.h"
#include "Cimom/Server/CimXmlService.h"
#include "Cimom/Server/ClassOperations.h"
#include "Cimom/Server/ExportMessages.h"
#include "Cimom/Server/FollowedService.h"
#include "Cimom/Server/GatewaySource.h"
#include "Cimom/Server/IndicationService.h"
#include "Cimom/Server/InstanceOperations.h"
#include "Cimom/Server/InteropModel.h"
#include "Cimom/Server/ListenService.h"
#include "Cimom/Server/LogFile.h"
#include "Cimom/Server/PullOperations.h"
#include "Cimom/Server/QueryOperations.h"
#include "Cimom/Server/ServerOperations.h"
#include "Cimom/Server/ServerStore.h"
#include "Cimom/Server/UserFile.h"

namespace {

// The operations, and what reads requests for them.
class CimService : public HttpService {
 public:
  explicit CimService(const CimServiceOptions& options)
      : _model(options.model),
        _events(options.events),
        _operations(options.limits.query),
        _service(
            _operations, [this] { return _model->lease(); }, [this] { return _model->leaseForChange(); }) {
    const bool isWritable = _events != nullptr && options.isWritable;
    addClassOperations(_operations);
    addInstanceOperations(_operations, isWritable ? &_events->writer() : nullptr);
    addAssociationOperations(_operations);
    const auto contexts = std::make_shared<EnumerationContexts>(options.limits);
    addQueryOperations(_operations, contexts, options.limits);
    addPullOperations(_operations, contexts, options.limits);
    if (!isWritable) {
      _operations.addExport(kExportOperation, &refuseChange);
      return;
    }
    _operations.addExport(kExportOperation, [this](const ServerCall& call) {
      const ServerModel::Manager lease = call.leaseForChange();
      return _events->takeExport(call);
    });
    _followed.emplace(_service, *_events);
  }

  HttpReply serve(const HttpRequest& request) override {
    return _followed ? _followed->serve(request) : _service.serve(request);
  }

 private:
  const std::shared_ptr<ServerModel> _model;
  const std::shared_ptr<ServerEvents> _events;
  ServerOperations _operations;
  CimXmlService _service;
  std::optional<FollowedService> _followed;  // where clients can write
};

// The store outlives what uses it.
struct StoredEvents {
  explicit StoredEvents(const EventOptions& options) : store(options.storeFile), service(store, options.indications) {}

  ServerStore store;
  IndicationService service;
};

class Module : public ServerModule {
 public:
  std::unique_ptr<HttpServer> startHttp(const HttpOptions& options, std::shared_ptr<HttpService> service) override {
    return startHttpServer(options, std::move(service));
  }
  std::shared_ptr<HttpService> makeCimService(const CimServiceOptions& options) override {
    return std::make_shared<CimService>(options);
  }
  void prepare(EmbeddedObjectManager& manager, const ServerTraits& traits) override {
    const std::shared_ptr<OuterSource> outer = manager.state()->outer;
    if (outer != nullptr) manager.setOuterSource(std::make_shared<GatewaySource>(outer));
    addInteropModel(manager, traits);
  }
  std::shared_ptr<ServerEvents> makeEvents(const EventOptions& options) override {
    const auto events = std::make_shared<StoredEvents>(options);
    return {events, &events->service};
  }
  std::shared_ptr<HttpService> makeListenService(IndicationTaker& taker) override {
    return std::make_shared<ListenService>(taker);
  }
  QORSmrPtr<IQoriObject> makeObject(const CimXmlInstance& indication) override {
    return CimXmlObjects(QORString::emptyString()).make(indication);
  }
  std::exception_ptr makeRefusal(QORuint32 status, const std::string& reason) override {
    return std::make_exception_ptr(CimStatusException(status, reason));
  }
  std::shared_ptr<ServerModel> makeModel(ServerModel::Manager manager) override {
    return std::make_shared<CountedModel>(std::move(manager));
  }
  void setPassword(const std::string& file, const std::string& user, const std::string& password) override {
    ::setPassword(file, user, password);
  }
  void removeUser(const std::string& file, const std::string& user) override { ::removeUser(file, user); }
  std::unique_ptr<std::streambuf> makeLogBuffer(int file) override { return std::make_unique<LogBuffer>(file); }
  void tellSupervisor(const std::string& state) override { sd_notify(0, state.c_str()); }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) ServerModule* qorqlServerModule() {
  static Module module;
  return &module;
}
