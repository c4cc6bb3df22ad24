// Looks for a header of a request.
// Tested by tests/unit/Server/ServerOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/HttpService.h"

#include <algorithm>

const std::string* HttpRequest::header(std::string_view name) const {
  const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto& each) {
    return QORString(std::string_view(each.first)).isEqualCaseInsensitive(QORString(name));
  });
  return found == headers.end() ? nullptr : &found->second;
}
