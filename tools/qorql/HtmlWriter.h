// Results as one HTML page that needs nothing else.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_HTMLWRITER_H
#define QORQL_TOOL_HTMLWRITER_H

#include <string_view>

#include "ResultWriter.h"

// One page for all results of a run, a section with its query, row count and
// table for each. Light or dark as the reader's system is. With scripts, a click
// on a column's name sorts by it, and a narrow screen shows a card for each row.
class HtmlWriter : public ResultWriter {
 public:
  using ResultWriter::ResultWriter;
  void begin(const ResultHeading& heading) override;
  void writeRow(const ResultRow& row) override;
  void end() override;
  // Closes the page, if one was begun.
  void finish() override;

 private:
  std::vector<ResultColumn> _columns;
  std::string _line;
  bool _hasPage = false;
};

#endif
