// The forms in which a result can be printed.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_RESULTWRITER_H
#define QORQL_TOOL_RESULTWRITER_H

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <span>
#include <string>
#include <vector>

#include "Cimom/Server/ColumnTypes.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

enum class OutputForm { Table, Csv, Json, JsonLines, Html, Xml, Mof, Arrow };

struct ResultColumn {
  std::string name;
  bool isNumber = false;
  std::string typeName;  // the CIM type; empty when no row tells it
  bool isArray = false;
  bool isPercentage = false;
  bool hasValueTexts = false;  // its codes are told with their texts
  DateTimes dateTimes = DateTimes::Texts;
};

inline std::vector<std::string> namesOf(const std::vector<ResultColumn>& columns) {
  std::vector<std::string> names;
  for (const ResultColumn& column : columns) names.push_back(column.name);
  return names;
}

// What is known before the first row.
struct ResultHeading {
  std::string query;
  std::vector<ResultColumn> columns;
  std::size_t rowCount = 0;
};

// One value for each column; a null pointer for NULL. BORROWS the values.
class ResultRow {
 public:
  ResultRow(std::span<const QORSmrPtr<IQoriValue>> values, const QORString& className)
      : _values(values), _className(className) {}
  std::size_t size() const noexcept { return _values.size(); }
  const QORSmrPtr<IQoriValue>& operator[](std::size_t index) const noexcept { return _values[index]; }
  // The class of the object whose properties the columns are, by their names; empty when they are not of one object.
  const QORString& className() const noexcept { return _className; }

 private:
  std::span<const QORSmrPtr<IQoriValue>> _values;
  const QORString& _className;
};

// Prints the results of one run of the program, one after the other: for each
// result begin, its rows, end or breakOff; after the last one finish, also when a later
// statement failed. BORROWS the stream.
class ResultWriter {
 public:
  explicit ResultWriter(std::ostream& out) : _out(out) {}
  ResultWriter(const ResultWriter&) = delete;
  ResultWriter& operator=(const ResultWriter&) = delete;
  virtual ~ResultWriter() = default;

  virtual void begin(const ResultHeading& heading) = 0;
  virtual void writeRow(const ResultRow& row) = 0;
  virtual void end() = 0;
  // In place of end(), when rows are missing because of an error.
  virtual void breakOff() { end(); }
  virtual void finish() {}

 protected:
  std::ostream& _out;
};

// The names of a class's key properties.
using KeysOfClass = std::function<std::vector<std::string>(const QORString& className)>;

#endif
