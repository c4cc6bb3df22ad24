// Looks for each property's class from the instance's own upwards.
// Tested by tests/unit/Server/InstanceOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/InstanceOrigins.h"

const std::vector<CimXmlFeatureMarks>& InstanceOrigins::marksOf(const IQoriObject& object) const {
  const IQoriLayout* const layout = object.getLayout();
  std::vector<CimXmlFeatureMarks>& marks = _byLayout[layout];
  if (layout != nullptr && marks.size() == object.getPropertyCount()) return marks;
  marks.clear();
  const ServerClasses::Class handle = _space.find(object.getClassName());
  for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) {
    CimXmlFeatureMarks each;
    if (!handle.IsNull()) each.origin = _space.originOf(handle, object.getPropertyAt(i)->getName());
    each.isPropagated = !each.origin.isEmpty() && !each.origin.isEqualCaseInsensitive(object.getClassName());
    marks.push_back(each);
  }
  return marks;
}
