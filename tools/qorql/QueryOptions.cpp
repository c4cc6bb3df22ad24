// The command line of a query.
#include "QueryOptions.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "ExitStatus.h"

namespace {

constexpr const char* kDescription =
    "Queries CIM instances: the live processes, file systems and operating system of this\n"
    "machine, and what MOF files declare.";

constexpr const char* kFooter =
    "Without QUERY and --file, statements are read from standard input, separated by \";\".\n"
    "\n"
    "Exit status: 0 done; 1 a statement is refused or fails; 2 wrong usage; 3 MOF,\n"
    "configuration or provider failure.\n"
    "\n"
    "Example:\n"
    "  qorql \"SELECT FIRST 5 Handle, Name, WorkingSetSize FROM Linux_Process\n"
    "         ORDER BY WorkingSetSize DESC\"";

const std::map<std::string, OutputForm> kForms = {{"table", OutputForm::Table},
                                                  {"csv", OutputForm::Csv},
                                                  {"json", OutputForm::Json},
                                                  {"html", OutputForm::Html},
                                                  {"xml", OutputForm::Xml}};
const std::map<std::string, QORuint32> kLogLevels = {{"fatal", QoriTraceLog::kFatal},
                                                     {"error", QoriTraceLog::kError},
                                                     {"warning", QoriTraceLog::kWarning},
                                                     {"info", QoriTraceLog::kInfo},
                                                     {"trace", QoriTraceLog::kTrace}};

// The texts as they are given, before they are looked up.
struct RawOptions {
  std::string form;
  std::string logLevel;
  std::vector<std::string> settings;
  std::string query;
  bool hasNoLiveClasses = false;
};

template <class Value>
CLI::Validator oneOf(const std::map<std::string, Value>& choices) {
  std::string names;
  for (const auto& choice : choices) names += (names.empty() ? "" : ", ") + choice.first;
  const auto find = [names, &choices](const std::string& given) {
    return choices.contains(given) ? std::string() : "'" + given + "' is none of " + names;
  };
  return CLI::Validator(find, "");
}

std::string checkSetting(const std::string& given) {
  const std::size_t dot = given.find('.');
  const std::size_t equals = given.find('=');
  const bool isGood = dot != std::string::npos && equals != std::string::npos && dot > 0 && dot + 1 < equals;
  return isGood ? std::string() : "'" + given + "' is not of the form SECTION.KEY=VALUE";
}

Setting parseSetting(const std::string& given) {
  const std::size_t dot = given.find('.');
  const std::size_t equals = given.find('=');
  return {given.substr(0, dot), given.substr(dot + 1, equals - dot - 1), given.substr(equals + 1)};
}

std::string checkName(const std::string& given) { return given.empty() ? "a name is not empty" : ""; }

std::string checkFile(const std::string& given) { return CLI::ExistingFile(given); }

CLI::Validator check(std::string (*operation)(const std::string&)) {
  return CLI::Validator([operation](const std::string& given) { return operation(given); }, "");
}

void declareFlag(CLI::App& app, const char* name, bool& isSet, const char* description) {
  app.add_flag(name, isSet, description)->disable_flag_override();
}

void declareSources(CLI::App& app, QueryOptions& options, RawOptions& raw) {
  app.add_option("-m,--mof", options.mofPaths, "Load a MOF file, or every .mof file of a folder (repeatable)")
      ->type_name("PATH")
      ->allow_extra_args(false);
  app.add_option("-n,--namespace", options.nameSpace, "Namespace (default: root/cimv2)")
      ->type_name("NAME")
      ->check(check(checkName));
  declareFlag(app, "--no-live", raw.hasNoLiveClasses, "Without the live classes of this machine");
  app.add_option("-f,--file", options.file, "Read statements from a file")->type_name("FILE")->check(check(checkFile));
  app.add_option("QUERY", raw.query, "One statement, or several separated by \";\"")->type_name(" ");
}

void declareOutput(CLI::App& app, QueryOptions& options, RawOptions& raw) {
  app.add_option("-o,--output", raw.form, "table, csv, json, html or xml (default: the FORMAT clause, else table)")
      ->type_name("FORM")
      ->check(oneOf(kForms));
  declareFlag(app, "--stats", options.hasStatistics, "Print counts and times of each statement to standard error");
  declareFlag(app, "--quiet", options.isQuiet, "No warnings, no progress line");
  app.add_option("--log", raw.logLevel, "Log to standard error: fatal, error, warning, info or trace")
      ->type_name("LEVEL")
      ->check(oneOf(kLogLevels));
}

void declareConfiguration(CLI::App& app, QueryOptions& options, RawOptions& raw) {
  app.add_option("--config", options.configuration, "Read the configuration from an INI file")->type_name("FILE");
  app.add_option("--set", raw.settings, "Set a key of the configuration (repeatable)")
      ->type_name("SECTION.KEY=VALUE")
      ->allow_extra_args(false)
      ->check(check(checkSetting));
  app.set_version_flag("--version", "qorql " QORQL_VERSION, "Print the version and end")->disable_flag_override();
  app.set_help_flag("-h,--help", "Print this help and end")->disable_flag_override();
}

void takeRawOptions(const CLI::App& app, const RawOptions& raw, QueryOptions& options) {
  if (app.count("QUERY") != 0) options.query = raw.query;
  if (options.query && !options.file.empty()) throw CLI::ExcludesError("QUERY", "--file");
  options.hasLiveClasses = !raw.hasNoLiveClasses;
  if (!raw.form.empty()) options.form = kForms.at(raw.form);
  if (!raw.logLevel.empty()) options.logSeverity = kLogLevels.at(raw.logLevel);
  for (const std::string& setting : raw.settings) options.settings.push_back(parseSetting(setting));
}

}  // namespace

std::optional<int> readQueryOptions(int argc, const char* const* argv, QueryOptions& options) {
  CLI::App app(kDescription, "qorql");
  app.footer(kFooter);
  options.nameSpace = EmbeddedObjectManager::kDefaultNamespace;
  RawOptions raw;
  declareSources(app, options, raw);
  declareOutput(app, options, raw);
  declareConfiguration(app, options, raw);
  try {
    app.parse(argc, argv);
    takeRawOptions(app, raw, options);
  } catch (const CLI::Success& success) {
    return app.exit(success, std::cout, std::cerr);
  } catch (const CLI::ParseError& error) {
    std::cerr << "qorql: " << error.what() << "\nTry qorql --help.\n";
    return kExitUsage;
  }
  return std::nullopt;
}
