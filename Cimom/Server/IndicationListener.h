// Delivers the indications of one listener, one after the other, on a thread of its own.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INDICATIONLISTENER_H
#define QORQL_SERVER_INDICATIONLISTENER_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "Cimom/Server/ExportTransport.h"
#include "Cimom/Server/ServerStore.h"

// How often a delivery is tried again before it has failed.
struct RetrySettings {
  unsigned attempts = 3;  // after the first
  std::chrono::milliseconds interval{20000};
};

// What becomes of deliveries. Called by the listeners' threads; throws nothing.
class DeliveryObserver {
 public:
  virtual ~DeliveryObserver() = default;
  virtual RetrySettings retrySettings() const noexcept = 0;
  virtual void delivered(const std::string& subscription) noexcept = 0;
  // All attempts were in vain; the indication is dropped. Why is told.
  virtual void failed(const std::string& handler, const std::string& subscription,
                      const std::string& reason) noexcept = 0;
};

// The indications wait in the store; they leave it when the listener has taken
// them, or when they have failed. Any thread may call.
class IndicationListener {
 public:
  struct Numbers {
    std::uint64_t delivered = 0;
    std::uint64_t failedAttempts = 0;
    std::string lastError;
  };

  // BORROWS store, maker and observer.
  IndicationListener(ServerStore& store, const ExportTransportMaker& maker, DeliveryObserver& observer,
                     std::string handler, std::string url, std::int64_t id);
  IndicationListener(const IndicationListener&) = delete;
  IndicationListener& operator=(const IndicationListener&) = delete;
  // Ends what is under way within moments; what waits stays in the store.
  ~IndicationListener();

  std::int64_t id() const noexcept { return _id; }
  const std::string& handler() const noexcept { return _handler; }
  // So many more wait in the store. When there is no thread to be had they wait for the next call.
  void wake(std::int64_t added) noexcept;
  // Others have taken so many out of the store.
  void forget(std::int64_t removed);
  std::int64_t waiting() const noexcept { return _waiting; }
  void redirect(std::string url) noexcept;
  // Without waiting for it; the destructor waits.
  void stop() noexcept;
  Numbers numbers() const;

 private:
  void run();
  bool waitForWork();
  void deliverAll();
  bool deliver(const ServerStore::Queued& queued);
  enum class Outcome { Taken, Refused, Failed };
  // What came of an indication that the store still has, since it could not be written.
  struct Unfinished {
    std::int64_t number = 0;
    Outcome outcome = Outcome::Taken;
  };
  Outcome attempt(const ServerStore::Queued& queued);
  Outcome settle(Outcome outcome, const std::string& error);
  bool isRedirected();
  bool isWaiting(const ServerStore::Queued& queued);
  bool waitToRetry(const ServerStore::Queued& queued, std::chrono::milliseconds time);
  bool waitForStore(unsigned faults);
  std::string reply(const std::string& message);
  void finish(const ServerStore::Queued& queued, Outcome outcome);

  ServerStore& _store;
  const ExportTransportMaker& _maker;
  DeliveryObserver& _observer;
  const std::string _handler;
  const std::int64_t _id;
  std::atomic<bool> _isStopped{false};
  std::atomic<std::int64_t> _waiting{0};   // in the store
  std::atomic<std::uint64_t> _changes{0};  // of the queue by others
  mutable std::mutex _mutex;               // guards what follows
  std::condition_variable _changed;
  std::string _url;
  bool _hasWork = false;
  Numbers _numbers;
  std::unique_ptr<ExportTransport> _transport;  // of the thread alone
  std::string _transportUrl;                    // of the thread alone
  std::optional<Unfinished> _unfinished;        // of the thread alone
  std::uint64_t _messages = 0;                  // of the thread alone
  std::thread _thread;                          // started by the first work
};

#endif
