// Loads the library that serves, when a server or a listener is started.
// SPDX-License-Identifier: Apache-2.0
#include "ServerLibrary.h"

#include "LoadedLibrary.h"

ServerModule& serverLibrary() {
  void* const getter = functionOfLibrary(kServerLibrary, kServerFunction, "nothing can be served");
  return *reinterpret_cast<ServerModuleGetter>(getter)();
}
