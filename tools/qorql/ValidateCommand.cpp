// Validates filters and prints a line for each.
// SPDX-License-Identifier: Apache-2.0
#include "ValidateCommand.h"

#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "FilterFile.h"
#include "FilterSession.h"
#include "FilterVerdict.h"
#include "OptionDeclarations.h"
#include "Statements.h"
#include "TextInput.h"
#include "cimom/CQoriInstanceName.h"

namespace {

constexpr const char* kValidateDescription =
    "Tells whether a filter of indications is valid, and which classes and properties it needs.";

constexpr const char* kValidateFooter =
    "Prints a line for each filter: \"valid\", the classes of FROM and the properties that the\n"
    "filter uses (* for all of them), or \"invalid\" and the reason; separated by tabs. Of a file\n"
    "or, without FILTER and --file, of standard input each filter's line and name follow.\n"
    "A filter continues on the lines that are indented under it; # begins a comment line, and\n"
    "\"NAME: \" before a filter names it.\n"
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
  FilterOutput output = FilterOutput::Text;
};

class Validation {
 public:
  Validation(FilterSession& session, const ValidateOptions& options)
      : _session(session),
        _isJson(options.output == FilterOutput::Json),
        _isStrict(options.filter.isStrict),
        _isQuiet(options.filter.session.isQuiet) {}

  void validate(const std::string& text) { judge({.name = "", .text = text, .line = 0}); }
  void validateFile(std::string text, const std::string& path) {
    const std::vector<FileFilter> filters = splitFilters(normaliseText(std::move(text)));
    if (filters.empty()) reportRefusal(printableText(path) + " holds no filter");
    _doubled = doubledNames(filters);
    for (const FileFilter& filter : filters) {
      if (!std::cout) return;
      judge(filter);
    }
    if (_count > 1) summarise();
  }
  // The exit status. With --strict nothing is printed before the last filter has been looked at, and nothing at all
  // where one would be warned of: what is not valid is an error then like the warnings.
  int finish() {
    const bool isRefused = _isStrict && _warnedCount != 0;
    for (const FilterVerdict& verdict : _held) {
      if (!isRefused) {
        write(verdict);
      } else if (!verdict.isValid()) {
        reportRefusal(verdict.reason);
      }
    }
    if (_isJson && !isRefused) std::cout << (_writtenCount == 0 ? "[]\n" : "\n]\n");
    return _validCount == _count && !isRefused && _count != 0 ? kExitDone : kExitRefused;
  }

 private:
  void judge(const FileFilter& filter) {
    const CheckedFilter checked = _session.check(filter);
    FilterVerdict verdict{filter.line, printableText(filter.name), reasonOf(filter, checked), {}, {}, {}};
    ++_count;
    if (verdict.isValid()) {
      ++_validCount;
      addNeeds(*checked.statement, verdict);
      for (const std::string& warning : checked.warnings) verdict.warnings.push_back(printableText(warning));
    }
    if (!verdict.warnings.empty()) ++_warnedCount;
    if (_isStrict) {
      _held.push_back(verdict);
    } else {
      write(verdict);
    }
    const std::string place = filter.line == 0 ? "" : placeOfFilter(filter);
    verdict.isValid() ? void(_session.passes(checked, place)) : _session.tellHint(checked, place);
  }
  std::string reasonOf(const FileFilter& filter, const CheckedFilter& checked) const {
    const auto doubled = _doubled.find(filter.line);
    if (doubled == _doubled.end()) return checked.reason;
    return printableText(doubled->second) + (checked.reason.empty() ? "" : "; " + checked.reason);
  }
  void write(const FilterVerdict& verdict) {
    const bool isFirst = _writtenCount++ == 0;
    if (_isJson) {
      std::cout << (isFirst ? "[\n  " : ",\n  ") << jsonOf(verdict);
    } else {
      std::cout << textOf(verdict) << '\n';
    }
  }
  void summarise() const {
    if (_isQuiet) return;
    std::cerr << "qorql: " << _count << " filters: " << _validCount << " valid";
    if (_warnedCount != 0) std::cerr << " (" << _warnedCount << " with warnings)";
    std::cerr << ", " << _count - _validCount << " invalid\n";
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
  void addNeeds(const CQLQueryStatement& statement, FilterVerdict& verdict) const {
    const CQLQueryStatement::ClassList classes(statement.getClassList());
    std::set<std::string> seen;  // a class may stand in FROM twice
    QORValSlistIterator<QORSmrPtr<IQoriInstanceName>> iterator(*classes);
    while (++iterator) {
      const std::string& name = verdict.classes.emplace_back(declaredName(iterator.key()->getClassName()).view());
      if (!seen.insert(name).second) continue;
      const std::string prefix = classes->entries() > 1 ? name + "." : "";
      for (std::string& property : propertiesOf(statement, iterator.key(), prefix)) {
        verdict.properties.push_back(std::move(property));
      }
    }
  }

  FilterSession& _session;
  const bool _isJson;
  const bool _isStrict;
  const bool _isQuiet;
  std::map<QORuint32, std::string> _doubled;  // what is said of the names of lines
  std::size_t _count = 0;
  std::size_t _validCount = 0;
  std::size_t _warnedCount = 0;
  std::size_t _writtenCount = 0;
  std::vector<FilterVerdict> _held;  // with --strict, until all are known
};

int runValidate(const ValidateOptions& options) {
  if (options.text && !options.file.empty()) refuseBoth("FILTER", "--file");
  FilterSession session(options.filter);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  Validation validation(session, options);
  if (options.text) {
    validation.validate(*options.text);
  } else if (options.file.empty()) {
    validation.validateFile(readStandardInput(), "standard input");
  } else {
    validation.validateFile(readTextFile(options.file), options.file);
  }
  return session.session().settle(validation.finish());
}

}  // namespace

CommandAction declareValidateCommand(CLI::App& app) {
  const auto options = std::make_shared<ValidateOptions>();
  describeCommand(app, kValidateDescription, kValidateFooter);
  declareFilterOptions(app, options->filter);
  declareValue(app, {.names = "-f,--file",
                     .type = "FILE",
                     .description = "Read filters from a file",
                     .take = keepIn(options->file),
                     .check = checkFile});
  declareFilterOutput(app, options->output);
  const auto takeText = [options](const std::string& text) { options->text = text; };
  declareValue(app, {.names = "FILTER", .description = "One filter", .take = takeText});
  return [options] { return runValidate(*options); };
}
