// The names of a filter's references against the schema.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FILTERPATHCHECK_H
#define QORQL_TOOL_FILTERPATHCHECK_H

#include <cstddef>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "ClassFamily.h"
#include "FromNames.h"
#include "StatementReference.h"

// Validation checks no name after the first one; this does, as far as a class
// is known by FROM, by a scope, by ISA or by the property's declaration.
// BORROWS all it is given.
class FilterPathCheck {
 public:
  struct Finding {
    std::string text;
    std::size_t offset;  // of the name that it is about
  };

  FilterPathCheck(EmbeddedObjectManager& manager, const QORString& nameSpace, const FromNames& from,
                  const IsaConditions& isa)
      : _manager(manager), _nameSpace(nameSpace), _family(manager, nameSpace), _from(from), _isa(isa) {}

  std::vector<Finding> check(const StatementReference& reference) const;

 private:
  class Walk;

  EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  const ClassFamily _family;
  const FromNames& _from;
  const IsaConditions& _isa;
};

#endif
