// Results as comma-separated values.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_CSVWRITER_H
#define QORQL_TOOL_CSVWRITER_H

#include <string_view>

#include "ResultWriter.h"

// A line of column names where it is wanted, then a line for each row. Fields are quoted as RFC
// 4180 has it, lines end with a line feed, NULL is an empty field. An empty
// line stands between two results.
class CsvWriter : public ResultWriter {
 public:
  CsvWriter(std::ostream& out, bool hasHeader) : ResultWriter(out), _hasHeader(hasHeader) {}
  void begin(const ResultHeading& heading) override;
  void writeRow(const ResultRow& row) override;
  void end() override {}

 private:
  void appendField(std::string_view text);

  void printNames(const std::vector<ResultColumn>& columns);

  const bool _hasHeader;
  std::string _line;
  bool _isFirst = true;
};

#endif
