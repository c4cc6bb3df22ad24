// The style and the script of the page of results.
// SPDX-License-Identifier: Apache-2.0
#include "HtmlPage.h"

// Short values stay in one line. A large table, which the writer marks, is a grid
// of parts that are laid out only where they are seen: laying out a table of
// 30,000 rows takes a browser many seconds.
const char* const kHtmlPageStart = R"html(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8"/>
<meta name="viewport" content="width=device-width, initial-scale=1"/>
<title>Query result</title>
<style>
:root {
  color-scheme: light dark;
  --page: #f5f6f8; --sheet: #ffffff; --text: #1d2433; --soft: #667085; --line: #e3e7ee;
  --head: #eef1f6; --hover: #f0f5ff; --accent: #2f6fed; --bar: rgb(47 111 237 / 13%);
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #12151b; --sheet: #1a1f28; --text: #e6e9ef; --soft: #8d97a8; --line: #2b3240;
    --head: #222936; --hover: #232c3b; --accent: #7aa7ff; --bar: rgb(122 167 255 / 18%);
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
  width: fit-content; min-width: 100%; border: 1px solid var(--line); border-radius: .5rem; background: var(--sheet);
  box-shadow: 0 1px 3px rgb(0 0 0 / 8%);
}
table { width: 100%; border-collapse: separate; border-spacing: 0; }
th, td { padding: .4rem .9rem; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top; }
th {
  position: sticky; top: 0; z-index: 1; background: var(--head); font-size: .8125rem; font-weight: 600;
  white-space: nowrap;
}
th:first-child { border-top-left-radius: .5rem; }
th:last-child { border-top-right-radius: .5rem; }
th[tabindex] { cursor: pointer; user-select: none; }
th[tabindex]:hover, th[tabindex]:focus-visible { color: var(--accent); outline: 0; }
th[tabindex]::after { content: "\2195"; margin-left: .4em; opacity: .3; font-weight: 400; }
th[aria-sort=ascending]::after { content: "\2191"; opacity: 1; color: var(--accent); }
th[aria-sort=descending]::after { content: "\2193"; opacity: 1; color: var(--accent); }
td { white-space: pre; }
.long {
  display: -webkit-box; -webkit-box-orient: vertical; -webkit-line-clamp: 3; overflow: hidden;
  min-width: 24ch; max-width: 80ch; white-space: pre-wrap; overflow-wrap: anywhere; cursor: pointer;
}
.long.open { display: block; cursor: auto; }
.number { text-align: right; font-variant-numeric: tabular-nums; }
td.number {
  background: linear-gradient(var(--bar), var(--bar)) no-repeat var(--from, 0) .4rem / var(--size, 0) 1.5em;
}
.time { font-variant-numeric: tabular-nums; }
.null { color: var(--soft); font-style: italic; }
tbody:last-child tr:last-child td { border-bottom: 0; }
tbody tr:hover td { background-color: var(--hover); }
.large, .large thead, .large tbody { display: block; }
.large tr { display: grid; grid-template-columns: var(--tracks); grid-auto-flow: column; grid-auto-columns: minmax(24ch, 1fr); }
.large thead { position: sticky; top: 0; z-index: 1; }
.large tbody { content-visibility: auto; contain-intrinsic-size: auto 1px auto 3500px; }
@media (max-width: 40rem) {
  body { padding-top: 1rem; }
  .sheet { width: auto; }
  .cards, .cards thead, .cards tbody, .cards tr, .cards th, .cards td { display: block; }
  .cards thead {
    position: static; border-bottom: 1px solid var(--line); background: var(--head); border-radius: .5rem .5rem 0 0;
  }
  .cards thead tr { display: flex; flex-wrap: wrap; gap: .4rem; padding: .6rem; }
  .cards th {
    position: static; padding: .3rem .7rem; border: 1px solid var(--line); border-radius: 1rem;
    background: var(--sheet); text-align: left;
  }
  .cards tbody tr { padding: .5rem 0; border-bottom: 1px solid var(--line); }
  .cards tbody tr:nth-child(even) { background: color-mix(in srgb, var(--head) 35%, transparent); }
  .cards tbody:last-child tr:last-child { border-bottom: 0; }
  .cards td, .cards td.number {
    display: flex; gap: 1rem; padding: .15rem .9rem; border: 0; background: none; text-align: left;
    white-space: pre-wrap; overflow-wrap: anywhere;
  }
  .cards .long { min-width: 0; }
  .cards td.null { display: none; }
  .cards td::before {
    content: attr(data-name); flex: 0 0 32%; color: var(--soft); font-size: .8125rem; font-style: normal;
    line-height: 1.85; overflow-wrap: anywhere;
  }
}
@media (scripting: none) { .long { display: block; cursor: auto; } }
@media print {
  .sheet { border: 0; box-shadow: none; }
  .long { display: block; }
  .large tbody { content-visibility: visible; }
}
</style>
</head>
<body>
)html";

// Sorting by a click (up, down, as it came; nulls last), bars behind numbers, long
// texts that open, and on a narrow screen a card for each row. The script avoids
// the characters that XML reserves.
const char* const kHtmlPageEnd = R"html(<script>
document.querySelectorAll("table").forEach(function (table) {
  var heads = Array.from(table.querySelectorAll("th"));
  var bodies = Array.from(table.tBodies);
  var original = bodies.flatMap(function (body) { return Array.from(body.rows); });
  var rowsOfBody = bodies[0].rows.length;
  var isLarge = table.classList.contains("large");
  var texts = new Intl.Collator(undefined, { numeric: true });
  function isNull(cell) { return cell.classList.contains("null"); }
  // What the cell shows may be shorter; its title has all of it.
  function exact(cell) { return cell.title || cell.textContent; }
  function number(text) {
    try { return BigInt(text); } catch (error) { return parseFloat(text); }
  }
  // A datetime as microseconds; 400 years on, since the years up to 99 have another meaning here.
  function moment(text) {
    var digits = text.replace(/[*]/g, "0");
    var part = function (start, length) { return Number(digits.substr(start, length)); };
    if (digits[21] === ":") return BigInt(digits.slice(0, 14) + digits.slice(15, 21));
    var offset = Number(digits[21] + "1") * part(22, 3);
    var local = Date.UTC(part(0, 4) + 400, part(4, 2) - 1, part(6, 2), part(8, 2), part(10, 2), part(12, 2));
    return BigInt(local - offset * 60000) * 1000n + BigInt(part(15, 6));
  }
  function keyOf(cell, isNumber) {
    if (isNull(cell)) return null;
    if (cell.classList.contains("time")) return moment(cell.title);
    return isNumber ? number(exact(cell)) : cell.textContent;
  }
  function relate(a, b) {
    if (typeof a === "string") return Math.sign(texts.compare(a, b));
    return a == b ? 0 : a > b ? 1 : -1;
  }
  function place(rows) {
    bodies.forEach(function (body, index) {
      body.replaceChildren.apply(body, rows.slice(index * rowsOfBody, (index + 1) * rowsOfBody));
    });
  }
  function sortBy(column) {
    var head = heads[column];
    var before = head.getAttribute("aria-sort");
    var order = before === "ascending" ? "descending" : before === "descending" ? "none" : "ascending";
    heads.forEach(function (other) { other.setAttribute("aria-sort", "none"); });
    head.setAttribute("aria-sort", order);
    if (order === "none") return place(original);
    var isNumber = head.classList.contains("number");
    var sign = order === "ascending" ? 1 : -1;
    var entries = original.map(function (row, at) { return { row: row, at: at, key: keyOf(row.cells[column], isNumber) }; });
    entries.sort(function (a, b) {
      if (a.key === null || b.key === null) return (a.key === null) - (b.key === null) || a.at - b.at;
      return sign * relate(a.key, b.key) || a.at - b.at;
    });
    place(entries.map(function (entry) { return entry.row; }));
  }
  heads.forEach(function (head, column) {
    head.tabIndex = 0;
    head.setAttribute("aria-sort", "none");
    head.addEventListener("click", function () { sortBy(column); });
    head.addEventListener("keydown", function (event) {
      if (event.key === "Enter" || event.key === " ") { event.preventDefault(); sortBy(column); }
    });
  });
  // Who marks a part of a long text wants it to stay open.
  table.addEventListener("click", function (event) {
    var long = event.target.closest(".long");
    if (long !== null) if (getSelection().isCollapsed) long.classList.toggle("open");
  });
  // A bar for each number, from 0 on; the widest range of the column takes the whole cell.
  function drawBars(column) {
    var cells = original.map(function (row) { return row.cells[column]; });
    var values = cells.map(function (cell) { return isNull(cell) ? NaN : Number(exact(cell)); });
    var finite = values.filter(Number.isFinite);
    var least = finite.reduce(function (a, b) { return Math.min(a, b); }, 0);
    var span = finite.reduce(function (a, b) { return Math.max(a, b); }, 0) - least;
    if (2 > finite.length || span === 0) return;
    cells.forEach(function (cell, index) {
      if (!Number.isFinite(values[index])) return;
      var size = Math.abs(values[index]) / span;
      var from = (Math.min(values[index], 0) - least) / span;
      cell.style.cssText = "--size:" + (size * 100).toFixed(2) + "%;--from:" +
        (1 > size ? from / (1 - size) * 100 : 0).toFixed(2) + "%";
    });
  }
  heads.forEach(function (head, column) { if (head.classList.contains("number")) drawBars(column); });
  // The columns of a large table are as wide as those of a small one with each column's longest values.
  var kept = new Set();
  function findLongest(column) {
    var cells = original.map(function (row) { return { row: row, length: row.cells[column].textContent.length }; });
    cells.sort(function (a, b) { return b.length - a.length; });
    cells.slice(0, 20).forEach(function (cell) { kept.add(cell.row); });
  }
  function fitColumns() {
    var across = scrollX, down = scrollY;
    var sample = document.createElement("table");
    sample.append(table.tHead.cloneNode(true), document.createElement("tbody"));
    kept.forEach(function (row) { sample.tBodies[0].append(row.cloneNode(true)); });
    table.parentNode.append(sample);
    table.style.display = "none";
    var widths = Array.from(sample.rows[0].cells, function (cell) { return cell.getBoundingClientRect().width + "px"; });
    sample.remove();
    table.style.display = "";
    table.style.setProperty("--tracks", widths.join(" "));
    scrollTo(across, down);
  }
  if (isLarge) {
    heads.forEach(function (head, column) { findLongest(column); });
    fitColumns();
    addEventListener("resize", fitColumns);
  }
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
