// The statements of earlier runs of the shell.
// SPDX-License-Identifier: Apache-2.0
#include "HistoryFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace {

constexpr std::size_t kKept = 1000;
constexpr mode_t kOwnerOnly = 0600;

std::filesystem::path folderOf(const char* variable) {
  const char* const value = std::getenv(variable);
  return value == nullptr || *value != '/' ? std::filesystem::path() : std::filesystem::path(value);
}

// Makes the missing folders, the last ones for the owner alone.
void makeFolders(const std::filesystem::path& folder) {
  std::error_code ignored;
  if (std::filesystem::exists(folder, ignored)) return;
  std::filesystem::create_directories(folder.parent_path(), ignored);
  mkdir(folder.c_str(), 0700);
}

bool writeAll(const std::filesystem::path& path, int flags, const std::string& text) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, kOwnerOnly);
  if (file < 0) return false;
  fchmod(file, kOwnerOnly);
  const bool isWritten = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  return close(file) == 0 && isWritten;
}

}  // namespace

HistoryFile::HistoryFile() {
  std::filesystem::path state = folderOf("XDG_STATE_HOME");
  const std::filesystem::path home = folderOf("HOME");
  if (state.empty() && !home.empty()) state = home / ".local" / "state";
  if (!state.empty()) _path = state / "qorql" / "history";
}

std::vector<std::string> HistoryFile::load() const {
  std::vector<std::string> lines;
  std::ifstream file(_path, std::ios::binary);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty()) lines.push_back(line);
  }
  if (lines.size() <= 2 * kKept) return lines;
  lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(kKept));
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  const std::filesystem::path fresh = _path.string() + ".new";
  std::error_code ignored;
  if (writeAll(fresh, O_TRUNC, text)) std::filesystem::rename(fresh, _path, ignored);
  return lines;
}

// One write each, so that lines of several shells do not mix.
void HistoryFile::append(const std::string& statement) const {
  if (_path.empty() || statement.empty()) return;
  makeFolders(_path.parent_path());
  std::string line = statement;
  std::replace(line.begin(), line.end(), '\n', ' ');
  writeAll(_path, O_APPEND, line + '\n');
}
