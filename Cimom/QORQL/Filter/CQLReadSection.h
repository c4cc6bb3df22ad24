// Lets threads read what another one replaces: readers announce themselves, and what was
// replaced is freed once nobody can still be reading it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLREADSECTION_H
#define QORQL_CQLREADSECTION_H

#include <cstddef>
#include <vector>

#include "cmpbase.h"

// While one lives, nothing that its thread can reach is freed. Costs one store
// with a fence; sections may nest. Belongs to the thread that made it.
class CQLReadSection {
 public:
  // THROWS std::bad_alloc, when it is its thread's first.
  CQLReadSection();
  CQLReadSection(const CQLReadSection&) = delete;
  CQLReadSection& operator=(const CQLReadSection&) = delete;
  ~CQLReadSection();
};

// What was replaced and waits to be freed. One thread at a time; the owner frees
// all at its end, when nobody may read any more.
class CQLRetired {
 public:
  CQLRetired() = default;
  CQLRetired(const CQLRetired&) = delete;
  CQLRetired& operator=(const CQLRetired&) = delete;
  ~CQLRetired();

  // Takes memory that a reader may still look at, and how to free it. REQUIRES
  // that no section that begins from now on can reach it.
  using Free = void (*)(const void* memory) noexcept;
  void add(const void* memory, Free free);
  // Makes room for so many more, so that add() does not throw. Amortised constant
  // time for each of them.
  void reserve(std::size_t more);
  // Frees what no section can be reading any more. Amortised constant time for
  // each thing that was added.
  void collect() noexcept;
  std::size_t count() const noexcept { return _waiting.size(); }

 private:
  struct Waiting {
    const void* memory;
    Free free;
    QORuint64 epoch;  // in which it was replaced
  };

  std::vector<Waiting> _waiting;  // the oldest first
  std::size_t _collectAt = 64;
};

#endif
