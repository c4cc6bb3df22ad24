// Only whom the file names is of interest here: libcurl reads the passwords, and it alone.
// SPDX-License-Identifier: Apache-2.0
#include "NetrcFile.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "cmpbase.h"

namespace {

std::string homeFolder() {
  const char* const named = std::getenv("HOME");
  if (named != nullptr && *named != '\0') return named;
  const passwd* const user = getpwuid(getuid());
  return user == nullptr || user->pw_dir == nullptr ? "" : user->pw_dir;
}

// The lines between a macro's name and the next blank line are no entries.
void skipMacro(std::istream& lines) {
  for (std::string line; std::getline(lines, line) && !line.empty();) continue;
}

// What follows these words is a value, which may look like a word of the file.
bool hasValue(const std::string& word) { return word == "login" || word == "password" || word == "account"; }

bool isNamedIn(const std::string& line, std::string_view host, bool& isMachineNext, bool& isValueNext) {
  std::istringstream words(line);
  for (std::string word; words >> word;) {
    if (isMachineNext && QORString::equalIgnoringCase(word, host)) return true;
    const bool isKey = !isMachineNext && !isValueNext;
    if (isKey && word == "default") return true;
    isMachineNext = isKey && word == "machine";
    isValueNext = isKey && hasValue(word);
  }
  return false;
}

bool isMacro(const std::string& line) { return line.starts_with("macdef"); }

}  // namespace

bool isInNetrc(std::string_view host) {
  std::ifstream lines(homeFolder() + "/.netrc");
  bool isMachineNext = false;
  bool isValueNext = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('#')) continue;
    if (isMacro(line)) {
      skipMacro(lines);
    } else if (isNamedIn(line, host, isMachineNext, isValueNext)) {
      return true;
    }
  }
  return false;
}
