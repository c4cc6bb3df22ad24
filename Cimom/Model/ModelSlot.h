// One stored value.
// Tested by tests/unit/Model/ModelInstanceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELSLOT_H
#define QORQL_MODEL_MODELSLOT_H

#include <type_traits>

#include "cimom/IQoriType.h"
#include "cimom/IQoriValue.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

// One value in place: numbers and booleans in the scalar itself, texts in a
// string beside it, anything else as a held value.
class ModelSlot {
 public:
  ModelSlot() noexcept {}
  ModelSlot(const ModelSlot&) = delete;
  ModelSlot& operator=(const ModelSlot&) = delete;
  ~ModelSlot();

  // Takes the value, converted to the type. A null value leaves the slot empty.
  // REQUIRES an empty slot. THROWS QoriBaseException (type "CIM_Value") when the
  // value cannot be of that type.
  void set(const QORSmrPtr<IQoriValue>& value, const QORSmrPtr<IQoriType>& type);
  // Takes what the other slot holds. REQUIRES an empty slot.
  void copy(const ModelSlot& other);
  // Takes a number, a boolean or a character as it is. REQUIRES an empty slot.
  void setScalar(const QoriScalar& scalar) noexcept { _scalar = scalar; }
  // Takes a text of that kind, Text or DateTime. REQUIRES an empty slot.
  void setText(const QORString& text, QoriScalarKind kind) noexcept { holdText(text, kind); }
  // Takes an array, a reference or an embedded object. REQUIRES an empty slot.
  void setComplex(const QORSmrPtr<IQoriValue>& value) noexcept { holdValue(value); }
  // BORROWS: valid while the slot lives.
  const QoriScalar& scalar() const noexcept { return _scalar; }
  // The value as an object; null when the slot is empty. A new object for scalars.
  QORSmrPtr<IQoriValue> value(const QORSmrPtr<IQoriType>& type) const;

 private:
  void holdText(const QORString& text, QoriScalarKind kind) noexcept;
  void holdValue(const QORSmrPtr<IQoriValue>& value) noexcept;

  QoriScalar _scalar;
  union {
    QORString _text;               // of kinds Text and DateTime
    QORSmrPtr<IQoriValue> _value;  // of kind Complex
  };
};

// So that a pointer to a slot is one to its view, as QoriCells needs it.
static_assert(std::is_standard_layout_v<ModelSlot>);

#endif
