// The kinds of bytes that MOF is made of.
// Tested by tests/unit/Mof/MofSyntaxTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFBYTES_H
#define QORQL_MOF_MOFBYTES_H

constexpr bool isMofDigit(char c) noexcept { return c >= '0' && c <= '9'; }
// A space, a tabulator, a line's end of any kind or a form feed.
constexpr bool isMofBlank(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

#endif  // QORQL_MOF_MOFBYTES_H
