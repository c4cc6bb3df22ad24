// What the codes of a property mean, as its qualifiers ValueMap and Values tell.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_VALUETEXTS_H
#define QORQL_TOOL_VALUETEXTS_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"

// A value of its own: the qualifiers are copied.
class ValueTexts {
 public:
  struct Entry {
    std::string code;  // a value, or a range as "4..", "..7", "4..7" or ".."
    std::string text;  // empty: the values are listed without texts
  };

  // Has no entries where the property has no such qualifiers. Without ValueMap the texts count from 0.
  ValueTexts() = default;
  explicit ValueTexts(const CimPropertyDeclaration& property);

  bool isEmpty() const noexcept { return _entries.empty(); }
  const std::vector<Entry>& entries() const noexcept { return _entries; }
  // The text of a value; empty where it has none. A range that holds the value counts where no entry names it.
  std::string textOf(const IQoriValue& value) const;

 private:
  std::vector<Entry> _entries;
};

#endif
