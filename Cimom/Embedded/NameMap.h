// Maps whose keys are CIM names: found ignoring case, kept as first spelled.
// Tested by tests/unit/Embedded/ClassRepositoryTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_NAMEMAP_H
#define QORQL_EMBEDDED_NAMEMAP_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "cmpbase.h"

namespace embedded {

constexpr char foldCase(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// FNV-1a over the folded bytes.
struct NameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const noexcept {
    std::size_t hash = 14695981039346656037ULL;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(foldCase(c))) * 1099511628211ULL;
    return hash;
  }
};

struct NameEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const noexcept { return QORString::equalIgnoringCase(a, b); }
};

template <class V>
using NameMap = std::unordered_map<std::string, V, NameHash, NameEqual>;

}  // namespace embedded

#endif
