// What the command line says about the object manager.
// SPDX-License-Identifier: Apache-2.0
#include "SessionOptions.h"

#include <map>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "OptionDeclarations.h"

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
  declareValue(app, {.names = "--config",
                     .type = "FILE",
                     .description = "Read the configuration from an INI file",
                     .take = keepIn(options.configuration)});
  const auto takeSetting = [&options](const std::string& given) { options.settings.push_back(parseSetting(given)); };
  declareValue(app, {.names = "--set",
                     .type = "SECTION.KEY=VALUE",
                     .description = "Set a key of the configuration (repeatable)",
                     .take = takeSetting,
                     .check = checkSetting,
                     .isRepeatable = true});
}

}  // namespace

void declareSessionOptions(CLI::App& app, SessionOptions& options) {
  options.nameSpace = EmbeddedObjectManager::kDefaultNamespace;
  declareValue(app, {.names = "-m,--mof",
                     .type = "PATH",
                     .description = "Load a MOF file, or every .mof file of a folder (repeatable)",
                     .take = keepIn(options.mofPaths),
                     .isRepeatable = true});
  const auto takeNamespace = [&options](const std::string& name) {
    options.nameSpace = name;
    options.isNamespaceGiven = true;
  };
  declareValue(app, {.names = "-n,--namespace",
                     .type = "NAME",
                     .description = "Namespace (default: root/cimv2)",
                     .take = takeNamespace,
                     .check = checkName});
  declareValue(app, {.names = "--cache",
                     .type = "FILE",
                     .description = "Keep what the MOF files declare in this file",
                     .take = keepIn(options.cacheFile),
                     .check = checkName});
  declareFlag(app, "--no-cache", options.hasNoCache, "Read the MOF files themselves, and keep nothing");
  declareExclusion(app, "--no-cache", "--cache");
  declareFlag(app, "--lenient", options.isLenient, "Load what is sound of the MOF files, and warn of the rest");
  declareExclusion(app, "--lenient", "--cache");
  declareFlag(app, "--no-live", options.hasNoLiveClasses, "Leave out the live classes of this machine");
  declareServerOptions(app, options.servers, [&options](const std::string& name) {
    if (!options.isNamespaceGiven) options.nameSpace = name;
  });
  declareConfiguration(app, options);
  declareFlag(app, "--quiet", options.isQuiet, "No warnings, no hints, no progress line");
  const auto takeLevel = [&options](const std::string& level) { options.logSeverity = kLogLevels.at(level); };
  declareValue(app, {.names = "--log",
                     .type = "LEVEL",
                     .description = "Log to standard error: fatal, error, warning, info or trace",
                     .take = takeLevel,
                     .check = oneOf(kLogLevels)});
}

std::vector<std::string> logLevelNames() {
  std::vector<std::string> names;
  names.reserve(kLogLevels.size());
  for (const auto& level : kLogLevels) names.push_back(level.first);
  return names;
}
