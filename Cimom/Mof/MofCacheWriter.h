// From what a load declared to the bytes of a cache.
// Tested by tests/unit/Mof/MofCacheTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFCACHEWRITER_H
#define QORQL_MOF_MOFCACHEWRITER_H

#include <string>
#include <vector>

#include "Cimom/Mof/MofInput.h"
#include "Cimom/Mof/MofRecorder.h"

// `key` tells what was loaded, `inputs` of which files it was made. THROWS
// std::runtime_error when the load cannot be kept.
std::string encodeMofCache(const MofRecord& record, const std::vector<MofInput>& inputs, const std::string& key);

#endif
