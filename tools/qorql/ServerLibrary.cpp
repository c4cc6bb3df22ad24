// The library lies in a folder beside that of the object manager.
// SPDX-License-Identifier: Apache-2.0
#include "ServerLibrary.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "Cimom/Remote/RemoteTransport.h"

namespace {

// The folder of the library of the object manager, with the slash.
std::string libraryFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&makeRemoteTransport), &info) == 0 || info.dli_fname == nullptr) return {};
  const std::string path = info.dli_fname;
  return path.substr(0, path.rfind('/') + 1);
}

ServerModuleGetter load() {
  void* const library = dlopen((libraryFolder() + kServerLibrary).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* const found = library == nullptr ? nullptr : dlsym(library, kServerFunction);
  if (found != nullptr) return reinterpret_cast<ServerModuleGetter>(found);
  // The C library of Linux keeps the message for each thread by itself.
  const char* const error = dlerror();
  throw std::runtime_error(std::string("nothing can be served: ") + (error == nullptr ? "unknown reason" : error));
}

}  // namespace

ServerModule& serverLibrary() { return *load()(); }
