// Results as JSON.
// SPDX-License-Identifier: Apache-2.0
#include "JsonWriter.h"

#include <ostream>
#include <set>

#include "JsonValue.h"

namespace {

std::string freeName(const std::string& name, const std::set<std::string>& given, std::set<std::string>& used) {
  if (used.insert(name).second) return name;
  for (int number = 2;; ++number) {
    std::string numbered = name + "_" + std::to_string(number);
    if (!given.contains(numbered) && used.insert(numbered).second) return numbered;
  }
}

// A different key for each column; quoted, with the colon.
std::vector<std::string> uniqueKeys(const std::vector<ResultColumn>& columns) {
  std::set<std::string> given;
  for (const ResultColumn& column : columns) given.insert(column.name);
  std::set<std::string> used;
  std::vector<std::string> keys;
  keys.reserve(columns.size());
  for (const ResultColumn& column : columns) keys.push_back(jsonText(freeName(column.name, given, used)) + ": ");
  return keys;
}

}  // namespace

void JsonWriter::begin(const ResultHeading& heading) {
  _keys = uniqueKeys(heading.columns);
  _isFirstRow = true;
  if (_isArray) _out << '[';
}

void JsonWriter::writeRow(const ResultRow& row) {
  _line = !_isArray ? "{" : _isFirstRow ? "\n  {" : ",\n  {";
  _isFirstRow = false;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i != 0) _line += ", ";
    _line += _keys[i];
    appendJson(_line, row[i].Get());
  }
  _line += _isArray ? "}" : "}\n";
  _out << _line;
}

void JsonWriter::end() {
  if (_isArray) _out << (_isFirstRow ? "]\n" : "\n]\n");
}
