// The thread that looks.
// SPDX-License-Identifier: Apache-2.0
#include "LiveEvents.h"

#include <exception>
#include <utility>

#include "Cimom/Embedded/ManagerScope.h"

namespace {

void tell(const std::string& line) {
  QORLog::log("Indications", QORString(line), QoriTraceLog::kWarning, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
}

void tellFailure(const QORString& className, const QoriBaseException& failure) {
  tell(std::string(className.view()) + ": " + std::string(failure.getMessage().view()));
}

}  // namespace

LiveEvents::LiveEvents(ServerModel& model, ServerEvents& events, const QORString& nameSpace,
                       std::chrono::milliseconds interval)
    : _model(model), _events(events), _nameSpace(nameSpace), _interval(interval), _thread([this] { run(); }) {}

LiveEvents::~LiveEvents() {
  {
    const std::lock_guard lock(_mutex);
    _isStopped = true;
  }
  _changed.notify_all();
  _thread.join();
}

void LiveEvents::run() {
  std::unique_lock lock(_mutex);
  while (!_isStopped) {
    lock.unlock();
    try {
      look();
    } catch (const std::exception& failure) {
      tell(std::string("live changes are not seen: ") + failure.what());
    }
    lock.lock();
    _changed.wait_for(lock, _interval, [this] { return _isStopped; });
  }
}

void LiveEvents::look() {
  const ServerModel::Manager manager = _model.lease();
  const ManagerScope scope(*manager);
  renew(manager);
  if (_watch == nullptr) return;
  std::vector<QORSmrPtr<IQoriObject>> indications;
  _watch->look([&](const QORSmrPtr<IQoriObject>& indication) { indications.push_back(indication); }, tellFailure);
  if (!indications.empty()) _events.publish(indications, _nameSpace);
}

void LiveEvents::renew(const ServerModel::Manager& manager) {
  const QORuint64 version = _events.filtersVersion();
  if (version == _version && manager.get() == _manager) return;
  auto watch = std::make_unique<LiveWatch>(*manager, _nameSpace);
  bool isAsked = false;
  for (const ServerEvents::Filter& filter : _events.filters()) {
    if (!filter->getNameSpace().isEqualCaseInsensitive(_nameSpace)) continue;
    isAsked = watch->add(*filter).empty() || isAsked;
  }
  if (isAsked && _watch != nullptr && manager.get() == _manager) watch->continueFrom(*_watch);
  if (isAsked) watch->start(tellFailure);
  _watch = isAsked ? std::move(watch) : nullptr;
  _manager = manager.get();
  _version = version;
}
