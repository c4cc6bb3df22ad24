// Scalars by CIM type: making, converting and writing them.
// Tested by tests/unit/Model/CQoriValueRelateTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELSCALAR_H
#define QORQL_MODEL_MODELSCALAR_H

#include "cimom/CQoriType.h"
#include "cimom/IQoriValue.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

namespace model {

QoriScalar booleanScalar(bool value) noexcept;
QoriScalar unsignedScalar(QORuint64 value) noexcept;
QoriScalar signedScalar(QORsint64 value) noexcept;
QoriScalar realScalar(QORreal64 value) noexcept;
QoriScalar char16Scalar(char16_t value) noexcept;

// The scalar as `target` holds it: integers wrap, reals truncate and saturate
// (NaN gives 0), booleans are 0 or 1; to boolean, everything but 0 is true.
// False, with the scalar unchanged, when either side is no number, boolean or char16.
bool convertScalar(QoriScalar& scalar, CQoriType::Code target) noexcept;

// The value as text. `code` tells real32 from real64. REQUIRES neither Null nor Complex.
QORString scalarText(const QoriScalar& scalar, CQoriType::Code code);

inline bool holdsArray(const QoriScalar& scalar) noexcept {
  return scalar.kind == QoriScalarKind::Complex && scalar.value->isArray();
}

// Whether the text reads TRUE or FALSE, in any case; `value` says which.
bool readBoolean(const QORString& text, bool& value) noexcept;
// Whether the text is one character of UTF-8 that a char16 can hold.
bool readChar16(const QORString& text, char16_t& value) noexcept;

}  // namespace model

#endif
