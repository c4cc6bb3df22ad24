// The thread, and what counts as delivered.
//
// A reply that says that the listener's queue is full, and everything that is no
// reply, is tried again. A listener that refuses an indication for another reason
// would refuse it again.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/IndicationListener.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/ExportMessages.h"
#include "Cimom/Server/LogFile.h"

namespace {

constexpr std::size_t kBatch = 64;
constexpr QORuint32 kQueueFull = 1;
constexpr std::chrono::milliseconds kAfterStoreFault{1000};
constexpr unsigned kMostDoublings = 5;       // of that pause
constexpr std::size_t kLongestError = 1000;  // a listener may tell more, each time

}  // namespace

IndicationListener::IndicationListener(ServerStore& store, const ExportTransportMaker& maker,
                                       DeliveryObserver& observer, std::string handler, std::string url,
                                       std::int64_t id)
    : _store(store), _maker(maker), _observer(observer), _handler(std::move(handler)), _id(id), _url(std::move(url)) {}

IndicationListener::~IndicationListener() {
  stop();
  if (_thread.joinable()) _thread.join();
}

void IndicationListener::wake(std::int64_t added) noexcept {
  _waiting += added;
  const std::lock_guard lock(_mutex);
  _hasWork = true;
  _changed.notify_all();
  if (_thread.joinable() || _isStopped) return;
  try {
    _thread = std::thread([this] { run(); });
  } catch (const std::exception& fault) {
    // What waits is in the store; the next indication tries again.
    _numbers.lastError = fault.what();
  }
}

void IndicationListener::forget(std::int64_t removed) {
  _waiting -= removed;
  ++_changes;
  const std::lock_guard lock(_mutex);
  _changed.notify_all();
}

void IndicationListener::redirect(std::string url) noexcept {
  const std::lock_guard lock(_mutex);
  // Where nothing changes nobody is woken, who would take that for one more attempt.
  if (_url == url) return;
  ++_changes;
  _url.swap(url);
  _changed.notify_all();
}

void IndicationListener::stop() noexcept {
  _isStopped = true;
  const std::lock_guard lock(_mutex);
  _changed.notify_all();
}

IndicationListener::Numbers IndicationListener::numbers() const {
  const std::lock_guard lock(_mutex);
  return _numbers;
}

void IndicationListener::run() {
  unsigned faults = 0;
  while (waitForWork()) {
    try {
      deliverAll();
      faults = 0;
    } catch (const std::exception& fault) {
      // The store cannot be read or written at the moment: what waits stays there.
      settle(Outcome::Failed, fault.what());
      if (!waitForStore(faults++)) return;
      const std::lock_guard lock(_mutex);
      _hasWork = true;
    }
  }
}

bool IndicationListener::waitForWork() {
  std::unique_lock lock(_mutex);
  _changed.wait(lock, [this] { return _hasWork || _isStopped; });
  _hasWork = false;
  return !_isStopped;
}

void IndicationListener::deliverAll() {
  for (;;) {
    const std::uint64_t changes = _changes;
    const std::vector<ServerStore::Queued> waiting = _store.queued(_id, kBatch);
    if (waiting.empty()) return;
    for (const ServerStore::Queued& queued : waiting) {
      if (_isStopped || _changes != changes) break;
      if (!deliver(queued)) break;
    }
    if (_isStopped) return;
  }
}

// False when it is no longer to be delivered, or not now.
bool IndicationListener::deliver(const ServerStore::Queued& queued) {
  if (_unfinished && _unfinished->number == queued.number) {
    finish(queued, _unfinished->outcome);
    return true;
  }
  for (unsigned failures = 0;; ++failures) {
    const Outcome outcome = attempt(queued);
    if (outcome == Outcome::Failed && (_isStopped || isRedirected())) return false;
    const RetrySettings settings = _observer.retrySettings();
    if (outcome != Outcome::Failed || failures >= settings.attempts) {
      finish(queued, outcome);
      return true;
    }
    if (!waitToRetry(queued, settings.interval)) return false;
  }
}

// To another address than the one that was asked last, which has all its attempts.
bool IndicationListener::isRedirected() {
  const std::lock_guard lock(_mutex);
  return _url != _transportUrl;
}

bool IndicationListener::isWaiting(const ServerStore::Queued& queued) {
  const std::vector<ServerStore::Queued> first = _store.queued(_id, 1);
  return !first.empty() && first.front().number == queued.number;
}

IndicationListener::Outcome IndicationListener::attempt(const ServerStore::Queued& queued) {
  try {
    const std::string id = std::to_string(++_messages);
    readExportReply(reply(exportMessage(id, queued.document)), id);
    return settle(Outcome::Taken, {});
  } catch (const CimStatusException& refusal) {
    const bool isFull = refusal.getCode() == kQueueFull;
    return settle(isFull ? Outcome::Failed : Outcome::Refused, refusal.what());
  } catch (const std::exception& fault) {
    _transport.reset();
    return settle(Outcome::Failed, fault.what());
  }
}

IndicationListener::Outcome IndicationListener::settle(Outcome outcome, const std::string& error) {
  const std::lock_guard lock(_mutex);
  if (outcome == Outcome::Taken) {
    ++_numbers.delivered;
  } else if (!_isStopped) {
    ++_numbers.failedAttempts;
    _numbers.lastError = shortened(error, kLongestError);
  }
  return outcome;
}

std::string IndicationListener::reply(const std::string& message) {
  std::string url;
  {
    const std::lock_guard lock(_mutex);
    url = _url;
  }
  if (_transport == nullptr || url != _transportUrl) {
    _transportUrl = url;
    _transport.reset();
    _transport = _maker(url, _isStopped);
  }
  return _transport->post(message);
}

// Out of the store only now: who ends before this delivers it again, with the same number.
void IndicationListener::finish(const ServerStore::Queued& queued, Outcome outcome) {
  _unfinished = {queued.number, outcome};
  if (_store.remove(_id, queued.number, outcome != Outcome::Taken)) --_waiting;
  _unfinished.reset();
  if (outcome == Outcome::Taken) return _observer.delivered(queued.subscription);
  const std::string reason = numbers().lastError;
  if (outcome == Outcome::Failed) return _observer.failed(_handler, queued.subscription, reason);
  QORLog::log("Indications",
              QORString(_handler + " refuses indication " + std::to_string(queued.number) + ": " + reason),
              QoriTraceLog::kWarning, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
}

// False when it is to stop, was taken out of the queue, or can be tried elsewhere. Who changes something else of the
// queue meanwhile does not shorten the pause.
bool IndicationListener::waitToRetry(const ServerStore::Queued& queued, std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  for (;;) {
    const std::uint64_t changes = _changes;
    if (!isWaiting(queued)) return false;
    std::unique_lock lock(_mutex);
    if (_isStopped || _url != _transportUrl) return false;
    if (!_changed.wait_until(lock, end, [&] { return _isStopped || _changes != changes; })) return true;
  }
}

// Longer each time; false when it is to stop.
bool IndicationListener::waitForStore(unsigned faults) {
  const auto time = kAfterStoreFault * (1U << std::min(faults, kMostDoublings));
  std::unique_lock lock(_mutex);
  return !_changed.wait_for(lock, time, [this] { return _isStopped.load(); });
}
