// What the service of indications is made of.
// Tested by tests/unit/Server/IndicationServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INDICATIONSTATE_H
#define QORQL_SERVER_INDICATIONSTATE_H

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <string>
#include <vector>

#include "Cimom/Server/IndicationListener.h"
#include "Cimom/Server/IndicationService.h"
#include "Cimom/Server/QueueProvider.h"
#include "Cimom/Server/ServiceJanitor.h"
#include "Cimom/Server/StoredInstanceWriter.h"
#include "Cimom/Server/SubscriptionTable.h"

// One line of the object manager's log.
void tellOfIndications(const std::string& line, QoriTraceLog::Severity severity = QoriTraceLog::kWarning);
void tellOfIndications(const QoriBaseException& fault) noexcept;

// Locks are taken in this order: the writer's, the table's (_mutex), the store's. The threads of listeners take the
// table's lock without holding another.
class IndicationService::State final : public WriteObserver,
                                       public DeliveryObserver,
                                       public std::enable_shared_from_this<State> {
 public:
  State(ServerStore& store, IndicationOptions options);
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() override;

  // As the service's destructor.
  void stop() noexcept;
  const IndicationOrigin& origin() const noexcept { return _options.origin; }
  void prepare(EmbeddedObjectManager& manager);
  std::unique_ptr<ServerEvents::Attachment> read(const std::shared_ptr<EmbeddedObjectManager>& manager);
  StoredInstanceWriter& writer() noexcept { return _writer; }
  void publish(const std::vector<QORSmrPtr<IQoriObject>>& indications, const QORString& nameSpace);
  ServerEvents::FilterNews filtersSince(QORuint64 version) const;
  QORuint64 filtersVersion() const noexcept { return _filters.version(); }
  void setWatcher(std::function<void()> watcher);
  void waitForWatcher();

  void prepareCreate(EmbeddedObjectManager& manager, const QORString& nameSpace,
                     const CimInstanceDeclaration& declaration) override;
  void prepareModify(EmbeddedObjectManager& manager, const IQoriObject& before,
                     const std::vector<CimInstanceProperty>& properties) override;
  void beforeCreate(EmbeddedObjectManager& manager, const QORString& nameSpace,
                    CimInstanceDeclaration& declaration) override;
  void beforeModify(EmbeddedObjectManager& manager, const IQoriObject& before,
                    const std::vector<CimInstanceProperty>& properties) override;
  void beforeRemove(EmbeddedObjectManager& manager, const IQoriObject& before) override;
  void change(EmbeddedObjectManager& manager, const InstanceChange& change,
              const std::function<void(ServerStore::Change&)>& write) override;

  RetrySettings retrySettings() const noexcept override;
  void delivered(const std::string& subscription) noexcept override;
  void failed(const std::string& handler, const std::string& subscription, const std::string& reason) noexcept override;

  std::vector<QueueRow> queueRows();

 private:
  class Reading;
  using Object = QORSmrPtr<IQoriObject>;
  using Time = std::chrono::steady_clock::time_point;

  // A listener, and where its sequence is.
  struct Channel {
    std::unique_ptr<IndicationListener> listener;
    std::string context;
    std::int64_t next = 0;
    std::int64_t dropped = 0;  // since it was told last
    std::int64_t kept = 0;     // what waited in the store when it was made
  };
  // What a change of the store does to the sequences once it is committed.
  struct Advance {
    std::int64_t next = 0;
    std::int64_t queued = 0;
    std::int64_t dropped = 0;
  };
  using Advances = std::map<Channel*, Advance>;
  using Channels = std::map<std::string, Channel>;  // by the handler's path

  void queue(ServerStore::Change& kept, const Object& indication, const QORString& nameSpace, Advances& advances);
  static void keep(ServerStore::Change& kept, const Advances& advances);
  void settle(const Advances& advances);
  Object indicationOf(EmbeddedObjectManager& manager, const InstanceChange& change);
  // What is known of a change before the store takes it, so that little can fail afterwards.
  struct Prepared;
  Prepared prepare(const InstanceChange& change);
  void apply(const InstanceChange& change, Prepared prepared) noexcept;
  void applyRemoval(const IQoriObject& before);
  void applyObject(Prepared prepared);
  Channels::node_type makeChannel(const ListenerDestination& destination);
  void open(Channels::node_type channel) noexcept;
  void retire(const std::string& handler) noexcept;
  void endRetired() noexcept;
  void forgetQueues(const EmbeddedObjectManager& manager) noexcept;
  // What goes with a change of a subscription or a listener.
  struct Discarded {
    Channel* channel = nullptr;
    std::int64_t count = 0;
  };
  Discarded keepQueues(ServerStore::Change& kept, const InstanceChange& change);
  // What an instance of the service says.
  struct Retries {
    std::optional<unsigned> attempts;
    std::optional<unsigned> interval;
  };
  static Retries retriesOf(const IQoriObject& service);
  void use(const Retries& retries) noexcept;
  bool hasChannel(const std::string& handler) const;
  struct Prepared {
    Retries retries;
    std::optional<SubscriptionFilter> filter;
    std::optional<Subscription> subscription;
    std::optional<ListenerDestination> destination;
    Channels::node_type channel;  // of a new listener
  };
  void createService(EmbeddedObjectManager& manager) const;
  void act(const Subscription& subscription, bool isTransient);
  void actOnFailure(EmbeddedObjectManager& manager, const std::string& path);
  void removeAll(EmbeddedObjectManager& manager, const std::string& handler);
  void forgetFailures(const std::string& subscription) noexcept;

  ServerStore& _store;
  const IndicationOptions _options;
  StoredInstanceWriter _writer;
  std::atomic<unsigned> _retryAttempts{3};
  std::atomic<unsigned> _retryInterval{20};
  std::atomic<std::size_t> _failingCount{0};
  std::atomic<QORuint64> _contexts{0};

  std::shared_mutex _watcherMutex;  // taken without any other; shared by those that wait for the watcher
  std::function<void()> _watcher;

  std::mutex _managerMutex;  // the janitor's jobs and who attaches take turns
  std::shared_ptr<EmbeddedObjectManager> _manager;

  mutable std::mutex _mutex;                                                          // guards what follows
  std::unique_ptr<SubscriptionTable> _table = std::make_unique<SubscriptionTable>();  // never null
  FilterLog _filters;
  Channels _channels;
  std::multimap<std::string, Channel> _retired;                      // stopped, until somebody has waited for them
  std::map<std::string, Time> _failing;                              // subscriptions, and since when
  std::map<std::string, std::unique_ptr<Indications>> _indications;  // by namespace, of the object manager
  ServiceJanitor _janitor;
};

#endif
