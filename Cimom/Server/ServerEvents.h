// Subscriptions and indications, as a program that serves sees them.
// Tested by tests/unit/Server/IndicationServiceTest.cpp, tests/unit/Server/ListenServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVEREVENTS_H
#define QORQL_SERVER_SERVEREVENTS_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Cimom/CimXml/CimXmlInstance.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Embedded/Indications.h"
#include "Cimom/Server/ExportTransport.h"
#include "Cimom/Server/FilterLog.h"
#include "Cimom/Server/InstanceWriter.h"
#include "Cimom/Server/ServerOperations.h"
#include "qorql.h"

struct IndicationOptions {
  IndicationOrigin origin;
  ExportTransportMaker makeTransport;
  std::size_t queueLimit = 20000;                // indications that wait for one listener
  std::size_t listenerLimit = 1000;              // there can be so many
  std::chrono::milliseconds intervalUnit{1000};  // of DeliveryRetryInterval; tests have less time
};

// Clients write through its writer. Any thread may call.
class ServerEvents {
 public:
  // Ends deliveries within moments; what waits stays in the store.
  virtual ~ServerEvents() = default;

  // Declares the classes of subscriptions in an object manager that nobody else uses yet. THROWS QoriBaseException.
  virtual void prepare(EmbeddedObjectManager& manager) = 0;
  // What an object manager has of subscriptions, read and ready to be served. Without take() nothing has changed.
  class Attachment {
   public:
    virtual ~Attachment() = default;
    // Serves these subscriptions in the place of those before. REQUIRES the object manager to be the process's own by
    // now. Once.
    virtual void take() noexcept = 0;
  };
  // Puts what clients wrote over what a prepared object manager has, which nobody else uses yet, and reads the
  // subscriptions that it has then. What does not fit is logged. The thread that has it ends it; one at a time. THROWS
  // std::bad_alloc, and CimStatusException, status 1, when the store fails.
  virtual std::unique_ptr<Attachment> read(const std::shared_ptr<EmbeddedObjectManager>& manager) = 0;
  // Both at once.
  void attach(const std::shared_ptr<EmbeddedObjectManager>& manager) { read(manager)->take(); }

  virtual InstanceWriter& writer() noexcept = 0;

  // Puts indications of a namespace into the queues of the listeners that have asked for them. When it returns they
  // survive the process. THROWS CimStatusException, status 1, when the store fails; then none is in any queue.
  virtual void publish(const std::vector<QORSmrPtr<IQoriObject>>& indications, const QORString& nameSpace) = 0;
  // The same for an indication that a client sends: an operation of a server. An empty namespace in the call stands for
  // the default one.
  virtual std::unique_ptr<ServerReply> takeExport(const ServerCall& call) = 0;

  // What became of the filters of enabled subscriptions.
  struct FilterNews {
    QORuint64 version = 0;  // of the filters with these changes
    bool areAll = false;    // these are all filters that there are
    std::vector<FilterChange> changes;
  };
  // Since a version. Since 0, and where that is too long ago, all that there are.
  virtual FilterNews filtersSince(QORuint64 version) const = 0;
  // A greater number after each change of them; never 0.
  virtual QORuint64 filtersVersion() const noexcept = 0;
  // Has that called by waitForWatcher(). One at a time; an empty one ends that, and waits for the calls that are under
  // way. Many threads call it at once. It must not write nor wait for a change of filters.
  virtual void setWatcher(std::function<void()> watcher) = 0;
  // To be called after a client has changed something and before it gets its reply, so that the watcher may see to it
  // that nothing is missed from then on. Without anything held that others wait for: it may take long.
  virtual void waitForWatcher() = 0;
};

// Somebody who is sent indications. Called by many threads at once.
class IndicationTaker {
 public:
  virtual ~IndicationTaker() = default;
  // The sender gets its reply when this returns. THROWS CimStatusException to refuse it: 1 when there is no room now.
  virtual void take(const CimXmlInstance& indication, const ServerClient& sender) = 0;
  // A request was refused.
  virtual void complain(const ServerClient& sender, const std::string& reason) = 0;
};

#endif
