// What stands on one side of a filter's comparison, as far as its tree and the
// schema tell.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FILTERSIDE_H
#define QORQL_TOOL_FILTERSIDE_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "FromNames.h"
#include "StatementReference.h"
#include "cimom/QoriScalar.h"

struct FilterSide {
  enum class Kind { Unknown, Number, Text, Boolean, Other };

  Kind kind = Kind::Unknown;
  std::string type;        // "uint16", of an array its element's; of anything but a property "number" or "text"
  std::string property;    // its name as written; empty: no property
  std::string written;     // the reference as a whole
  std::size_t offset = 0;  // where it begins
  bool isArray = false;    // and not one element of it
  bool isAsked = false;    // after ANY or EVERY
  bool isSigned = false;   // its numbers are signed whole ones
  bool isReal = false;
  bool isUint64 = false;   // or may be a uint64
  QoriScalar number{};     // a literal number; of kind Null for anything else
  bool saysTruth = false;  // the literal TRUE or FALSE, with or without quotes
};

// Whether its values are embedded objects.
bool holdsObjects(const CimPropertyDeclaration& property);

// BORROWS all it is given.
class FilterSideReader {
 public:
  FilterSideReader(EmbeddedObjectManager& manager, const QORString& nameSpace, std::string_view text,
                   const FromNames& from, const IsaConditions& isa)
      : _manager(manager), _nameSpace(nameSpace), _text(text), _from(from), _isa(isa) {}

  // Parentheses that group nothing are looked through.
  FilterSide read(const QORQL_Evaluatable& side) const;

 private:
  FilterSide ofFactor(const QORQL_Factor& factor) const;
  FilterSide ofReference(const QORQL_Factor& factor) const;
  template <class Node>
  FilterSide ofChain(const Node& first) const;

  EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  const std::string_view _text;
  const FromNames& _from;
  const IsaConditions& _isa;
};

#endif
