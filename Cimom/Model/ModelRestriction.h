// The reduction of a layout to some of its properties, worked out once for many objects.
// Tested by tests/unit/Model/ModelLayoutTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELRESTRICTION_H
#define QORQL_MODEL_MODELRESTRICTION_H

#include <vector>

#include "Cimom/Model/ModelLayout.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// Got from ModelLayout::restrictTo(); held by QORSmrPtr. Immutable; threads may
// share one. It does not hold the layout that it was made from.
//
//   QORSmrPtr<ModelRestriction> restriction = layout->restrictTo(*names);   // once per class
//   for (each instance) result->append(restriction->apply(instance));       // one allocation each
class ModelRestriction {
 public:
  // `kept`: the source positions that stay, ascending.
  ModelRestriction(const ModelLayout& source, std::vector<QORuint32> kept);
  ModelRestriction(const ModelRestriction&) = delete;
  ModelRestriction& operator=(const ModelRestriction&) = delete;

  // A restricted copy that shares the object's values and holds it. REQUIRES a
  // non-null object whose getLayout() is the layout this was made from.
  // THROWS std::bad_alloc alone.
  static QORSmrPtr<IQoriObject> apply(const QORSmrPtr<ModelRestriction>& restriction,
                                      const QORSmrPtr<IQoriObject>& object);

  // The layout of the restricted copies.
  const ModelLayout& layout() const noexcept { return _layout; }
  // Source position of each property of the copy.
  const std::vector<QORuint32>& positions() const noexcept { return _kept; }
  // The same, through all restrictions that the source layout itself came from.
  const std::vector<QORuint32>& rootPositions() const noexcept { return _rootKept.empty() ? _kept : _rootKept; }

 private:
  const std::vector<QORuint32> _kept;
  const ModelLayout _layout;
  std::vector<QORuint32> _rootKept;  // empty when the source layout is no derived one
};

#endif
