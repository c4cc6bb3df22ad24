// What the library that asks servers has for the program that loads it.
// Tested by tests/remote/tool_server_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTEMODULE_H
#define QORQL_REMOTE_REMOTEMODULE_H

#include <atomic>
#include <memory>

#include "Cimom/Remote/RemoteServers.h"

// Any thread may call.
class RemoteModule {
 public:
  virtual ~RemoteModule() = default;
  virtual std::shared_ptr<RemoteServers> makeServers(const RemoteSourceOptions& options) = 0;
  // As RemoteTransport.h says.
  virtual std::unique_ptr<RemoteTransport> makeTransport(const RemoteEndpoint& endpoint, const RemoteLimits& limits,
                                                         const std::atomic<bool>& isStopped) = 0;
};

// Made by a library of its own, which is loaded when a server is asked: who asks none does not wait for it, neither at
// a start nor when all is built. It stays loaded.
using RemoteModuleGetter = RemoteModule* (*)();

// From the folder of the library of the object manager on.
inline constexpr const char* kRemoteLibrary = "qorql/libqorqlremote.so";
inline constexpr const char* kRemoteFunction = "qorqlRemoteModule";

#endif
