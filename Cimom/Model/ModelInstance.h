// A stored instance: the class's shared shape and one compact block of values.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELINSTANCE_H
#define QORQL_MODEL_MODELINSTANCE_H

#include <atomic>
#include <cstddef>
#include <vector>

#include "Cimom/Model/ModelNameCache.h"
#include "Cimom/Model/ModelShape.h"
#include "Cimom/Model/ModelSlot.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// Immutable once made; threads may share one. Pointer block, object and values
// are one allocation, so it is made by create() alone.
class ModelInstance final : public IQoriObject {
 public:
  // A value for each position of the layout (missing ones and null pointers:
  // NULL), converted to the declared type. `name` overrides the name that the
  // shape's keys give; `identity` is what getIdentity() gives. THROWS
  // QoriBaseException (type "CIM_Value") naming the property when a value cannot
  // be of its type.
  static QORSmrPtr<IQoriObject> create(const QORSmrPtr<ModelShape>& shape,
                                       const std::vector<QORSmrPtr<IQoriValue>>& values,
                                       const QORSmrPtr<IQoriInstanceName>& name = {}, QORuint64 identity = 0);
  // The same from what `fill` puts into the slots of the new instance, which has one for each position, empty at first;
  // it REQUIRES that they are of the declared types. Null when `fill` returns false. THROWS what that throws.
  template <class Fill>
  static QORSmrPtr<IQoriObject> createFilled(const QORSmrPtr<ModelShape>& shape, QORuint64 identity, const Fill& fill) {
    QORSmrPtr<IQoriObject> made = createEmpty(shape, identity);
    return fill(static_cast<ModelInstance&>(*made).mutableSlots()) ? made : QORSmrPtr<IQoriObject>();
  }
  ModelInstance(const ModelInstance&) = delete;
  ModelInstance& operator=(const ModelInstance&) = delete;
  ~ModelInstance() override;

  const ModelShape& shape() const noexcept { return *_shape.Get(); }

  const QORString& getClassName() const noexcept override { return shape().className; }
  // Made at the first call, then shared. Null when the shape has no keys or a key has no value.
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override;
  void appendPath(std::string& text) const override;
  QORuint32 getPathHash() const override;
  QORuint64 getIdentity() const noexcept override { return _identity; }
  QORString getNameSpace() const override { return shape().nameSpace; }
  QORuint32 getPropertyCount() const noexcept override { return _count; }
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override;
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool includeInherited) const override;
  const IQoriLayout* getLayout() const noexcept override { return shape().layout.Get(); }
  QoriScalar getScalarAt(QORuint32 position) const noexcept override { return slots()[position].scalar(); }
  QORSmrPtr<IQoriValue> getValueAt(QORuint32 position) const override;
  QoriCells getCells() const noexcept override {
    return {shape().layout.Get(), reinterpret_cast<const char*>(slots())};
  }

  // BORROWS: the values by position, valid while the instance lives.
  const ModelSlot* slots() const noexcept { return reinterpret_cast<const ModelSlot*>(this + 1); }

 private:
  friend class QORSmrPtr<IQoriObject>;

  // REQUIRES room for the slots directly after the object.
  explicit ModelInstance(const QORSmrPtr<ModelShape>& shape) noexcept;

  static QORSmrPtr<IQoriObject> createEmpty(const QORSmrPtr<ModelShape>& shape, QORuint64 identity);
  ModelSlot* mutableSlots() noexcept { return reinterpret_cast<ModelSlot*>(this + 1); }
  void fill(const std::vector<QORSmrPtr<IQoriValue>>& values);
  // Whether the shape's keys give a name.
  bool hasKeys() const noexcept;
  QORSmrPtr<IQoriInstanceName> makeName() const;

  QORSmrPtr<ModelShape> _shape;
  QORuint64 _identity = 0;
  ModelNameCache _name;
  mutable std::atomic<QORuint32> _pathHash{0};  // 0: not worked out yet
  QORuint32 _count : 31;                        // slots in the memory directly after this object
  QORuint32 _hasGivenName : 1;                  // which replaces the name that the keys give
};

#endif
