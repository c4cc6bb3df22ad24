// Keys are made a run of rows at a time, and hashed while their texts are in the cache.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_JoinKeys.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "Cimom/QORQL/QORQL_TextHash.h"
#include "cimom/IQoriInstanceName.h"

namespace {

// Equal numbers hash alike, whatever their types.
QORuint64 hashNumber(const QoriScalar& key) noexcept {
  if (key.kind != QoriScalarKind::Real) return QORQL_mixBits(key.u);
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (std::trunc(key.r) == key.r) {
    if (key.r >= -kTwoTo63 && key.r < kTwoTo63)
      return QORQL_mixBits(static_cast<QORuint64>(static_cast<QORsint64>(key.r)));
    if (key.r >= 0 && key.r < 2 * kTwoTo63) return QORQL_mixBits(static_cast<QORuint64>(key.r));
  }
  QORuint64 bits = 0;
  std::memcpy(&bits, &key.r, sizeof bits);
  return QORQL_mixBits(bits);
}

QORuint64 hashKey(const QoriScalar& key) noexcept {
  if (key.kind == QoriScalarKind::Text) return QORQL_hashText(key.text->view());
  return key.kind == QoriScalarKind::Boolean ? QORQL_mixBits(key.b ? 1 : 0) : hashNumber(key);
}

}  // namespace

QORQL_JoinKeys::QORQL_JoinKeys(const QORQL_BoundValue& side, const QORQL_LazyRows& rows, const QORQL_RowBlock& block)
    : _side(side), _block(block), _view(rows) {
  _keys.reserve(block.rowCount);
  _hashes.reserve(block.rowCount);
}

bool QORQL_JoinKeys::readRun() {
  std::array<QoriScalar, QORQL_PropertyColumn::kBatch> cells;
  const QORuint64 first = _keys.size();
  const std::size_t count = static_cast<std::size_t>(std::min<QORuint64>(cells.size(), _block.rowCount - first));
  _stopCheck.count(count);
  const QORQL_PropertyColumn* const column = _side.propertyColumn();
  if (column != nullptr) column->read(_block, first, count, cells.data());
  for (std::size_t i = 0; i < count; ++i) {
    QORSmrPtr<IQoriValue> holder;
    if (column == nullptr) {
      _view.select(_block, first + i);
      cells[i] = _side.view(_view, holder);
    }
    add(cells[i], holder);
  }
  return count != 0;
}

void QORQL_JoinKeys::add(QoriScalar key, QORSmrPtr<IQoriValue>& holder) {
  Category category = kMixed;
  if (key.isNull()) {
    _keys.push_back(key);
    _hashes.push_back(0);
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
  _hashes.push_back(category == kMixed ? 0 : static_cast<QORuint32>(hashKey(key)));
}

bool QORQL_JoinKeys::areJoinable(const QORQL_JoinKeys& a, const QORQL_JoinKeys& b) noexcept {
  if (a._category == kMixed || b._category == kMixed) return false;
  return a._category == kNone || b._category == kNone || a._category == b._category;
}
