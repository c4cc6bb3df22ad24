// How texts look on a terminal.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_DISPLAYTEXT_H
#define QORQL_TOOL_DISPLAYTEXT_H

#include <cstddef>
#include <string>
#include <string_view>

// Shows characters that would break a line or control the terminal as \n, \t or
// \x1B, and bytes that are no UTF-8 alike.
std::string printableText(std::string_view text);
// How many columns of a terminal a printable text takes: marks that combine
// with a letter take none, characters of East Asian scripts and pictures two.
std::size_t displayWidth(std::string_view text);
// The text, or as much of its beginning as fits, followed by the mark.
// REQUIRES a printable text and a width that holds the mark.
std::string cutText(std::string_view text, std::size_t width, std::string_view mark);
// The same with the end of the text, after the mark.
std::string cutTextAtStart(std::string_view text, std::size_t width, std::string_view mark);

#endif
