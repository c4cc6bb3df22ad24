// Results as JSON.
// SPDX-License-Identifier: Apache-2.0
#include "JsonWriter.h"

#include <ostream>

#include "Cimom/Server/UniqueNames.h"
#include "JsonValue.h"

namespace {

// Quoted, with the colon.
std::vector<std::string> keysOf(const std::vector<ResultColumn>& columns) {
  std::vector<std::string> keys = uniqueNames(namesOf(columns));
  for (std::string& key : keys) key = jsonText(key) + ": ";
  return keys;
}

}  // namespace

void JsonWriter::begin(const ResultHeading& heading) {
  _keys = keysOf(heading.columns);
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
