// What an option or argument was declared as, read back from the library of the command line for the manual page and
// the completions. Only sources that include that library can use it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_DECLAREDOPTIONS_H
#define QORQL_TOOL_DECLAREDOPTIONS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

// Names as they are typed: -o, --output. An argument has none.
inline std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

inline bool takesValue(const CLI::Option& option) { return option.get_items_expected_max() != 0; }
inline bool isPositional(const CLI::Option& option) { return !option.nonpositional(); }
inline bool isRepeatable(const CLI::Option& option) {
  return option.get_expected_max() == CLI::detail::expected_max_vector_size;
}

#endif
