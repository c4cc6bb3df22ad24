// The thread that looks.
// SPDX-License-Identifier: Apache-2.0
#include "LiveEvents.h"

#include <exception>
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
    : _model(model), _events(events), _nameSpace(nameSpace), _interval(interval), _thread([this] { run(); }) {
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
  std::unique_lock lock(_mutex);
  while (!_isStopped) {
    _isAsked = false;
    lock.unlock();
    const QORuint64 version = _events.filtersVersion();
    try {
      look();
    } catch (const std::exception& failure) {
      tell(std::string("live changes are not seen: ") + failure.what());
    }
    lock.lock();
    _followed = version;
    _looked.notify_all();
    _changed.wait_for(lock, _interval, [this] { return _isStopped || _isAsked; });
  }
}

void LiveEvents::follow() {
  std::unique_lock lock(_mutex);
  const QORuint64 version = _events.filtersVersion();
  _isAsked = true;
  _changed.notify_all();
  _looked.wait_for(lock, kPatience, [&] { return _isStopped || _followed >= version; });
}

void LiveEvents::look() {
  const ServerModel::Manager manager = _model.lease();
  const ManagerScope scope(*manager);
  // What the filters had asked for is seen before they change; another manager's watch goes on from there.
  const bool isSame = manager == _manager;
  if (isSame) see();
  renew(manager);
  if (!isSame) see();
  publish();
}

void LiveEvents::see() {
  if (_watch == nullptr) return;
  _watch->look([&](const QORSmrPtr<IQoriObject>& indication) { _unpublished.push_back(indication); }, tellFailure);
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
  const QORuint64 version = _events.filtersVersion();
  if (version == _version && manager == _manager) return;
  auto watch = std::make_unique<LiveWatch>(*manager, _nameSpace);
  bool isAsked = false;
  for (const ServerEvents::Filter& filter : _events.filters()) {
    if (!filter->getNameSpace().isEqualCaseInsensitive(_nameSpace)) continue;
    isAsked = watch->add(*filter).empty() || isAsked;
  }
  if (isAsked && _watch != nullptr) watch->continueFrom(*_watch);
  if (isAsked) watch->start(tellFailure);
  _watch = isAsked ? std::move(watch) : nullptr;
  _manager = manager;
  _version = version;
}
