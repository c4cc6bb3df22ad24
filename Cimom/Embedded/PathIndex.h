// The stored instances of a namespace by their canonical paths.
// Tested by tests/unit/Embedded/PathIndexTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_PATHINDEX_H
#define QORQL_EMBEDDED_PATHINDEX_H

#include <cstddef>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/Extent.h"

namespace embedded {

QORuint32 hashOfPath(std::string_view path) noexcept;

// Keeps no path texts: an instance's keys tell its path, which is composed and compared where hashes are equal. Open
// addressing, one step from place to place, at most three quarters full. Not synchronised.
class PathIndex {
 public:
  // BORROWS: null when there is none. `hash` is the path's.
  StoredInstance* find(std::string_view path, QORuint32 hash) const;
  // To be called before each insert(), which then throws nothing. THROWS std::bad_alloc.
  void reserveOne();
  // BORROWS the instance, whose pathHash is set.
  void insert(StoredInstance& instance) noexcept;
  void remove(const StoredInstance& instance) noexcept;

 private:
  struct Place {
    StoredInstance* instance = nullptr;
    QORuint32 hash = 0;
  };

  std::size_t next(std::size_t place) const noexcept { return (place + 1) & (_places.size() - 1); }
  std::size_t home(QORuint32 hash) const noexcept { return hash & (_places.size() - 1); }
  void put(StoredInstance* instance, QORuint32 hash) noexcept;

  std::vector<Place> _places;  // a power of two, or none
  std::size_t _count = 0;
};

}  // namespace embedded

#endif
