// The names of a filter's references against the schema.
#ifndef QORQL_TOOL_FILTERPATHCHECK_H
#define QORQL_TOOL_FILTERPATHCHECK_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "ClassFamily.h"
#include "StatementText.h"

// Validation checks no name after the first one; this does, as far as a class
// is known by FROM, by a scope, by ISA or by the property's declaration.
// BORROWS manager and text.
class FilterPathCheck {
 public:
  struct Finding {
    std::string text;
    std::size_t piece;  // that it is about
  };

  FilterPathCheck(EmbeddedObjectManager& manager, const QORString& nameSpace, const StatementText& text)
      : _manager(manager), _nameSpace(nameSpace), _family(manager, nameSpace), _text(text) {}

  // REQUIRES a piece that begins a reference.
  std::vector<Finding> check(std::size_t piece) const;

 private:
  struct Path {
    std::vector<std::size_t> names;  // without the scope; the last one is the property
    std::size_t scope = StatementText::kNowhere;
  };
  class Walk;

  Path read(std::size_t piece) const;

  EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  const ClassFamily _family;
  const StatementText& _text;
};

#endif
