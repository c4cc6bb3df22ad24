// The classes of a FROM clause, and what they are called besides.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FROMNAMES_H
#define QORQL_TOOL_FROMNAMES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class QORQL_Query;

// Names as they are written.
class FromNames {
 public:
  struct Source {
    std::string className;
    std::string alias;   // empty: none
    std::size_t offset;  // of the class in the text
  };

  FromNames() = default;
  explicit FromNames(std::vector<Source> sources) : _sources(std::move(sources)) {}
  // Of a parsed statement; the text is the one that was parsed.
  FromNames(const QORQL_Query& query, std::string_view text);

  const std::vector<Source>& sources() const noexcept { return _sources; }
  // The class of a FROM name in any case; empty when it is none.
  std::string classOf(std::string_view name) const;

 private:
  std::vector<Source> _sources;
};

// The name that begins at that byte of a text; empty when none does.
std::string_view nameAt(std::string_view text, std::size_t offset) noexcept;

#endif
