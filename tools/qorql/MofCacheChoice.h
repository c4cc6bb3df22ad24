// Which cache the MOF files of a run are loaded through.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_MOFCACHECHOICE_H
#define QORQL_TOOL_MOFCACHECHOICE_H

#include <optional>

#include "Cimom/Mof/MofCache.h"
#include "SessionOptions.h"

// The file that the user names; else, for MOF that takes a moment to read, one
// in the user's cache folder (XDG_CACHE_HOME). None when the user wants none or
// has no such folder.
std::optional<MofCache> mofCacheFor(const SessionOptions& options);

// Logs what became of it. Trouble with a file that the user named is a warning.
void tellOfCache(const MofCache::Outcome& outcome, bool isNamed);

#endif
