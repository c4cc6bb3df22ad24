// What WQL calls otherwise than CIM does.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_WQLHINT_H
#define QORQL_TOOL_WQLHINT_H

#include <cstddef>
#include <string>
#include <vector>

#include "StatementText.h"

// How to write a filter of WQL's events in CIM: "in CIM write CIM_InstModification for __InstanceModificationEvent,
// SourceInstance for TargetInstance, and leave out WITHIN". Empty unless the filter names such an event, or a word
// of WQL stands at one of the places of the text that something is complained of.
std::string wqlHint(const StatementText& text, const std::vector<std::size_t>& places);

#endif
