// The set is a tree of hashes (CQLFilterKeys) that changes by copies. A filter
// stands, for each of its FROM classes, under the key of the condition that fewest
// share: an equality, a range, the test of a class; without any of them in the
// class's rest. A directory for each class says by which paths its filters
// hang, so that an instance is read once for each. A few filters are not worth
// a tree: they stand in a list and are asked one by one.
#include "Cimom/QORQL/CQLFilterSet.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

#include "Cimom/QORQL/CQLFilterKeys.h"
#include "Cimom/QORQL/CQLIsa.h"
#include "Cimom/QORQL/CQLItemTree.h"
#include "Cimom/QORQL/CQLMatcher.h"
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/CQLReadSection.h"

namespace {

using Handle = CQLFilterSet::Handle;
using Statement = CQLFilterSet::Statement;
using Kind = CQLAccess::Kind;

constexpr char kMatch[] = "CQLFILTERSET::match";
constexpr char kAdd[] = "CQLFILTERSET::add";

// Where a filter stands in the tree: once, but for ranges and truth texts.
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

// Asks filters about one instance.
class Question {
 public:
  // BORROWS both.
  Question(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace)
      : _instance(instance), _nameSpace(nameSpace) {}

  // A statement is asked with its own text of the namespace, which is the quickest to compare.
  bool isMatch(const Filter& filter) {
    const CQLQueryStatement& statement = *filter.statement.Get();
    const QORString& own = statement.getNameSpace();
    if (filter.nameSpaceNumber != _lastNumber) {
      _lastNumber = filter.nameSpaceNumber;
      _isSame = own.isEqualCaseInsensitive(_nameSpace);
    }
    return _isSame && statement.CQLQueryStatement::isMatch(_instance, own);
  }

 private:
  const QORSmrPtr<IQoriObject>& _instance;
  const QORString& _nameSpace;
  QORuint32 _lastNumber = ~QORuint32{0};
  bool _isSame = false;
};

std::string lowerCase(std::string_view name) {
  std::string lower(name);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter + ('a' - 'A'));
  }
  return lower;
}

std::string nameOf(const CQLAccess& access) {
  return lowerCase(access.kind == Kind::Isa ? access.isa->propertyName().view() : access.path->text());
}

// Filters that may match; a filter may come more than once.
class Candidates {
 public:
  void add(const Filter* filter) {
    if (_count < kNear) {
      _near[_count++] = filter;
    } else {
      _far.push_back(filter);
    }
  }
  // In the order in which they were added to the set, each once.
  template <class Visit>
  void forEach(Visit visit) {
    if (!_far.empty()) {
      _far.insert(_far.end(), _near.begin(), _near.begin() + _count);
      visitAll(_far.data(), _far.size(), visit);
    } else {
      visitAll(_near.data(), _count, visit);
    }
  }

 private:
  template <class Visit>
  static void visitAll(const Filter** filters, std::size_t count, Visit visit) {
    std::sort(filters, filters + count, [](const Filter* a, const Filter* b) { return a->order < b->order; });
    for (std::size_t i = 0; i < count; ++i) {
      if (i == 0 || filters[i] != filters[i - 1]) visit(*filters[i]);
    }
  }

  static constexpr std::size_t kNear = 64;
  std::array<const Filter*, kNear> _near;
  std::size_t _count = 0;
  std::vector<const Filter*> _far;
};

void addAll(const CQLItemTree::Node* tree, QORuint64 key, Candidates& candidates) {
  CQLItemTree::forEach(tree, key, [&](const void* filter) {
    candidates.add(static_cast<const Filter*>(filter));
    return true;
  });
}

// A value that cannot be read satisfies no condition.
QoriScalar valueOf(const PathEntry& path, const IQoriObject& instance, QORSmrPtr<IQoriObject>& object,
                   QORSmrPtr<IQoriValue>& holder) {
  try {
    return path.access.path->view(instance, object, holder);
  } catch (...) {
    return {};
  }
}

QORString classOf(const PathEntry& path, const IQoriObject& instance) {
  try {
    return path.access.isa->foundClass(instance);
  } catch (...) {
    return {};
  }
}

// Calls `visit` with a class and those above it.
template <class Visit>
void forEachClass(const QORString& nameSpace, QORString className, Visit visit) {
  for (QORuint32 step = 0; step < CQLQueryValidator::kLongestChain && !className.isEmpty(); ++step) {
    visit(className.view());
    className = CQLQueryValidator::superClassOf(nameSpace, className);
  }
}

void addOfPath(const CQLItemTree::Node* tree, const PathEntry& path, const IQoriObject& instance,
               const QORString& nameSpace, Candidates& candidates) {
  if (path.access.kind == Kind::Isa) {
    forEachClass(nameSpace, classOf(path, instance), [&](std::string_view className) {
      addAll(tree, cqlkeys::isaKey(path.pathHash, className), candidates);
    });
    return;
  }
  QORSmrPtr<IQoriObject> object;
  QORSmrPtr<IQoriValue> holder;
  const cqlkeys::Probes probes(path.pathHash, valueOf(path, instance, object, holder), path.hasEqual, path.levels);
  for (const QORuint64 key : probes.keys()) addAll(tree, key, candidates);
}

void addOfClass(const CQLItemTree::Node* tree, QORuint64 classHash, const IQoriObject& instance,
                const QORString& nameSpace, Candidates& candidates) {
  const void* const directory = CQLItemTree::find(tree, cqlkeys::directoryHash(classHash));
  if (directory != nullptr) {
    for (const PathEntry& path : static_cast<const Directory*>(directory)->paths) {
      addOfPath(tree, path, instance, nameSpace, candidates);
    }
  }
  addAll(tree, cqlkeys::restHash(classHash), candidates);
}

void addCandidates(const CQLItemTree::Node* tree, const IQoriObject& instance, const QORString& nameSpace,
                   Candidates& candidates) {
  forEachClass(nameSpace, instance.getClassName(), [&](std::string_view className) {
    addOfClass(tree, cqlkeys::classHash(nameSpace, className), instance, nameSpace, candidates);
  });
}

using Node = CQLItemTree::Node;

// How many filters stand under the keys, as far as it matters.
std::size_t crowd(const Node* tree, const std::vector<QORuint64>& keys) {
  constexpr std::size_t kEnough = 64;
  std::size_t count = 0;
  for (const QORuint64 key : keys) {
    CQLItemTree::forEach(tree, key, [&](const void*) { return ++count < kEnough; });
  }
  return count;
}

// The range that all conditions on one path leave.
cqlkeys::Range rangeOf(const std::vector<CQLAccess>& accesses, QORuint64 classHash, QORuint64 pathHash) {
  cqlkeys::Range range;
  for (const CQLAccess& access : accesses) {
    if (access.kind != Kind::Relation || cqlkeys::pathHash(classHash, access) != pathHash) continue;
    cqlkeys::narrow(range, access.relation, access.constant);
  }
  return range;
}

// A way to hang a filter, and what matches are likely to pay for it: those who
// share the key, and a guess for those to come.
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

}  // namespace

// Readers have the version alone; all else is the writers', behind the mutex.
struct CQLFilterSet::State {
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
  std::unordered_map<QORuint64, PathUse> uses;                  // by path hash
  std::unordered_map<QORuint64, const Directory*> directories;  // by class hash
  std::unordered_map<std::string, QORuint32> nameSpaces;        // their numbers, by names in lower case
  QORuint64 nextOrder = 1;
  CQLRetired retired;
};

namespace {

using State = CQLFilterSet::State;

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

  // All filters but the one.
  void makeList(const Filter& gone) {
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

  // Whether filters may hang by the path: it is known, or there is room for it.
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

  // Of a class whose directory changes twice the first copy is the change's own.
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

QORuint32 numberOf(State& state, const QORString& nameSpace) {
  const QORuint32 next = static_cast<QORuint32>(state.nameSpaces.size());
  return state.nameSpaces.emplace(lowerCase(nameSpace.view()), next).first->second;
}

}  // namespace

CQLFilterSet::CQLFilterSet() : _state(std::make_unique<State>()) {}

CQLFilterSet::~CQLFilterSet() = default;

bool CQLFilterSet::add(Handle handle, const Statement& statement) {
  if (statement.IsNull()) CQLQueryException::raise(kAdd, CQL_QUERY_INVALID_OR_NULL_PARM_ERROR);
  statement->getMatcher();
  const std::lock_guard<std::mutex> lock(_state->mutex);
  const auto [place, isNew] = _state->filters.try_emplace(handle, nullptr);
  if (!isNew) return false;
  try {
    auto filter = std::make_unique<Filter>(
        Filter{handle, _state->nextOrder++, statement, numberOf(*_state, statement->getNameSpace()), {}});
    place->second = filter.get();
    Change change(*_state);
    change.add(*filter);
    change.publish();
    filter.release();
  } catch (...) {
    _state->filters.erase(place);
    throw;
  }
  _state->retired.collect();
  return true;
}

bool CQLFilterSet::remove(Handle handle) {
  const std::lock_guard<std::mutex> lock(_state->mutex);
  const auto found = _state->filters.find(handle);
  if (found == _state->filters.end()) return false;
  Change change(*_state);
  change.remove(*found->second);
  change.publish();
  _state->filters.erase(found);
  _state->retired.collect();
  return true;
}

std::size_t CQLFilterSet::size() const {
  const std::lock_guard<std::mutex> lock(_state->mutex);
  return _state->filters.size();
}

void CQLFilterSet::match(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace,
                         std::vector<Handle>& handles) const {
  handles.clear();
  if (instance.IsNull()) CQLQueryException::raise(kMatch, CQL_QUERY_INVALID_OR_NULL_PARM_ERROR);
  if (nameSpace.isNull()) CQLQueryException::raise(kMatch, CQL_QUERY_INTERNAL_ERROR);
  const CQLReadSection section;
  const Version& version = *_state->version.load(std::memory_order_seq_cst);
  Question question(instance, nameSpace);
  const auto ask = [&](const Filter& filter) {
    if (question.isMatch(filter)) handles.push_back(filter.handle);
  };
  for (const Filter* const filter : version.list) ask(*filter);
  if (version.tree == nullptr) return;
  Candidates candidates;
  try {
    addCandidates(version.tree, *instance, nameSpace, candidates);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    CQLQueryException::raise(kMatch, CQL_QUERY_INTERNAL_ERROR);
  }
  candidates.forEach(ask);
}
