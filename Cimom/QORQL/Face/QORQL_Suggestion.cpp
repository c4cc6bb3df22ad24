// The distance of two names by optimal string alignment.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Face/QORQL_Suggestion.h"

#include <algorithm>
#include <vector>

namespace {

// Names longer than those of any class or property are not compared.
constexpr std::size_t kLongestName = 255;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::size_t QORQL_editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool isSame = lower(a[i - 1]) == lower(b[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
      const bool isSwapped = i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1]);
      if (isSwapped) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    std::swap(before, last);
    std::swap(last, row);
  }
  return last[b.size()];
}

QORQL_Suggestion::QORQL_Suggestion(std::string_view name) : _name(name), _bound(name.size() / 3 + 1) {}

void QORQL_Suggestion::consider(std::string_view candidate) {
  if (_name.size() > kLongestName || candidate.size() > kLongestName) return;
  const std::size_t shorter = std::min(candidate.size(), _name.size());
  if (std::max(candidate.size(), _name.size()) - shorter >= _bound) return;
  const std::size_t distance = QORQL_editDistance(_name, candidate);
  if (distance >= _bound) return;
  _bound = distance;
  _best = candidate;
}
