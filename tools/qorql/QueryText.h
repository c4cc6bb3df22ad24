// Where things stand in the text of a statement.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_QUERYTEXT_H
#define QORQL_TOOL_QUERYTEXT_H

#include <cstddef>
#include <string>
#include <string_view>

// The line of the text that holds the offset, and under it a caret at the
// offset; each indented by two blanks. A tab is shown as a blank. A line that is
// longer than `width` is cut around the offset.
std::string lineWithCaret(std::string_view text, std::size_t offset, std::size_t width);

#endif
