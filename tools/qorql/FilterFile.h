// The text of a file of filters cut into filters.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FILTERFILE_H
#define QORQL_TOOL_FILTERFILE_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "cmpbase.h"

struct FileFilter {
  std::string name;  // empty: it has none
  std::string text;
  QORuint32 line = 1;  // where its name or, without one, its text begins
  // Where its text begins; columns count characters.
  QORuint32 firstLine = 1;
  QORuint32 firstColumn = 1;
  // Whether the line at the margin can hardly begin a filter, and is the first such line under one.
  bool isStray = false;
};

// A filter begins with a line and goes on in the lines that are indented under it, until a blank line or the next
// filter. An indented line that begins with SELECT or with a name is a filter of its own. "NAME: " before a filter
// names it; the filter may begin in the next line. A line whose first character is # is a comment and does not count.
// REQUIRES a normalised text.
std::vector<FileFilter> splitFilters(std::string_view text);

// What stands before a message about a filter of a file: "line 3: " or "line 3 (fans): ".
std::string placeOfFilter(const FileFilter& filter);

// What is said of the lines of filters whose names others have: "there is a filter fans in line 3 already".
std::map<QORuint32, std::string> doubledNames(const std::vector<FileFilter>& filters);

// What is said of a stray line.
extern const char* const kStrayHint;

#endif
