// Which name may have been meant by one that does not exist.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SUGGESTION_H
#define QORQL_SUGGESTION_H

#include <cstddef>
#include <string>
#include <string_view>

// Keeps the candidate that is nearest to a name, ignoring case: the fewest
// letters inserted, left out, changed or swapped with their neighbour, up to a
// third of the name's length. Of candidates that are equally near the first stays.
class QORQL_Suggestion {
 public:
  explicit QORQL_Suggestion(std::string_view name);
  void consider(std::string_view candidate);
  // Empty when nothing is near.
  const std::string& best() const noexcept { return _best; }

 private:
  std::string _name;
  std::string _best;
  std::size_t _bound;  // a distance below it is nearer
};

// How many such changes lead from one text to the other, ignoring case.
std::size_t QORQL_editDistance(std::string_view a, std::string_view b);

#endif
