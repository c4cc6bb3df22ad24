// CIM datetimes as people write them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_READABLETIME_H
#define QORQL_TOOL_READABLETIME_H

#include <string>
#include <string_view>

// A timestamp to the second, in its own zone ("2026-11-22 11:27:05 UTC+1"), and an interval as days and a time
// ("3 days 04:15:00.5"). A timestamp with `*` ends before the first field that has one. Where this leaves nothing, and
// for what is no datetime, empty.
std::string readableTime(std::string_view datetime);

#endif
