// The type singletons and their table.
// SPDX-License-Identifier: Apache-2.0
#include "cimom/CQoriType.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <typeinfo>

namespace {

using Code = CQoriType::Code;

constexpr std::size_t kTypeCount = static_cast<std::size_t>(Code::Unknown);

// By code.
constexpr std::array<std::string_view, kTypeCount> kTypeNames = {
    "sint8",  "uint8",  "sint16",  "uint16", "sint32",   "uint32", "sint64",    "uint64",
    "real32", "real64", "boolean", "string", "datetime", "char16", "reference", "object"};

Code codeOfName(std::string_view name) noexcept {
  for (std::size_t i = 0; i < kTypeCount; ++i) {
    if (QORString::equalIgnoringCase(name, kTypeNames[i])) return static_cast<Code>(i);
  }
  return Code::Unknown;
}

QORSmrPtr<IQoriType> makeType(Code code, bool isArray = false) {
  return {new CQoriType(QORString(kTypeNames[static_cast<std::size_t>(code)]), isArray)};
}

}  // namespace

const QORSmrPtr<IQoriType> CQoriType::sint8 = makeType(Code::Sint8);
const QORSmrPtr<IQoriType> CQoriType::uint8 = makeType(Code::Uint8);
const QORSmrPtr<IQoriType> CQoriType::sint16 = makeType(Code::Sint16);
const QORSmrPtr<IQoriType> CQoriType::uint16 = makeType(Code::Uint16);
const QORSmrPtr<IQoriType> CQoriType::sint32 = makeType(Code::Sint32);
const QORSmrPtr<IQoriType> CQoriType::uint32 = makeType(Code::Uint32);
const QORSmrPtr<IQoriType> CQoriType::sint64 = makeType(Code::Sint64);
const QORSmrPtr<IQoriType> CQoriType::uint64 = makeType(Code::Uint64);
const QORSmrPtr<IQoriType> CQoriType::real32 = makeType(Code::Real32);
const QORSmrPtr<IQoriType> CQoriType::real64 = makeType(Code::Real64);
const QORSmrPtr<IQoriType> CQoriType::boolean = makeType(Code::Boolean);
const QORSmrPtr<IQoriType> CQoriType::string = makeType(Code::String);
const QORSmrPtr<IQoriType> CQoriType::datetime = makeType(Code::DateTime);
const QORSmrPtr<IQoriType> CQoriType::char16 = makeType(Code::Char16);
const QORSmrPtr<IQoriType> CQoriType::reference = makeType(Code::Reference);
const QORSmrPtr<IQoriType> CQoriType::object = makeType(Code::Object);

namespace {

using TypeTable = std::array<QORSmrPtr<IQoriType>, kTypeCount>;

// The tables are never destroyed: queries may still run while the process ends.
const TypeTable& scalarTypes() {
  static const TypeTable& types =
      *new TypeTable{CQoriType::sint8,    CQoriType::uint8,  CQoriType::sint16,    CQoriType::uint16,
                     CQoriType::sint32,   CQoriType::uint32, CQoriType::sint64,    CQoriType::uint64,
                     CQoriType::real32,   CQoriType::real64, CQoriType::boolean,   CQoriType::string,
                     CQoriType::datetime, CQoriType::char16, CQoriType::reference, CQoriType::object};
  return types;
}

TypeTable makeArrayTypes() {
  TypeTable types;
  for (std::size_t i = 0; i < kTypeCount; ++i) types[i] = makeType(static_cast<Code>(i), true);
  return types;
}

const TypeTable& arrayTypes() {
  static const TypeTable& types = *new TypeTable(makeArrayTypes());
  return types;
}

// Holds each scalar type once more from the beginning, so that it stays when its constant is destroyed.
[[gnu::used]] const TypeTable& theKeptTypes = scalarTypes();

}  // namespace

CQoriType::CQoriType(const QORString& name, bool isArray)
    : _name(name), _isArray(isArray), _code(codeOfName(name.view())) {}

CQoriType::~CQoriType() = default;

CQoriType::Code CQoriType::codeOf(const IQoriType& type) noexcept {
  if (typeid(type) == typeid(CQoriType)) return static_cast<const CQoriType&>(type)._code;
  return codeOfName(type.getName().view());
}

QORSmrPtr<IQoriType> CQoriType::find(const QORString& name, bool isArray) {
  const Code code = codeOfName(name.view());
  if (code == Code::Unknown) return {};
  return (isArray ? arrayTypes() : scalarTypes())[static_cast<std::size_t>(code)];
}

QORSmrPtr<IQoriType> CQoriType::arrayOf(const QORSmrPtr<IQoriType>& element) {
  const Code code = codeOf(*element);
  if (code == Code::Unknown) return {new CQoriType(element->getName(), true)};
  return arrayTypes()[static_cast<std::size_t>(code)];
}
