// A reference of a statement with its names as they are written, and what ISA says of them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_STATEMENTREFERENCE_H
#define QORQL_TOOL_STATEMENTREFERENCE_H

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "FromNames.h"

// Name [index] { . Name [index] } [ :: Name [index] ]
struct StatementReference {
  struct Name {
    std::string text;
    std::size_t offset;
  };

  // REQUIRES a factor that names something, and the text that it was parsed from.
  StatementReference(std::string_view text, const QORQL_Factor& factor);

  std::string property() const { return names.back().text; }
  // All names before the property, without the scope, joined by dots.
  std::string qualifier() const;

  std::vector<Name> names;  // without the scope; the last one is the property
  std::optional<Name> scope;
  std::string written;  // the reference as a whole
  bool hasIndex = false;
  bool isElement = false;  // one element of an array
};

// Calls back for each reference of the select list, the conditions and the sort key, with the text that was parsed.
void forEachReference(const QORQL_Query& query, std::string_view text,
                      const std::function<void(const StatementReference&)>& callback);

// Whether a factor is a reference and no literal, nothing in parentheses and no call.
bool isReference(const QORQL_Factor& factor);

// The conditions `property ISA Class` of a filter. Only AND combines the conditions of a filter that matches at all, so
// each of them counts. BORROWS the tree.
class IsaConditions {
 public:
  IsaConditions(const QORQL_Query& query, std::string_view text, const FromNames& from);

  // The class of which the first says that the property's object is one; empty when none says anything.
  std::string classOf(std::string_view property) const;
  // The classes of which an object must be one each.
  std::vector<std::string> classesOf(std::string_view property) const;

 private:
  std::multimap<std::string, std::string> _classes;  // by property, in upper case
};

// The property of the instance itself that stands left of ISA, by its name or as a text; and the class on its right.
std::optional<StatementReference::Name> isaProperty(std::string_view text, const QORQL_Comparison& isa,
                                                    const FromNames& from);
std::optional<StatementReference::Name> isaClass(const QORQL_Comparison& isa);

#endif
