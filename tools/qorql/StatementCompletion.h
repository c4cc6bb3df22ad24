// What may follow at the cursor of an unfinished statement.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_STATEMENTCOMPLETION_H
#define QORQL_TOOL_STATEMENTCOMPLETION_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "LineEditor.h"

// Completes the word that ends at `cursor`: class names after FROM and ISA,
// properties after a class or alias and a dot, and elsewhere the keywords of
// the clause, the functions, and the properties, classes and aliases of FROM,
// wherever in the text FROM stands. Nothing inside a text literal. Keywords come
// in the case that the word was begun in, with a blank where another word must follow. `start` counts in the text.
Completions completeStatement(std::string_view text, std::size_t cursor, const EmbeddedObjectManager& manager,
                              const std::string& nameSpace);

// The names that begin like the word, ignoring case; sorted, each once.
std::vector<std::string> startingWith(std::vector<std::string> names, std::string_view word);
// The classes of a namespace.
std::vector<std::string> classNames(const EmbeddedObjectManager& manager, const std::string& nameSpace);

#endif
