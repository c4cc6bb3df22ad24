// Joins by key: equality through a hash index over the block whose columns come
// later, other relations by comparing keys pair by pair. In both ways the pairs
// come out in row order, the earlier block's rows outermost.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_LazyJoin.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

#include "Cimom/QORQL/Lazy/QORQL_JoinKeys.h"
#include "Cimom/QORQL/Lazy/QORQL_NullExtension.h"
#include "Cimom/QORQL/Lazy/QORQL_NumberOrder.h"
#include "Cimom/QORQL/Lazy/QORQL_RunRelation.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

constexpr QORuint32 kEndOfList = 0xffffffffU;

bool isTrue(const QoriScalar& left, QoriRelation relation, const QoriScalar& right) noexcept {
  return QORQL_relateViews(left, relation, right) == QORQL_ViewTruth::True;
}

// The rows of one block by key, rows of equal hash chained in ascending order.
class KeyIndex {
 public:
  explicit KeyIndex(const QORQL_JoinKeys& keys) : _keys(keys), _next(keys.keys().size(), kEndOfList) {
    std::size_t size = 16;
    while (size < _next.size() * 2) size *= 2;
    _heads.assign(size, kEndOfList);
    for (std::size_t row = _next.size(); row-- != 0;) {
      if (keys.keys()[row].isNull()) continue;
      QORuint32& head = _heads[keys.hashes()[row] & (size - 1)];
      _next[row] = head;
      head = static_cast<QORuint32>(row);
    }
  }
  // Calls back for each row whose key is not null and has this hash: it may be equal.
  template <class Callback>
  void forEachLike(QORuint32 hash, const Callback& callback) const {
    const QORuint32* const hashes = _keys.hashes().data();
    for (QORuint32 row = _heads[hash & (_heads.size() - 1)]; row != kEndOfList; row = _next[row]) {
      if (hashes[row] == hash) callback(row);
    }
  }

 private:
  const QORQL_JoinKeys& _keys;
  std::vector<QORuint32> _heads;
  std::vector<QORuint32> _next;
};

// Collects pairs of rows of two blocks as tuples over the columns of both.
class PairCollector {
 public:
  PairCollector(const QORQL_RowBlock& outer, const QORQL_RowBlock& inner) : _outer(outer), _inner(inner) {
    _result.columns = outer.columns;
    _result.columns.append(inner.columns.begin(), inner.columns.end());
    std::sort(_result.columns.begin(), _result.columns.end());
    fillPlaces(outer, _outerPlaces);
    fillPlaces(inner, _innerPlaces);
    _arePairs = _result.columns.size() == 2;
    _result.tuples.reserve(outer.rowCount * _result.columns.size());
  }
  void add(QORuint64 outerRow, QORuint32 innerRow) {
    if (!_arePairs) return add(outerRow, &innerRow, 1);
    _stopCheck.count();
    const QORuint32 outerIndex = _outer.index(outerRow, 0);
    const QORuint32 innerIndex = _inner.index(innerRow, 0);
    const bool isOuterFirst = _outerPlaces.front() == 0;
    _result.tuples.push_back(isOuterFirst ? outerIndex : innerIndex);
    _result.tuples.push_back(isOuterFirst ? innerIndex : outerIndex);
    ++_result.rowCount;
    _stopCheck.hold(_result.tuples.size(), sizeof(QORuint32));
  }
  // The outer row with each of some inner rows.
  void add(QORuint64 outerRow, const QORuint32* innerRows, std::size_t count) {
    _stopCheck.count(count);
    const std::size_t width = _result.columns.size();
    const std::size_t start = _result.tuples.size();
    _result.tuples.resize(start + width * count);
    _result.rowCount += count;
    _stopCheck.hold(_result.tuples.size(), sizeof(QORuint32));
    QORuint32* tuple = _result.tuples.data() + start;
    for (std::size_t i = 0; i < count; ++i, tuple += width) {
      for (std::size_t p = 0; p < _outerPlaces.size(); ++p) tuple[_outerPlaces[p]] = _outer.index(outerRow, p);
      for (std::size_t p = 0; p < _innerPlaces.size(); ++p) tuple[_innerPlaces[p]] = _inner.index(innerRows[i], p);
    }
  }
  QORQL_RowBlock finish() {
    if (_outer.columns.back() > _inner.columns.front()) QORQL_LazyRows::sortTuples(_result);
    return std::move(_result);
  }

 private:
  void fillPlaces(const QORQL_RowBlock& block, std::vector<std::size_t>& places) const {
    for (const QORuint32 column : block.columns) {
      const auto place = std::lower_bound(_result.columns.begin(), _result.columns.end(), column);
      places.push_back(static_cast<std::size_t>(place - _result.columns.begin()));
    }
  }

  const QORQL_RowBlock& _outer;
  const QORQL_RowBlock& _inner;
  QORQL_RowBlock _result;
  std::vector<std::size_t> _outerPlaces;
  std::vector<std::size_t> _innerPlaces;
  bool _arePairs = false;  // of one object of either block
  QORQL_StopCheck _stopCheck;
};

// The two blocks with their keys; `outer` has the first column of the two.
struct Join {
  const QORQL_RowBlock& outer;
  const QORQL_RowBlock& inner;
  const QORQL_JoinKeys& outerKeys;
  const QORQL_JoinKeys& innerKeys;
  bool isLeftOuter;  // the comparison's left side reads the outer block
  QoriRelation relation;

  bool matches(QORuint64 outerRow, QORuint64 innerRow) const noexcept {
    // Equal keys have equal hashes.
    if (relation == QoriRelation::Equal && outerKeys.hashes()[outerRow] != innerKeys.hashes()[innerRow]) return false;
    const QoriScalar& a = outerKeys.keys()[outerRow];
    const QoriScalar& b = innerKeys.keys()[innerRow];
    return isLeftOuter ? isTrue(a, relation, b) : isTrue(b, relation, a);
  }
};

// False when a key is no number.
bool noteNumbers(const QORQL_JoinKeys& keys, QORQL_NumberOrder& order) noexcept {
  if (keys.category() != QORQL_JoinKeys::kNumber) return keys.category() == QORQL_JoinKeys::kNone;
  for (const QoriScalar& key : keys.keys()) {
    if (!key.isNull()) order.note(key);
  }
  return true;
}

// Which rows of the two blocks have a partner.
struct Partners {
  explicit Partners(const Join& join) : ofOuter(join.outer.rowCount), ofInner(join.inner.rowCount) {}
  std::vector<bool> ofOuter;
  std::vector<bool> ofInner;
};

// Pairs of rows whose keys have one hash, compared a run at a time, so that the processor fetches the inner keys'
// texts at the same time.
class LikelyPairs {
 public:
  // `partners` may be null.
  LikelyPairs(const Join& join, Partners* partners)
      : _outerKeys(join.outerKeys), _innerKeys(join.innerKeys), _partners(partners), _pairs(join.outer, join.inner) {}
  void add(QORuint64 outerRow, QORuint32 innerRow) {
    const QoriScalar& key = _innerKeys.keys()[innerRow];
    if (key.kind == QoriScalarKind::Text) __builtin_prefetch(key.text);
    _run[_count++] = {outerRow, innerRow};
    if (_count == _run.size()) compare();
  }
  void compare() {
    const QoriScalar* const outerKeys = _outerKeys.keys().data();
    const QoriScalar* const innerKeys = _innerKeys.keys().data();
    for (std::size_t i = 0; i < _count; ++i) {
      const QoriScalar& key = innerKeys[_run[i].innerRow];
      if (key.kind == QoriScalarKind::Text) __builtin_prefetch(key.text->data());
    }
    for (std::size_t i = 0; i < _count; ++i) {
      const Pair& pair = _run[i];
      if (!isTrue(outerKeys[pair.outerRow], QoriRelation::Equal, innerKeys[pair.innerRow])) continue;
      _pairs.add(pair.outerRow, pair.innerRow);
      if (_partners != nullptr) _partners->ofOuter[pair.outerRow] = _partners->ofInner[pair.innerRow] = true;
    }
    _count = 0;
  }
  // REQUIRES that all have been compared.
  QORQL_RowBlock finish() { return _pairs.finish(); }

 private:
  struct Pair {
    QORuint64 outerRow;
    QORuint32 innerRow;
  };

  const QORQL_JoinKeys& _outerKeys;
  const QORQL_JoinKeys& _innerKeys;
  Partners* const _partners;
  PairCollector _pairs;
  std::array<Pair, QORQL_PropertyColumn::kBatch> _run;
  std::size_t _count = 0;
};

// Reads the outer keys and finds the partners of each run at once: later, their texts would have left the cache
// and be fetched again. `partners` may be null. Does nothing when the keys cannot be compared.
std::optional<QORQL_RowBlock> joinByHash(const Join& join, QORQL_JoinKeys& outerKeys, Partners* partners) {
  LikelyPairs pairs(join, partners);
  const KeyIndex index(join.innerKeys);
  QORQL_StopCheck stopCheck;
  QORuint64 row = 0;
  while (outerKeys.readRun()) {
    if (!QORQL_JoinKeys::areJoinable(outerKeys, join.innerKeys)) return std::nullopt;
    for (; row < outerKeys.keys().size(); ++row) {
      stopCheck.count();
      if (outerKeys.keys()[row].isNull()) continue;
      index.forEachLike(outerKeys.hashes()[row], [&](QORuint32 inner) { pairs.add(row, inner); });
    }
    pairs.compare();
  }
  return pairs.finish();
}

// The inner rows' numbers as an array of keys, so that each pair costs one comparison.
QORQL_RowBlock joinNumbers(const Join& join, const QORQL_NumberOrder& order) {
  PairCollector pairs(join.outer, join.inner);
  QORQL_NumberOrder noted;
  std::vector<QORuint64> innerKeys;
  std::vector<QORuint32> innerRows;
  for (QORuint64 row = 0; row < join.inner.rowCount; ++row) {
    const QoriScalar& key = join.innerKeys.keys()[row];
    if (key.isNull()) continue;
    innerKeys.push_back(order.keyOf(noted.note(key)));
    innerRows.push_back(static_cast<QORuint32>(row));
  }
  std::vector<QORuint32> found(innerKeys.size() + 1);
  const QoriRelation relation = join.isLeftOuter ? join.relation : QORQL_mirrored(join.relation);
  QORQL_StopCheck stopCheck;
  QORQL_withComparison(relation, [&](const auto& compare) {
    for (QORuint64 row = 0; row < join.outer.rowCount; ++row) {
      stopCheck.count(innerKeys.size());
      const QoriScalar& key = join.outerKeys.keys()[row];
      if (key.isNull()) continue;
      const QORuint64 outerKey = order.keyOf(noted.note(key));
      std::size_t count = 0;
      for (std::size_t i = 0; i < innerKeys.size(); ++i) {
        found[count] = innerRows[i];
        count += compare(outerKey, innerKeys[i]) ? 1 : 0;
      }
      pairs.add(row, found.data(), count);
    }
  });
  return pairs.finish();
}

std::optional<QORQL_RowBlock> joinByComparing(const Join& join, QORQL_JoinKeys& outerKeys) {
  outerKeys.readAll();
  const bool isReference =
      join.innerKeys.category() == QORQL_JoinKeys::kReference || outerKeys.category() == QORQL_JoinKeys::kReference;
  if (isReference || !QORQL_JoinKeys::areJoinable(outerKeys, join.innerKeys)) return std::nullopt;
  QORQL_NumberOrder order;
  if (noteNumbers(join.outerKeys, order) && noteNumbers(join.innerKeys, order) && order.isUniform()) {
    return joinNumbers(join, order);
  }
  PairCollector pairs(join.outer, join.inner);
  QORQL_StopCheck stopCheck;
  for (QORuint64 row = 0; row < join.outer.rowCount; ++row) {
    stopCheck.count(join.inner.rowCount);
    for (QORuint32 inner = 0; inner < join.inner.rowCount; ++inner) {
      if (join.matches(row, inner)) pairs.add(row, inner);
    }
  }
  return pairs.finish();
}

// A left object is unmatched when the first row that holds it fails: its row
// with the first row of the other block. A right one when no row with it holds.
// False when objects share a path, because then the record of one depends on the other.
bool findExtensions(const QORQL_LazyRows& rows, const Join& join, const Partners& partners, QORQL_JoinType joinType,
                    std::vector<QORQL_NullExtension>& extensions) {
  const QORQL_RowBlock& left = join.isLeftOuter ? join.outer : join.inner;
  const QORQL_RowBlock& right = join.isLeftOuter ? join.inner : join.outer;
  if (joinType != QORQL_JOIN_TYPE_RIGHT_OUTER) {
    std::vector<bool> isUnmatched(left.rowCount);
    for (QORuint64 row = 0; row < left.rowCount; ++row) {
      isUnmatched[row] = join.isLeftOuter ? !join.matches(row, 0) : !join.matches(0, row);
    }
    if (!QORQL_collectExtensions(rows, left, isUnmatched, extensions)) return false;
  }
  if (joinType != QORQL_JOIN_TYPE_LEFT_OUTER) {
    std::vector<bool> isUnmatched(join.isLeftOuter ? partners.ofInner : partners.ofOuter);
    isUnmatched.flip();
    if (!QORQL_collectExtensions(rows, right, isUnmatched, extensions)) return false;
  }
  return true;
}

}  // namespace

bool QORQL_joinLazily(QORQL_LazyRows& rows, const QORQL_ConditionPlan& plan, const QORQL_BoundSides& sides) {
  if (sides.left == nullptr || sides.right == nullptr) return false;
  const bool isLeftOuter = plan.left.block == plan.blocks.front();
  const QORQL_RowBlock& outer = rows.blocks()[plan.blocks[0]];
  const QORQL_RowBlock& inner = rows.blocks()[plan.blocks[1]];
  QORQL_JoinKeys outerKeys(isLeftOuter ? *sides.left : *sides.right, rows, outer);
  QORQL_JoinKeys innerKeys(isLeftOuter ? *sides.right : *sides.left, rows, inner);
  innerKeys.readAll();
  if (innerKeys.category() == QORQL_JoinKeys::kMixed) return false;
  const Join join{outer, inner, outerKeys, innerKeys, isLeftOuter, *plan.relation};
  std::unique_ptr<Partners> partners;
  if (plan.isOuter()) partners = std::make_unique<Partners>(join);
  std::optional<QORQL_RowBlock> joined = plan.way == QORQL_ConditionPlan::kHashJoin
                                             ? joinByHash(join, outerKeys, partners.get())
                                             : joinByComparing(join, outerKeys);
  if (!joined.has_value()) return false;
  std::vector<QORQL_NullExtension> extensions;
  if (plan.isOuter() && !findExtensions(rows, join, *partners, plan.joinType, extensions)) return false;
  rows.replaceBlocks(plan.blocks, std::move(*joined));
  if (plan.isOuter()) rows.flatten();
  QORQL_appendExtendedRows(rows, extensions);
  return true;
}
