// Fuzz target: the content of a cache of MOF, whatever its bytes are. It is
// read or refused whole, what was read has a text that loads, and rows become instances.
// SPDX-License-Identifier: Apache-2.0
#include <memory>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofCacheReader.h"
#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto content = std::make_shared<const std::string>(fuzzText(data, size));
  EmbeddedObjectManager manager;
  try {
    const MofCacheReader cache(*content);
    cache.key();
    cache.inputs();
    cache.declare(manager.sink(), content);
    for (const QORString& name : manager.classNames(EmbeddedObjectManager::kDefaultNamespace)) {
      fuzzRequire(!manager.classMof(EmbeddedObjectManager::kDefaultNamespace, name, true).isEmpty(),
                  "a class that is listed has a text");
      manager.ownInstances(EmbeddedObjectManager::kDefaultNamespace, name, {});
    }
  } catch (const std::exception&) {
    fuzzRequire(manager.namespaces().size() == 1, "a refused cache leaves no namespace");
    fuzzRequire(manager.classNames(EmbeddedObjectManager::kDefaultNamespace).empty(),
                "a refused cache leaves no class");
  }
  return 0;
}
