// `qorql classes [PATTERN]`: lists the classes of the namespace.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_CLASSESCOMMAND_H
#define QORQL_TOOL_CLASSESCOMMAND_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Command.h"

CommandAction declareClassesCommand(CLI::App& app);

// The classes of a namespace that match a pattern, in the order of their names:
// a part of the name or, with * ? [ ] in it, the whole name, ignoring case.
std::vector<QORString> matchingClasses(const EmbeddedObjectManager& manager, const std::string& nameSpace,
                                       const std::string& pattern);

// Whether a class has a name that matches such a pattern.
bool isClassMatch(const QORString& name, const std::string& pattern);

bool hasWildcard(const std::string& pattern);

// Says that no class of the namespace matches a pattern (any, when it is empty), and in which namespaces one does.
std::string noMatchText(const EmbeddedObjectManager& manager, const std::string& nameSpace, const std::string& pattern);

// Says that the namespace has no such class, and which namespaces have it or which class may have been meant.
std::string missingClassText(const EmbeddedObjectManager& manager, const std::string& nameSpace,
                             const std::string& name);

#endif
