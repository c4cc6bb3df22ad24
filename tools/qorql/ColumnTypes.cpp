// What type the values of each column have in all rows, for forms that tell it before the first row.
// SPDX-License-Identifier: Apache-2.0
#include "ColumnTypes.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <string>

#include "cimom/CQoriType.h"
#include "cimom/QoriDateTime.h"

namespace {

using Code = CQoriType::Code;

constexpr QORuint32 bitOf(Code code) noexcept { return QORuint32{1} << static_cast<unsigned>(code); }
constexpr QORuint32 kUnsigned = bitOf(Code::Uint8) | bitOf(Code::Uint16) | bitOf(Code::Uint32) | bitOf(Code::Uint64);
constexpr QORuint32 kSigned = bitOf(Code::Sint8) | bitOf(Code::Sint16) | bitOf(Code::Sint32) | bitOf(Code::Sint64);
constexpr QORuint32 kReals = bitOf(Code::Real32) | bitOf(Code::Real64);

constexpr std::string_view kNames[] = {"sint8",    "uint8",  "sint16",    "uint16", "sint32",  "uint32",
                                       "sint64",   "uint64", "real32",    "real64", "boolean", "string",
                                       "datetime", "char16", "reference", "object", "unknown"};

std::string_view nameOf(Code code) noexcept { return kNames[static_cast<std::size_t>(code)]; }

// The widest of the types that are seen; the codes are in the order of their widths.
Code widest(QORuint32 types) noexcept { return static_cast<Code>(std::bit_width(types) - 1); }

[[noreturn]] void refuse(const std::string& name, QORuint32 types) {
  std::string told;
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    if ((types & QORuint32{1} << i) != 0) told += (told.empty() ? "" : ", ") + std::string(kNames[i]);
  }
  throw QoriBaseException(
      "tool", "qorql", "",
      QORString("column " + name + " has values that no one type holds (" + told + "): -o jsonl or csv can tell them"),
      0);
}

}  // namespace

DateTimes dateTimesOf(std::string_view text) noexcept {
  const QoriDateTime read = qori::readDateTime(text);
  if (!read.complete) return DateTimes::Texts;
  return read.interval ? DateTimes::Intervals : DateTimes::Timestamps;
}

ColumnTypes::ColumnTypes(const std::vector<QORQL_ResultReader::Column>& columns, const Declared& declared)
    : _seen(columns.size()) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const QORQL_ResultReader::Column& column = columns[i];
    std::optional<CimPropertyDeclaration> property;
    if (!column.className.isEmpty()) property = declared(column.className, column.propertyName);
    if (property) {
      _seen[i].declared = nameOf(CQoriType::codeOf(*property->type));
      _seen[i].isDeclaredArray = property->type->isArray();
    }
    if (!property || CQoriType::codeOf(*property->type) == Code::DateTime) _open.push_back(i);
  }
}

void ColumnTypes::see(std::size_t index, const IQoriValue* value) {
  if (value == nullptr) return;
  Seen& seen = _seen[index];
  (value->isArray() ? seen.hasArray : seen.hasScalar) = true;
  if (!value->isArray()) return seeScalar(seen, *value);
  seen.types |= bitOf(CQoriType::codeOf(*value->getType()));
  const QORSmrPtr<IQoriValue::List> elements = value->getArray();
  QORValSlistIterator<IQoriValue::Pointer> it(*elements);
  while (++it) {
    if (!it.key().IsNull()) seeScalar(seen, *it.key());
  }
}

void ColumnTypes::seeScalar(Seen& seen, const IQoriValue& value) {
  seen.types |= bitOf(CQoriType::codeOf(*value.getType()));
  const QoriScalar scalar = value.scalar();
  if (scalar.kind == QoriScalarKind::Signed) {
    if (scalar.s < 0) seen.hasNegative = true;
    seen.greatest = std::max(seen.greatest, scalar.s < 0 ? 0 : static_cast<QORuint64>(scalar.s));
  } else if (scalar.kind == QoriScalarKind::Unsigned) {
    seen.greatest = std::max(seen.greatest, scalar.u);
  } else if (scalar.kind == QoriScalarKind::DateTime) {
    seen.kinds[static_cast<std::size_t>(::dateTimesOf(scalar.text->view()))] = true;
  }
}

// Both kinds in one column are told as texts; a column without values has timestamps, as most have.
DateTimes ColumnTypes::dateTimesOf(const Seen& seen) noexcept {
  const bool hasTimestamps = seen.kinds[static_cast<std::size_t>(DateTimes::Timestamps)];
  const bool hasIntervals = seen.kinds[static_cast<std::size_t>(DateTimes::Intervals)];
  if (seen.kinds[static_cast<std::size_t>(DateTimes::Texts)] || (hasTimestamps && hasIntervals)) {
    return DateTimes::Texts;
  }
  return hasIntervals ? DateTimes::Intervals : DateTimes::Timestamps;
}

std::string_view ColumnTypes::typeOf(const Seen& seen, const std::string& name) {
  constexpr QORuint64 kMostSigned = std::numeric_limits<QORsint64>::max();
  const QORuint32 types = seen.types;
  if (seen.hasArray && seen.hasScalar) refuse(name, types);
  if (types == 0) return {};
  if (std::has_single_bit(types)) return nameOf(widest(types));
  const QORuint32 integers = kUnsigned | kSigned;
  if ((types & ~(integers | kReals)) != 0) refuse(name, types);
  if ((types & kReals) != 0) return nameOf(Code::Real64);
  if ((types & kSigned) == 0 || (types & kUnsigned) == 0) return nameOf(widest(types));
  if (!seen.hasNegative) return nameOf(Code::Uint64);
  if (seen.greatest > kMostSigned) refuse(name, types);
  return nameOf(Code::Sint64);
}

void ColumnTypes::settle(std::vector<ResultColumn>& columns) const {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const Seen& seen = _seen[i];
    ResultColumn& column = columns[i];
    column.typeName = seen.declared.empty() ? typeOf(seen, column.name) : seen.declared;
    column.isArray = seen.declared.empty() ? seen.hasArray : seen.isDeclaredArray;
    column.dateTimes = dateTimesOf(seen);
  }
}
