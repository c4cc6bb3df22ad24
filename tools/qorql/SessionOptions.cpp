// What the command line says about the object manager.
#include "SessionOptions.h"

#include <map>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "OptionChecks.h"

namespace {

const std::map<std::string, QORuint32> kLogLevels = {{"fatal", QoriTraceLog::kFatal},
                                                     {"error", QoriTraceLog::kError},
                                                     {"warning", QoriTraceLog::kWarning},
                                                     {"info", QoriTraceLog::kInfo},
                                                     {"trace", QoriTraceLog::kTrace}};

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

void declareConfiguration(CLI::App& app, SessionOptions& options) {
  app.add_option("--config", options.configuration, "Read the configuration from an INI file")->type_name("FILE");
  const auto takeSettings = [&options](const std::vector<std::string>& settings) {
    for (const std::string& setting : settings) options.settings.push_back(parseSetting(setting));
  };
  app.add_option_function<std::vector<std::string>>("--set", takeSettings,
                                                    "Set a key of the configuration (repeatable)")
      ->type_name("SECTION.KEY=VALUE")
      ->allow_extra_args(false)
      ->check(check(checkSetting));
}

}  // namespace

void declareSessionOptions(CLI::App& app, SessionOptions& options) {
  options.nameSpace = EmbeddedObjectManager::kDefaultNamespace;
  app.add_option("-m,--mof", options.mofPaths, "Load a MOF file, or every .mof file of a folder (repeatable)")
      ->type_name("PATH")
      ->allow_extra_args(false);
  app.add_option("-n,--namespace", options.nameSpace, "Namespace (default: root/cimv2)")
      ->type_name("NAME")
      ->check(check(checkName));
  auto* const cache = app.add_option("--cache", options.cacheFile, "Keep what the MOF files declare in this file")
                          ->type_name("FILE")
                          ->check(check(checkName));
  declareFlag(app, "--no-cache", options.hasNoCache, "Read the MOF files themselves, and keep nothing")
      ->excludes(cache);
  declareFlag(app, "--no-live", options.hasNoLiveClasses, "Without the live classes of this machine");
  declareConfiguration(app, options);
  declareFlag(app, "--quiet", options.isQuiet, "No warnings, no progress line");
  const auto takeLevel = [&options](const std::string& level) { options.logSeverity = kLogLevels.at(level); };
  app.add_option_function<std::string>("--log", takeLevel,
                                       "Log to standard error: fatal, error, warning, info or trace")
      ->type_name("LEVEL")
      ->check(oneOf(kLogLevels));
}

std::vector<std::string> logLevelNames() {
  std::vector<std::string> names;
  for (const auto& level : kLogLevels) names.push_back(level.first);
  return names;
}
