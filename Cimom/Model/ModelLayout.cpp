// Layouts and their restrictions.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelLayout.h"

#include <algorithm>
#include <atomic>
#include <bit>

#include "Cimom/Model/ModelRestriction.h"
#include "Cimom/Model/ModelSlot.h"
#include "cimom/CQoriBaseObject.h"

namespace {

// Enough for the name lists that are in use at one time; a query that is not
// among them costs a new derived layout, nothing else.
constexpr std::size_t kRestrictionsKept = 32;

QORuint64 nextSerial() noexcept {
  static std::atomic<QORuint64> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

std::vector<ModelLayout::Column> keptColumns(const ModelLayout& source, const std::vector<QORuint32>& kept) {
  std::vector<ModelLayout::Column> columns;
  columns.reserve(kept.size());
  for (const QORuint32 position : kept) columns.push_back({source.getName(position), source.getType(position)});
  return columns;
}

}  // namespace

// The bit that distinguishes the cases is dropped from every byte: cheaper than
// folding, and equal names still hash alike.
std::size_t model::foldedHash(const QORString& name) noexcept {
  QORuint32 hash = 2166136261U;
  for (const char c : name.view()) hash = (hash ^ (static_cast<unsigned char>(c) & 0xDFU)) * 16777619U;
  return hash;
}

ModelLayout::ModelLayout(const std::vector<Column>& columns, const ModelRestriction* origin)
    : IQoriLayout(nextSerial()), _positions(std::bit_ceil(2 * columns.size() + 1), -1), _origin(origin) {
  _columns.reserve(columns.size());
  for (const Column& column : columns) {
    const std::size_t slot = findSlot(column.name);
    if (_positions[slot] >= 0) continue;
    _positions[slot] = static_cast<QORsint32>(_columns.size());
    _columns.push_back(column);
  }
}

ModelLayout::~ModelLayout() = default;

std::size_t ModelLayout::findSlot(const QORString& name) const noexcept {
  const std::size_t mask = _positions.size() - 1;
  std::size_t slot = model::foldedHash(name) & mask;
  while (_positions[slot] >= 0 &&
         !_columns[static_cast<std::size_t>(_positions[slot])].name.isEqualCaseInsensitive(name)) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

QORsint32 ModelLayout::getPosition(const QORString& name) const noexcept { return _positions[findSlot(name)]; }

QORuint32 ModelLayout::getCellOffset(QORuint32 position) const noexcept {
  const QORuint32 slot = _origin == nullptr ? position : _origin->rootPositions()[position];
  return slot * static_cast<QORuint32>(sizeof(ModelSlot));
}

std::vector<QORuint32> ModelLayout::keptPositions(const QORValSlist<QORString>& names) const {
  std::vector<QORuint32> kept;
  kept.reserve(names.entries());
  QORValSlistIterator<QORString> it(names);
  while (++it) {
    const QORsint32 position = getPosition(it.key());
    if (position >= 0) kept.push_back(static_cast<QORuint32>(position));
  }
  std::sort(kept.begin(), kept.end());
  kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
  return kept;
}

QORSmrPtr<ModelRestriction> ModelLayout::restrictTo(const QORValSlist<QORString>& names) const {
  std::vector<QORuint32> kept = keptPositions(names);
  const std::lock_guard<std::mutex> lock(_mutex);
  for (const QORSmrPtr<ModelRestriction>& known : _restrictions) {
    if (known->positions() == kept) return known;
  }
  QORSmrPtr<ModelRestriction> restriction(new ModelRestriction(*this, std::move(kept)));
  if (_restrictions.size() == kRestrictionsKept) _restrictions.erase(_restrictions.begin());
  _restrictions.push_back(restriction);
  return restriction;
}

ModelRestriction::ModelRestriction(const ModelLayout& source, std::vector<QORuint32> kept)
    : _kept(std::move(kept)), _layout(keptColumns(source, _kept), this) {
  if (source.origin() == nullptr) return;
  _rootKept.reserve(_kept.size());
  for (const QORuint32 position : _kept) _rootKept.push_back(source.origin()->rootPositions()[position]);
}

QORSmrPtr<IQoriObject> ModelRestriction::apply(const QORSmrPtr<ModelRestriction>& restriction,
                                               const QORSmrPtr<IQoriObject>& object) {
  return QORSmrPtr<IQoriObject>::Make<CQoriBaseObject>(object, restriction);
}
