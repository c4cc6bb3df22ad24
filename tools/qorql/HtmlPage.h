// The style and the script of the page of results.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_HTMLPAGE_H
#define QORQL_TOOL_HTMLPAGE_H

// What stands before the first section and after the last one. A section holds
// its query, its row count and a table. Cells are of class number, null or time;
// the title of a cell is its exact value; a long text is in a div of class long.
// A table of class large has several bodies of the same number of rows, but for the last.
extern const char* const kHtmlPageStart;
extern const char* const kHtmlPageEnd;

#endif
