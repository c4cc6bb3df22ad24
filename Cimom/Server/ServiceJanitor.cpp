// The thread.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServiceJanitor.h"

#include <exception>
#include <utility>

ServiceJanitor::ServiceJanitor() : _thread([this] { run(); }) {}

ServiceJanitor::~ServiceJanitor() { stop(); }

void ServiceJanitor::add(std::function<void()> job) {
  const std::lock_guard lock(_mutex);
  if (!_isStopped) _jobs.push_back(std::move(job));
  _changed.notify_all();
}

void ServiceJanitor::stop() {
  {
    const std::lock_guard lock(_mutex);
    _isStopped = true;
    _changed.notify_all();
  }
  if (_thread.joinable()) _thread.join();
  _jobs.clear();
}

void ServiceJanitor::run() {
  std::unique_lock lock(_mutex);
  for (;;) {
    _changed.wait(lock, [this] { return _isStopped || !_jobs.empty(); });
    if (_isStopped) return;
    std::function<void()> job = std::move(_jobs.front());
    _jobs.pop_front();
    lock.unlock();
    try {
      job();
    } catch (const std::exception&) {
      // Whoever gave the job has told of it.
    }
    // What it holds may wait for threads that want to give a job: not under the lock.
    job = nullptr;
    lock.lock();
  }
}
