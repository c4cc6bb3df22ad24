// Random small worlds of associations: L ties A to B, S ties A to A, and LL ties instances of L to E.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_TIEWORLD_H
#define QORQL_TESTS_TIEWORLD_H

#include <array>
#include <deque>
#include <optional>
#include <random>
#include <string>
#include <vector>

inline constexpr int kTieClasses = 6;

struct TieClass {
  const char* name;
  std::array<const char*, 2> ends;  // names of the reference properties; null for none
  std::array<int, 2> endClasses;    // what they refer to
};

// Each class has the key Id, a number N, and perhaps two references, keys too.
inline constexpr std::array<TieClass, kTieClasses> kTieModel = {{{"A", {}, {}},
                                                                 {"B", {}, {}},
                                                                 {"E", {}, {}},
                                                                 {"L", {"Lft", "Rgt"}, {0, 1}},
                                                                 {"S", {"One", "Other"}, {0, 0}},
                                                                 {"LL", {"One", "Two"}, {3, 2}}}};

inline bool isTie(int which) { return kTieModel[static_cast<std::size_t>(which)].ends[0] != nullptr; }

struct TieObject {
  int which = 0;
  std::string id;
  std::optional<int> number;
  std::array<const TieObject*, 2> ends{};

  std::string path() const;
};

class TieWorld {
 public:
  explicit TieWorld(std::mt19937& random);

  const std::deque<TieObject>& of(int which) const { return _objects[static_cast<std::size_t>(which)]; }
  // Whether the class says that its provider filters at the source.
  bool isFiltered(int which) const { return _areFiltered && which < 2; }
  std::string toMof() const;

 private:
  void addObject(std::mt19937& random, int which);

  std::array<std::deque<TieObject>, kTieClasses> _objects;
  bool _areFiltered;
};

#endif
