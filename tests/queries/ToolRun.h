// Runs statements through the command-line program, one process each.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_TOOLRUN_H
#define QORQL_TESTS_TOOLRUN_H

#include <string>
#include <vector>

#include "Script.h"

struct ToolOutcome {
  int status = -1;  // the exit status; -1 when the program ended by a signal
  std::string out;
  std::string err;
};

// Makes a folder for its files, which goes with it.
class ToolRun {
 public:
  // `server`: the URL of a server of the script's models, which is asked in their place; empty: none.
  ToolRun(const std::string& program, const Script& script, const std::vector<std::string>& folders,
          const std::string& server = "");
  ToolRun(const ToolRun&) = delete;
  ToolRun& operator=(const ToolRun&) = delete;
  ~ToolRun();

  ToolOutcome run(const Case& one) const;

 private:
  void addModels(const Script& script, const std::vector<std::string>& folders);
  std::vector<std::string> argumentsOf(const Case& one) const;

  std::string _folder;
  std::vector<std::string> _arguments;  // program, models, settings
};

#endif
