// The version that this library was built with.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Version.h"

#define QORQL_TEXT_OF(number) #number
#define QORQL_VERSION_TEXT(major, minor, patch) QORQL_TEXT_OF(major) "." QORQL_TEXT_OF(minor) "." QORQL_TEXT_OF(patch)

const char* QORQL_version() noexcept {
  return QORQL_VERSION_TEXT(QORQL_VERSION_MAJOR, QORQL_VERSION_MINOR, QORQL_VERSION_PATCH);
}
