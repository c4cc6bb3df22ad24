// Lists that commands print in the forms of results.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LISTOUTPUT_H
#define QORQL_TOOL_LISTOUTPUT_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ResultWriter.h"

namespace CLI {
class App;
}

using ListRow = std::vector<QORSmrPtr<IQoriValue>>;

struct List {
  std::string title;  // shown where a query is shown
  std::vector<ResultColumn> columns;
  std::vector<ListRow> rows;
};

// Declares -o with the forms that a list may have: csv, json, jsonl, html and one for people, which is the default and
// leaves the form empty, and --no-header. BORROWS both until the command line has been parsed.
void declareListOutput(CLI::App& app, std::optional<OutputForm>& form, bool& hasNoHeader, const char* formForPeople);

// One after the other on standard output.
void printLists(OutputForm form, const std::vector<List>& lists, bool hasHeader);

ResultColumn textColumn(const char* name);
ResultColumn numberColumn(const char* name);
QORSmrPtr<IQoriValue> listText(std::string_view text);
QORSmrPtr<IQoriValue> listNumber(std::size_t number);

#endif
