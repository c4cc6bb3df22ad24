// Looks at the live classes again and again and prints the changes that a filter matches.
// SPDX-License-Identifier: Apache-2.0
#include "WatchCommand.h"

#include <charconv>
#include <chrono>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>

#include "DisplayText.h"
#include "EndRequest.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "FilterSession.h"
#include "JsonValue.h"
#include "LiveWatch.h"
#include "OptionDeclarations.h"

namespace {

constexpr const char* kDescription =
    "Watches the live classes of this machine and prints the indications that a filter matches.";

constexpr const char* kFooter =
    "A new instance makes a CIM_InstCreation, one that is gone a CIM_InstDeletion, and one whose\n"
    "properties changed a CIM_InstModification; SourceInstance holds the instance and\n"
    "PreviousInstance what it was before. Each that matches is printed as a JSON object in a line\n"
    "of its own, with the properties that SELECT names and that have a value. Ends with Ctrl-C,\n"
    "with SIGTERM, and when the reader of its output goes away.\n"
    "\n"
    "Exit status: 0 done; 1 the filter is not valid; 2 wrong usage; 3 MOF, configuration or\n"
    "provider failure.\n"
    "\n"
    "Example:\n"
    "  qorql watch \"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA Linux_Process\"";

struct WatchOptions {
  FilterOptions filter;
  std::string text;
  double interval = 1;
  QORuint64 count = 0;  // 0: without end
  QORuint64 limit = 0;  // 0: without end
};

// Prints the properties that the filter selects.
class IndicationPrinter {
 public:
  explicit IndicationPrinter(const CQLQueryStatement& filter) {
    const CQLQueryStatement::ClassList classes(filter.getClassList());
    QORValSlistIterator<QORSmrPtr<IQoriInstanceName>> each(*classes);
    while (++each) {
      const IQueryStatement::PropertyNames names(filter.getSelectPropertyList(each.key()));
      if (names.IsNull()) _isAll = true;
      if (_isAll) return;
      QORValSlistIterator<QORString> name(*names);
      while (++name) _names.push_back(name.key());
    }
  }

  void print(const IQoriObject& indication) {
    std::string line = "{\"class\": " + jsonText(indication.getClassName().view());
    for (QORuint32 i = 0; i < indication.getPropertyCount(); ++i) {
      const QORSmrPtr<IQoriProperty> property(indication.getPropertyAt(i));
      if (property->getValue().IsNull() || !isSelected(property->getName())) continue;
      line += ", " + jsonText(property->getName().view()) + ": ";
      appendJson(line, property->getValue().Get(), JsonObjects::WithClass);
    }
    std::cout << line << "}\n";
    ++_count;
  }
  QORuint64 count() const noexcept { return _count; }

 private:
  bool isSelected(const QORString& name) const {
    return _isAll || std::any_of(_names.begin(), _names.end(),
                                 [&](const QORString& selected) { return selected.isEqualCaseInsensitive(name); });
  }

  bool _isAll = false;
  std::vector<QORString> _names;
  QORuint64 _count = 0;
};

void warn(const WatchOptions& options, const std::string& warning) {
  if (!options.filter.session.isQuiet) std::cerr << "qorql: warning: " << printableText(warning) << '\n';
}

// Why no indication can come; empty when one can.
std::string reasonOfSilence(const LiveWatch& watch) {
  if (!watch.asksForChanges()) return "the filter asks for no indication of a change: nothing will be printed";
  if (!watch.classNames().empty()) return {};
  return "no live class is of the class that the filter asks for: nothing will be printed";
}

int watchUntilTheEnd(const WatchOptions& options, FilterSession& session, const CQLQueryStatement& filter) {
  LiveWatch watch(session.manager(), session.nameSpace(), filter);
  if (const std::string silence = reasonOfSilence(watch); !silence.empty()) {
    if (options.filter.isStrict) return reportRefusal(silence);
    warn(options, silence);
  }
  IndicationPrinter printer(filter);
  const bool hasLimit = options.limit != 0;
  const auto take = [&](const IQoriObject& indication) {
    if (!hasLimit || printer.count() < options.limit) printer.print(indication);
  };
  const auto report = [&](const QORString& className, const QoriBaseException& failure) {
    warn(options, std::string(className.view()) + ": " + std::string(failure.getMessage().view()));
  };
  const EndRequest end;
  const auto interval =
      std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(options.interval));
  watch.start(report);
  session.session().printNewWarnings();
  for (QORuint64 looks = 0; options.count == 0 || looks < options.count; ++looks) {
    if (end.waitFor(interval)) break;
    watch.look(take, report);
    session.session().printNewWarnings();
    std::cout.flush();
    if (!std::cout || (hasLimit && printer.count() >= options.limit)) break;
  }
  return kExitDone;
}

int runWatch(const WatchOptions& options) {
  FilterSession session(options.filter);
  CheckedFilter filter;
  try {
    session.open(Session::LeftOut::TellAtOnce);
    filter = session.check(options.text);
  } catch (...) {
    return reportStartFailure();
  }
  if (!filter.reason.empty()) return reportRefusal("the filter is not valid: " + filter.reason);
  if (!session.passes(filter)) return kExitRefused;
  try {
    return watchUntilTheEnd(options, session, *filter.statement);
  } catch (...) {
    session.session().dropWarnings();
    std::cout.flush();
    return reportFailure({});
  }
}

// Returns 0 where the text is no number.
double parseSeconds(const std::string& given) noexcept {
  double seconds = 0;
  const char* const end = given.data() + given.size();
  const auto [behind, error] = std::from_chars(given.data(), end, seconds);
  return error == std::errc() && behind == end ? seconds : 0;
}

std::string checkInterval(const std::string& given) {
  constexpr double kShortest = 0.01;
  constexpr double kLongest = 86400;
  const double seconds = parseSeconds(given);
  const bool isInRange = seconds >= kShortest && seconds <= kLongest;  // which NaN is not
  return isInRange ? "" : "'" + given + "' is no number in the range 0.01 to 86400";
}

}  // namespace

CommandAction declareWatchCommand(CLI::App& app) {
  const auto options = std::make_shared<WatchOptions>();
  describeCommand(app, kDescription, kFooter);
  declareFilterOptions(app, options->filter);
  declareValue(app, {.names = "--interval",
                     .type = "SECONDS",
                     .description = "Look every so many seconds (default: 1)",
                     .take = [options](const std::string& given) { options->interval = parseSeconds(given); },
                     .check = checkInterval});
  declareValue(app, {.names = "--count",
                     .type = "N",
                     .description = "End after so many looks",
                     .take = [options](const std::string& given) { options->count = parseCount(given); },
                     .check = checkCount});
  declareValue(app, {.names = "--limit",
                     .type = "N",
                     .description = "End after so many indications",
                     .take = [options](const std::string& given) { options->limit = parseCount(given); },
                     .check = checkCount});
  declareValue(app,
               {.names = "FILTER", .description = "The filter", .take = keepIn(options->text), .isRequired = true});
  return [options] { return runWatch(*options); };
}
