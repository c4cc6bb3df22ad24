// Stored instances.
#include "Cimom/Model/ModelInstance.h"

#include <algorithm>
#include <memory>
#include <new>

#include "Cimom/Model/ModelError.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

static_assert(sizeof(ModelInstance) % alignof(ModelSlot) == 0, "the slots follow the instance");

namespace {

using Kind = QoriScalarKind;

bool isText(Kind kind) noexcept { return kind == Kind::Text || kind == Kind::DateTime; }

bool isOfType(const IQoriValue& value, const QORSmrPtr<IQoriType>& type) noexcept {
  const IQoriType& own = *value.getType().Get();
  return &own == type.Get() ||
         (own.isArray() == type->isArray() && own.getName().isEqualCaseInsensitive(type->getName()));
}

}  // namespace

void ModelSlot::set(const QORSmrPtr<IQoriValue>& value, const QORSmrPtr<IQoriType>& type) {
  if (value.IsNull()) return;
  if (!isOfType(*value, type)) return set(QORSmrPtr<IQoriValue>(new CQoriValue(*value, type)), type);
  const QoriScalar scalar = value->scalar();
  if (isText(scalar.kind)) {
    new (&_text) QORString(*scalar.text);
    _scalar.text = &_text;
  } else if (scalar.kind == Kind::Complex) {
    new (&_value) QORSmrPtr<IQoriValue>(value);
    _scalar.value = value.Get();
  } else {
    _scalar = scalar;
  }
  _scalar.kind = scalar.kind;
}

ModelSlot::~ModelSlot() {
  if (isText(_scalar.kind)) _text.~QORString();
  if (_scalar.kind == Kind::Complex) std::destroy_at(&_value);
}

QORSmrPtr<IQoriValue> ModelSlot::value(const QORSmrPtr<IQoriType>& type) const {
  switch (_scalar.kind) {
    case Kind::Null:
      return {};
    case Kind::Boolean:
      return {new CQoriValue(_scalar.b, type)};
    case Kind::Unsigned:
      return {new CQoriValue(_scalar.u, type)};
    case Kind::Signed:
      return {new CQoriValue(_scalar.s, type)};
    case Kind::Real:
      return {new CQoriValue(_scalar.r, type)};
    case Kind::Char16:
      return {new CQoriValue(_scalar.c, type)};
    case Kind::Complex:
      return _value;
    default:
      return {new CQoriValue(_text, type)};
  }
}

QORSmrPtr<IQoriObject> ModelInstance::create(const QORSmrPtr<ModelShape>& shape,
                                             const std::vector<QORSmrPtr<IQoriValue>>& values,
                                             const QORSmrPtr<IQoriInstanceName>& name) {
  std::unique_ptr<ModelInstance> instance(new (shape->layout->getPropertyCount()) ModelInstance(shape));
  instance->fill(values);
  if (!name.IsNull()) instance->_name.keep(name);
  return {instance.release()};
}

void* ModelInstance::operator new(std::size_t size, QORuint32 slotCount) {
  return ::operator new(size + slotCount * sizeof(ModelSlot));
}

ModelInstance::ModelInstance(const QORSmrPtr<ModelShape>& shape) noexcept
    : _shape(shape), _count(shape->layout->getPropertyCount()) {
  std::uninitialized_default_construct_n(mutableSlots(), _count);
}

ModelInstance::~ModelInstance() { std::destroy_n(mutableSlots(), _count); }

void ModelInstance::fill(const std::vector<QORSmrPtr<IQoriValue>>& values) {
  const QORuint32 given = std::min(_count, static_cast<QORuint32>(values.size()));
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

QORSmrPtr<IQoriInstanceName> ModelInstance::makeName() const {
  if (shape().keyPositions.empty()) return {};
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  for (const QORuint32 position : shape().keyPositions) {
    if (slots()[position].scalar().isNull()) return {};
    keys->append(getPropertyAt(position));
  }
  const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(QORString::emptyString(), shape().nameSpace));
  return {new CQoriInstanceName(shape().className, keys, path)};
}

QORSmrPtr<IQoriProperty> ModelInstance::getPropertyAt(QORuint32 position) const {
  const ModelLayout& layout = *shape().layout.Get();
  return {new CQoriProperty(layout.getName(position), layout.getType(position), getValueAt(position))};
}

QORSmrPtr<IQoriProperty> ModelInstance::getProperty(const QORString& name, bool /*includeInherited*/) const {
  const QORsint32 position = shape().layout->getPosition(name);
  return position < 0 ? QORSmrPtr<IQoriProperty>() : getPropertyAt(static_cast<QORuint32>(position));
}

QORSmrPtr<IQoriValue> ModelInstance::getValueAt(QORuint32 position) const {
  return slots()[position].value(shape().layout->getType(position));
}
