// Results as one HTML page that needs nothing else.
// SPDX-License-Identifier: Apache-2.0
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
  margin: 0; padding: 2rem clamp(.75rem, 4vw, 3rem); background: var(--page); color: var(--text);
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
  position: sticky; top: 0; z-index: 1; background: var(--head); font-size: .8125rem; font-weight: 600;
  white-space: nowrap;
}
th[tabindex] { cursor: pointer; user-select: none; }
th[tabindex]:hover, th[tabindex]:focus-visible { color: var(--accent); outline: 0; }
th[tabindex]::after { content: "\2195"; margin-left: .4em; opacity: .3; font-weight: 400; }
th[aria-sort=ascending]::after { content: "\2191"; opacity: 1; color: var(--accent); }
th[aria-sort=descending]::after { content: "\2193"; opacity: 1; color: var(--accent); }
td { white-space: pre-wrap; overflow-wrap: anywhere; min-width: 4ch; }
.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
.null { color: var(--soft); font-style: italic; }
tbody tr:last-child td { border-bottom: 0; }
tbody tr:hover td { background: var(--hover); }
@media (max-width: 40rem) {
  body { padding-top: 1rem; }
  .sheet { max-height: none; }
  .cards, .cards thead, .cards tbody, .cards tr, .cards th, .cards td { display: block; }
  .cards thead { border-bottom: 1px solid var(--line); background: var(--head); border-radius: .5rem .5rem 0 0; }
  .cards thead tr { display: flex; flex-wrap: wrap; gap: .4rem; padding: .6rem; }
  .cards th {
    position: static; padding: .3rem .7rem; border: 1px solid var(--line); border-radius: 1rem;
    background: var(--sheet); text-align: left;
  }
  .cards tbody tr { padding: .5rem 0; border-bottom: 1px solid var(--line); }
  .cards tbody tr:nth-child(even) { background: color-mix(in srgb, var(--head) 35%, transparent); }
  .cards tbody tr:last-child { border-bottom: 0; }
  .cards td {
    display: flex; gap: 1rem; padding: .15rem .9rem; border: 0; text-align: left; white-space: pre-wrap;
  }
  .cards td.null { display: none; }
  .cards td::before {
    content: attr(data-name); flex: 0 0 32%; color: var(--soft); font-size: .8125rem; font-style: normal;
    line-height: 1.85; overflow-wrap: anywhere;
  }
}
@media print { .sheet { max-height: none; border: 0; box-shadow: none; } }
</style>
</head>
<body>
)html";

// Sorting by a click (up, down, as it came; nulls last), and on a narrow screen a
// card for each row. The script avoids the characters that XML reserves.
constexpr const char* kPageEnd = R"html(<script>
document.querySelectorAll("table").forEach(function (table) {
  var heads = Array.from(table.querySelectorAll("th"));
  var body = table.tBodies[0];
  var original = Array.from(body.rows);
  function isNull(cell) { return cell.classList.contains("null"); }
  function number(text) {
    try { return BigInt(text); } catch (error) { return parseFloat(text); }
  }
  function keyOf(row, column, isNumber) {
    var cell = row.cells[column];
    if (isNull(cell)) return null;
    return isNumber ? number(cell.textContent) : cell.textContent;
  }
  function relate(a, b, isNumber) {
    if (a === null || b === null) return a === b ? 0 : 2;
    if (!isNumber) return Math.sign(a.localeCompare(b, undefined, { numeric: true }));
    return a == b ? 0 : a > b ? 1 : -1;
  }
  function sortBy(column) {
    var head = heads[column];
    var before = head.getAttribute("aria-sort");
    var order = before === "ascending" ? "descending" : before === "descending" ? "none" : "ascending";
    heads.forEach(function (other) { other.setAttribute("aria-sort", "none"); });
    head.setAttribute("aria-sort", order);
    var rows = original;
    if (order !== "none") {
      var isNumber = head.classList.contains("number");
      var sign = order === "ascending" ? 1 : -1;
      rows = original.map(function (row, place) { return { row: row, place: place, key: keyOf(row, column, isNumber) }; })
        .sort(function (a, b) {
          var relation = relate(a.key, b.key, isNumber);
          if (relation === 2) return a.key === null ? 1 : -1;
          return sign * relation || a.place - b.place;
        }).map(function (entry) { return entry.row; });
    }
    rows.forEach(function (row) { body.appendChild(row); });
  }
  heads.forEach(function (head, column) {
    head.tabIndex = 0;
    head.setAttribute("aria-sort", "none");
    head.addEventListener("click", function () { sortBy(column); });
    head.addEventListener("keydown", function (event) {
      if (event.key === "Enter" || event.key === " ") { event.preventDefault(); sortBy(column); }
    });
  });
  var narrow = matchMedia("(max-width: 40rem)");
  function showCards() {
    if (!narrow.matches || table.classList.contains("cards")) return;
    original.forEach(function (row) {
      heads.forEach(function (head, column) { row.cells[column].dataset.name = head.textContent; });
    });
    table.classList.add("cards");
  }
  showCards();
  narrow.addEventListener("change", showCards);
});
</script>
</body>
</html>
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

void HtmlWriter::writeRow(const ResultRow& row) {
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
  if (_hasPage) _out << kPageEnd;
}
