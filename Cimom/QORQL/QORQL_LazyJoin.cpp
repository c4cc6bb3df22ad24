// Joins by key: equality through a hash index over the block whose columns come
// later, other relations by comparing keys pair by pair. Either way the pairs
// come out in row order, the earlier block's rows outermost.
#include "Cimom/QORQL/QORQL_LazyJoin.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_OuterJoin.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "cimom/IQoriInstanceName.h"

namespace {

using Keys = std::vector<QoriScalar>;

constexpr QORuint32 kEnd = 0xffffffffU;

QORuint64 mix(QORuint64 bits) noexcept {
  bits *= 0x9e3779b97f4a7c15ULL;
  return bits ^ (bits >> 32U);
}

// Equal numbers hash alike, whatever their types.
QORuint64 hashNumber(const QoriScalar& key) noexcept {
  if (key.kind != QoriScalarKind::Real) return mix(key.u);
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (std::trunc(key.r) == key.r) {
    if (key.r >= -kTwoTo63 && key.r < kTwoTo63) return mix(static_cast<QORuint64>(static_cast<QORsint64>(key.r)));
    if (key.r >= 0 && key.r < 2 * kTwoTo63) return mix(static_cast<QORuint64>(key.r));
  }
  QORuint64 bits = 0;
  std::memcpy(&bits, &key.r, sizeof bits);
  return mix(bits);
}

QORuint64 hashKey(const QoriScalar& key) noexcept {
  if (key.kind == QoriScalarKind::Text) return std::hash<std::string_view>{}(key.text->view());
  return key.kind == QoriScalarKind::Boolean ? mix(key.b ? 1 : 0) : hashNumber(key);
}

bool isTrue(const QoriScalar& left, QoriRelation relation, const QoriScalar& right) noexcept {
  bool isDecided = false;
  return QORQL_relateViews(left, relation, right, isDecided) == QoriTruth::True;
}

// The rows of one block by key, rows of equal hash chained in ascending order.
class KeyIndex {
 public:
  explicit KeyIndex(const Keys& keys) : _keys(keys), _next(keys.size(), kEnd) {
    std::size_t size = 16;
    while (size < keys.size() * 2) size *= 2;
    _heads.assign(size, kEnd);
    for (std::size_t row = keys.size(); row-- != 0;) {
      if (keys[row].isNull()) continue;
      QORuint32& head = _heads[hashKey(keys[row]) & (size - 1)];
      _next[row] = head;
      head = static_cast<QORuint32>(row);
    }
  }
  template <class Callback>
  void forEachEqual(const QoriScalar& key, Callback callback) const {
    if (key.isNull()) return;
    for (QORuint32 row = _heads[hashKey(key) & (_heads.size() - 1)]; row != kEnd; row = _next[row]) {
      if (isTrue(key, QoriRelation::Equal, _keys[row])) callback(row);
    }
  }

 private:
  const Keys& _keys;
  std::vector<QORuint32> _heads;
  std::vector<QORuint32> _next;
};

// Collects pairs of rows of two blocks as tuples over the columns of both.
class PairCollector {
 public:
  PairCollector(const QORQL_RowBlock& outer, const QORQL_RowBlock& inner) : _outer(outer), _inner(inner) {
    _result.columns = outer.columns;
    _result.columns.insert(_result.columns.end(), inner.columns.begin(), inner.columns.end());
    std::sort(_result.columns.begin(), _result.columns.end());
    fillPlaces(outer, _outerPlaces);
    fillPlaces(inner, _innerPlaces);
  }
  void add(QORuint64 outerRow, QORuint64 innerRow) {
    _stopCheck.count();
    const std::size_t start = _result.tuples.size();
    _result.tuples.resize(start + _result.columns.size());
    QORuint32* const tuple = _result.tuples.data() + start;
    for (std::size_t p = 0; p < _outerPlaces.size(); ++p) tuple[_outerPlaces[p]] = _outer.index(outerRow, p);
    for (std::size_t p = 0; p < _innerPlaces.size(); ++p) tuple[_innerPlaces[p]] = _inner.index(innerRow, p);
    ++_result.rowCount;
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
  QORQL_StopCheck _stopCheck;
};

// The two blocks with their keys; `outer` has the first column of the two.
struct Join {
  const QORQL_RowBlock& outer;
  const QORQL_RowBlock& inner;
  const Keys& outerKeys;
  const Keys& innerKeys;
  bool isLeftOuter;  // the comparison's left side reads the outer block
  QoriRelation relation;

  bool matches(QORuint64 outerRow, QORuint64 innerRow) const noexcept {
    const QoriScalar& a = outerKeys[outerRow];
    const QoriScalar& b = innerKeys[innerRow];
    return isLeftOuter ? isTrue(a, relation, b) : isTrue(b, relation, a);
  }
};

QORQL_RowBlock joinByHash(const Join& join) {
  PairCollector pairs(join.outer, join.inner);
  const KeyIndex index(join.innerKeys);
  QORQL_StopCheck stopCheck;
  for (QORuint64 row = 0; row < join.outer.rowCount; ++row) {
    stopCheck.count();
    index.forEachEqual(join.outerKeys[row], [&](QORuint32 inner) { pairs.add(row, inner); });
  }
  return pairs.finish();
}

QORQL_RowBlock joinByComparing(const Join& join) {
  PairCollector pairs(join.outer, join.inner);
  QORQL_StopCheck stopCheck;
  for (QORuint64 row = 0; row < join.outer.rowCount; ++row) {
    stopCheck.count(join.inner.rowCount);
    for (QORuint64 inner = 0; inner < join.inner.rowCount; ++inner) {
      if (join.matches(row, inner)) pairs.add(row, inner);
    }
  }
  return pairs.finish();
}

// The rows of a block without any partner.
std::vector<bool> withoutPartner(const Keys& keys, const Keys& partners) {
  const KeyIndex index(partners);
  std::vector<bool> result(keys.size(), true);
  for (std::size_t row = 0; row < keys.size(); ++row) {
    index.forEachEqual(keys[row], [&](QORuint32 /*partner*/) { result[row] = false; });
  }
  return result;
}

// An object that needs a null-extended row, and the map bucket that orders it.
struct Extension {
  QORuint32 bucket;
  QORuint32 column;
  QORuint32 index;
};

void collect(const QORQL_LazyRows& rows, const QORQL_RowBlock& block, const std::vector<bool>& isUnmatched,
             std::vector<Extension>& extensions) {
  const std::size_t start = extensions.size();
  const QORuint32 column = block.columns.front();
  for (QORuint64 row = 0; row < block.rowCount; ++row) {
    const QORuint32 index = block.index(row, 0);
    if (!isUnmatched[row] || index == QORQL_kNoObject) continue;
    const QORString key(QORQL_instanceKey(*rows.object(column, index)));
    extensions.push_back({hashKeyQORString(key) % QORQL_kMapBuckets, column, index});
  }
  std::stable_sort(extensions.begin() + static_cast<std::ptrdiff_t>(start), extensions.end(),
                   [](const Extension& a, const Extension& b) { return a.bucket < b.bucket; });
}

// Whether no two objects of a block have the same path: the outer join's record
// is kept by path.
bool haveOwnPaths(const QORQL_LazyRows& rows, const QORQL_RowBlock& block) {
  std::unordered_set<std::string> seen;
  for (QORuint64 row = 0; row < block.rowCount; ++row) {
    const QORuint32 index = block.index(row, 0);
    if (index == QORQL_kNoObject) continue;
    const QORString key(QORQL_instanceKey(*rows.object(block.columns.front(), index)));
    if (!seen.emplace(key.view()).second) return false;
  }
  return true;
}

// A left object is unmatched when the first row that holds it fails: its row
// with the first row of the other block. A right one when no row with it holds.
std::vector<Extension> extensionsOf(const QORQL_LazyRows& rows, const Join& join, QORQL_JoinType joinType) {
  std::vector<Extension> extensions;
  const QORQL_RowBlock& left = join.isLeftOuter ? join.outer : join.inner;
  const QORQL_RowBlock& right = join.isLeftOuter ? join.inner : join.outer;
  if (joinType != QORQL_JOIN_TYPE_RIGHT_OUTER) {
    std::vector<bool> isUnmatched(left.rowCount);
    for (QORuint64 row = 0; row < left.rowCount; ++row) {
      isUnmatched[row] = join.isLeftOuter ? !join.matches(row, 0) : !join.matches(0, row);
    }
    collect(rows, left, isUnmatched, extensions);
  }
  if (joinType != QORQL_JOIN_TYPE_LEFT_OUTER) {
    const Keys& leftKeys = join.isLeftOuter ? join.outerKeys : join.innerKeys;
    const Keys& rightKeys = join.isLeftOuter ? join.innerKeys : join.outerKeys;
    collect(rows, right, withoutPartner(rightKeys, leftKeys), extensions);
  }
  return extensions;
}

// Which of two blocks each side of the comparison reads; false when a side reads
// none or both.
bool assignSides(const QORQL_DataTable& table, const QORQL_LazyRows& rows, const QORQL_Comparison& comparison,
                 const std::vector<std::size_t>& blockNumbers, std::size_t& leftBlock, std::size_t& rightBlock) {
  const auto blockRead = [&](const QORSmrPtr<QORQL_Evaluatable>& side, std::size_t& number) {
    std::vector<QORuint32> columns;
    QORQL_addColumnsRead(side, table, columns);
    number = columns.empty() ? rows.blocks().size() : rows.blockOf(columns.front());
    return std::find(blockNumbers.begin(), blockNumbers.end(), number) != blockNumbers.end() &&
           std::all_of(columns.begin(), columns.end(),
                       [&](QORuint32 column) { return rows.blockOf(column) == number; });
  };
  return blockRead(comparison.getLHSArithmeticExpression(), leftBlock) &&
         blockRead(comparison.getRHSArithmeticExpression(), rightBlock) && leftBlock != rightBlock;
}

// Outer joins by key: a single column each side, whose objects tell apart.
bool allowsOuterJoin(const QORQL_LazyRows& rows, const QORQL_Condition& condition, std::size_t leftBlock,
                     std::size_t rightBlock) {
  const auto isColumn = [&](std::size_t number, QORsint32 column) {
    const QORQL_RowBlock& block = rows.blocks()[number];
    return column >= 0 && block.columns.size() == 1 && block.columns.front() == static_cast<QORuint32>(column);
  };
  return !condition.isNegated && isColumn(leftBlock, condition.leftColumn) &&
         isColumn(rightBlock, condition.rightColumn);
}

bool mayJoin(const QORQL_LazyRows& rows, const QORQL_Condition& condition, std::size_t leftBlock,
             std::size_t rightBlock) {
  const QORQL_Comparison& comparison = condition.comparison();
  if (!QORQL_isRelational(comparison.getOperator()) || comparison.isArrayComp() || condition.isNegated) return false;
  return comparison.getJoinType() == QORQL_JOIN_TYPE_INNER || allowsOuterJoin(rows, condition, leftBlock, rightBlock);
}

}  // namespace

QORQL_JoinKeys::QORQL_JoinKeys(const QORQL_BoundValue& side, const QORQL_LazyRows& rows, const QORQL_RowBlock& block) {
  _keys.reserve(block.rowCount);
  QORQL_RowView view(rows);
  QORQL_StopCheck stopCheck;
  for (QORuint64 row = 0; row < block.rowCount; ++row) {
    stopCheck.count();
    view.select(block, row);
    QORSmrPtr<IQoriValue> holder;
    const QoriScalar key = side.view(view, holder);
    add(key, holder);
  }
}

void QORQL_JoinKeys::add(QoriScalar key, QORSmrPtr<IQoriValue>& holder) {
  Category category = kMixed;
  if (key.isNull()) {
    _keys.push_back(key);
    return;
  }
  if (key.isNumber()) category = kNumber;
  if (key.kind == QoriScalarKind::Text) category = kText;
  if (key.kind == QoriScalarKind::Boolean) category = kBoolean;
  if (key.kind == QoriScalarKind::Complex && !key.value->getReference().IsNull()) {
    category = kReference;
    _paths.push_back(key.value->getReference()->toString());
    key.kind = QoriScalarKind::Text;
    key.text = &_paths.back();
  } else if (!holder.IsNull()) {
    _holders.push_back(holder);
  }
  _category = _category == kNone || _category == category ? category : kMixed;
  _keys.push_back(key);
}

bool QORQL_JoinKeys::areJoinable(const QORQL_JoinKeys& a, const QORQL_JoinKeys& b) noexcept {
  if (a._category == kMixed || b._category == kMixed) return false;
  return a._category == kNone || b._category == kNone || a._category == b._category;
}

void QORQL_appendExtendedRow(QORQL_LazyRows& rows, QORuint32 column, QORuint32 index) {
  QORQL_RowBlock& block = rows.blocks().front();
  if (block.isWholeExtent) {
    block.isWholeExtent = false;
    block.tuples.clear();
    for (QORuint64 row = 0; row < block.rowCount; ++row) block.tuples.push_back(static_cast<QORuint32>(row));
  }
  for (const QORuint32 present : block.columns) block.tuples.push_back(present == column ? index : QORQL_kNoObject);
  ++block.rowCount;
}

bool QORQL_joinLazily(const QORQL_DataTable& table, QORQL_LazyRows& rows, const QORQL_Condition& condition,
                      const std::vector<std::size_t>& blockNumbers) {
  const QORQL_Comparison& comparison = condition.comparison();
  std::size_t leftBlock = 0;
  std::size_t rightBlock = 0;
  if (blockNumbers.size() != 2 || !assignSides(table, rows, comparison, blockNumbers, leftBlock, rightBlock) ||
      !mayJoin(rows, condition, leftBlock, rightBlock)) {
    return false;
  }
  const QORQL_Binder binder(table);
  const auto left = binder.bind(comparison.getLHSArithmeticExpression());
  const auto right = binder.bind(comparison.getRHSArithmeticExpression());
  if (left == nullptr || right == nullptr) return false;
  const QORQL_JoinKeys leftKeys(*left, rows, rows.blocks()[leftBlock]);
  const QORQL_JoinKeys rightKeys(*right, rows, rows.blocks()[rightBlock]);
  const QoriRelation relation = QORQL_relationOf(comparison.getOperator());
  if (!QORQL_JoinKeys::areJoinable(leftKeys, rightKeys)) return false;
  const bool isReference =
      leftKeys.category() == QORQL_JoinKeys::kReference || rightKeys.category() == QORQL_JoinKeys::kReference;
  if (isReference && relation != QoriRelation::Equal) return false;

  const bool isLeftOuter = rows.blocks()[leftBlock].columns.front() < rows.blocks()[rightBlock].columns.front();
  const Join join{rows.blocks()[isLeftOuter ? leftBlock : rightBlock],
                  rows.blocks()[isLeftOuter ? rightBlock : leftBlock],
                  (isLeftOuter ? leftKeys : rightKeys).keys(),
                  (isLeftOuter ? rightKeys : leftKeys).keys(),
                  isLeftOuter,
                  relation};
  QORQL_RowBlock joined = relation == QoriRelation::Equal ? joinByHash(join) : joinByComparing(join);
  const bool isOuterJoin = comparison.getJoinType() != QORQL_JOIN_TYPE_INNER;
  std::vector<Extension> extensions;
  if (isOuterJoin) extensions = extensionsOf(rows, join, comparison.getJoinType());
  if (!extensions.empty() && (!haveOwnPaths(rows, join.outer) || !haveOwnPaths(rows, join.inner))) return false;
  rows.replaceBlocks(blockNumbers, std::move(joined));
  if (isOuterJoin) rows.flatten();
  for (const Extension& extension : extensions) QORQL_appendExtendedRow(rows, extension.column, extension.index);
  return true;
}
