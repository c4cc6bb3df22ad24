// A column's type holds all of its values, or there is none.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/Server/ColumnTypes.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Value = QORSmrPtr<IQoriValue>;

Value number(long long value, const QORSmrPtr<IQoriType>& type) { return Value(new CQoriValue(value, type)); }
Value unsignedNumber(unsigned long long value) { return Value(new CQoriValue(value, CQoriType::uint64)); }

// The type of a computed column with these values.
ColumnTypes::Type typeOf(const std::vector<Value>& values) {
  ColumnTypes types({QORQL_Result::Column()}, [](const QORString&, const QORString&) { return std::nullopt; });
  for (const Value& value : values) types.see(0, value.Get());
  return types.settle().front();
}

TEST(ColumnTypes, ValuesOfOneTypeHaveThatOne) {
  EXPECT_EQ(typeOf({number(1, CQoriType::sint16), Value()}).name, "sint16");
  EXPECT_EQ(typeOf({Value()}).name, "");
}

TEST(ColumnTypes, NumbersOfSeveralTypesHaveOneThatHoldsThemAll) {
  EXPECT_EQ(typeOf({number(1, CQoriType::sint16), number(1, CQoriType::sint32)}).name, "sint32");
  EXPECT_EQ(typeOf({number(1, CQoriType::sint16), unsignedNumber(1)}).name, "uint64");
  EXPECT_EQ(typeOf({number(-1, CQoriType::sint16), unsignedNumber(1)}).name, "sint64");
  EXPECT_EQ(typeOf({Value(new CQoriValue(1.5, CQoriType::real64)), unsignedNumber(1)}).name, "real64");
}

TEST(ColumnTypes, AreWidenedToWhatWasExpectedWithinTheirFamily) {
  const auto widened = [](const std::vector<Value>& values, std::string_view expected) {
    ColumnTypes::Type type = typeOf(values);
    type.widenTo(expected);
    return std::string(type.name);
  };
  EXPECT_EQ(widened({}, "uint64"), "uint64");
  EXPECT_EQ(widened({}, ""), "");
  EXPECT_EQ(widened({Value(new CQoriValue(7ULL, CQoriType::uint8))}, "uint64"), "uint64");
  EXPECT_EQ(widened({number(1, CQoriType::sint64)}, "uint64"), "sint64");
  EXPECT_EQ(widened({Value(new CQoriValue(QORString("x")))}, "real64"), "string");
}

TEST(ColumnTypes, WhatNoTypeHoldsIsToldByTheTypes) {
  const ColumnTypes::Type tooWide = typeOf({number(-1, CQoriType::sint64), unsignedNumber(~0ULL)});
  EXPECT_EQ(tooWide.conflict, "sint64, uint64");
  const ColumnTypes::Type mixed = typeOf({Value(new CQoriValue(QORString("x"))), unsignedNumber(1)});
  EXPECT_EQ(mixed.conflict, "uint64, string");
  EXPECT_THAT(typeOf({unsignedNumber(1)}).conflict, IsEmpty());
}

TEST(ColumnTypes, ValuesThatAreNotAsDeclaredAreLookedAt) {
  QORQL_Result::Column column;
  column.className = "CIM_X";
  column.propertyName = "Note";
  column.typeName = "object";
  const auto declared = [](const QORString&, const QORString&) {
    CimPropertyDeclaration property;
    property.type = CQoriType::string;
    return std::optional(property);
  };
  EXPECT_THAT(ColumnTypes({column}, declared, ColumnTypes::Look::Types).open(), ElementsAre(0U));
  EXPECT_THAT(ColumnTypes({column}, declared).open(), IsEmpty());
}

TEST(ColumnTypes, DeclaredColumnsAreLookedAtForTheirDateTimesAlone) {
  QORQL_Result::Column column;
  column.className = "CIM_X";
  column.propertyName = "Since";
  const auto declared = [](const QORString&, const QORString&) {
    CimPropertyDeclaration property;
    property.type = CQoriType::datetime;
    return std::optional(property);
  };
  EXPECT_THAT(ColumnTypes({column}, declared).open(), ElementsAre(0U));
  const ColumnTypes types({column}, declared, ColumnTypes::Look::Types);
  EXPECT_THAT(types.open(), IsEmpty());
  EXPECT_EQ(types.settle().front().name, "datetime");
}

}  // namespace
