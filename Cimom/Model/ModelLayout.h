// The layout that the instances of one class share: property names, types and positions.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELLAYOUT_H
#define QORQL_MODEL_MODELLAYOUT_H

#include <mutex>
#include <vector>

#include "cimom/IQoriObject.h"
#include "cmpbase.h"

class ModelRestriction;

namespace model {

// FNV-1a over the name without regard to the case of ASCII letters.
std::size_t foldedHash(const QORString& name) noexcept;

}  // namespace model

// Immutable but for its cache of restrictions, which is synchronised: threads
// may share one. Held by QORSmrPtr; every object that returns it holds it.
// Names are found by a hash over the folded case, in constant time.
class ModelLayout final : public IQoriLayout {
 public:
  struct Column {
    QORString name;
    QORSmrPtr<IQoriType> type;  // REQUIRES non-null
  };

  // In the objects' order. Of columns whose names differ in case alone the first counts.
  explicit ModelLayout(const std::vector<Column>& columns) : ModelLayout(columns, nullptr) {}
  ModelLayout(const ModelLayout&) = delete;
  ModelLayout& operator=(const ModelLayout&) = delete;
  ~ModelLayout() override;

  QORuint32 getPropertyCount() const noexcept override { return static_cast<QORuint32>(_columns.size()); }
  QORsint32 getPosition(const QORString& name) const noexcept override;
  const QORString& getName(QORuint32 position) const noexcept override { return _columns[position].name; }
  const QORSmrPtr<IQoriType>& getType(QORuint32 position) const noexcept override { return _columns[position].type; }
  // In the slots of the stored instance, also for a restricted copy.
  QORuint32 getCellOffset(QORuint32 position) const noexcept override;

  // The restriction of this layout to the listed names (case, duplicates and
  // unknown names ignored). The same kept positions give the same object as
  // long as the layout keeps it, so that objects restricted alike share one
  // layout. Costs one look-up per name.
  QORSmrPtr<ModelRestriction> restrictTo(const QORValSlist<QORString>& names) const;

 private:
  friend class ModelRestriction;

  ModelLayout(const std::vector<Column>& columns, const ModelRestriction* origin);

  // The restriction that this layout belongs to; null for a layout of its own.
  const ModelRestriction* origin() const noexcept { return _origin; }
  // The slot that holds the name's position, or the free one where it would go.
  std::size_t findSlot(const QORString& name) const noexcept;
  std::vector<QORuint32> keptPositions(const QORValSlist<QORString>& names) const;

  std::vector<Column> _columns;
  std::vector<QORsint32> _positions;  // open addressing, power of two; -1 marks a free slot
  const ModelRestriction* const _origin;
  mutable std::mutex _mutex;                                       // guards what follows
  mutable std::vector<QORSmrPtr<ModelRestriction>> _restrictions;  // the most recent ones
};

#endif
