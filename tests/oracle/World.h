// Small worlds: three classes A, B and C whose instances are chosen anew for each query.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_WORLD_H
#define QORQL_TESTS_WORLD_H

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"

inline constexpr int kTables = 3;
inline constexpr int kPositions = 5;  // rows that a table may have
inline constexpr int kGreatestKey = 3;

using Key = std::optional<int>;  // nothing: NULL

// The keys of each table's rows, in order. The row at position p with key k is
// the instance `Id="pk"` (`pn` for NULL) with K = k and V = p.
using World = std::array<std::vector<Key>, kTables>;

// What there is to know of one row.
struct Object {
  int table = 0;
  int position = 0;
  Key key;

  std::string id() const;
  std::string path() const;
};

// The object manager that holds every instance a world may need and serves
// those of the world at hand. One at a time; made once for a program.
class Universe {
 public:
  static Universe& get();

  void setWorld(const World& world) { _world = world; }

 private:
  Universe();
  void declare(int table);

  EmbeddedObjectManager _manager;
  World _world;
};

// All lists of 0 to `length` keys out of `keys`, the shorter first.
std::vector<std::vector<Key>> allKeyLists(const std::vector<Key>& keys, std::size_t length);
std::string describe(const World& world);

#endif
