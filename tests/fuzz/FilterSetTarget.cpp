// Fuzz target: a set of filters. The part of the input before the separator holds
// filters, one a line; the part after it MOF text with instances. Without one the
// filters meet indications of each kind. Whatever comes and goes, a set answers as
// its filters do when each of them is asked.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <utility>
#include <vector>

#include "Cimom/QORQL/CQLFilterSet.h"
#include "FuzzInput.h"
#include "QueryRun.h"

namespace {

constexpr char kNameSpace[] = "root/cimv2";
constexpr std::size_t kMostFilters = 24;
// So many filters stand in a tree, whatever the input.
constexpr std::size_t kManyFilters = 32;

using Instances = std::vector<QORSmrPtr<IQoriObject>>;
using Handle = CQLFilterSet::Handle;
using Statement = CQLFilterSet::Statement;

Instances read(QueryRun& world, const std::string& mof) {
  return MofLoader(world.manager().sink(), kNameSpace).readInstances(mof, "indication");
}

// Those that are valid, each line by itself.
std::vector<Statement> filtersOf(const std::string& text) {
  std::vector<Statement> filters;
  for (std::size_t start = 0; start < text.size() && filters.size() < kMostFilters;) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    Statement filter(new CQLQueryStatement("CQL", QORString(text.data() + start, end - start), kNameSpace, ""));
    if (filter->validate() == QUERY_VALIDATE_SUCCESS) filters.push_back(filter);
    start = end + 1;
  }
  return filters;
}

// A set beside a list of its filters in the order in which they were added.
class Trial {
 public:
  explicit Trial(const Instances& instances) : _instances(instances) {}

  void add(Handle handle, const Statement& filter) {
    fuzzRequire(_set.add(handle, filter), "a filter with a new handle is taken");
    _filters.emplace_back(handle, filter);
  }
  void remove(std::size_t place) {
    fuzzRequire(_set.remove(_filters[place].first), "a filter of the set is removed");
    _filters.erase(_filters.begin() + static_cast<std::ptrdiff_t>(place));
  }
  void ask() {
    fuzzRequire(_set.size() == _filters.size(), "the set knows how many filters it has");
    for (const QORSmrPtr<IQoriObject>& instance : _instances) {
      std::vector<Handle> expected;
      for (const auto& [handle, filter] : _filters) {
        if (filter->isMatch(instance, kNameSpace)) expected.push_back(handle);
      }
      std::vector<Handle> found;
      _set.match(instance, kNameSpace, found);
      fuzzRequire(found == expected, "the set and its filters agree");
    }
  }
  std::size_t size() const { return _filters.size(); }

 private:
  const Instances& _instances;
  CQLFilterSet _set;
  std::vector<std::pair<Handle, Statement>> _filters;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static QueryRun world(fuzzFile("tests/fuzz/models/indications.mof"));
  static const Instances common = read(world, fuzzFile("tests/fuzz/models/happened.mof"));
  const auto [text, mof] = fuzzParts(fuzzText(data, size));
  const std::vector<Statement> filters = filtersOf(text);
  if (filters.empty()) return 0;
  Instances own;
  try {
    if (!mof.empty()) own = read(world, mof);
  } catch (const MofException&) {
    return 0;
  }
  Trial trial(mof.empty() ? common : own);
  Handle next = 0;
  for (const Statement& filter : filters) trial.add(next++, filter);
  trial.ask();
  // The same filters again, until there are many; then every other one goes, and then most.
  for (; trial.size() < kManyFilters; ++next) trial.add(next, filters[next % filters.size()]);
  trial.ask();
  for (std::size_t place = 0; place < trial.size(); ++place) trial.remove(place);
  trial.ask();
  for (const Statement& filter : filters) trial.add(next++, filter);
  trial.ask();
  while (trial.size() > 2) trial.remove(trial.size() / 2);
  trial.ask();
  return 0;
}
