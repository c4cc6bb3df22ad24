// Asks sets of filters by chance: random_sets COUNT SEED. A set, whose filters come
// and go, must answer as its filters do when each of them is asked.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <map>

#include "ChanceMain.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/CQLFilterSet.h"
#include "EngineThings.h"
#include "RandomFilter.h"

using namespace filter_model;

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Handle = CQLFilterSet::Handle;
using Statement = CQLFilterSet::Statement;

constexpr unsigned kStepsOfOneSchema = 300;
constexpr unsigned kInstances = 16;
constexpr int kDepth = 2;

struct Tally {
  unsigned long steps = 0;
  unsigned long asked = 0;
  unsigned long matches = 0;
  unsigned long failed = 0;
};

std::string textOf(const std::vector<Handle>& handles) {
  std::string text;
  for (const Handle handle : handles) text += ' ' + std::to_string(handle);
  return text;
}

// A set beside a plain list of its filters.
class Trial {
 public:
  Trial(RandomChoice& choice, const Schema& schema, Tally& tally)
      : _choice(choice), _filters(choice, schema), _tally(tally) {}

  // Adds one filter, or takes one out: more often the one while few are wanted.
  void change(std::size_t wanted) {
    if (_statements.size() < wanted || _choice.chance(30)) {
      add();
    } else {
      remove();
    }
  }

  bool ask(const Object& object, const char* nameSpace) {
    const std::string asked = _choice.chance(30) ? "ROOT/A" : nameSpace;
    std::vector<Handle> expected;
    for (const auto& [order, member] : _statements) {
      if (member.second->isMatch(object, QORString(asked))) expected.push_back(member.first);
    }
    std::vector<Handle> found = {99};
    _set.match(object, QORString(asked), found);
    ++_tally.asked;
    _tally.matches += expected.size();
    if (found == expected && _set.size() == _statements.size()) return true;
    std::cout << _set.size() << " filters: found" << textOf(found) << ", expected" << textOf(expected) << "\n";
    for (const auto& [order, member] : _statements) {
      const bool isFound = std::find(found.begin(), found.end(), member.first) != found.end();
      const bool isExpected = std::find(expected.begin(), expected.end(), member.first) != expected.end();
      if (isFound != isExpected) std::cout << "  " << member.first << ": " << member.second->getQuery() << "\n";
    }
    ++_tally.failed;
    return false;
  }

 private:
  void add() {
    const Filter filter = _filters.make();
    const bool isOwn = _choice.chance(80);
    Statement statement(new CQLQueryStatement("DMTF:CQL", QORString(filter.toText()), isOwn ? kNameSpace : kOther,
                                              isOwn ? "" : kNameSpace));
    if (statement->validate() != QUERY_VALIDATE_SUCCESS) return;
    const Handle handle = _choice.below(1000);
    bool isUsed = false;
    for (const auto& [order, member] : _statements) isUsed = isUsed || member.first == handle;
    if (_set.add(handle, statement) == isUsed) ++_tally.failed;
    if (!isUsed) _statements.emplace(_next++, std::pair(handle, statement));
  }
  void remove() {
    if (_statements.empty()) return;
    auto place = _statements.begin();
    std::advance(place, _choice.below(static_cast<unsigned>(_statements.size())));
    if (!_set.remove(place->second.first) || _set.remove(place->second.first)) ++_tally.failed;
    _statements.erase(place);
  }

  RandomChoice& _choice;
  RandomFilter _filters;
  Tally& _tally;
  CQLFilterSet _set;
  std::map<unsigned long, std::pair<Handle, Statement>> _statements;  // by the order in which they were added
  unsigned long _next = 0;
};

void tryOneSchema(RandomChoice& choice, unsigned long count, Tally& tally) {
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  RandomSchema schemas(choice);
  const Schema schema = schemas.make();
  declare(schema);
  std::vector<Object> objects;
  for (unsigned i = 0; i < kInstances; ++i) {
    const std::shared_ptr<Thing> thing = schemas.makeThing(schema, kDepth);
    objects.push_back(choice.chance(70) ? laidOutObject(*thing) : loneObject(*thing));
  }
  Trial trial(choice, schema, tally);
  for (unsigned long step = 0; step < count && tally.failed < 5; ++step, ++tally.steps) {
    // The set grows, shrinks below the least tree, and grows again.
    const std::size_t wanted = step % 100 < 60 ? 60 : 2;
    trial.change(wanted);
    if (step % 3 == 0 && !trial.ask(choice.of(objects), choice.chance(95) ? kNameSpace : kOther)) return;
  }
}

int run(unsigned long count, std::uint32_t seed) {
  Tally tally;
  RandomChoice choice(seed);
  while (tally.steps < count && tally.failed < 5) {
    tryOneSchema(choice, std::min<unsigned long>(kStepsOfOneSchema, count - tally.steps), tally);
  }
  std::cout << tally.steps << " changes, asked " << tally.asked << " times: " << tally.matches << " matches, "
            << tally.failed << " wrong\n";
  return tally.failed == 0 && tally.matches > tally.asked ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) { return mainByChance(count, arguments, "random_sets COUNT SEED", run); }
