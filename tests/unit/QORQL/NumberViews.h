// Views of numbers, of the kind that a plain number has.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TEST_NUMBERVIEWS_H
#define QORQL_TEST_NUMBERVIEWS_H

#include <type_traits>

#include "cimom/QoriScalar.h"

template <class Number>
QoriScalar number(Number value) {
  QoriScalar scalar;
  if constexpr (std::is_floating_point_v<Number>) {
    scalar.kind = QoriScalarKind::Real;
    scalar.r = value;
  } else if constexpr (std::is_signed_v<Number>) {
    scalar.kind = QoriScalarKind::Signed;
    scalar.s = value;
  } else {
    scalar.kind = QoriScalarKind::Unsigned;
    scalar.u = value;
  }
  return scalar;
}

#endif
