// What the command line says to the commands that take a filter.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FILTEROPTIONS_H
#define QORQL_TOOL_FILTEROPTIONS_H

#include <optional>
#include <string>

#include "SessionOptions.h"

struct FilterOptions {
  SessionOptions session;
  std::string language = "DMTF:CQL";
  bool isStrict = false;  // a filter with warnings is refused
};

// What is asked: one filter, or those of a file.
struct FilterTexts {
  std::optional<std::string> text;
  std::string file;  // empty: the one in the text

  bool areMany() const noexcept { return !file.empty(); }
};

// Text for people, or JSON.
enum class FilterOutput { Text, Json };
// BORROWS the output until the command line has been parsed.
void declareFilterOutput(CLI::App& app, FilterOutput& output);

// BORROW their second argument until the command line has been parsed.
void declareFilterOptions(CLI::App& app, FilterOptions& options);
// The option --filters, and FILTER; which of the two may be given, the command says.
void declareFilterTexts(CLI::App& app, FilterTexts& texts);

#endif
