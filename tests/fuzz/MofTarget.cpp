// Fuzz target: MOF text. A text is loaded whole or refused whole, with
// diagnostics that point into it, and what was loaded can be read back.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cctype>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "FuzzInput.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriValue.h"

namespace {

// An include reads what is outside of the text.
bool hasInclude(std::string text) {
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

void checkDiagnostics(const MofException& error, const std::string& text) {
  const auto lines = static_cast<QORuint32>(std::count(text.begin(), text.end(), '\n') +
                                            std::count(text.begin(), text.end(), '\r') + 1);
  fuzzRequire(!error.getDiagnostics().empty() && error.getDiagnostics().size() <= 20, "1 to 20 diagnostics");
  for (const MofDiagnostic& diagnostic : error.getDiagnostics()) {
    fuzzRequire(!diagnostic.message.empty(), "a diagnostic says something");
    fuzzRequire(diagnostic.line <= lines, "a diagnostic names a line of the text");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = fuzzText(data, size);
  if (hasInclude(text)) return 0;
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  MofLoader loader(manager.sink());
  try {
    loader.loadText(text, "text");
    readBack(manager);
  } catch (const MofException& error) {
    checkDiagnostics(error, text);
    fuzzRequire(manager.namespaces().size() == 1, "a refused text leaves no namespace");
    fuzzRequire(manager.classNames(EmbeddedObjectManager::kDefaultNamespace).empty(), "a refused text leaves no class");
  }
  return 0;
}
