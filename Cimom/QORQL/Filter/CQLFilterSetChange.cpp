// Adding a filter to the tree, and removing it. A filter stands, for each of its
// FROM classes, under the key of the condition that fewest share: an equality, a
// range, the test of a class; without any of them in the class's rest.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLFilterSetChange.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <utility>

#include "Cimom/QORQL/Filter/CQLFilterKeys.h"
#include "Cimom/QORQL/Filter/CQLIsa.h"
#include "Cimom/QORQL/Filter/CQLMatcher.h"
#include "Cimom/QORQL/Filter/CQLPropertyPath.h"

namespace cqlset {

namespace {

using Kind = CQLAccess::Kind;
using State = CQLFilterSet::State;

std::string nameOf(const CQLAccess& access) {
  return lowerCase(access.kind == Kind::Isa ? access.isa->propertyName().view() : access.path->text());
}

// How many filters stand under the keys, counted up to a bound.
std::size_t crowd(const Node* tree, const std::vector<QORuint64>& keys) {
  constexpr std::size_t kEnough = 64;
  std::size_t count = 0;
  for (const QORuint64 key : keys) {
    CQLItemTree::forEach(tree, key, [&](const void*) { return ++count < kEnough; });
  }
  return count;
}

// The range that all conditions on one path leave. A great unsigned number is
// negative beside a signed bound and itself beside others: it may be within both
// although it is not within what they share.
cqlkeys::Range rangeOf(const std::vector<CQLAccess>& accesses, QORuint64 classHash, QORuint64 pathHash) {
  constexpr double kLeastOfTwoMeanings = 9223372036854775808.0;
  cqlkeys::Range bySigned;
  cqlkeys::Range range;
  for (const CQLAccess& access : accesses) {
    if (access.kind != Kind::Relation || cqlkeys::pathHash(classHash, access) != pathHash) continue;
    const bool isSigned = access.constant.kind == QoriScalarKind::Signed;
    cqlkeys::narrow(isSigned ? bySigned : range, access.relation, access.constant);
  }
  const bool isAmbiguous = range.isNarrowed() && range.greatest >= kLeastOfTwoMeanings;
  if (!isAmbiguous) range.greatest = std::min(range.greatest, bySigned.greatest);
  range.least = std::max(range.least, bySigned.least);
  return range;
}

// A way to file a filter, and its likely cost for matches: the filters that
// share the key, and a guess for filters to come.
struct Choice {
  Hook hook;
  const CQLAccess* access = nullptr;  // null: the rest
  std::size_t cost = 0;
};

// The hook by one condition; without keys when it offers none.
Choice choiceBy(const CQLAccess& access, const std::vector<CQLAccess>& accesses, QORuint64 classHash) {
  Choice choice;
  choice.hook.classHash = classHash;
  choice.access = &access;
  if (access.kind == Kind::None) return choice;
  Hook& hook = choice.hook;
  hook.pathHash = cqlkeys::pathHash(classHash, access);
  if (access.kind == Kind::Isa) {
    hook.keys.push_back(cqlkeys::isaKey(hook.pathHash, access.isa->className().view()));
    choice.cost = 3;
  } else if (access.relation == QoriRelation::Equal) {
    hook.isEqual = true;
    cqlkeys::addEqualKeys(hook.pathHash, access.constant, hook.keys);
  } else {
    const cqlkeys::Range range = rangeOf(accesses, classHash, hook.pathHash);
    if (range.isNarrowed()) cqlkeys::addRangeKeys(hook.pathHash, range, hook.keys, hook.levels);
    choice.cost = range.isBounded() ? 1 : 16;
  }
  return choice;
}

template <class Thing>
void freeThing(const void* thing) noexcept {
  delete static_cast<const Thing*>(thing);
}

// A change of the set that readers see all at once, when it is published. One
// that is given up (memory may run out at any step) leaves the set as it was.
class Change {
 public:
  explicit Change(State& state) : _state(state), _old(state.version.load(std::memory_order_relaxed)), _next(*_old) {}
  Change(const Change&) = delete;
  Change& operator=(const Change&) = delete;
  ~Change() {
    if (!_isPublished) giveUp();
  }

  void add(Filter& filter) {
    if (_next.tree == nullptr && _next.list.size() < State::kLongestList) {
      _next.list.push_back(&filter);
      return;
    }
    for (const Filter* const listed : std::exchange(_next.list, {})) hang(*_state.filters.at(listed->handle));
    hang(filter);
  }

  void remove(Filter& filter) {
    const auto listed = std::find(_next.list.begin(), _next.list.end(), &filter);
    if (listed != _next.list.end()) {
      _next.list.erase(listed);
    } else if (_state.filters.size() > State::kShortestTree) {
      unhang(filter);
    } else {
      makeList(filter);
    }
    _replaced.push_back({&filter, &freeThing<Filter>});
  }

  void publish() {
    _state.retired.reserve(_steps.replaced.size() + _replaced.size() + 1);
    _state.version.store(new Version(std::move(_next)), std::memory_order_seq_cst);
    _isPublished = true;
    _state.retired.add(_old, &freeThing<Version>);
    for (const void* const node : _steps.replaced) _state.retired.add(node, &CQLItemTree::freeNode);
    for (const Thing& thing : _replaced) _state.retired.add(thing.memory, thing.free);
    for (Filter* const filter : _unhung) filter->hooks.clear();
    forgetUnused();
  }

 private:
  struct Thing {
    const void* memory;
    CQLRetired::Free free;
  };

  void giveUp() noexcept {
    for (const void* const node : _steps.made) CQLItemTree::freeNode(node);
    for (const auto& [hash, directory] : _oldDirectories) {
      const Directory*& place = _state.directories[hash];
      if (place != directory) delete std::exchange(place, directory);
    }
    for (const auto& [hash, use] : _oldUses) _state.uses[hash] = use;
    for (Filter* const filter : _hung) filter->hooks.clear();
    forgetUnused();
  }

  // Drops what the change emptied.
  void forgetUnused() noexcept {
    for (const auto& [hash, use] : _oldUses) {
      if (_state.uses[hash].filters == 0) _state.uses.erase(hash);
    }
    for (const auto& [hash, directory] : _oldDirectories) {
      if (_state.directories[hash] == nullptr) _state.directories.erase(hash);
    }
  }

  // All filters except the one. There may be a list of some beside those that never
  // match and stand nowhere.
  void makeList(const Filter& gone) {
    _next.list.clear();
    for (const auto& [handle, filter] : _state.filters) {
      unhang(*filter);
      if (filter != &gone) _next.list.push_back(filter);
    }
    std::sort(_next.list.begin(), _next.list.end(),
              [](const Filter* a, const Filter* b) { return a->order < b->order; });
  }

  void hang(Filter& filter) {
    const CQLMatcher& matcher = filter.statement->getMatcher();
    const std::vector<CQLAccess> accesses = matcher.accesses();
    if (accesses.size() == 1 && accesses.front().kind == Kind::Never) return;
    _hung.push_back(&filter);
    for (const QORString& className : matcher.classNames()) {
      const QORuint64 hash = cqlkeys::classHash(filter.statement->getNameSpace(), className.view());
      Choice choice = choose(accesses, hash);
      if (choice.access != nullptr) noteUse(choice, filter.statement);
      for (const QORuint64 key : choice.hook.keys) insert({key, filter.order, &filter});
      filter.hooks.push_back(std::move(choice.hook));
    }
  }

  void unhang(Filter& filter) {
    _unhung.push_back(&filter);
    for (const Hook& hook : filter.hooks) {
      for (const QORuint64 key : hook.keys) erase({key, filter.order, &filter});
      if (hook.pathHash != 0) forgetUse(hook);
    }
  }

  Choice choose(const std::vector<CQLAccess>& accesses, QORuint64 classHash) const {
    Choice best;
    best.hook.classHash = classHash;
    best.hook.keys.push_back(cqlkeys::restHash(classHash));
    best.cost = 1000;
    for (const CQLAccess& access : accesses) {
      Choice choice = choiceBy(access, accesses, classHash);
      if (choice.hook.keys.empty() || !hasRoom(choice)) continue;
      choice.cost += crowd(_next.tree, choice.hook.keys);
      if (choice.cost < best.cost) best = std::move(choice);
    }
    return best;
  }

  // Whether filters may be filed by the path: it is known, or there is room for it.
  bool hasRoom(const Choice& choice) const {
    const auto found = _state.directories.find(choice.hook.classHash);
    if (found == _state.directories.end() || found->second == nullptr) return true;
    for (const PathEntry& path : found->second->paths) {
      if (path.pathHash != choice.hook.pathHash) continue;
      return path.access.kind == choice.access->kind && path.name == nameOf(*choice.access);
    }
    return found->second->paths.size() < State::kMostPaths;
  }

  // The use of a path, whose state before the change is kept.
  PathUse& useOf(QORuint64 pathHash) {
    PathUse& use = _state.uses[pathHash];
    _oldUses.emplace(pathHash, use);
    return use;
  }

  void noteUse(const Choice& choice, const Statement& statement) {
    const Hook& hook = choice.hook;
    PathUse& use = useOf(hook.pathHash);
    const bool isNew = use.filters++ == 0;
    bool isChanged = isNew || (hook.isEqual && use.equals == 0);
    use.equals += hook.isEqual ? 1 : 0;
    forEachLevel(hook, [&](unsigned level) { isChanged = use.levels[level]++ == 0 || isChanged; });
    if (!isChanged) return;
    changeDirectory(hook.classHash, [&](std::vector<PathEntry>& paths) {
      if (isNew) paths.push_back({hook.pathHash, nameOf(*choice.access), *choice.access, statement, false, 0});
      describe(paths, hook.pathHash, use);
    });
  }

  void forgetUse(const Hook& hook) {
    PathUse& use = useOf(hook.pathHash);
    const bool isGone = --use.filters == 0;
    use.equals -= hook.isEqual ? 1 : 0;
    bool isChanged = isGone || (hook.isEqual && use.equals == 0);
    forEachLevel(hook, [&](unsigned level) { isChanged = --use.levels[level] == 0 || isChanged; });
    if (!isChanged) return;
    changeDirectory(hook.classHash, [&](std::vector<PathEntry>& paths) {
      if (isGone) std::erase_if(paths, [&](const PathEntry& path) { return path.pathHash == hook.pathHash; });
      describe(paths, hook.pathHash, use);
    });
  }

  template <class Visit>
  static void forEachLevel(const Hook& hook, Visit visit) {
    for (QORuint64 levels = hook.levels; levels != 0; levels &= levels - 1) {
      visit(static_cast<unsigned>(std::countr_zero(levels)));
    }
  }

  static void describe(std::vector<PathEntry>& paths, QORuint64 pathHash, const PathUse& use) {
    for (PathEntry& path : paths) {
      if (path.pathHash != pathHash) continue;
      path.hasEqual = use.equals != 0;
      path.levels = 0;
      for (unsigned level = 0; level < use.levels.size(); ++level) {
        if (use.levels[level] != 0) path.levels |= QORuint64{1} << level;
      }
    }
  }

  // Readers may hold the directory that the class has before the change: it is freed when they have gone. What is
  // replaced later within the change is a copy that nobody has seen: it is freed at once.
  template <class Alter>
  void changeDirectory(QORuint64 classHash, Alter alter) {
    const QORuint64 key = cqlkeys::directoryHash(classHash);
    const Directory*& place = _state.directories[classHash];
    const bool isFirst = _oldDirectories.emplace(classHash, place).second;
    auto fresh = place == nullptr ? std::make_unique<Directory>() : std::make_unique<Directory>(*place);
    alter(fresh->paths);
    if (place != nullptr) {
      erase({key, 0, place});
      if (isFirst) _replaced.push_back({place, &freeThing<Directory>});
    }
    const Directory* const last = std::exchange(place, nullptr);
    if (!isFirst) delete last;
    if (fresh->paths.empty()) return;
    place = fresh.release();
    insert({key, 0, place});
  }

  void insert(const CQLTreeEntry& entry) { _next.tree = CQLItemTree::insert(_next.tree, entry, _steps); }
  void erase(const CQLTreeEntry& entry) { _next.tree = CQLItemTree::erase(_next.tree, entry, _steps); }

  State& _state;
  const Version* const _old;
  Version _next;
  CQLItemTree::Steps _steps;
  std::vector<Thing> _replaced;  // what the change took out of the set
  std::vector<Filter*> _hung;
  std::vector<Filter*> _unhung;
  std::unordered_map<QORuint64, PathUse> _oldUses;  // as they were before the change
  std::unordered_map<QORuint64, const Directory*> _oldDirectories;
  bool _isPublished = false;
};

}  // namespace

std::string lowerCase(std::string_view name) {
  std::string lower(name);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter + ('a' - 'A'));
  }
  return lower;
}

void addFilter(State& state, Filter& filter) {
  Change change(state);
  change.add(filter);
  change.publish();
}

void removeFilter(State& state, Filter& filter) {
  Change change(state);
  change.remove(filter);
  change.publish();
}

}  // namespace cqlset
