// Results as JSON.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_JSONWRITER_H
#define QORQL_TOOL_JSONWRITER_H

#include "ResultWriter.h"

// An array of objects for each result, one object to a line; as JSON Lines the
// objects alone, with nothing around or between results. Numbers are
// numbers with all their digits, NULL is null, arrays are arrays, booleans are
// true and false, embedded objects are objects; everything else is its text.
// Of columns with one name the second is called name_2, and so on.
class JsonWriter : public ResultWriter {
 public:
  enum class Style { Array, Lines };
  JsonWriter(std::ostream& out, Style style) : ResultWriter(out), _isArray(style == Style::Array) {}
  void begin(const ResultHeading& heading) override;
  void writeRow(const ResultRow& row) override;
  void end() override;

 private:
  std::vector<std::string> _keys;  // quoted, with the colon
  std::string _line;
  bool _isArray;
  bool _isFirstRow = true;
};

#endif
