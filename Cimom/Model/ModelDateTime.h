// Order of CIM datetime texts.
// Tested by tests/unit/Model/CQoriValueRelateTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELDATETIME_H
#define QORQL_MODEL_MODELDATETIME_H

#include <compare>
#include <string_view>

namespace model {

// Whether the text has the form of a CIM datetime, a timestamp
// (yyyymmddhhmmss.mmmmmmsutc) or an interval (ddddddddhhmmss.mmmmmm:000), with
// `*` allowed for any field's digits and every field that is given in its range.
bool isDateTime(std::string_view text) noexcept;

// Two complete timestamps compare by instant, two complete intervals by
// duration; all other pairs byte by byte.
std::strong_ordering compareDateTimes(std::string_view a, std::string_view b) noexcept;

}  // namespace model

#endif
