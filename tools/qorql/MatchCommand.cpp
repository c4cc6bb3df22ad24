// Asks a filter about the instances of MOF files.
// SPDX-License-Identifier: Apache-2.0
#include "MatchCommand.h"

#include <algorithm>
#include <iostream>

#include "Cimom/Mof/MofEncoding.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/Face/QORQL_TextPieces.h"
#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "FilterGroup.h"
#include "FilterSession.h"
#include "JsonValue.h"
#include "OptionDeclarations.h"
#include "TextInput.h"

namespace {

constexpr const char* kMatchDescription = "Tells which instances, such as indications, a filter matches.";

constexpr const char* kMatchFooter =
    "FILEs hold instances as MOF text; \"-\", or no FILE at all, is standard input. The schema\n"
    "comes with --mof. The instances need no keys and are not stored. Prints a line for each:\n"
    "its path, a tab, and \"match\" or \"no match\". With --filters many filters are asked\n"
    "together, and the names of those that match, or the numbers of their lines, follow the tab,\n"
    "joined by commas. An instance without keys is identified by its number among all read.\n"
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
  FilterTexts asked;
  std::vector<std::string> files;
  bool isWhy = false;
  FilterOutput output = FilterOutput::Text;
};

using Instances = std::vector<QORSmrPtr<IQoriObject>>;

// Of an instance that lacks a key the path of its class and the instance's number.
std::string pathOf(const IQoriObject& instance, std::size_t number) {
  const QORSmrPtr<IQoriInstanceName> name(instance.getInstanceName());
  if (!name.IsNull()) return std::string(name->toString().view());
  return std::string(instance.getNameSpace().view()) + ":" + std::string(instance.getClassName().view()) + "#" +
         std::to_string(number);
}

// Prints what was decided about one instance after the other.
class DecisionPrinter {
 public:
  explicit DecisionPrinter(FilterOutput output) : _isJson(output == FilterOutput::Json) {
    if (_isJson) std::cout << '[';
  }

  void print(const IQoriObject& instance, bool isMatch, const std::string& why) {
    if (_isJson) {
      printJson(instance, std::string("\"match\": ") + (isMatch ? "true" : "false") +
                              (why.empty() ? "" : ", \"why\": " + jsonText(why)));
    } else {
      printLine(instance, (isMatch ? "match" : "no match") + (why.empty() ? "" : '\t' + printableText(why)));
    }
  }
  void print(const IQoriObject& instance, const FilterGroup& filters, const FilterGroup::Lines& matching) {
    if (_isJson) {
      printJson(instance, "\"filters\": " + filters.jsonOf(matching));
    } else {
      printLine(instance, filters.textOf(matching));
    }
  }
  void finish() const {
    if (_isJson) std::cout << (_count == 0 ? "]\n" : "\n]\n");
  }

 private:
  void printLine(const IQoriObject& instance, const std::string& decision) {
    std::cout << printableText(pathOf(instance, ++_count)) << '\t' << decision << '\n';
  }
  void printJson(const IQoriObject& instance, const std::string& decision) {
    const bool isFirst = _count == 0;
    std::cout << (isFirst ? "\n  {" : ",\n  {") << "\"path\": " << jsonText(pathOf(instance, ++_count)) << ", "
              << decision << '}';
  }

  const bool _isJson;
  std::size_t _count = 0;
};

Instances readInstances(FilterSession& session, const std::string& file) {
  MofLoader loader(session.manager().sink(), session.nameSpace());
  session.session().prepare(loader);
  Instances instances = file != kStandardInput ? loader.readInstanceFile(file)
                                               : loader.readInstances(readStandardInput(), "standard input");
  session.session().tellOfFaults(loader.getFaults());
  return instances;
}

void decide(const CQLQueryStatement& filter, const Instances& instances, bool isWhy, DecisionPrinter& printer) {
  for (const QORSmrPtr<IQoriObject>& instance : instances) {
    if (!std::cout) return;
    std::string why;
    const QORString nameSpace(instance->getNameSpace());
    const bool isMatch = isWhy ? filter.explainMatch(instance, nameSpace, why) : filter.isMatch(instance, nameSpace);
    printer.print(*instance, isMatch, why);
  }
}

bool declaresClass(std::string_view text) {
  const QORQL_TextPieces pieces(text);
  std::size_t piece = 0;
  while (piece < pieces.all().size() && !pieces.is(piece, "class")) ++piece;
  return pieces.isWord(piece + 1);
}

// Whether the line at fault declares a class.
bool isOfSchema(const MofException& refusal) { return declaresClass(refusal.getDiagnostics().front().sourceLine); }

void hintAtSchema() {
  printHint({"", "a schema is given by --mof FILE; the files after the filter hold instances"}, "");
}

// Of a filter whose class does not exist: whether one of the files may be the schema.
bool isSchemaAmong(const std::vector<std::string>& files) {
  return std::any_of(files.begin(), files.end(), [](const std::string& file) {
    if (file == kStandardInput || !checkFile(file).empty()) return false;
    std::string text = readTextFile(file);
    decodeMofText(text);  // of a text that is cut off the first part tells enough
    return declaresClass(text);
  });
}

void hintAtSchema(bool lacksClass, const MatchOptions& options) {
  if (lacksClass && !options.filter.session.isQuiet && isSchemaAmong(options.files)) hintAtSchema();
}

// Files of instances that cannot be read; a schema among them is hardly meant as instances.
class UnreadInstances : public MofException {
 public:
  explicit UnreadInstances(const MofException& refusal) : MofException(refusal) {}
};

// All are read before the first is decided: a file with a fault decides nothing. THROWS UnreadInstances.
std::vector<Instances> readAll(FilterSession& session, const std::vector<std::string>& paths) {
  std::vector<Instances> files;
  try {
    for (const std::string& path : paths) files.push_back(readInstances(session, path));
  } catch (const MofException& refusal) {
    throw UnreadInstances(refusal);
  }
  return files;
}

// Returns the exit status. REQUIRES to be called inside a catch clause.
int reportUnread(const UnreadInstances& refusal, bool isQuiet) {
  const int status = reportStartFailure();
  if (!isQuiet && isOfSchema(refusal)) hintAtSchema();
  return status;
}

int matchMany(FilterSession& session, const MatchOptions& options) {
  FilterGroup filters(session);
  if (!filters.readFile(options.asked.file)) {
    hintAtSchema(filters.lacksClass(), options);
    return kExitRefused;
  }
  const std::vector<Instances> files = readAll(session, options.files);
  DecisionPrinter printer(options.output);
  for (const Instances& instances : files) {
    for (const QORSmrPtr<IQoriObject>& instance : instances) {
      if (!std::cout) return kExitDone;
      printer.print(*instance, filters, filters.matching(instance, instance->getNameSpace()));
    }
  }
  printer.finish();
  return kExitDone;
}

int matchOne(FilterSession& session, const MatchOptions& options) {
  const CheckedFilter filter = session.check(*options.asked.text);
  if (!filter.reason.empty()) {
    reportRefusal("the filter is not valid: " + filter.reason);
    session.tellHint(filter);
    hintAtSchema(filter.lacksClass, options);
    return kExitRefused;
  }
  if (!session.passes(filter)) return kExitRefused;
  const std::vector<Instances> files = readAll(session, options.files);
  DecisionPrinter printer(options.output);
  for (const Instances& instances : files) decide(*filter.statement, instances, options.isWhy, printer);
  printer.finish();
  return kExitDone;
}

int runMatch(const MatchOptions& options) {
  FilterSession session(options.filter);
  try {
    session.open();
    const int status = options.asked.areMany() ? matchMany(session, options) : matchOne(session, options);
    return session.session().settle(status);
  } catch (const UnreadInstances& refusal) {
    return reportUnread(refusal, options.filter.session.isQuiet);
  } catch (...) {
    return reportStartFailure();
  }
}

}  // namespace

CommandAction declareMatchCommand(CLI::App& app) {
  const auto options = std::make_shared<MatchOptions>();
  describeCommand(app, kMatchDescription, kMatchFooter);
  declareFilterOptions(app, options->filter);
  declareFilterOutput(app, options->output);
  declareFlag(app, "--why", options->isWhy, "Show the first condition that failed and the values it compared");
  declareFilterTexts(app, options->asked);
  declareValue(app, {.names = "FILE",
                     .description = "MOF files with instances",
                     .take = keepIn(options->files),
                     .isRepeatable = true});
  return [options] {
    const bool areMany = options->asked.areMany();
    if (areMany && options->isWhy) refuseBoth("--why", "--filters");
    if (!areMany && !options->asked.text) refuseWithout("FILTER");
    // What stands in the filter's place is a file then.
    if (areMany && options->asked.text) options->files.insert(options->files.begin(), *options->asked.text);
    if (options->files.empty()) options->files.emplace_back(kStandardInput);
    return runMatch(*options);
  };
}
