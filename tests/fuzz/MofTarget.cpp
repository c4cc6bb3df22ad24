// Fuzz target: MOF text. A text is loaded whole or refused whole, with
// diagnostics that point into it, and what was loaded can be read back. A lenient
// load stores what it can of any text, and all of one that is loaded whole.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cctype>
#include <optional>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "FuzzInput.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriValue.h"

namespace {

// An include reads what is outside of the text. In UTF-16 a zero byte stands between its letters.
bool hasInclude(std::string text) {
  std::erase(text, '\0');
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text.find("include") != std::string::npos;
}

void readBack(const EmbeddedObjectManager& manager) {
  for (const QORString& nameSpace : manager.namespaces()) {
    for (const QORString& className : manager.classNames(nameSpace)) {
      CimClassDeclaration declaration;
      fuzzRequire(manager.describeClass(nameSpace, className, declaration), "a class that is listed exists");
      CIMApi client;
      const CIMApi::Instances all(client.enumerateInstances(nameSpace, className, {}, -1, nullptr, nullptr, "", {}));
      QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*all);
      while (++each) {
        const QORSmrPtr<IQoriInstanceName> name(each.key()->getInstanceName());
        fuzzRequire(!client.getInstance(nameSpace, name, {}, -1, nullptr, nullptr, "").IsNull(),
                    "an instance that is listed can be had by its name");
        fuzzRequire(!CQoriValue(each.key()).toString().isEmpty(), "an instance has a text");
      }
    }
  }
}

void checkDiagnostics(const std::vector<MofDiagnostic>& diagnostics, const std::string& text) {
  const auto lines = static_cast<QORuint32>(std::count(text.begin(), text.end(), '\n') +
                                            std::count(text.begin(), text.end(), '\r') + 1);
  for (const MofDiagnostic& diagnostic : diagnostics) {
    fuzzRequire(!diagnostic.message.empty(), "a diagnostic says something");
    fuzzRequire(diagnostic.line <= lines, "a diagnostic names a line of the text");
  }
}

std::size_t countClasses(const EmbeddedObjectManager& manager) {
  std::size_t count = 0;
  for (const QORString& nameSpace : manager.namespaces()) count += manager.classNames(nameSpace).size();
  return count;
}

// How many classes a strict load stores; none: the text is refused.
std::optional<std::size_t> loadStrictly(const std::string& text) {
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  try {
    MofLoader(manager.sink()).loadText(text, "text");
    readBack(manager);
    return countClasses(manager);
  } catch (const MofException& error) {
    const std::size_t count = error.getDiagnostics().size();
    fuzzRequire(count >= 1 && count <= MofException::kMaximumFaults, "1 to 20 diagnostics");
    checkDiagnostics(error.getDiagnostics(), text);
    fuzzRequire(manager.namespaces().size() == 1, "a refused text leaves no namespace");
    fuzzRequire(manager.classNames(EmbeddedObjectManager::kDefaultNamespace).empty(), "a refused text leaves no class");
  }
  return std::nullopt;
}

void loadLeniently(const std::string& text, std::optional<std::size_t> classes) {
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  MofLoader loader(manager.sink());
  loader.setLenient(true);
  loader.loadText(text, "text");
  readBack(manager);
  const MofFaults& faults = loader.getFaults();
  fuzzRequire(faults.shown.size() == std::min(faults.count, MofFaults::kMaximumShown), "as many are shown as may be");
  checkDiagnostics(faults.shown, text);
  // A lenient load reads a backslash in the path of a namespace otherwise.
  if (!classes || text.find('\\') != std::string::npos) return;
  fuzzRequire(faults.count == 0, "a text without a fault has none in a lenient load");
  fuzzRequire(countClasses(manager) == *classes, "a text without a fault is stored whole");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = fuzzText(data, size);
  if (!hasInclude(text)) loadLeniently(text, loadStrictly(text));
  return 0;
}
