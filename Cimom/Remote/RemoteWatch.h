// What is known of servers without asking them: which do not answer, and which classes they lack.
// Tested by tests/server/slow_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTEWATCH_H
#define QORQL_REMOTE_REMOTEWATCH_H

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Cimom/Remote/RemoteServer.h"

// A server that did not answer is asked again and again by a thread of its own; until it answers, nobody else waits for
// it. What a server lacks it has told; it is asked again every half a minute while others want to know. Any thread may
// call.
class RemoteWatch {
 public:
  explicit RemoteWatch(const std::vector<RemoteServerOptions>& servers);
  RemoteWatch(const RemoteWatch&) = delete;
  RemoteWatch& operator=(const RemoteWatch&) = delete;
  // Stops its calls and waits for their ends.
  ~RemoteWatch();

  // THROWS the failure of a server that did not answer, and has not since.
  void requireAnswers(std::size_t server) const;
  void noteSilence(std::size_t server, const std::exception_ptr& failure);
  // The server said that it has no such class.
  void noteLack(std::size_t server, const QORString& nameSpace, const QORString& className);
  bool isLacking(std::size_t server, const QORString& nameSpace, const QORString& className) const;

 private:
  struct Lack {
    QORString nameSpace;
    QORString className;
    mutable bool isAskedFor = true;  // since the server was asked last
  };
  struct Watched {
    Watched(const RemoteServerOptions& options, const std::atomic<bool>& isStopped)
        : server(options, calls, isStopped) {}

    RemoteCallLog calls;
    RemoteServer server;                // of the thread
    std::exception_ptr silence;         // null: it answers
    std::map<std::string, Lack> lacks;  // by namespace and class in upper case
    bool isNew = false;                 // the silence has not been looked into
  };

  void watch(Watched& watched);
  void look(Watched& watched, std::unique_lock<std::mutex>& lock);
  static bool hasClass(RemoteServer& server, const Lack& lack);

  std::atomic<bool> _isStopped = false;
  mutable std::mutex _mutex;  // guards what is known
  std::condition_variable _changed;
  std::vector<std::unique_ptr<Watched>> _servers;
  std::vector<std::jthread> _threads;
};

#endif
