// Each server has a thread, so that one which does not answer keeps no other one from being asked.
// Tested by tests/server/slow_test.py.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteWatch.h"

#include <signal.h>

#include <chrono>

#include "Cimom/Remote/RemoteNames.h"

namespace {

constexpr std::chrono::seconds kBetweenLooks{30};
constexpr std::chrono::seconds kBetweenTries{1};  // of a server that does not answer

}  // namespace

RemoteWatch::RemoteWatch(const std::vector<RemoteServerOptions>& servers) {
  for (const RemoteServerOptions& options : servers) {
    _servers.push_back(std::make_unique<Watched>(options, _isStopped));
  }
  // Signals are for the program's own thread.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &before);
  for (const auto& watched : _servers) _threads.emplace_back([this, &watched] { watch(*watched); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

RemoteWatch::~RemoteWatch() {
  {
    const std::lock_guard lock(_mutex);
    _isStopped = true;
  }
  _changed.notify_all();
  _threads.clear();
}

void RemoteWatch::requireAnswers(std::size_t server) const {
  const std::lock_guard lock(_mutex);
  if (_servers[server]->silence != nullptr) std::rethrow_exception(_servers[server]->silence);
}

void RemoteWatch::noteSilence(std::size_t server, const std::exception_ptr& failure) {
  const std::lock_guard lock(_mutex);
  Watched& watched = *_servers[server];
  watched.isNew = watched.isNew || watched.silence == nullptr;
  watched.silence = failure;
  _changed.notify_all();
}

void RemoteWatch::noteLack(std::size_t server, const QORString& nameSpace, const QORString& className) {
  const std::lock_guard lock(_mutex);
  _servers[server]->lacks.insert_or_assign(remote::classKey(nameSpace, className), Lack{nameSpace, className});
}

bool RemoteWatch::isLacking(std::size_t server, const QORString& nameSpace, const QORString& className) const {
  const std::lock_guard lock(_mutex);
  const std::map<std::string, Lack>& lacks = _servers[server]->lacks;
  const auto found = lacks.find(remote::classKey(nameSpace, className));
  if (found == lacks.end()) return false;
  found->second.isAskedFor = true;
  return true;
}

void RemoteWatch::watch(Watched& watched) {
  std::unique_lock lock(_mutex);
  while (!_isStopped) {
    const auto until = std::chrono::steady_clock::now() + (watched.silence == nullptr ? kBetweenLooks : kBetweenTries);
    _changed.wait_until(lock, until, [&] { return _isStopped || watched.isNew; });
    watched.isNew = false;
    if (!_isStopped) look(watched, lock);
  }
}

// Any answer tells that the server is there. Lacks that nobody has asked for since are forgotten.
void RemoteWatch::look(Watched& watched, std::unique_lock<std::mutex>& lock) {
  std::erase_if(watched.lacks, [](const auto& lack) { return !lack.second.isAskedFor; });
  std::map<std::string, Lack> lacks = watched.lacks;
  for (auto& lack : watched.lacks) lack.second.isAskedFor = false;
  if (lacks.empty() && watched.silence == nullptr) return;
  if (lacks.empty()) lacks.emplace("", Lack{"root/cimv2", "CIM_ManagedElement"});
  for (const auto& [key, lack] : lacks) {
    bool isThere = false;
    lock.unlock();
    std::exception_ptr failure;
    try {
      isThere = hasClass(watched.server, lack);
    } catch (const RemoteSilentException&) {
      failure = std::current_exception();
    } catch (const std::exception&) {
      isThere = true;  // whoever needs it asks, and is told what is wrong
    }
    static_cast<void>(watched.calls.take());
    lock.lock();
    watched.silence = failure;
    if (isThere) watched.lacks.erase(key);
    if (failure != nullptr || _isStopped) return;
  }
}

// THROWS RemoteSilentException.
bool RemoteWatch::hasClass(RemoteServer& server, const Lack& lack) {
  try {
    return server.getClass(lack.nameSpace, lack.className).has_value();
  } catch (const RemoteSilentException&) {
    throw;
  } catch (const CQoriProviderException&) {
    return true;  // that it lacks the class it does not say any more
  }
}
