// CIM values and objects as JSON text.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_JSONVALUE_H
#define QORQL_TOOL_JSONVALUE_H

#include <string>
#include <string_view>

#include "cimom/IQoriObject.h"

// Whether objects say what they are: a first key "class". No property is called
// so, since the word is a keyword of MOF.
enum class JsonObjects { Plain, WithClass };

// In quotes. Bytes that are no UTF-8 become U+FFFD.
std::string jsonText(std::string_view text);
// Numbers are numbers with all their digits, NULL is null, arrays are arrays,
// booleans are true and false, embedded objects are objects; everything else is
// its text. An embedded object that lies very deep is printed as its text.
void appendJson(std::string& out, const IQoriValue* value, JsonObjects objects = JsonObjects::Plain);

#endif
