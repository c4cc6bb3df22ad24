// What type the values of each column have in all rows, for forms that tell it before the first row.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ColumnTypes.h"

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

std::string namesOf(QORuint32 types) {
  std::string told;
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    if ((types & QORuint32{1} << i) != 0) told += (told.empty() ? "" : ", ") + std::string(kNames[i]);
  }
  return told;
}

bool holdsObjects(const CimPropertyDeclaration& property) {
  return property.findQualifier("EmbeddedInstance") != nullptr || property.hasFlag("EmbeddedObject");
}

// Embedded objects are declared as texts.
bool hasDeclaredValues(const QORQL_ResultReader::Column& column, const CimPropertyDeclaration& property) {
  return !holdsObjects(property) &&
         (column.typeName.isEmpty() || column.typeName.isEqualCaseInsensitive(property.type->getName()));
}

}  // namespace

DateTimes dateTimesOf(std::string_view text) noexcept {
  const QoriDateTime read = qori::readDateTime(text);
  if (!read.complete) return DateTimes::Texts;
  return read.interval ? DateTimes::Intervals : DateTimes::Timestamps;
}

ColumnTypes::ColumnTypes(const std::vector<QORQL_ResultReader::Column>& columns, const Declared& declared, Look look)
    : _seen(columns.size()) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const QORQL_ResultReader::Column& column = columns[i];
    std::optional<CimPropertyDeclaration> property;
    if (!column.className.isEmpty()) property = declared(column.className, column.propertyName);
    if (property) {
      _seen[i].isDeclaredArray = property->type->isArray();
      _seen[i].isDeclaredObject = look == Look::Types && holdsObjects(*property);
      _seen[i].referenceClass = property->referenceClass;
    }
    if (property && look == Look::Types && !hasDeclaredValues(column, *property)) property.reset();
    if (property) _seen[i].declared = nameOf(CQoriType::codeOf(*property->type));
    const bool isTold = property && (look == Look::Types || CQoriType::codeOf(*property->type) != Code::DateTime);
    if (!isTold) _open.push_back(i);
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

bool ColumnTypes::findType(const Seen& seen, std::string_view& name) {
  constexpr QORuint64 kMostSigned = std::numeric_limits<QORsint64>::max();
  constexpr QORuint32 kIntegers = kUnsigned | kSigned;
  const QORuint32 types = seen.types;
  if (seen.hasArray && seen.hasScalar) return false;
  if (types == 0) {
    if (seen.isDeclaredObject) name = nameOf(Code::Object);
    return true;
  }
  Code code = widest(types);
  if (!std::has_single_bit(types)) {
    if ((types & ~(kIntegers | kReals)) != 0) return false;
    if ((types & kReals) != 0) {
      code = Code::Real64;
    } else if ((types & kSigned) != 0 && (types & kUnsigned) != 0) {
      if (seen.hasNegative && seen.greatest > kMostSigned) return false;
      code = seen.hasNegative ? Code::Sint64 : Code::Uint64;
    }
  }
  name = nameOf(code);
  return true;
}

void ColumnTypes::Type::widenTo(std::string_view expected) {
  constexpr std::size_t kFamily = 4;  // the length of "uint", "sint" and "real"
  if (isArray || !conflict.empty() || expected.empty()) return;
  if (name.empty() || name.substr(0, kFamily) == expected.substr(0, kFamily)) name = expected;
}

std::vector<ColumnTypes::Type> ColumnTypes::settle() const {
  std::vector<Type> types;
  for (const Seen& seen : _seen) {
    Type& type = types.emplace_back();
    type.name = seen.declared;
    const bool isSeen = seen.hasArray || seen.hasScalar;
    type.isArray = seen.declared.empty() && isSeen ? seen.hasArray : seen.isDeclaredArray;
    type.referenceClass = seen.referenceClass;
    type.dateTimes = dateTimesOf(seen);
    if (seen.declared.empty() && !findType(seen, type.name)) type.conflict = namesOf(seen.types);
  }
  return types;
}
