// Names of columns for forms where no two may be the same.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/UniqueNames.h"

#include <algorithm>
#include <set>

namespace {

char lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// What names that are the same have in common.
std::string keyOf(std::string name, SameNames same) {
  if (same == SameNames::IgnoringCase) std::transform(name.begin(), name.end(), name.begin(), lower);
  return name;
}

std::string freeName(const std::string& name, SameNames same, const std::set<std::string>& given,
                     std::set<std::string>& used) {
  if (used.insert(keyOf(name, same)).second) return name;
  for (int number = 2;; ++number) {
    std::string numbered = name + "_" + std::to_string(number);
    const std::string key = keyOf(numbered, same);
    if (!given.contains(key) && used.insert(key).second) return numbered;
  }
}

}  // namespace

std::vector<std::string> uniqueNames(const std::vector<std::string>& names, SameNames same) {
  std::set<std::string> given;
  for (const std::string& name : names) given.insert(keyOf(name, same));
  std::set<std::string> used;
  std::vector<std::string> unique;
  unique.reserve(names.size());
  for (const std::string& name : names) unique.push_back(freeName(name, same, given, used));
  return unique;
}
