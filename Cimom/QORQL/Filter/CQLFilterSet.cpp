// The set is a tree of hashes (CQLFilterKeys) that changes by copies
// (CQLFilterSetChange). A directory for each class says by which paths its filters
// are filed, so that an instance is read once for each path; the filters that stand under
// its values are asked. A few filters need no tree: they stand in a list
// and are asked one by one.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/CQLFilterSet.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "Cimom/QORQL/CQLSuperClasses.h"
#include "Cimom/QORQL/Filter/CQLFilterKeys.h"
#include "Cimom/QORQL/Filter/CQLFilterSetChange.h"
#include "Cimom/QORQL/Filter/CQLFilterSetState.h"
#include "Cimom/QORQL/Filter/CQLIsa.h"
#include "Cimom/QORQL/Filter/CQLPropertyPath.h"

using namespace cqlset;

namespace {

using Kind = CQLAccess::Kind;

constexpr char kMatch[] = "CQLFILTERSET::match";
constexpr char kAdd[] = "CQLFILTERSET::add";

// Asks filters about one instance.
class Question {
 public:
  // BORROWS both.
  Question(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace)
      : _instance(instance), _nameSpace(nameSpace) {}

  // A statement is asked with its own copy of the namespace's text, which is compared by address.
  bool isMatch(const Filter& filter) {
    const CQLQueryStatement& statement = *filter.statement.Get();
    const QORString& own = statement.getNameSpace();
    if (filter.nameSpaceNumber != _lastNumber) {
      _lastNumber = filter.nameSpaceNumber;
      _isSame = own.isEqualCaseInsensitive(_nameSpace);
    }
    return _isSame && statement.isMatch(_instance, own);
  }

 private:
  const QORSmrPtr<IQoriObject>& _instance;
  const QORString& _nameSpace;
  QORuint32 _lastNumber = ~QORuint32{0};
  bool _isSame = false;
};

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
  if (className.isEmpty()) return;
  CQLSuperClasses superClasses(nameSpace);
  for (QORuint32 step = 0; step < CQLSuperClasses::kLongestChain && !className.isEmpty(); ++step) {
    visit(className.view());
    className = superClasses.of(className);
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

QORuint32 numberOf(CQLFilterSet::State& state, const QORString& nameSpace) {
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
    addFilter(*_state, *filter);
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
  removeFilter(*_state, *found->second);
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
