// Names of columns for forms where no two may be the same.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_UNIQUENAMES_H
#define QORQL_TOOL_UNIQUENAMES_H

#include <string>
#include <vector>

#include "ResultWriter.h"

// Of columns with one name the second is called name_2, and so on.
std::vector<std::string> uniqueNames(const std::vector<ResultColumn>& columns);

#endif
