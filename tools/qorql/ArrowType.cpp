// The types that columns have in Arrow.
// SPDX-License-Identifier: Apache-2.0
#include "ArrowType.h"

#include "cimom/CQoriType.h"

namespace {

using Kind = ArrowType::Kind;

Kind dateTimeKind(DateTimes dateTimes) {
  if (dateTimes == DateTimes::Texts) return Kind::Text;
  return dateTimes == DateTimes::Timestamps ? Kind::Timestamp : Kind::Duration;
}

}  // namespace

ArrowType arrowTypeOf(const ResultColumn& column) {
  using Code = CQoriType::Code;
  const bool isList = column.isArray;
  if (column.typeName.empty()) return {Kind::Null, 0, false};
  if (column.hasValueTexts) return {Kind::Text, 0, isList};
  switch (CQoriType::codeOf(CQoriType(QORString(column.typeName), isList))) {
    case Code::Uint8:
      return {Kind::Unsigned, 8, isList};
    case Code::Uint16:
      return {Kind::Unsigned, 16, isList};
    case Code::Uint32:
      return {Kind::Unsigned, 32, isList};
    case Code::Uint64:
      return {Kind::Unsigned, 64, isList};
    case Code::Sint8:
      return {Kind::Signed, 8, isList};
    case Code::Sint16:
      return {Kind::Signed, 16, isList};
    case Code::Sint32:
      return {Kind::Signed, 32, isList};
    case Code::Sint64:
      return {Kind::Signed, 64, isList};
    case Code::Real32:
      return {Kind::Real, 32, isList};
    case Code::Real64:
      return {Kind::Real, 64, isList};
    case Code::Boolean:
      return {Kind::Boolean, 0, isList};
    case Code::DateTime:
      return {dateTimeKind(column.dateTimes), 64, isList};
    default:
      return {Kind::Text, 0, isList};
  }
}
