// What the command line says about the object manager.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SESSIONOPTIONS_H
#define QORQL_TOOL_SESSIONOPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "ServerOptions.h"
#include "cmpbase.h"

namespace CLI {
class App;
}

struct Setting {
  std::string section;
  std::string key;
  std::string value;
};

struct SessionOptions {
  std::vector<std::string> mofPaths;
  std::string nameSpace;
  bool isNamespaceGiven = false;
  std::string cacheFile;  // empty: one of the user's cache folder, for large MOF
  bool hasNoCache = false;
  bool isLenient = false;      // what is sound of the MOF files is loaded
  bool refusesFaults = false;  // but nothing is done then
  bool hasNoLiveClasses = false;
  bool needsDescriptions = true;  // of the live classes
  bool isQuiet = false;
  bool hasNoPager = false;
  std::string configuration;  // empty: none
  std::vector<Setting> settings;
  ServerOptions servers;
  std::optional<QORuint32> logSeverity;  // none: what a statement logs is a warning if it succeeds
  bool hidesRefusals = false;            // of filters, which are told with their reason by whoever asks
};

// The options that every command has which asks the object manager. BORROWS the
// options until the command line has been parsed.
void declareSessionOptions(CLI::App& app, SessionOptions& options);

// The levels of --log.
std::vector<std::string> logLevelNames();

#endif
