// The class, namespace, layout and keys that stored instances share.
// Tested by tests/unit/Model/ModelInstanceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELSHAPE_H
#define QORQL_MODEL_MODELSHAPE_H

#include <vector>

#include "Cimom/Model/ModelLayout.h"
#include "cimom/IQoriInstanceName.h"
#include "cmpbase.h"

// What the instances of one class in one namespace have in common. Immutable;
// threads may share one.
struct ModelShape {
  // REQUIRES a non-null layout. `keyPositions`: those of the key properties, in any order.
  ModelShape(const QORString& nameSpace, const QORString& className, const QORSmrPtr<ModelLayout>& layout,
             const std::vector<QORuint32>& keyPositions);
  ~ModelShape();

  const QORString nameSpace;
  const QORString className;
  const QORSmrPtr<ModelLayout> layout;
  const std::vector<QORuint32> keyPositions;
  const std::vector<QORuint32> keysByName;  // the same in the order of names, as paths show them
  const QORSmrPtr<IQoriNameSpacePath> nameSpacePath;
};

#endif
