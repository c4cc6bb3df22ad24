// Loads the library that asks servers, when one is asked.
// SPDX-License-Identifier: Apache-2.0
#include "RemoteLibrary.h"

#include "LoadedLibrary.h"

RemoteModule& remoteLibrary() {
  void* const getter = functionOfLibrary(kRemoteLibrary, kRemoteFunction, "servers cannot be asked");
  return *reinterpret_cast<RemoteModuleGetter>(getter)();
}
