// Loads the tool's own libraries that not every start needs.
// SPDX-License-Identifier: Apache-2.0
#include "LoadedLibrary.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "Cimom/Providers/LinuxProviders.h"

namespace {

// The folder of the library of the object manager, with the slash.
std::string libraryFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&linuxSchemaMof), &info) == 0 || info.dli_fname == nullptr) return {};
  const std::string path = info.dli_fname;
  return path.substr(0, path.rfind('/') + 1);
}

}  // namespace

void* functionOfLibrary(const char* library, const char* function, const char* refusal) {
  void* const loaded = dlopen((libraryFolder() + library).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* const found = loaded == nullptr ? nullptr : dlsym(loaded, function);
  if (found != nullptr) return found;
  // The C library of Linux keeps the message for each thread by itself.
  const char* const error = dlerror();
  throw std::runtime_error(refusal + std::string(": ") + (error == nullptr ? "unknown reason" : error));
}
