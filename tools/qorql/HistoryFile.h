// The statements of earlier runs of the shell.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_HISTORYFILE_H
#define QORQL_TOOL_HISTORYFILE_H

#include <filesystem>
#include <string>
#include <vector>

// qorql/history in the user's folder for state ($XDG_STATE_HOME, else
// ~/.local/state), one statement a line, for the user's eyes alone (mode 600).
// Shells that run at the same time each add theirs. Without a home folder, or
// where it cannot be written, nothing is kept; that is no error.
class HistoryFile {
 public:
  HistoryFile();

  // The newest ones, oldest first. A file that has grown long is shortened to them.
  std::vector<std::string> load() const;
  void append(const std::string& statement) const;

 private:
  std::filesystem::path _path;  // empty: none
};

#endif
