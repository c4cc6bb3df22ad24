// Sorting of keys that are numbers, each with the row that it stands for.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ENTRYSORT_H
#define QORQL_ENTRYSORT_H

#include <cstddef>
#include <memory>
#include <span>

#include "cmpbase.h"

struct QORQL_SortEntry {
  QORuint64 key;
  QORuint32 row;
};

// Keeps the room that it works in for the next entries.
class QORQL_EntrySort {
 public:
  // Ascending by key; entries of equal keys in descending order of their rows. REQUIRES descending rows before.
  void sort(std::span<QORQL_SortEntry> entries);

 private:
  void sortByDigits(std::span<QORQL_SortEntry> entries);

  std::unique_ptr<QORQL_SortEntry[]> _room;
  std::size_t _roomSize = 0;
};

#endif
