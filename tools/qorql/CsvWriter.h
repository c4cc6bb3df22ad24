// Results as comma-separated values.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_CSVWRITER_H
#define QORQL_TOOL_CSVWRITER_H

#include <string_view>

#include "ResultWriter.h"

// A line of column names, then a line for each row. Fields are quoted as RFC
// 4180 has it, lines end with a line feed, NULL is an empty field. An empty
// line stands between two results.
class CsvWriter : public ResultWriter {
 public:
  using ResultWriter::ResultWriter;
  void begin(const ResultHeading& heading) override;
  void writeRow(const ResultRow& row) override;
  void end() override {}

 private:
  void appendField(std::string_view text);

  std::string _line;
  bool _isFirst = true;
};

#endif
