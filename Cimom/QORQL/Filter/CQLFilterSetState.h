// What a set of filters is made of: for its own files alone.
// Tested by tests/unit/Filters/CQLFilterSetTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLFILTERSETSTATE_H
#define QORQL_CQLFILTERSETSTATE_H

#include <array>
#include <atomic>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/QORQL/CQLFilterSet.h"
#include "Cimom/QORQL/Filter/CQLAccess.h"
#include "Cimom/QORQL/Filter/CQLItemTree.h"
#include "Cimom/QORQL/Filter/CQLReadSection.h"

namespace cqlset {

using Handle = CQLFilterSet::Handle;
using Statement = CQLFilterSet::Statement;
using Node = CQLItemTree::Node;

// Where a filter stands in the tree, by one of its conditions. There is one key for most conditions; a range of numbers
// has one for each of the cells that cover it, and an equality with the text TRUE or FALSE has one for the text and one
// for the boolean that equals it.
struct Hook {
  QORuint64 classHash = 0;
  QORuint64 pathHash = 0;  // 0: in the class's rest
  bool isEqual = false;
  QORuint64 levels = 0;  // of the range
  std::vector<QORuint64> keys;
};

struct Filter {
  Handle handle;
  QORuint64 order;  // greater than those of all filters that were added before
  Statement statement;
  QORuint32 nameSpaceNumber;  // of its namespace, whatever the case
  std::vector<Hook> hooks;    // of each FROM class; none when it never matches
};

// Filters of one class that hang by one path.
struct PathEntry {
  QORuint64 pathHash;
  std::string name;  // in lower case: equal hashes may be of other paths
  CQLAccess access;  // the statement's
  Statement holder;  // of what the access borrows
  bool hasEqual;
  QORuint64 levels;
};

struct Directory {
  std::vector<PathEntry> paths;
};

// What the filters of a path make of its entry in the directory.
struct PathUse {
  QORuint32 filters = 0;
  QORuint32 equals = 0;
  std::array<QORuint32, 64> levels{};
};

// One state of the set. Filters stand in the list or, when there are many, in the tree.
struct Version {
  std::vector<const Filter*> list;
  const CQLItemTree::Node* tree = nullptr;
};

// ASCII letters in lower case.
std::string lowerCase(std::string_view name);

}  // namespace cqlset

// Readers have the version alone; all else is the writers', guarded by the mutex.
struct CQLFilterSet::State {
  using Filter = cqlset::Filter;
  using Version = cqlset::Version;

  // From more than so many filters on there is a tree; from fewer again a list.
  static constexpr std::size_t kLongestList = 12;
  static constexpr std::size_t kShortestTree = 6;
  // Paths by which the filters of a class hang; each match reads them all.
  static constexpr std::size_t kMostPaths = 48;

  State() = default;
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() {
    const Version* const last = version.load();
    for (const auto& [handle, filter] : filters) delete filter;
    for (const auto& [hash, directory] : directories) delete directory;
    CQLItemTree::destroy(last->tree);
    delete last;
  }

  std::atomic<const Version*> version{new Version};
  mutable std::mutex mutex;
  std::unordered_map<Handle, Filter*> filters;
  std::unordered_map<QORuint64, cqlset::PathUse> uses;                  // by path hash
  std::unordered_map<QORuint64, const cqlset::Directory*> directories;  // by class hash
  std::unordered_map<std::string, QORuint32> nameSpaces;                // their numbers, by names in lower case
  QORuint64 nextOrder = 1;
  CQLRetired retired;
};

#endif
