// Order of CIM datetime texts.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelDateTime.h"

#include "cimom/QoriDateTime.h"

namespace model {

bool isDateTime(std::string_view text) noexcept { return qori::readDateTime(text).wellFormed; }

std::strong_ordering compareDateTimes(std::string_view a, std::string_view b) noexcept {
  const QoriDateTime x = qori::readDateTime(a);
  const QoriDateTime y = qori::readDateTime(b);
  if (x.complete && y.complete && x.interval == y.interval) return x.microseconds <=> y.microseconds;
  return a <=> b;
}

}  // namespace model
