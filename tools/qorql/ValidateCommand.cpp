// Validates filters and prints a line for each.
// SPDX-License-Identifier: Apache-2.0
#include "ValidateCommand.h"

#include <iostream>
#include <optional>
#include <set>
#include <sstream>
#include <utility>

#include "ErrorReport.h"
#include "ExitStatus.h"
#include "FilterSession.h"
#include "OptionDeclarations.h"
#include "Statements.h"
#include "TextInput.h"
#include "cimom/CQoriInstanceName.h"

namespace {

constexpr const char* kDescription =
    "Tells whether a filter of indications is valid, and which classes and properties it needs.";

constexpr const char* kFooter =
    "Prints a line for each filter: \"valid\", the classes of FROM and the properties that the\n"
    "filter uses (* for all of them), or \"invalid\" and the reason; separated by tabs.\n"
    "Without FILTER and --file, filters are read from standard input, one a line.\n"
    "\n"
    "Exit status: 0 every filter is valid; 1 one is not, or --strict refuses one; 2 wrong usage;\n"
    "3 MOF or configuration failure.\n"
    "\n"
    "Example:\n"
    "  qorql validate \"SELECT * FROM CIM_AlertIndication WHERE OwningEntity = 'SNIA'\"";

struct ValidateOptions {
  FilterOptions filter;
  std::optional<std::string> text;  // none: the file, else standard input
  std::string file;                 // empty: none
};

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ",") + name;
  return text;
}

class Validation {
 public:
  explicit Validation(FilterSession& session) : _session(session) {}

  // Adds one line.
  void validate(const std::string& text, QORuint32 line, bool isOneOfMany) {
    const CheckedFilter filter = _session.check(text, line);
    if (!filter.reason.empty()) {
      _areAllValid = false;
      print(std::string(kInvalid) + filter.reason);
      return;
    }
    print("valid\t" + needsOf(*filter.statement));
    if (!_session.passes(filter, isOneOfMany ? "line " + std::to_string(line) + ": " : ""))
      _areAllFreeOfWarnings = false;
  }
  // One filter a line, blank lines left out.
  void validateLines(std::string text) {
    std::istringstream lines(normaliseText(std::move(text)));
    std::string line;
    for (QORuint32 number = 1; std::getline(lines, line) && std::cout; ++number) {
      if (line.find_first_not_of(" \t") != std::string::npos) validate(line, number, true);
    }
  }
  // The exit status. With --strict nothing is printed before the last filter has been looked at, and nothing at all
  // where one would be warned of: what is not valid is an error then like the warnings.
  int finish() {
    for (const std::string& line : _held) {
      if (_areAllFreeOfWarnings) {
        std::cout << line << '\n';
      } else if (line.starts_with(kInvalid)) {
        reportRefusal(line.substr(kInvalid.size()));
      }
    }
    return _areAllValid && _areAllFreeOfWarnings ? kExitDone : kExitRefused;
  }

 private:
  static constexpr std::string_view kInvalid = "invalid\t";

  void print(const std::string& line) {
    if (_session.isStrict()) {
      _held.push_back(line);
    } else {
      std::cout << line << '\n';
    }
  }
  QORString declaredName(const QORString& className) const {
    const QORSmrPtr<IQoriClass> found = _session.manager().sink().findClass(_session.nameSpace(), className);
    return found.IsNull() ? className : found->getClassName();
  }
  // The names as the class declares them.
  std::vector<std::string> propertiesOf(const CQLQueryStatement& statement, const QORSmrPtr<IQoriInstanceName>& name,
                                        const std::string& prefix) const {
    const IQueryStatement::PropertyNames needed(statement.getPropertyList(name));
    if (needed.IsNull()) return {prefix + "*"};
    std::vector<std::string> properties;
    QORValSlistIterator<QORString> iterator(*needed);
    while (++iterator) {
      CimPropertyDeclaration declared;
      const bool isDeclared = _session.manager().sink().describeProperty(_session.nameSpace(), name->getClassName(),
                                                                         iterator.key(), declared);
      properties.push_back(prefix + std::string((isDeclared ? declared.name : iterator.key()).view()));
    }
    return properties;
  }
  std::string needsOf(const CQLQueryStatement& statement) const {
    const CQLQueryStatement::ClassList classes(statement.getClassList());
    std::vector<std::string> names;
    std::vector<std::string> properties;
    std::set<std::string> seen;  // a class may stand in FROM twice
    QORValSlistIterator<QORSmrPtr<IQoriInstanceName>> iterator(*classes);
    while (++iterator) {
      names.emplace_back(declaredName(iterator.key()->getClassName()).view());
      if (!seen.insert(names.back()).second) continue;
      const std::string prefix = classes->entries() > 1 ? names.back() + "." : "";
      for (std::string& property : propertiesOf(statement, iterator.key(), prefix)) {
        properties.push_back(std::move(property));
      }
    }
    return joined(names) + '\t' + joined(properties);
  }

  FilterSession& _session;
  bool _areAllValid = true;
  bool _areAllFreeOfWarnings = true;
  std::vector<std::string> _held;  // lines of output
};

int runValidate(const ValidateOptions& options) {
  if (options.text && !options.file.empty()) refuseBoth("FILTER", "--file");
  FilterSession session(options.filter);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  Validation validation(session);
  if (options.text) {
    validation.validate(*options.text, 1, false);
  } else if (options.file.empty()) {
    validation.validateLines(readStandardInput());
  } else {
    validation.validateLines(readTextFile(options.file));
  }
  return validation.finish();
}

}  // namespace

CommandAction declareValidateCommand(CLI::App& app) {
  const auto options = std::make_shared<ValidateOptions>();
  describeCommand(app, kDescription, kFooter);
  declareFilterOptions(app, options->filter);
  declareValue(app, {.names = "-f,--file",
                     .type = "FILE",
                     .description = "Read filters from a file, one a line",
                     .take = keepIn(options->file),
                     .check = checkFile});
  const auto takeText = [options](const std::string& text) { options->text = text; };
  declareValue(app, {.names = "FILTER", .description = "One filter", .take = takeText});
  return [options] { return runValidate(*options); };
}
