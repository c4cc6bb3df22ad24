// Results as comma-separated values.
// SPDX-License-Identifier: Apache-2.0
#include "CsvWriter.h"

#include <ostream>

void CsvWriter::appendField(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
    _line += text;
    return;
  }
  _line += '"';
  for (const char byte : text) {
    if (byte == '"') _line += '"';
    _line += byte;
  }
  _line += '"';
}

void CsvWriter::begin(const ResultHeading& heading) {
  if (!_isFirst) _out << '\n';
  _isFirst = false;
  if (_hasHeader) printNames(heading.columns);
}

void CsvWriter::printNames(const std::vector<ResultColumn>& columns) {
  _line.clear();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i != 0) _line += ',';
    appendField(columns[i].name);
  }
  _out << _line << '\n';
}

void CsvWriter::writeRow(const ResultRow& row) {
  _line.clear();
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i != 0) _line += ',';
    if (!row[i].IsNull()) appendField(row[i]->toString().view());
  }
  _line += '\n';
  _out << _line;
}
