// Conversion of literals, with the checks of range.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofType.h"

#include <limits>
#include <string>
#include <vector>

#include "Cimom/Mof/MofDateTime.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

using Kind = MofType::Kind;

std::vector<MofType> makeTypes() {
  struct Row {
    const char* name;
    Kind kind;
    QORuint32 bits;
  };
  constexpr Row kRows[] = {
      {"string", Kind::Text, 0},      {"uint8", Kind::Unsigned, 8},    {"uint16", Kind::Unsigned, 16},
      {"uint32", Kind::Unsigned, 32}, {"uint64", Kind::Unsigned, 64},  {"sint8", Kind::Signed, 8},
      {"sint16", Kind::Signed, 16},   {"sint32", Kind::Signed, 32},    {"sint64", Kind::Signed, 64},
      {"boolean", Kind::Boolean, 0},  {"datetime", Kind::DateTime, 0}, {"real32", Kind::Real, 32},
      {"real64", Kind::Real, 64},     {"char16", Kind::Char16, 0},     {"reference", Kind::Reference, 0},
      {"object", Kind::Object, 0}};
  std::vector<MofType> types;
  for (const Row& row : kRows) {
    const QORSmrPtr<IQoriType> scalar = CQoriType::find(row.name, false);
    types.push_back({row.kind, row.bits, scalar, CQoriType::arrayOf(scalar)});
  }
  return types;
}

[[noreturn]] void refuseRange(const MofValueSyntax& literal, const MofType& type, const std::string& least,
                              const std::string& greatest) {
  throw MofFault{literal.at, std::string(literal.text.view()) + " is out of the range of " +
                                 std::string(type.getName().view()) + " (" + least + " to " + greatest + ')'};
}

IQoriValue::Pointer makeUnsigned(const MofValueSyntax& literal, const MofType& type) {
  const QORuint64 greatest = std::numeric_limits<QORuint64>::max() >> (64 - type.bits);
  if (literal.magnitude > greatest || (literal.flag && literal.magnitude != 0)) {
    refuseRange(literal, type, "0", std::to_string(greatest));
  }
  return IQoriValue::Pointer::Make<CQoriValue>(static_cast<unsigned long long>(literal.magnitude), type.scalar);
}

IQoriValue::Pointer makeSigned(const MofValueSyntax& literal, const MofType& type) {
  const QORuint64 greatest = (std::numeric_limits<QORuint64>::max() >> (64 - type.bits)) >> 1;
  if (literal.magnitude > greatest + (literal.flag ? 1 : 0)) {
    refuseRange(literal, type, '-' + std::to_string(greatest + 1), std::to_string(greatest));
  }
  // Negated without sign: the smallest number has no positive counterpart.
  const QORuint64 bits = literal.flag ? 0 - literal.magnitude : literal.magnitude;
  return IQoriValue::Pointer::Make<CQoriValue>(static_cast<long long>(bits), type.scalar);
}

IQoriValue::Pointer makeReal(const MofValueSyntax& literal, const MofType& type) {
  double value = literal.real;
  if (literal.kind == MofValueSyntax::Kind::Integer) {
    value = static_cast<double>(literal.magnitude);
    if (literal.flag) value = -value;
  }
  constexpr double kGreatest = std::numeric_limits<QORreal32>::max();
  if (type.bits == 32 && (value > kGreatest || value < -kGreatest)) {
    refuseRange(literal, type, "-3.4028235e+38", "3.4028235e+38");
  }
  return IQoriValue::Pointer::Make<CQoriValue>(value, type.scalar);
}

IQoriValue::Pointer makeChar(const MofValueSyntax& literal, const MofType& type) {
  char16_t character = literal.character;
  if (literal.kind == MofValueSyntax::Kind::Integer) {
    if (literal.flag || literal.magnitude > 0xFFFF) refuseRange(literal, type, "0", "65535");
    character = static_cast<char16_t>(literal.magnitude);
  }
  return IQoriValue::Pointer::Make<CQoriValue>(character, type.scalar);
}

IQoriValue::Pointer makeDateTime(const MofValueSyntax& literal, const MofType& type) {
  if (const char* const fault = faultOfMofDateTime(literal.text.view()); fault != nullptr) {
    throw MofFault{literal.at,
                   "malformed datetime \"" + std::string(literal.text.view().substr(0, 40)) + "\": " + fault};
  }
  return IQoriValue::Pointer::Make<CQoriValue>(literal.text, type.scalar);
}

}  // namespace

const MofType* findMofType(const QORString& name) {
  static const std::vector<MofType>& types = *new std::vector<MofType>(makeTypes());  // stays to the last thread's end
  for (const MofType& type : types) {
    if (type.getName().isEqualCaseInsensitive(name)) return &type;
  }
  return nullptr;
}

IQoriValue::Pointer makeMofScalar(const MofValueSyntax& literal, const MofType& type) {
  using Literal = MofValueSyntax::Kind;
  if (literal.kind == Literal::Null) return {};
  const bool isInteger = literal.kind == Literal::Integer;
  switch (type.kind) {
    case Kind::Unsigned:
      if (isInteger) return makeUnsigned(literal, type);
      break;
    case Kind::Signed:
      if (isInteger) return makeSigned(literal, type);
      break;
    case Kind::Real:
      if (isInteger || literal.kind == Literal::Real) return makeReal(literal, type);
      break;
    case Kind::Boolean:
      if (literal.kind == Literal::Boolean) return IQoriValue::Pointer::Make<CQoriValue>(literal.flag, type.scalar);
      break;
    case Kind::Text:
      if (literal.kind == Literal::Text) return IQoriValue::Pointer::Make<CQoriValue>(literal.text);
      break;
    case Kind::DateTime:
      if (literal.kind == Literal::Text) return makeDateTime(literal, type);
      break;
    case Kind::Char16:
      if (isInteger || literal.kind == Literal::Char16) return makeChar(literal, type);
      break;
    default:
      break;
  }
  refuseMofKind(literal, type.getName());
}

namespace {

// Refuses what is no array, and one that has too many elements.
void requireArray(const MofValueSyntax& value, const MofType& type, QORsint32 arraySize) {
  if (value.kind != MofValueSyntax::Kind::Array) refuseMofKind(value, type.getName() + "[]");
  if (arraySize >= 0 && value.elements.size() > static_cast<std::size_t>(arraySize)) {
    throw MofFault{value.at, "the array holds " + std::to_string(value.elements.size()) + " elements, at most " +
                                 std::to_string(arraySize) + " are declared"};
  }
}

IQoriValue::Pointer makeScalarIn(QORSlabs& slabs, const MofValueSyntax& literal, const MofType& type) {
  const bool isText = literal.kind == MofValueSyntax::Kind::Text && type.kind == Kind::Text;
  return isText ? IQoriValue::Pointer::MakeIn<CQoriValue>(slabs, literal.text) : makeMofScalar(literal, type);
}

}  // namespace

IQoriValue::Pointer makeMofValue(const MofValueSyntax& value, const MofType& type, bool isArray, QORsint32 arraySize,
                                 const MofElementMaker& makeElement) {
  if (value.kind == MofValueSyntax::Kind::Null) return {};
  if (!isArray) return makeElement(value);
  requireArray(value, type, arraySize);
  QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List());
  for (const MofValueSyntax& element : value.elements) {
    const bool isNull = element.kind == MofValueSyntax::Kind::Null;
    elements->append(isNull ? IQoriValue::Pointer() : makeElement(element));
  }
  return IQoriValue::Pointer::Make<CQoriValue>(elements, type.array);
}

IQoriValue::Pointer makeMofValue(const MofValueSyntax& value, const MofType& type, bool isArray, QORsint32 arraySize,
                                 QORSlabs& slabs) {
  if (value.kind == MofValueSyntax::Kind::Null) return {};
  if (!isArray) return makeScalarIn(slabs, value, type);
  requireArray(value, type, arraySize);
  const auto elements = QORSmrPtr<IQoriValue::List>::Make();
  for (const MofValueSyntax& element : value.elements) elements->append(makeScalarIn(slabs, element, type), slabs);
  return IQoriValue::Pointer::Make<CQoriValue>(elements, type.array);
}

const char* describeMofValue(const MofValueSyntax& value) noexcept {
  constexpr const char* kWords[] = {"NULL",     "a boolean", "an integer", "a real number", "a character",
                                    "a string", "an alias",  "an array",   "an instance"};
  return kWords[static_cast<std::size_t>(value.kind)];
}

void refuseMofKind(const MofValueSyntax& value, const QORString& wanted) {
  throw MofFault{value.at, std::string("found ") + describeMofValue(value) + ", expected a value of type " +
                               std::string(wanted.view())};
}
