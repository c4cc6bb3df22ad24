// Names of columns for forms where no two may be the same.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_UNIQUENAMES_H
#define QORQL_SERVER_UNIQUENAMES_H

#include <string>
#include <vector>

enum class SameNames {
  Exact,
  IgnoringCase  // "Name" and "name" are the same
};

// Of columns with one name the second is called name_2, and so on.
std::vector<std::string> uniqueNames(const std::vector<std::string>& names, SameNames same = SameNames::Exact);

#endif
