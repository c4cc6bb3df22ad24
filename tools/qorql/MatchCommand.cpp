// Asks a filter about the instances of MOF files.
// SPDX-License-Identifier: Apache-2.0
#include "MatchCommand.h"

#include <iostream>
#include <optional>

#include "Cimom/Mof/MofLoader.h"
#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "FilterGroup.h"
#include "FilterSession.h"
#include "OptionDeclarations.h"
#include "TextInput.h"

namespace {

constexpr const char* kDescription = "Tells which instances, such as indications, a filter matches.";

constexpr const char* kFooter =
    "FILEs hold instances as MOF text; \"-\", or no FILE at all, is standard input. The schema\n"
    "comes with --mof. The instances need no keys and are not stored. Prints a line for each:\n"
    "its path, a tab, and \"match\" or \"no match\". With --filters many filters are asked\n"
    "together, and the numbers of the lines of those that match, joined by commas, follow the tab.\n"
    "\n"
    "Exit status: 0 every instance was decided; 1 a filter is not valid; 2 wrong usage;\n"
    "3 MOF or configuration failure.\n"
    "\n"
    "Examples:\n"
    "  qorql match --filters subscriptions.txt alerts.mof\n"
    "  qorql match --why \"SELECT * FROM CIM_AlertIndication WHERE MessageID = 'FC1'\" alerts.mof";

constexpr const char* kStandardInput = "-";

struct MatchOptions {
  FilterOptions filter;
  std::optional<std::string> text;
  std::string filters;  // a file of them; empty: the one in the text
  std::vector<std::string> files;
  bool isWhy = false;
};

using Instances = std::vector<QORSmrPtr<IQoriObject>>;

// The class path of an instance that lacks a key.
std::string pathOf(const IQoriObject& instance) {
  const QORSmrPtr<IQoriInstanceName> name(instance.getInstanceName());
  if (!name.IsNull()) return std::string(name->toString().view());
  return std::string(instance.getNameSpace().view()) + ":" + std::string(instance.getClassName().view());
}

Instances readInstances(FilterSession& session, const std::string& file) {
  MofLoader loader(session.manager().sink(), session.nameSpace());
  if (file != kStandardInput) return loader.readInstanceFile(file);
  return loader.readInstances(readStandardInput(), "standard input");
}

void decide(const CQLQueryStatement& filter, const Instances& instances, bool isWhy) {
  for (const QORSmrPtr<IQoriObject>& instance : instances) {
    if (!std::cout) return;
    std::string why;
    const QORString nameSpace(instance->getNameSpace());
    const bool isMatch = isWhy ? filter.explainMatch(instance, nameSpace, why) : filter.isMatch(instance, nameSpace);
    std::cout << printableText(pathOf(*instance)) << (isMatch ? "\tmatch" : "\tno match");
    if (!why.empty()) std::cout << '\t' << printableText(why);
    std::cout << '\n';
  }
}

// All are read before the first is decided: a file with a fault decides nothing.
std::vector<Instances> readAll(FilterSession& session, const std::vector<std::string>& paths) {
  std::vector<Instances> files;
  for (const std::string& path : paths) files.push_back(readInstances(session, path));
  return files;
}

int matchMany(FilterSession& session, const MatchOptions& options) {
  FilterGroup filters(session);
  if (!filters.readFile(options.filters)) return kExitRefused;
  for (const Instances& instances : readAll(session, options.files)) {
    for (const QORSmrPtr<IQoriObject>& instance : instances) {
      if (!std::cout) return kExitDone;
      const FilterGroup::Lines& lines = filters.matching(instance, instance->getNameSpace());
      std::cout << printableText(pathOf(*instance)) << '\t' << FilterGroup::textOf(lines, ",") << '\n';
    }
  }
  return kExitDone;
}

int runMatch(const MatchOptions& options) {
  FilterSession session(options.filter);
  try {
    session.open();
    if (!options.filters.empty()) return matchMany(session, options);
    const CheckedFilter filter = session.check(*options.text);
    if (!filter.reason.empty()) return reportRefusal("the filter is not valid: " + filter.reason);
    if (!session.passes(filter)) return kExitRefused;
    for (const Instances& instances : readAll(session, options.files)) {
      decide(*filter.statement, instances, options.isWhy);
    }
  } catch (...) {
    return reportStartFailure();
  }
  return kExitDone;
}

}  // namespace

CommandAction declareMatchCommand(CLI::App& app) {
  const auto options = std::make_shared<MatchOptions>();
  describeCommand(app, kDescription, kFooter);
  declareFilterOptions(app, options->filter);
  declareFlag(app, "--why", options->isWhy, "Tell the first condition that failed and the values it compared");
  declareValue(app, {.names = "--filters",
                     .type = "FILE",
                     .description = "Ask the filters of a file, one a line, in place of FILTER",
                     .take = keepIn(options->filters),
                     .check = checkFile});
  declareValue(app, {.names = "FILTER", .description = "The filter", .take = [options](const std::string& text) {
                       options->text = text;
                     }});
  declareValue(app, {.names = "FILE",
                     .description = "MOF files with instances",
                     .take = keepIn(options->files),
                     .isRepeatable = true});
  return [options] {
    const bool areMany = !options->filters.empty();
    if (areMany && options->isWhy) refuseBoth("--why", "--filters");
    if (!areMany && !options->text) refuseWithout("FILTER");
    // What stands in the filter's place is a file then.
    if (areMany && options->text) options->files.insert(options->files.begin(), *options->text);
    if (options->files.empty()) options->files.emplace_back(kStandardInput);
    return runMatch(*options);
  };
}
