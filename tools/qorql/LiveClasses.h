// The live classes of this machine, beside what MOF files declare.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LIVECLASSES_H
#define QORQL_TOOL_LIVECLASSES_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"

struct LeftOutClasses {
  std::vector<std::string> names;
  std::string complaint;  // a sentence that says which and why; empty when all are there
};

// Declares the live classes and registers their providers. Classes that exist
// are left as they are, so that a fuller CIM schema replaces the short
// one; live classes that do not fit those, or whose name a class of another
// structure has, and what depends on them, are left out and returned. Without
// their descriptions they are there sooner.
enum class LiveDescriptions { Declared, LeftAway };
LeftOutClasses addLiveClasses(EmbeddedObjectManager& manager, const QORString& nameSpace,
                              LiveDescriptions descriptions = LiveDescriptions::Declared);

#endif
