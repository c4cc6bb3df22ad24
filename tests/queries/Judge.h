// Compares what a statement left with what its case expects.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_JUDGE_H
#define QORQL_TESTS_JUDGE_H

#include <string>

#include "LibraryRun.h"
#include "ToolRun.h"

// Each returns what differs, as text for a person; empty when nothing does.
std::string judgeLibrary(const Case& one, const Outcome& outcome);
std::string judgeTool(const Case& one, const ToolOutcome& outcome);
std::string judgeModes(const Outcome& plain, const Outcome& lazy);

#endif
