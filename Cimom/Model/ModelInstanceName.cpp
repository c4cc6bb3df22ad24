// The name of a stored instance.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelInstanceName.h"

#include <algorithm>
#include <string>

#include "Cimom/Model/ModelPath.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"

namespace {

std::vector<QORuint32> sortedByName(std::vector<QORuint32> positions, const ModelLayout& layout) {
  std::sort(positions.begin(), positions.end(),
            [&layout](QORuint32 a, QORuint32 b) { return layout.getName(a).compareTo(layout.getName(b), 0) < 0; });
  return positions;
}

}  // namespace

ModelShape::ModelShape(const QORString& nameSpace, const QORString& className, const QORSmrPtr<ModelLayout>& layout,
                       const std::vector<QORuint32>& keyPositions)
    : nameSpace(nameSpace),
      className(className),
      layout(layout),
      keyPositions(keyPositions),
      keysByName(sortedByName(keyPositions, *layout)),
      nameSpacePath(new CQoriNameSpacePath(QORString::emptyString(), nameSpace)) {}

ModelShape::~ModelShape() = default;

ModelInstanceName::ModelInstanceName(const QORSmrPtr<ModelShape>& shape, const ModelSlot* slots)
    : _shape(shape), _values(new ModelSlot[shape->keysByName.size()]) {
  std::string text;
  model::PathText path(text, shape->nameSpace, shape->className);
  ModelSlot* value = _values.get();
  for (const QORuint32 position : shape->keysByName) {
    value++->copy(slots[position]);
    path.addKey(shape->layout->getName(position), slots[position].scalar(), *shape->layout->getType(position));
  }
  _path = QORString(text);
}

ModelInstanceName::~ModelInstanceName() = default;

const QORSmrPtr<IQoriInstanceName::KeyList>& ModelInstanceName::getKeys() const {
  std::call_once(_keysMade, [this] { _keys = makeKeys(); });
  return _keys;
}

QORSmrPtr<IQoriInstanceName::KeyList> ModelInstanceName::makeKeys() const {
  QORSmrPtr<KeyList> keys(new KeyList);
  const ModelSlot* value = _values.get();
  for (const QORuint32 position : _shape->keysByName) {
    const QORSmrPtr<IQoriType>& type = _shape->layout->getType(position);
    keys->append(
        QORSmrPtr<IQoriProperty>::Make<CQoriProperty>(_shape->layout->getName(position), type, value++->value(type)));
  }
  return keys;
}
