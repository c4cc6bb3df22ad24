// The form of datetime values.
// Tested by tests/unit/Mof/MofValueTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFDATETIME_H
#define QORQL_MOF_MOFDATETIME_H

#include <string_view>

// Null when `text` is a datetime: 25 characters, a timestamp
// "yyyymmddhhmmss.mmmmmmsutc" or an interval "ddddddddhhmmss.mmmmmm:000", the
// least significant digits of which may be asterisks. Otherwise what is wrong.
const char* faultOfMofDateTime(std::string_view text) noexcept;

#endif
