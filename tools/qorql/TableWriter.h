// Results as a table for a person's eyes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_TABLEWRITER_H
#define QORQL_TOOL_TABLEWRITER_H

#include "ResultWriter.h"
#include "Terminal.h"

// Aligned columns under their names; numbers to the right. NULL reads NULL.
// Characters that would break a line or control the terminal are shown as \n,
// \t or \x1B; percentages have two digits after the point at most. An empty line stands between two results. Keeps the
// texts of one result until it ends.
//
// On a terminal the table stands in a box, the number of rows under it, and
// fits the width: the widest columns are cut, numbers last. Where there are too
// many columns for that, each row is a card with a line for each column that is not NULL.
// Anywhere else the columns are two blanks apart under a rule, and nothing is cut.
// Without a header the names and the rule under them are left out; cards keep theirs.
class TableWriter : public ResultWriter {
 public:
  TableWriter(std::ostream& out, bool hasHeader) : ResultWriter(out), _hasHeader(hasHeader) {}
  void begin(const ResultHeading& heading) override;
  void writeRow(const ResultRow& row) override;
  void end() override;

 private:
  struct Cell {
    std::string text;
    std::size_t width;
    bool isNull = false;
  };
  // What the lines are drawn with.
  struct Frame;

  void addCell(std::size_t column, std::string text, bool isNull = false);
  // Cut where it is too wide: a reference at its beginning, since the keys at its end tell it from others.
  std::string fitted(std::size_t column, const Cell& cell, std::size_t width) const;
  // What the lines of a box take that has columns of these widths at most.
  std::size_t boxWidth(std::size_t widest) const;
  void fitWidths();
  void printTable();
  void printCards();
  void shrinkColumns(bool isNumber, std::size_t& excess);
  void printLine(const Cell* cells, const Frame& frame);
  void printRule(const char* left, const char* cross, const char* right, const Frame& frame);
  void printRowCount();
  const Frame& frame() const;

  const bool _hasHeader;
  TerminalShape _terminal;
  std::vector<ResultColumn> _columns;
  std::vector<std::size_t> _widths;
  std::vector<Cell> _cells;  // row by row, the names first
  std::string _line;
  bool _isFirst = true;
};

#endif
