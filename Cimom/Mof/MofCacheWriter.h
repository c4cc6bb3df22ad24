// From what a load declared to the bytes of a cache.
// Tested by tests/unit/Mof/MofCacheTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFCACHEWRITER_H
#define QORQL_MOF_MOFCACHEWRITER_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Mof/MofCacheFile.h"
#include "Cimom/Mof/MofInput.h"
#include "Cimom/Mof/MofRecorder.h"

// Appends a row of an instance. Rows come first in a cache, as the load goes on.
void appendMofCacheRow(MofCacheOutput& output, std::string_view row);

// Appends the rest, to a cache that holds the rows of the record and nothing else. `key` tells what was loaded,
// `inputs` of which files it was made. THROWS std::runtime_error when the load cannot be kept.
void appendMofCacheRecord(MofCacheOutput& output, const MofRecord& record, const std::vector<MofInput>& inputs,
                          const std::string& key);

#endif
