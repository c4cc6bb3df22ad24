// Hands out what the library is made of.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteModule.h"

#include "Cimom/Remote/RemoteSource.h"

namespace {

class Module : public RemoteModule {
 public:
  std::shared_ptr<RemoteServers> makeServers(const RemoteSourceOptions& options) override {
    return std::make_shared<RemoteSource>(options);
  }
  std::unique_ptr<RemoteTransport> makeTransport(const RemoteEndpoint& endpoint, const RemoteLimits& limits,
                                                 const std::atomic<bool>& isStopped) override {
    return makeRemoteTransport(endpoint, limits, isStopped);
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) RemoteModule* qorqlRemoteModule() {
  static Module module;
  return &module;
}
