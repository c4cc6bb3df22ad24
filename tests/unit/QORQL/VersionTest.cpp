// The version of the library that is loaded is that of its headers.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_Version.h"

namespace {

TEST(Version, TheLibraryIsTheHeaders) {
  const std::string expected = std::to_string(QORQL_VERSION_MAJOR) + "." + std::to_string(QORQL_VERSION_MINOR) + "." +
                               std::to_string(QORQL_VERSION_PATCH);
  EXPECT_EQ(QORQL_version(), expected);
}

}  // namespace
