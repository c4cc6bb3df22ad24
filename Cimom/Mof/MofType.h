// The types of MOF and the values that literals make of them.
// Tested by tests/unit/Mof/MofClassTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFTYPE_H
#define QORQL_MOF_MOFTYPE_H

#include <functional>

#include "Cimom/Mof/MofSyntax.h"
#include "cimom/IQoriType.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// One for each type, for the life of the process.
struct MofType {
  enum class Kind { Unsigned, Signed, Real, Boolean, Text, DateTime, Char16, Reference, Object };

  Kind kind;
  QORuint32 bits;  // of a number
  QORSmrPtr<IQoriType> scalar;
  QORSmrPtr<IQoriType> array;

  const QORString& getName() const noexcept { return scalar->getName(); }
};

// BORROWS: the type by its name, ignoring case; null when there is none.
const MofType* findMofType(const QORString& name);

// The value that a literal makes of a type that is neither reference nor
// object; null for NULL. THROWS MofFault when the literal is of another kind,
// out of range or no datetime.
IQoriValue::Pointer makeMofScalar(const MofValueSyntax& literal, const MofType& type);

// The value that makes each element of an array; null for NULL.
using MofElementMaker = std::function<IQoriValue::Pointer(const MofValueSyntax&)>;
// A scalar or, when `isArray` is set, an array of at most `arraySize` elements
// (-1: any number). THROWS MofFault.
IQoriValue::Pointer makeMofValue(const MofValueSyntax& value, const MofType& type, bool isArray, QORsint32 arraySize,
                                 const MofElementMaker& makeElement);
// The same for types that are neither reference nor object. Texts are made in memory of the slabs.
IQoriValue::Pointer makeMofValue(const MofValueSyntax& value, const MofType& type, bool isArray, QORsint32 arraySize,
                                 QORSlabs& slabs);

// What kind of value it is, for messages: "a string", "an array", ...
const char* describeMofValue(const MofValueSyntax& value) noexcept;
[[noreturn]] void refuseMofKind(const MofValueSyntax& value, const QORString& wanted);

#endif
