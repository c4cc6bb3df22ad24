// Servers as those see them who run statements over them.
// Tested by tests/remote/tool_server_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTESERVERS_H
#define QORQL_REMOTE_REMOTESERVERS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "Cimom/Embedded/OuterSource.h"
#include "Cimom/Remote/RemoteTransport.h"
#include "cmpbase.h"

// The property that tells of which server an instance is.
inline constexpr const char* kRemoteServerProperty = "__SERVER";

// What one call cost.
struct RemoteCall {
  std::string server;
  std::string operation;
  std::string subject;  // the class; empty: none
  RemoteTraffic traffic;
  std::uint64_t replyBytes = 0;  // uncompressed
  std::uint64_t items = 0;       // instances, names or classes that came
  double milliseconds = 0;
  bool hasFailed = false;
};

struct RemoteServerOptions {
  std::string name;           // as errors and __SERVER tell it
  bool hasGivenName = false;  // by a person, or because there are several
  QORString nameSpace;        // in place of the next one, where that is asked for; null: each as it is asked for
  QORString standsFor;        // null: any
  RemoteEndpoint endpoint;
  RemoteLimits limits;
  QORuint32 batch = 1000;  // instances of one reply
};

struct RemoteSourceOptions {
  std::vector<RemoteServerOptions> servers;  // at least one
  bool requiresAll = false;                  // the failure of one fails the statement
  // A server that has not got the namespace has nothing there: no failure, unless it is one that stands for another.
  bool mayLackNameSpaces = false;
  // Who asks for long does not wait for what is known: that a server does not answer, or lacks a class.
  bool isWatched = false;
  std::size_t parallel = 8;  // servers that are asked at the same time
};

// A single server that fails fails the call. Of several, those that fail are
// left out until beginStatement(), and are told by takeFailures(), unless all
// fail or all are required. Where servers have names, the class at the root of
// a line of inheritance gains the property __SERVER, and the paths of instances
// begin with the name, so that those of different servers differ.
class RemoteServers : public OuterSource {
 public:
  using StopRequest = std::function<bool()>;

  // On the thread that runs statements, as all that follows.
  //
  // Asked while calls run; after true they fail. Null: calls are not stopped.
  virtual void setStopRequest(const StopRequest& request) = 0;
  // All servers are asked again, for any class.
  void beginStatement() override = 0;
  // Whether classes were declared that servers which failed may have more of; they are fetched again from now on. What
  // has their declarations does not change: then it is time for a new object manager.
  virtual bool forgetIncompleteClasses() = 0;
  // The messages of the servers that failed since.
  virtual std::vector<std::string> takeFailures() = 0;
  virtual std::vector<RemoteCall> takeCalls() = 0;

  // Of this class only these servers are asked for instances, until beginStatement().
  virtual void askOnly(const QORString& className, std::set<std::string> servers) = 0;
  // Servers that answer queries filter the instances of this class first, with this condition of their own languages,
  // until beginStatement(). The caller filters what comes again: others send everything.
  virtual void askWith(const QORString& className, const std::string& condition) = 0;
};

#endif
