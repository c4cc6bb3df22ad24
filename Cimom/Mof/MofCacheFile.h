// The file around a cache: compressed, with a checksum, replaced as a whole.
// Tested by tests/unit/Mof/MofCacheTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFCACHEFILE_H
#define QORQL_MOF_MOFCACHEFILE_H

#include <string>

// Of the format of file and content; another version's files are not read.
inline constexpr unsigned kMofCacheVersion = 2;

// A file of this version that is whole: its content. THROWS
// std::runtime_error that says what is wrong with it.
std::string readMofCacheFile(const std::string& path);

// Puts a file of that content in the place of what is there, so that readers
// see the old file or the new one and nothing between. Makes the folder when it
// is missing. THROWS std::runtime_error with the reason when it cannot, and when
// what is there is neither empty nor a cache: that stays as it is.
void writeMofCacheFile(const std::string& path, const std::string& content);

#endif
