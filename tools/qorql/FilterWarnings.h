// What is suspicious about a valid filter.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FILTERWARNINGS_H
#define QORQL_TOOL_FILTERWARNINGS_H

#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "FilterSide.h"
#include "StatementText.h"
#include "Warning.h"

// A filter may be valid and yet never match: names after a dot, classes after
// ISA and the types of what it compares are not checked by its validation.
// BORROWS all it is given.
class FilterWarnings {
 public:
  // The text is the one that the statement was made of.
  FilterWarnings(EmbeddedObjectManager& manager, const QORString& nameSpace, const StatementText& text)
      : _manager(manager), _nameSpace(nameSpace), _text(text) {}

  // In the order of the text. REQUIRES a validated statement.
  std::vector<Warning> of(const CQLQueryStatement& statement) const;

 private:
  class Visitor;

  EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  const StatementText& _text;
};

#endif
