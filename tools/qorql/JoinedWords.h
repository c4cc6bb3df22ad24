// Words with something between them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_JOINEDWORDS_H
#define QORQL_TOOL_JOINEDWORDS_H

#include <string>
#include <vector>

inline std::string joined(const std::vector<std::string>& words, const char* between = " ") {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

#endif
