// An object manager that knows indications, and filters checked against it.
#include "FilterSession.h"

#include <iostream>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Providers/IndicationSchema.h"
#include "Cimom/Providers/LinuxProviders.h"
#include "DisplayText.h"
#include "FilterFault.h"
#include "FilterText.h"
#include "FilterWarnings.h"
#include "ScannerOutput.h"

namespace {

// As many characters are shown as a person will look at.
std::string shortened(const std::string& text) {
  constexpr std::size_t kShown = 60;
  if (text.size() <= kShown) return text;
  std::size_t end = kShown;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end) + " ...";
}

std::vector<std::string> passedOver(const ScannerOutput& scanner) {
  std::vector<std::string> warnings;
  const std::string unknown = shortened(scanner.unknownCharacters());
  if (!unknown.empty()) warnings.push_back("passed over, since the language does not know it: " + unknown);
  if (scanner.isStringOpen()) warnings.emplace_back("passed over: a string that does not end in its line");
  return warnings;
}

}  // namespace

void FilterSession::open() {
  _session.open(indicationSchemaMof());
  LinuxSchemaSink sink(manager().sink());
  try {
    MofLoader(sink, nameSpace()).loadText(indicationSchemaMof(), "indications");
  } catch (const QoriBaseException& error) {
    const std::string_view message = error.getMessage().view();
    if (_options.session.isQuiet) return;
    std::cerr << "qorql: warning: Without indications, which do not fit the MOF files: "
              << printableText(message.substr(0, message.find('\n'))) << '\n';
  }
}

CheckedFilter FilterSession::check(const std::string& text, QORuint32 firstLine) {
  CheckedFilter checked;
  checked.statement =
      std::make_unique<CQLQueryStatement>(QORString(_options.language), QORString(text), nameSpace(), nameSpace());
  {
    const ScannerOutput scanner;
    checked.statement->validate();
    checked.warnings = passedOver(scanner);
  }
  _session.dropWarnings();
  const FilterText filter(text, firstLine);
  const CQLQueryFault& fault = checked.statement->getFault();
  if (fault.kind != CQLQueryFault::kNone) {
    checked.reason = FilterFault(manager(), nameSpace(), filter).describe(fault);
    // What was left out may be the cause, such as quotes of another kind.
    if (fault.kind != CQLQueryFault::kLanguage) {
      for (const std::string& warning : checked.warnings) checked.reason += "; " + warning;
    }
    checked.reason = printableText(checked.reason);
  } else {
    const std::vector<std::string> more = FilterWarnings(manager(), nameSpace(), filter).of(*checked.statement);
    checked.warnings.insert(checked.warnings.end(), more.begin(), more.end());
  }
  return checked;
}

void FilterSession::printWarnings(const CheckedFilter& filter, const std::string& place) const {
  if (_options.session.isQuiet) return;
  for (const std::string& warning : filter.warnings) {
    std::cerr << "qorql: warning: " << place << printableText(warning) << '\n';
  }
}
