// What the command line asks for.
#ifndef QORQL_TOOL_QUERYOPTIONS_H
#define QORQL_TOOL_QUERYOPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "ResultWriter.h"
#include "cmpbase.h"

struct Setting {
  std::string section;
  std::string key;
  std::string value;
};

struct QueryOptions {
  std::vector<std::string> mofPaths;
  std::string nameSpace;
  std::optional<OutputForm> form;    // none: the statement's FORMAT clause, else a table
  std::optional<std::string> query;  // none: the file, else standard input
  std::string file;                  // empty: none
  bool hasLiveClasses = true;
  bool hasStatistics = false;
  bool isQuiet = false;
  std::string configuration;  // empty: none
  std::vector<Setting> settings;
  std::optional<QORuint32> logSeverity;  // none: what a statement logs is a warning if it succeeds
};

// Reads the command line into `options`. Returns the status to end with when
// there is nothing more to do: after --help and --version (printed to standard
// output) and after wrong usage (reported on standard error).
std::optional<int> readQueryOptions(int argc, const char* const* argv, QueryOptions& options);

#endif
