// What the codes of a property mean, as its qualifiers ValueMap and Values, BitMap and BitValues tell.
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
    std::string code;  // a value, or a range as "4..", "..7", "4..7" or ".."; of a bit "bit 3"
    std::string text;  // empty: the values are listed without texts
  };

  // Has no entries where the property has no such qualifiers. Without ValueMap the texts count from 0, without BitMap
  // those of the bits do, from the lowest one.
  ValueTexts() = default;
  explicit ValueTexts(const CimPropertyDeclaration& property);

  bool isEmpty() const noexcept { return _entries.empty(); }
  // Those of values, then those of bits.
  const std::vector<Entry>& entries() const noexcept { return _entries; }
  // The text of a value; empty where it has none. A range that holds the value counts where no entry names it. Where
  // none does and bits have texts, those of the bits that are set, from the lowest one on: "Read, Execute". Among them
  // a bit without a text is told by its number, "bit 7".
  std::string textOf(const IQoriValue& value) const;

 private:
  std::string valueText(const std::string& code) const;
  std::string bitTexts(QORuint64 bits) const;

  std::vector<Entry> _entries;
  std::size_t _valueCount = 0;  // how many of the entries are of values
};

#endif
