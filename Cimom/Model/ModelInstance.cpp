// Stored instances.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelInstance.h"

#include <algorithm>
#include <memory>
#include <new>

#include "Cimom/Model/ModelError.h"
#include "Cimom/Model/ModelInstanceName.h"
#include "Cimom/Model/ModelPath.h"
#include "cimom/CQoriProperty.h"

static_assert(sizeof(ModelInstance) % alignof(ModelSlot) == 0, "the slots follow the instance");

QORSmrPtr<IQoriObject> ModelInstance::create(const QORSmrPtr<ModelShape>& shape,
                                             const std::vector<QORSmrPtr<IQoriValue>>& values,
                                             const QORSmrPtr<IQoriInstanceName>& name, QORuint64 identity) {
  QORSmrPtr<IQoriObject> made = createEmpty(shape, identity);
  ModelInstance& instance = static_cast<ModelInstance&>(*made);
  instance.fill(values);
  if (!name.IsNull()) {
    instance._name.keep(name);
    instance._hasGivenName = 1;
  }
  return made;
}

QORSmrPtr<IQoriObject> ModelInstance::createEmpty(const QORSmrPtr<ModelShape>& shape, QORuint64 identity) {
  const std::size_t room = shape->layout->getPropertyCount() * sizeof(ModelSlot);
  QORSmrPtr<IQoriObject> made = QORSmrPtr<IQoriObject>::MakeWithRoom<ModelInstance>(room, shape);
  static_cast<ModelInstance&>(*made)._identity = identity;
  return made;
}

ModelInstance::ModelInstance(const QORSmrPtr<ModelShape>& shape) noexcept
    : _shape(shape), _count(shape->layout->getPropertyCount() & 0x7fffffffU), _hasGivenName(0) {
  std::uninitialized_default_construct_n(mutableSlots(), _count);
}

ModelInstance::~ModelInstance() { std::destroy_n(mutableSlots(), _count); }

void ModelInstance::fill(const std::vector<QORSmrPtr<IQoriValue>>& values) {
  const QORuint32 given = std::min<QORuint32>(_count, static_cast<QORuint32>(values.size()));
  const ModelLayout& layout = *shape().layout.Get();
  for (QORuint32 i = 0; i < given; ++i) {
    try {
      mutableSlots()[i].set(values[i], layout.getType(i));
    } catch (const QoriBaseException& error) {
      model::raiseValueError("create",
                             "Property " + shape().className + "." + layout.getName(i) + ": " + error.getMessage());
    }
  }
}

QORSmrPtr<IQoriInstanceName> ModelInstance::getInstanceName() const {
  return _name.get([this] { return makeName(); });
}

bool ModelInstance::hasKeys() const noexcept {
  const std::vector<QORuint32>& keys = shape().keyPositions;
  return !keys.empty() && std::none_of(keys.begin(), keys.end(),
                                       [this](QORuint32 position) { return slots()[position].scalar().isNull(); });
}

void ModelInstance::appendPath(std::string& text) const {
  if (_hasGivenName != 0) return IQoriObject::appendPath(text);
  if (!hasKeys()) return;
  const ModelLayout& layout = *shape().layout.Get();
  model::PathText path(text, shape().nameSpace, shape().className);
  for (const QORuint32 position : shape().keysByName) {
    path.addKey(layout.getName(position), slots()[position].scalar(), *layout.getType(position));
  }
}

// Threads that meet at the first request work out the same number.
QORuint32 ModelInstance::getPathHash() const {
  QORuint32 hash = _pathHash.load(std::memory_order_relaxed);
  if (hash == 0) {
    hash = IQoriObject::getPathHash();
    _pathHash.store(hash, std::memory_order_relaxed);
  }
  return hash;
}

QORSmrPtr<IQoriInstanceName> ModelInstance::makeName() const {
  if (!hasKeys()) return {};
  return QORSmrPtr<IQoriInstanceName>::Make<ModelInstanceName>(_shape, slots());
}

QORSmrPtr<IQoriProperty> ModelInstance::getPropertyAt(QORuint32 position) const {
  const ModelLayout& layout = *shape().layout.Get();
  return QORSmrPtr<IQoriProperty>::Make<CQoriProperty>(layout.getName(position), layout.getType(position),
                                                       getValueAt(position));
}

QORSmrPtr<IQoriProperty> ModelInstance::getProperty(const QORString& name, bool /*includeInherited*/) const {
  const QORsint32 position = shape().layout->getPosition(name);
  return position < 0 ? QORSmrPtr<IQoriProperty>() : getPropertyAt(static_cast<QORuint32>(position));
}

QORSmrPtr<IQoriValue> ModelInstance::getValueAt(QORuint32 position) const {
  return slots()[position].value(shape().layout->getType(position));
}
