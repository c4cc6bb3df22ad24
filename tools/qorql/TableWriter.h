// Results as a table for a person's eyes.
#ifndef QORQL_TOOL_TABLEWRITER_H
#define QORQL_TOOL_TABLEWRITER_H

#include "ResultWriter.h"

// Aligned columns, two blanks apart, under their names and a rule; numbers to
// the right. NULL reads NULL. Characters that would break a line or speak to
// the terminal are shown as \n, \t or \x1B. An empty line stands between two
// results. Keeps the texts of one result until it ends.
class TableWriter : public ResultWriter {
 public:
  using ResultWriter::ResultWriter;
  void begin(const ResultHeading& heading) override;
  void writeRow(ResultRow row) override;
  void end() override;

 private:
  struct Cell {
    std::string text;
    std::size_t width;
  };

  void addCell(std::size_t column, const std::string& text);
  void printLine(const Cell* cells);
  void printRule();

  std::vector<ResultColumn> _columns;
  std::vector<std::size_t> _widths;
  std::vector<Cell> _cells;  // row by row, the names first
  std::string _line;
  bool _isFirst = true;
};

// What the table shows of a text, and how many columns of a terminal that takes.
std::string printableText(std::string_view text);
std::size_t displayWidth(std::string_view text);

#endif
