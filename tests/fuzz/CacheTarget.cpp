// Fuzz target: the content of a cache of MOF, whatever its bytes are. It is
// read or refused whole, what was read has a text that loads, and rows become instances. A class that is read when it
// is needed is the one that is read at once, or it is refused then. SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofCacheReader.h"
#include "FuzzInput.h"

namespace {

const char* const kNameSpace = EmbeddedObjectManager::kDefaultNamespace;

// False when the content is refused; then nothing of it is there.
bool isDeclared(EmbeddedObjectManager& manager, const std::string& content, const std::shared_ptr<const void>& owner) {
  try {
    const MofCacheReader cache(content);
    cache.key();
    cache.inputs();
    cache.declare(manager.sink(), owner, {});
    return true;
  } catch (const std::exception&) {
    fuzzRequire(manager.namespaces().size() == 1, "a refused cache leaves no namespace");
    fuzzRequire(manager.classNames(kNameSpace).empty(), "a refused cache leaves no class");
    return false;
  }
}

// A null string for a class that is refused.
std::vector<QORString> textsOf(const EmbeddedObjectManager& manager) {
  std::vector<QORString> texts;
  for (const QORString& name : manager.classNames(kNameSpace)) {
    texts.emplace_back();
    try {
      texts.back() = manager.classMof(kNameSpace, name, true);
      fuzzRequire(!texts.back().isEmpty(), "a class that is listed has a text");
    } catch (const QoriBaseException&) {  // it stays null
    }
    manager.ownInstances(kNameSpace, name, {});
  }
  return texts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto content = std::make_shared<const std::string>(fuzzText(data, size));
  EmbeddedObjectManager atOnce;
  EmbeddedObjectManager later;
  const bool isRead = isDeclared(atOnce, *content, nullptr);
  const bool isOpen = isDeclared(later, *content, content);
  fuzzRequire(isOpen || !isRead, "what can be read at once can be left for later");
  const std::vector<QORString> texts = textsOf(later);
  if (isRead) fuzzRequire(textsOf(atOnce) == texts, "a class does not depend on when it is read");
  return 0;
}
