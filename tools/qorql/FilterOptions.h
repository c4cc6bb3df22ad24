// What the command line says to the commands that take a filter.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FILTEROPTIONS_H
#define QORQL_TOOL_FILTEROPTIONS_H

#include <string>

#include "SessionOptions.h"

struct FilterOptions {
  SessionOptions session;
  std::string language = "DMTF:CQL";
  bool isStrict = false;  // a filter with warnings is refused
};

// Text for people, or JSON.
enum class FilterOutput { Text, Json };
// BORROWS the output until the command line has been parsed.
void declareFilterOutput(CLI::App& app, FilterOutput& output);

// BORROWS the options until the command line has been parsed.
void declareFilterOptions(CLI::App& app, FilterOptions& options);

#endif
