// The kernel's files about one process.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxProcessFiles.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

#include "Cimom/Providers/LinuxValues.h"

std::optional<std::string> readProcessLink(const std::string& link) {
  std::array<char, 4096> target;
  const ssize_t length = readlink(link.c_str(), target.data(), target.size());
  if (length < 0) return std::nullopt;
  return std::string(target.data(), static_cast<std::size_t>(length));
}

std::optional<QORuint32> countEntries(const std::string& folder) {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
  if (entries == nullptr) return std::nullopt;
  QORuint32 count = 0;
  while (const dirent* entry = readdir(entries.get())) {
    if (entry->d_name[0] != '.') ++count;
  }
  return count;
}

// The kernel writes " (deleted)" after the path of a file that has gone. A file
// may be called so, too: then the path leads to the file that the link is.
std::optional<bool> executableExists(const std::string& link) {
  const std::optional<std::string> target = readProcessLink(link);
  if (!target) return std::nullopt;
  if (!target->ends_with(" (deleted)")) return true;
  if (target->starts_with("/memfd:")) {
    errno = 0;
    return std::nullopt;
  }
  struct stat running {};
  struct stat named {};
  if (stat(link.c_str(), &running) != 0 || stat(target->c_str(), &named) != 0) return false;
  return running.st_dev == named.st_dev && running.st_ino == named.st_ino;
}

// Lines "number:controllers:path"; the unified hierarchy has number 0 and no controllers.
QORString controlGroupIn(std::string_view content) {
  std::string_view unified;
  std::string_view other;
  while (!content.empty()) {
    const std::size_t end = std::min(content.find('\n'), content.size());
    const std::string_view line = content.substr(0, end);
    content.remove_prefix(std::min(end + 1, content.size()));
    const std::size_t first = line.find(':');
    const std::size_t second = first == std::string_view::npos ? first : line.find(':', first + 1);
    if (second == std::string_view::npos) continue;
    const std::string_view path = line.substr(second + 1);
    if (line.starts_with("0::")) {
      unified = path;
    } else if (other.empty() || other == "/") {
      other = path;
    }
  }
  const std::string_view group = unified.empty() || (unified == "/" && !other.empty()) ? other : unified;
  return group.empty() ? QORString() : QORString(group);
}

std::string processName(int pid) { return readLine("/proc/" + std::to_string(pid) + "/comm"); }

// The first process is always there, unless those of other users are hidden.
void warnOfHiddenProcesses() {
  if (access("/proc/1", F_OK) != 0) warnUnreadable("the processes of other users", errno);
}
