// Results as one HTML page that needs nothing else.
// SPDX-License-Identifier: Apache-2.0
#include "HtmlWriter.h"

#include <ostream>

#include "DisplayText.h"
#include "HtmlPage.h"
#include "Percentage.h"
#include "ReadableTime.h"
#include "cimom/CIMUtil.h"

namespace {

// Wider texts may be broken and clamped.
constexpr std::size_t kShortWidth = 32;
// From so many rows on the browser lays out the rows in parts, each when it is seen.
constexpr std::size_t kManyRows = 1000;
constexpr std::size_t kRowsOfPart = 100;

QORString escaped(std::string_view text) { return CIMUtil::xmlEncode(QORString(text)); }

std::string rowCountText(std::size_t count) {
  if (count == 0) return "No rows";
  return std::to_string(count) + (count == 1 ? " row" : " rows");
}

bool isShort(std::string_view text) { return text.size() <= kShortWidth || displayWidth(text) <= kShortWidth; }

// How a value is shown, where that is not as it is; else empty.
std::string shownText(const ResultColumn& column, const IQoriValue& value) {
  if (value.scalar().kind == QoriScalarKind::DateTime) return readableTime(value.toString().view());
  return column.isPercentage ? percentageText(value) : "";
}

}  // namespace

void HtmlWriter::begin(const ResultHeading& heading) {
  if (!_hasPage) _out << kHtmlPageStart;
  _hasPage = true;
  _columns = heading.columns;
  _isLarge = heading.rowCount > kManyRows;
  _rowCount = 0;
  _out << "<section>\n<pre>" << escaped(heading.query) << "</pre>\n<p class=\"count\">"
       << rowCountText(heading.rowCount) << "</p>\n<div class=\"sheet\">\n<table"
       << (_isLarge ? " class=\"large\"" : "") << ">\n<thead>\n<tr>";
  for (const ResultColumn& column : _columns) {
    _out << (column.isNumber ? "<th class=\"number\">" : "<th>") << escaped(column.name) << "</th>";
  }
  _out << "</tr>\n</thead>\n<tbody>\n";
}

void HtmlWriter::appendCell(const ResultColumn& column, const IQoriValue& value) {
  const std::string text(value.toString().view());
  const std::string shown = shownText(column, value);
  const bool isTime = value.scalar().kind == QoriScalarKind::DateTime && !shown.empty();
  _line += column.isNumber ? "<td class=\"number\"" : isTime ? "<td class=\"time\"" : "<td";
  if (!shown.empty() && shown != text) _line.append(" title=\"").append(escaped(text).view()).append("\"");
  _line += '>';
  const std::string_view content = shown.empty() ? text : shown;
  const bool isLong = !isShort(content);
  _line.append(isLong ? "<div class=\"long\">" : "").append(escaped(content).view());
  _line += isLong ? "</div></td>" : "</td>";
}

void HtmlWriter::writeRow(const ResultRow& row) {
  const bool beginsPart = _isLarge && _rowCount != 0 && _rowCount % kRowsOfPart == 0;
  ++_rowCount;
  _line = beginsPart ? "</tbody>\n<tbody>\n<tr>" : "<tr>";
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (row[i].IsNull()) {
      _line += _columns[i].isNumber ? "<td class=\"number null\">NULL</td>" : "<td class=\"null\">NULL</td>";
    } else {
      appendCell(_columns[i], *row[i]);
    }
  }
  _line += "</tr>\n";
  _out << _line;
}

void HtmlWriter::end() { _out << "</tbody>\n</table>\n</div>\n</section>\n"; }

void HtmlWriter::finish() {
  if (_hasPage) _out << kHtmlPageEnd;
}
