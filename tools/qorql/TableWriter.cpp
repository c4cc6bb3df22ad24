// The columns are as wide as their widest text; where that is wider than the
// terminal, the widest columns are cut to one width, as great as fits. Columns
// that are cut to a few letters are useless: then the rows become cards.
// SPDX-License-Identifier: Apache-2.0
#include "TableWriter.h"

#include <algorithm>
#include <ostream>

#include "DisplayText.h"
#include "Percentage.h"

struct TableWriter::Frame {
  const char* left;  // before a line's first column; the others stand between columns and after the last
  const char* between;
  const char* right;
  const char* dash;
  const char* cut;  // after a text that is cut
  const char* top[3];
  const char* middle[3];
  const char* bottom[3];
  bool fillsLast;  // blanks after a text in the last column
};

namespace {

constexpr std::size_t kNarrowestColumn = 4;
// Rows are a table where columns of this width fit, and cards where they do not.
constexpr std::size_t kReadableColumn = 6;
constexpr std::size_t kCardGap = 2;  // between a card's names and their values

std::string textOf(const ResultColumn& column, const IQoriValue& value) {
  return column.isPercentage ? percentageText(value) : std::string(value.toString().view());
}

}  // namespace

const TableWriter::Frame& TableWriter::frame() const {
  static constexpr Frame kPlain{"", "  ", "", "-", "", {}, {"", "  ", ""}, {}, false};
  static constexpr Frame kBox{
      "│ ", " │ ", " │", "─", "…", {"┌─", "─┬─", "─┐"}, {"├─", "─┼─", "─┤"}, {"└─", "─┴─", "─┘"}, true};
  static constexpr Frame kAscii{
      "| ", " | ", " |", "-", "...", {"+-", "-+-", "-+"}, {"+-", "-+-", "-+"}, {"+-", "-+-", "-+"}, true};
  if (!_terminal.isTerminal) return kPlain;
  return _terminal.isUtf8 ? kBox : kAscii;
}

void TableWriter::addCell(std::size_t column, std::string text, bool isNull) {
  const std::size_t width = displayWidth(text);
  _widths[column] = std::max(_widths[column], width);
  _cells.push_back({std::move(text), width, isNull});
}

std::string TableWriter::fitted(std::size_t column, const Cell& cell, std::size_t width) const {
  if (cell.width <= width) return cell.text;
  const bool isReference = &cell >= _cells.data() + _columns.size() && _columns[column].typeName == "reference";
  return isReference ? cutTextAtStart(cell.text, width, frame().cut) : cutText(cell.text, width, frame().cut);
}

void TableWriter::begin(const ResultHeading& heading) {
  _terminal = standardOutputShape();
  _columns = heading.columns;
  _widths.assign(_columns.size(), 1);
  _cells.clear();
  for (std::size_t i = 0; i < _columns.size(); ++i) addCell(i, printableText(_columns[i].name));
  if (!_hasHeader) _widths.assign(_columns.size(), 1);
}

void TableWriter::writeRow(const ResultRow& row) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    addCell(i, row[i].IsNull() ? "NULL" : printableText(textOf(_columns[i], *row[i])), row[i].IsNull());
  }
}

// Lowers the greatest width that a column of the kind may have until the excess
// is gone or all of them are as narrow as they may be.
void TableWriter::shrinkColumns(bool isNumber, std::size_t& excess) {
  std::size_t cap = *std::max_element(_widths.begin(), _widths.end());
  for (; excess != 0 && cap > kNarrowestColumn; --cap) {
    for (std::size_t i = 0; i < _widths.size() && excess != 0; ++i) {
      if (_columns[i].isNumber != isNumber || _widths[i] < cap) continue;
      --_widths[i];
      --excess;
    }
  }
}

std::size_t TableWriter::boxWidth(std::size_t widest) const {
  std::size_t total = 3 * _widths.size() + 1;
  for (const std::size_t width : _widths) total += std::min(width, widest);
  return total;
}

void TableWriter::fitWidths() {
  if (!_terminal.isTerminal || _widths.empty()) return;
  const std::size_t total = boxWidth(std::string::npos);
  std::size_t excess = total - std::min(total, _terminal.width);
  shrinkColumns(false, excess);
  shrinkColumns(true, excess);
}

void TableWriter::printLine(const Cell* cells, const Frame& frame) {
  _line = frame.left;
  for (std::size_t i = 0; i < _columns.size(); ++i) {
    const bool isCut = cells[i].width > _widths[i];
    const std::string cut = isCut ? fitted(i, cells[i], _widths[i]) : std::string();
    const std::string& text = isCut ? cut : cells[i].text;
    const std::size_t fill = _widths[i] - (isCut ? displayWidth(cut) : cells[i].width);
    const bool isLast = i + 1 == _columns.size();
    if (_columns[i].isNumber) _line.append(fill, ' ');
    _line += text;
    if (!_columns[i].isNumber && (!isLast || frame.fillsLast)) _line.append(fill, ' ');
    _line += isLast ? frame.right : frame.between;
  }
  _out << _line << '\n';
}

void TableWriter::printRule(const char* left, const char* cross, const char* right, const Frame& frame) {
  _line = left;
  for (std::size_t i = 0; i < _widths.size(); ++i) {
    if (i != 0) _line += cross;
    for (std::size_t dash = 0; dash < _widths[i]; ++dash) _line += frame.dash;
  }
  _out << _line << right << '\n';
}

void TableWriter::printRowCount() {
  const std::size_t count = _columns.empty() ? 0 : _cells.size() / _columns.size() - 1;
  _out << count << (count == 1 ? " row" : " rows") << '\n';
}

void TableWriter::printTable() {
  const Frame& drawn = frame();
  const auto rule = [&](const char* const(&signs)[3]) { printRule(signs[0], signs[1], signs[2], drawn); };
  fitWidths();
  const bool hasBox = _terminal.isTerminal && !_columns.empty();
  if (hasBox) rule(drawn.top);
  for (std::size_t first = 0; first < _cells.size() && _out; first += _columns.size()) {
    const bool isHeader = first == 0;
    if (isHeader && !_hasHeader) continue;
    printLine(&_cells[first], drawn);
    if (isHeader) rule(drawn.middle);
  }
  if (hasBox) rule(drawn.bottom);
}

// A rule with the row's number, then the names with the row's values beside them, without NULLs.
void TableWriter::printCards() {
  const Frame& drawn = frame();
  const std::size_t count = _columns.size();
  std::size_t names = 0;
  for (std::size_t i = 0; i < count; ++i) names = std::max(names, _cells[i].width);
  names = std::min(names, _terminal.width / 2);
  const std::size_t room = _terminal.width - names - kCardGap;
  for (std::size_t first = count; first < _cells.size() && _out; first += count) {
    _line = drawn.dash + (" " + std::to_string(first / count)) + ' ';
    for (std::size_t width = displayWidth(_line); width < _terminal.width; ++width) _line += drawn.dash;
    _out << _line << '\n';
    for (std::size_t i = 0; i < count; ++i) {
      if (_cells[first + i].isNull) continue;
      const std::string name = fitted(i, _cells[i], names);
      _out << name << std::string(names + kCardGap - displayWidth(name), ' ') << fitted(i, _cells[first + i], room)
           << '\n';
    }
  }
}

void TableWriter::end() {
  if (!_isFirst) _out << '\n';
  _isFirst = false;
  const bool fits = !_terminal.isTerminal || boxWidth(kReadableColumn) <= _terminal.width;
  fits ? printTable() : printCards();
  if (_terminal.isTerminal) printRowCount();
  _cells.clear();
}
