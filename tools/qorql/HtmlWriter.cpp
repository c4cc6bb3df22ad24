// Results as one HTML page that needs nothing else.
#include "HtmlWriter.h"

#include <ostream>

#include "cimom/CIMUtil.h"

namespace {

constexpr const char* kPageStart = R"html(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8"/>
<meta name="viewport" content="width=device-width, initial-scale=1"/>
<title>Query result</title>
<style>
:root {
  color-scheme: light dark;
  --page: #f5f6f8; --sheet: #ffffff; --text: #1d2433; --soft: #667085; --line: #e3e7ee;
  --head: #eef1f6; --hover: #f0f5ff; --accent: #2f6fed;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #12151b; --sheet: #1a1f28; --text: #e6e9ef; --soft: #8d97a8; --line: #2b3240;
    --head: #222936; --hover: #232c3b; --accent: #7aa7ff;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0; padding: 2rem clamp(1rem, 4vw, 3rem); background: var(--page); color: var(--text);
  font: 15px/1.5 system-ui, -apple-system, "Segoe UI", Roboto, sans-serif;
}
section { margin: 0 auto 2.5rem; max-width: 100rem; }
pre {
  margin: 0; padding: .75rem 1rem; border-left: 3px solid var(--accent); border-radius: .25rem;
  background: var(--sheet); font: 14px/1.5 ui-monospace, "Cascadia Mono", Menlo, Consolas, monospace;
  white-space: pre-wrap; overflow-wrap: anywhere;
}
.count { margin: .5rem 0 .75rem; color: var(--soft); font-size: .875rem; }
.sheet {
  max-height: 85vh; overflow: auto; border: 1px solid var(--line); border-radius: .5rem;
  background: var(--sheet); box-shadow: 0 1px 3px rgb(0 0 0 / 8%);
}
table { width: 100%; border-collapse: separate; border-spacing: 0; }
th, td { padding: .4rem .9rem; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top; }
th {
  position: sticky; top: 0; background: var(--head); font-size: .8125rem; font-weight: 600; white-space: nowrap;
}
td { white-space: pre-wrap; overflow-wrap: anywhere; }
.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
.null { color: var(--soft); font-style: italic; }
tbody tr:last-child td { border-bottom: 0; }
tbody tr:hover td { background: var(--hover); }
@media print { .sheet { max-height: none; border: 0; box-shadow: none; } }
</style>
</head>
<body>
)html";

QORString escaped(std::string_view text) { return CIMUtil::xmlEncode(QORString(text)); }

std::string rowCountText(std::size_t count) {
  if (count == 0) return "No rows";
  return std::to_string(count) + (count == 1 ? " row" : " rows");
}

}  // namespace

void HtmlWriter::begin(const ResultHeading& heading) {
  if (!_hasPage) _out << kPageStart;
  _hasPage = true;
  _columns = heading.columns;
  _out << "<section>\n<pre>" << escaped(heading.query) << "</pre>\n<p class=\"count\">"
       << rowCountText(heading.rowCount) << "</p>\n<div class=\"sheet\">\n<table>\n<thead>\n<tr>";
  for (const ResultColumn& column : _columns) {
    _out << (column.isNumber ? "<th class=\"number\">" : "<th>") << escaped(column.name) << "</th>";
  }
  _out << "</tr>\n</thead>\n<tbody>\n";
}

void HtmlWriter::writeRow(ResultRow row) {
  _line = "<tr>";
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (row[i].IsNull()) {
      _line += _columns[i].isNumber ? "<td class=\"number null\">NULL</td>" : "<td class=\"null\">NULL</td>";
      continue;
    }
    _line += _columns[i].isNumber ? "<td class=\"number\">" : "<td>";
    _line.append(escaped(row[i]->toString().view()).view()).append("</td>");
  }
  _line += "</tr>\n";
  _out << _line;
}

void HtmlWriter::end() { _out << "</tbody>\n</table>\n</div>\n</section>\n"; }

void HtmlWriter::finish() {
  if (_hasPage) _out << "</body>\n</html>\n";
}
