// Loads the library that speaks HTTP.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteTransport.h"

#include <dlfcn.h>

#include <stdexcept>

namespace {

// The folder of the library that this code is in, with the slash.
std::string ownFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&ownFolder), &info) == 0 || info.dli_fname == nullptr) return {};
  const std::string path = info.dli_fname;
  return path.substr(0, path.rfind('/') + 1);
}

RemoteTransportMaker loadMaker() {
  void* const library = dlopen((ownFolder() + kRemoteHttpLibrary).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* const found = library == nullptr ? nullptr : dlsym(library, kRemoteHttpFunction);
  if (found != nullptr) return reinterpret_cast<RemoteTransportMaker>(found);
  // The C library of Linux keeps the message for each thread by itself.
  const char* const error = dlerror();
  throw std::runtime_error(std::string("servers cannot be asked: ") + (error == nullptr ? "unknown reason" : error));
}

}  // namespace

std::unique_ptr<RemoteTransport> makeRemoteTransport(const RemoteEndpoint& endpoint, const RemoteLimits& limits,
                                                     const std::atomic<bool>& isStopped) {
  static const RemoteTransportMaker maker = loadMaker();
  return std::unique_ptr<RemoteTransport>(maker(endpoint, limits, isStopped));
}
