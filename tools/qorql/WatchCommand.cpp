// Looks at the live classes again and again and prints the changes that filters match.
// SPDX-License-Identifier: Apache-2.0
#include "WatchCommand.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "DisplayText.h"
#include "EndRequest.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "FilterGroup.h"
#include "FilterSession.h"
#include "JsonValue.h"
#include "LiveWatch.h"
#include "OptionDeclarations.h"

namespace {

constexpr const char* kWatchDescription =
    "Watches the live classes of this machine and prints the indications that a filter matches.";

constexpr const char* kWatchFooter =
    "A new instance makes a CIM_InstCreation, one that is gone a CIM_InstDeletion, and one whose\n"
    "properties changed a CIM_InstModification; SourceInstance holds the instance and\n"
    "PreviousInstance what it was before. Each that matches is printed as a JSON object on a line\n"
    "of its own, with the properties that SELECT names and that have a value. With --filters many\n"
    "filters are asked together, and \"filters\" holds the names of those that match, or the\n"
    "numbers of their lines.\n"
    "Ends with Ctrl-C, with SIGTERM, and when the reader of its output goes away.\n"
    "\n"
    "Exit status: 0 done; 1 a filter is not valid; 2 wrong usage; 3 MOF, configuration or\n"
    "provider failure.\n"
    "\n"
    "Examples:\n"
    "  qorql watch --filters subscriptions.txt\n"
    "  qorql watch \"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA Linux_Process\"";

struct WatchOptions {
  FilterOptions filter;
  FilterTexts asked;
  double interval = 1;
  QORuint64 count = 0;  // 0: without end
  QORuint64 limit = 0;  // 0: without end
};

// The properties that a filter selects.
class Selection {
 public:
  explicit Selection(const CQLQueryStatement& filter) {
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
  bool has(const QORString& name) const {
    return _isAll || std::any_of(_names.begin(), _names.end(),
                                 [&](const QORString& selected) { return selected.isEqualCaseInsensitive(name); });
  }

 private:
  bool _isAll = false;
  std::vector<QORString> _names;
};

// Prints the indications that filters match, each once, with what one of them selects.
class IndicationPrinter {
 public:
  // BORROWS the filters.
  explicit IndicationPrinter(FilterGroup& filters) : _filters(filters) {
    for (const auto& [line, statement] : filters.statements()) _selections.emplace(line, *statement);
  }

  void print(const QORSmrPtr<IQoriObject>& indication, const QORString& nameSpace) {
    const FilterGroup::Lines& lines = _filters.matching(indication, nameSpace);
    if (lines.empty()) return;
    std::string text = "{";
    if (lines.front() != 0) text += "\"filters\": " + _filters.jsonOf(lines) + ", ";
    text += "\"class\": " + jsonText(indication->getClassName().view());
    for (QORuint32 i = 0; i < indication->getPropertyCount(); ++i) {
      const QORSmrPtr<IQoriProperty> property(indication->getPropertyAt(i));
      if (property->getValue().IsNull() || !isSelected(lines, property->getName())) continue;
      text += ", " + jsonText(property->getName().view()) + ": ";
      appendJson(text, property->getValue().Get(), JsonObjects::WithClass);
    }
    std::cout << text << "}\n";
    ++_count;
  }
  QORuint64 count() const noexcept { return _count; }

 private:
  bool isSelected(const FilterGroup::Lines& lines, const QORString& name) const {
    return std::any_of(lines.begin(), lines.end(),
                       [&](FilterGroup::Line line) { return _selections.at(line).has(name); });
  }

  FilterGroup& _filters;
  std::map<FilterGroup::Line, Selection> _selections;
  QORuint64 _count = 0;
};

void warn(const WatchOptions& options, const std::string& warning) {
  if (!options.filter.session.isQuiet) std::cerr << "qorql: warning: " << printableText(warning) << '\n';
}

// Why no indication can come for a filter; empty when one can.
std::string silenceOf(const LiveDemand& demand) {
  if (demand.changes.empty()) return "the filter asks for no indication of a change: nothing will be printed";
  if (demand.classes.empty()) {
    return "no live class is of the class that the filter asks for: nothing will be printed";
  }
  return {};
}

// False when one of the filters is refused since no indication can come for it.
bool readDemand(const WatchOptions& options, const FilterGroup& filters, const LiveDemandReader& reader,
                LiveDemand& demand) {
  bool areSound = true;
  for (const auto& [line, statement] : filters.statements()) {
    const LiveDemand asked = reader.read(*statement);
    demand.unite(asked);
    const std::string silence = silenceOf(asked);
    if (silence.empty()) continue;
    if (options.filter.isStrict) {
      reportRefusal(filters.placeOf(line) + silence);
      areSound = false;
    } else {
      warn(options, filters.placeOf(line) + silence);
    }
  }
  return areSound;
}

int watchUntilTheEnd(const WatchOptions& options, FilterSession& session, FilterGroup& filters) {
  const QORString nameSpace = session.nameSpace();
  LiveDemand demand;
  if (!readDemand(options, filters, LiveDemandReader(session.manager(), nameSpace), demand)) return kExitRefused;
  LiveWatch watch(session.manager(), nameSpace, demand);
  IndicationPrinter printer(filters);
  const bool hasLimit = options.limit != 0;
  const auto take = [&](const std::vector<QORSmrPtr<IQoriObject>>& indications) {
    for (const QORSmrPtr<IQoriObject>& indication : indications) {
      if (!hasLimit || printer.count() < options.limit) printer.print(indication, nameSpace);
    }
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
  FilterGroup filters(session);
  try {
    session.open(Session::LeftOut::TellAtOnce);
    const bool areSound =
        options.asked.areMany() ? filters.readFile(options.asked.file) : filters.readOne(*options.asked.text);
    if (!areSound) return session.session().settle(kExitRefused);
  } catch (...) {
    return reportStartFailure();
  }
  try {
    return session.session().settle(watchUntilTheEnd(options, session, filters));
  } catch (...) {
    session.session().dropWarnings();
    std::cout.flush();
    return reportFailure({});
  }
}

std::string checkWatchInterval(const std::string& given) {
  constexpr double kShortest = 0.01;
  constexpr double kLongest = 86400;
  const double seconds = parseSeconds(given);
  const bool isInRange = seconds >= kShortest && seconds <= kLongest;
  return isInRange ? "" : "'" + given + "' is not a number from 0.01 to 86400";
}

}  // namespace

CommandAction declareWatchCommand(CLI::App& app) {
  const auto options = std::make_shared<WatchOptions>();
  describeCommand(app, kWatchDescription, kWatchFooter);
  declareFilterOptions(app, options->filter);
  declareValue(app, {.names = "--interval",
                     .type = "SECONDS",
                     .description = "Seconds between two looks (default: 1)",
                     .take = [options](const std::string& given) { options->interval = parseSeconds(given); },
                     .check = checkWatchInterval});
  declareValue(app, {.names = "--count",
                     .type = "N",
                     .description = "End after N looks",
                     .take = [options](const std::string& given) { options->count = parseCount(given); },
                     .check = checkCount});
  declareValue(app, {.names = "--limit",
                     .type = "N",
                     .description = "End after N indications",
                     .take = [options](const std::string& given) { options->limit = parseCount(given); },
                     .check = checkCount});
  declareFilterTexts(app, options->asked);
  return [options] {
    const bool areMany = options->asked.areMany();
    if (areMany && options->asked.text) refuseBoth("FILTER", "--filters");
    if (!areMany && !options->asked.text) refuseWithout("FILTER");
    return runWatch(*options);
  };
}
