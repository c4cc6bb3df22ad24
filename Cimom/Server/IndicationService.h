// Subscriptions of clients, and the indications that reach their listeners.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INDICATIONSERVICE_H
#define QORQL_SERVER_INDICATIONSERVICE_H

#include <memory>
#include <vector>

#include "Cimom/Embedded/Indications.h"
#include "Cimom/Server/ExportTransport.h"
#include "Cimom/Server/ServerEvents.h"
#include "Cimom/Server/ServerStore.h"
#include "Cimom/Server/Subscription.h"

// BORROWS the store.
class IndicationService final : public ServerEvents {
 public:
  IndicationService(ServerStore& store, IndicationOptions options);
  IndicationService(const IndicationService&) = delete;
  IndicationService& operator=(const IndicationService&) = delete;
  ~IndicationService() override;

  void prepare(EmbeddedObjectManager& manager) override;
  std::unique_ptr<Attachment> read(const std::shared_ptr<EmbeddedObjectManager>& manager) override;
  InstanceWriter& writer() noexcept override;
  void publish(const std::vector<QORSmrPtr<IQoriObject>>& indications, const QORString& nameSpace) override;
  std::unique_ptr<ServerReply> takeExport(const ServerCall& call) override;
  FilterNews filtersSince(QORuint64 version) const override;
  QORuint64 filtersVersion() const noexcept override;
  void setWatcher(std::function<void()> watcher) override;
  void waitForWatcher() override;

 private:
  class State;
  std::shared_ptr<State> _state;
};

#endif
