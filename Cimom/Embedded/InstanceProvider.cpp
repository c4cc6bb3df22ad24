// What a request asks for.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/InstanceProvider.h"

#include <algorithm>

bool InstanceProvider::Request::needs(const char* propertyName) const {
  if (propertyName == nullptr) return false;
  return std::any_of(propertyNames.begin(), propertyNames.end(), [propertyName](const QORString& name) {
    return QORString::equalIgnoringCase(name.view(), propertyName);
  });
}
