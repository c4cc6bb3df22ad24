// Results as one HTML page that needs nothing else.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_HTMLWRITER_H
#define QORQL_TOOL_HTMLWRITER_H

#include <string_view>

#include "ResultWriter.h"

// One page for all results of a run, a section with its query, row count and
// table for each. Light or dark as the reader's system is. Datetimes are readable
// and percentages rounded, with the exact value as the cell's title. With scripts, a
// click on a column's name sorts by it and one on a long text opens it, numbers have
// bars, and a narrow screen shows a card for each row.
class HtmlWriter : public ResultWriter {
 public:
  using ResultWriter::ResultWriter;
  void begin(const ResultHeading& heading) override;
  void writeRow(const ResultRow& row) override;
  void end() override;
  // Closes the page, if one was begun.
  void finish() override;

 private:
  void appendCell(const ResultColumn& column, const IQoriValue& value);

  std::vector<ResultColumn> _columns;
  std::string _line;
  bool _isLarge = false;
  std::size_t _rowCount = 0;
  bool _hasPage = false;
};

#endif
