// The thread that looks.
// SPDX-License-Identifier: Apache-2.0
#include "LiveEvents.h"

#include <exception>
#include <optional>
#include <utility>

#include "Cimom/Embedded/ManagerScope.h"

namespace {

// A client waits so long for what its subscription asks for to be looked at.
constexpr std::chrono::seconds kPatience{2};
constexpr std::size_t kMostUnpublished = 20000;

void tell(const std::string& line) {
  QORLog::log("Indications", QORString(line), QoriTraceLog::kWarning, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
}

void tellFailure(const QORString& className, const QoriBaseException& failure) {
  tell(std::string(className.view()) + ": " + std::string(failure.getMessage().view()));
}

}  // namespace

LiveEvents::LiveEvents(ServerModel& model, ServerEvents& events, const QORString& nameSpace,
                       std::chrono::milliseconds interval)
    : _model(model),
      _events(events),
      _nameSpace(nameSpace),
      _interval(interval),
      _filters(events, nameSpace),
      _thread([this] { run(); }) {
  _events.setWatcher([this] { follow(); });
}

LiveEvents::~LiveEvents() {
  {
    const std::lock_guard lock(_mutex);
    _isStopped = true;
  }
  _changed.notify_all();
  _looked.notify_all();
  _events.setWatcher({});
  _thread.join();
}

void LiveEvents::run() {
  std::optional<Clock::time_point> last;
  std::unique_lock lock(_mutex);
  while (!_isStopped) {
    _isAsked = false;
    const bool isDue = !last || Clock::now() >= *last + _interval;
    lock.unlock();
    const QORuint64 version = _events.filtersVersion();
    try {
      look(isDue);
    } catch (const std::exception& failure) {
      tell(std::string("live changes are not seen: ") + failure.what());
    }
    if (isDue) last = Clock::now();
    lock.lock();
    _followed = version;
    _looked.notify_all();
    _changed.wait_until(lock, *last + _interval, [this] { return _isStopped || _isAsked; });
  }
}

void LiveEvents::setInterval(std::chrono::milliseconds interval) {
  const std::lock_guard lock(_mutex);
  _interval = interval;
  _isAsked = true;
  _changed.notify_all();
}

void LiveEvents::follow() {
  std::unique_lock lock(_mutex);
  const QORuint64 version = _events.filtersVersion();
  if (_followed >= version) return;
  _isAsked = true;
  _changed.notify_all();
  _looked.wait_for(lock, kPatience, [&] { return _isStopped || _followed >= version; });
}

// Where what is asked for now cannot be watched, what was asked for before still is.
void LiveEvents::look(bool isDue) {
  const ServerModel::Manager manager = _model.lease();
  const ManagerScope scope(*manager);
  try {
    renew(manager);
  } catch (const std::exception& failure) {
    tell(std::string("live changes are not seen: ") + failure.what());
  }
  if (isDue) see();
  publish();
}

void LiveEvents::see() {
  if (_watch == nullptr) return;
  const ManagerScope scope(*_manager);
  _watch->look([this](const auto& indications) { keep(indications); }, tellFailure);
}

// All or none of them.
void LiveEvents::keep(const std::vector<QORSmrPtr<IQoriObject>>& indications) {
  _unpublished.insert(_unpublished.end(), indications.begin(), indications.end());
}

// What a store that fails did not take stays for the next time.
void LiveEvents::publish() {
  if (_unpublished.size() > kMostUnpublished) {
    const std::size_t excess = _unpublished.size() - kMostUnpublished;
    tell(std::to_string(excess) + " live changes are lost, since the store does not take them");
    _unpublished.erase(_unpublished.begin(), _unpublished.begin() + static_cast<std::ptrdiff_t>(excess));
  }
  if (_unpublished.empty()) return;
  _events.publish(_unpublished, _nameSpace);
  _unpublished.clear();
}

void LiveEvents::renew(const ServerModel::Manager& manager) {
  LiveDemand demand = _filters.follow(manager);
  if (manager == _manager && demand == _demand) return;
  std::unique_ptr<LiveWatch> watch;
  std::vector<QORSmrPtr<IQoriObject>> seen;
  if (demand.isAny()) {
    watch = std::make_unique<LiveWatch>(*manager, _nameSpace, demand);
    const auto take = [&seen](const auto& indications) {
      seen.insert(seen.end(), indications.begin(), indications.end());
    };
    _watch == nullptr ? watch->start(tellFailure) : watch->continueFrom(*_watch, take, tellFailure);
  }
  keep(seen);
  _watch = std::move(watch);
  _manager = manager;
  _demand.changes.swap(demand.changes);
  _demand.classes.swap(demand.classes);
}
