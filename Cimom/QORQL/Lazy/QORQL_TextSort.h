// Sorting of rows by texts, a few bytes of each at a time.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TEXTSORT_H
#define QORQL_TEXTSORT_H

#include <string_view>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_EntrySort.h"
#include "cmpbase.h"

// BORROWS the texts, which are numbered by row.
class QORQL_TextSort {
 public:
  // The front of a text as a number in the order of the texts, and whether the text continues: the key to sort by
  // first.
  static QORuint64 frontOf(std::string_view text) noexcept;

  explicit QORQL_TextSort(const std::vector<std::string_view>& texts) : _texts(texts) {}

  // By the bytes of the texts; rows of equal texts in descending order. REQUIRES for each row, the last one first, an
  // entry whose key is the front of its text.
  void sort(std::vector<QORQL_SortEntry>& entries, bool isAscending);

 private:
  // Entries whose texts share what stands before `depth`.
  struct Group {
    std::span<QORQL_SortEntry> entries;
    std::size_t depth;
  };

  void sortByComparing(const Group& group, bool isAscending) const;
  void sortByParts(const Group& group);
  // Makes keys of the parts after the group's depth.
  void readParts(const Group& group) const;
  // Where the group's texts begin to differ, or the first of them ends.
  std::size_t endOfCommon(const Group& group) const noexcept;
  // Adds groups of equal keys whose texts continue, to be sorted later.
  void addGroups(const Group& sorted);

  const std::vector<std::string_view>& _texts;
  QORuint64 _inversion = 0;  // of the keys' bits: all of them for a descending order
  QORQL_EntrySort _sort;
  std::vector<Group> _groups;
};

#endif
