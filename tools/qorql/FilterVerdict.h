// What validation found out about a filter, as text and as JSON.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FILTERVERDICT_H
#define QORQL_TOOL_FILTERVERDICT_H

#include <string>
#include <vector>

#include "cmpbase.h"

struct FilterVerdict {
  QORuint32 line = 0;  // in the file; 0: the filter is none of a file
  std::string name;
  std::string reason;                   // why it is not valid; empty for a valid one
  std::vector<std::string> classes;     // of FROM
  std::vector<std::string> properties;  // that it uses
  std::vector<std::string> warnings;

  bool isValid() const noexcept { return reason.empty(); }
};

// Its parts separated by tabs: "valid", the classes and the properties, or "invalid" and the reason; then, of a filter
// of a file, "line 3" and the name if it has one.
std::string textOf(const FilterVerdict& verdict);
// An object in one line.
std::string jsonOf(const FilterVerdict& verdict);

#endif
