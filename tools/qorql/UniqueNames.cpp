// Names of columns for forms where no two may be the same.
// SPDX-License-Identifier: Apache-2.0
#include "UniqueNames.h"

#include <set>

namespace {

std::string freeName(const std::string& name, const std::set<std::string>& given, std::set<std::string>& used) {
  if (used.insert(name).second) return name;
  for (int number = 2;; ++number) {
    std::string numbered = name + "_" + std::to_string(number);
    if (!given.contains(numbered) && used.insert(numbered).second) return numbered;
  }
}

}  // namespace

std::vector<std::string> uniqueNames(const std::vector<ResultColumn>& columns) {
  std::set<std::string> given;
  for (const ResultColumn& column : columns) given.insert(column.name);
  std::set<std::string> used;
  std::vector<std::string> names;
  names.reserve(columns.size());
  for (const ResultColumn& column : columns) names.push_back(freeName(column.name, given, used));
  return names;
}
