// The values of literals: strings, characters and numbers as they are written.
// Tested by tests/unit/Mof/MofValueTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFLITERALS_H
#define QORQL_MOF_MOFLITERALS_H

#include <string>
#include <string_view>

#include "Cimom/Mof/MofSyntax.h"

bool isUtf8(std::string_view text) noexcept;
// REQUIRES a character, no surrogate.
void appendUtf8(QORuint32 code, std::string& out);

// Appends the text of a string literal, given with its quotes, to `out`.
// THROWS MofFault at an unknown escape or at bytes that are not UTF-8.
void appendMofString(std::string_view literal, const MofLocation& at, std::string& out);

// The character of a literal, given with its quotes. THROWS MofFault unless it
// is one character of the basic multilingual plane.
char16_t readMofChar(std::string_view literal, const MofLocation& at);

// Reads a decimal, binary (101b), octal (017), hexadecimal (0x1F) or real
// number with or without sign. THROWS MofFault for anything else and for what
// does not fit.
MofValueSyntax readMofNumber(std::string_view literal, const MofLocation& at);

#endif
