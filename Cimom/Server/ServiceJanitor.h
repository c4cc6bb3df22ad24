// A thread for what the threads of listeners cannot do themselves.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVICEJANITOR_H
#define QORQL_SERVER_SERVICEJANITOR_H

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

// Runs jobs one after the other; what they throw is dropped. Any thread may add.
class ServiceJanitor {
 public:
  ServiceJanitor();
  ServiceJanitor(const ServiceJanitor&) = delete;
  ServiceJanitor& operator=(const ServiceJanitor&) = delete;
  ~ServiceJanitor();

  void add(std::function<void()> job);
  // Waits for the job that runs; the others are forgotten.
  void stop();

 private:
  void run();

  std::mutex _mutex;
  std::condition_variable _changed;
  std::deque<std::function<void()>> _jobs;
  bool _isStopped = false;
  std::thread _thread;
};

#endif
