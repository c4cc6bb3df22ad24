// Arithmetic: exact, or no value.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "ModelTestSupport.h"

namespace {

using namespace model_test;

__extension__ using Wide = __int128;

TEST(CQoriValueArithmetic, UnsignedOperandsGiveUint64) {
  EXPECT_EQ(show(uint8(250)->add(*uint32(10))), "uint64:260");
  EXPECT_EQ(show(uint16(3)->multiply(*uint64(4))), "uint64:12");
  EXPECT_EQ(show(uint32(7)->divide(*uint8(2))), "uint64:3");
}

TEST(CQoriValueArithmetic, OneSignedOperandGivesSint64) {
  EXPECT_EQ(show(sint32(-5)->add(*uint32(3))), "sint64:-2");
  EXPECT_EQ(show(uint32(3)->add(*sint32(5))), "sint64:8");
  EXPECT_EQ(show(sint8(-3)->multiply(*sint8(4))), "sint64:-12");
  EXPECT_EQ(show(sint32(-7)->divide(*uint32(2))), "sint64:-3") << "division truncates";
  EXPECT_EQ(show(sint32(7)->divide(*sint32(-2))), "sint64:-3");
}

TEST(CQoriValueArithmetic, DifferenceIsSigned) {
  EXPECT_EQ(show(uint32(5)->subtract(*uint32(3))), "sint64:2");
  EXPECT_EQ(show(uint32(3)->subtract(*uint32(5))), "sint64:-2");
  EXPECT_EQ(show(sint32(3)->subtract(*uint64(5))), "sint64:-2");
}

TEST(CQoriValueArithmetic, Uint64OnTheLeftStaysUnlessNegative) {
  EXPECT_EQ(show(uint64(5)->subtract(*uint32(3))), "uint64:2");
  EXPECT_EQ(show(uint64(5)->subtract(*sint32(-3))), "uint64:8");
  EXPECT_EQ(show(uint64(3)->subtract(*uint32(5))), "sint64:-2");
  EXPECT_EQ(show(uint64(5)->add(*sint32(-3))), "uint64:2");
  EXPECT_EQ(show(uint64(5)->add(*sint32(-6))), "sint64:-1");
  EXPECT_EQ(show(uint64(6)->divide(*sint32(2))), "uint64:3");
  EXPECT_EQ(show(uint64(6)->divide(*sint32(-2))), "sint64:-3");
  EXPECT_EQ(show(uint64(0)->multiply(*sint32(-2))), "uint64:0");
}

TEST(CQoriValueArithmetic, ResultOutsideTheTypeTakesTheOther64BitType) {
  EXPECT_EQ(show(sint64(INT64_MAX)->add(*sint32(1))), "uint64:9223372036854775808");
  EXPECT_EQ(show(sint64(INT64_MAX)->add(*uint64(9223372036854775808ULL))), "uint64:18446744073709551615");
  EXPECT_EQ(show(sint64(INT64_MIN)->divide(*sint32(-1))), "uint64:9223372036854775808");
  EXPECT_EQ(show(uint32(0)->subtract(*uint64(9223372036854775808ULL))), "sint64:-9223372036854775808");
}

TEST(CQoriValueArithmetic, ResultThatFitsNo64BitTypeIsNull) {
  EXPECT_EQ(show(uint64(UINT64_MAX)->add(*uint8(1))), "null");
  EXPECT_EQ(show(uint64(UINT64_MAX)->multiply(*uint64(UINT64_MAX))), "null") << "beyond 127 bits";
  EXPECT_EQ(show(sint64(INT64_MIN)->subtract(*uint8(1))), "null");
  EXPECT_EQ(show(sint64(INT64_MIN)->multiply(*uint8(2))), "null");
  EXPECT_EQ(show(uint8(0)->subtract(*uint64(9223372036854775809ULL))), "null");
  EXPECT_EQ(show(sint64(INT64_MIN)->multiply(*uint64(UINT64_MAX))), "null");
}

TEST(CQoriValueArithmetic, OneRealOperandGivesReal64) {
  EXPECT_EQ(show(uint8(1)->add(*real64(0.5))), "real64:1.5");
  EXPECT_EQ(show(real32(0.5)->multiply(*sint32(-3))), "real64:-1.5");
  EXPECT_EQ(show(real64(1)->subtract(*uint64(2))), "real64:-1");
  EXPECT_EQ(show(uint8(1)->divide(*real64(4))), "real64:0.25");
  EXPECT_EQ(show(real64(1e308)->multiply(*real64(10))), "real64:inf");
}

TEST(CQoriValueArithmetic, DivisionByZeroIsAnError) {
  EXPECT_EQ(valueError([] { uint8(1)->divide(*uint8(0)); }), "Division by zero");
  EXPECT_EQ(valueError([] { sint32(0)->divide(*sint32(0)); }), "Division by zero");
  EXPECT_EQ(valueError([] { real64(1)->divide(*real64(0)); }), "Division by zero");
  EXPECT_EQ(valueError([] { uint8(1)->divide(*real64(-0.0)); }), "Division by zero");
}

TEST(CQoriValueArithmetic, StringsAddUp) {
  EXPECT_EQ(show(text("ab")->add(*text("cd"))), "string:abcd");
  EXPECT_EQ(show(text("")->add(*text(""))), "string:");
}

TEST(CQoriValueArithmetic, OperandsThatAreNoNumbersAreNamed) {
  EXPECT_EQ(valueError([] { text("a")->add(*uint32(1)); }), "Cannot add string and uint32");
  EXPECT_EQ(valueError([] { uint32(1)->add(*boolean(true)); }), "Cannot add uint32 and boolean");
  EXPECT_EQ(valueError([] { text("a")->subtract(*text("a")); }), "Cannot subtract string from string");
  EXPECT_EQ(valueError([] { uint32(1)->subtract(*datetime("x")); }), "Cannot subtract datetime from uint32");
  EXPECT_EQ(valueError([] { char16(u'a')->multiply(*uint8(2)); }), "Cannot multiply char16 by uint8");
  EXPECT_EQ(valueError([] { uint8(2)->divide(*text("0")); }), "Cannot divide uint8 by string");
  EXPECT_EQ(valueError([] { uint8(2)->add(*embedded(object("C", {}))); }), "Cannot add uint8 and object");
}

TEST(CQoriValueArithmetic, ArraysGiveNull) {
  const Value list = array(CQoriType::uint8, {uint8(1)});
  EXPECT_EQ(show(list->add(*uint8(1))), "null");
  EXPECT_EQ(show(uint8(1)->subtract(*list)), "null");
  EXPECT_EQ(show(list->multiply(*list)), "null");
  EXPECT_EQ(show(text("a")->add(*list)), "null");
  EXPECT_EQ(show(uint8(0)->divide(*list)), "null");
  EXPECT_EQ(show(list->negate()), "null");
}

TEST(CQoriValueArithmetic, NegationWidensUnsignedTypes) {
  EXPECT_EQ(show(uint8(255)->negate()), "sint16:-255");
  EXPECT_EQ(show(uint16(65535)->negate()), "sint32:-65535");
  EXPECT_EQ(show(uint32(4294967295U)->negate()), "sint64:-4294967295");
}

TEST(CQoriValueArithmetic, NegationKeepsSignedAndRealTypes) {
  EXPECT_EQ(show(sint8(5)->negate()), "sint8:-5");
  EXPECT_EQ(show(sint8(-127)->negate()), "sint8:127");
  EXPECT_EQ(show(make(-32767, CQoriType::sint16)->negate()), "sint16:32767");
  EXPECT_EQ(show(sint32(-5)->negate()), "sint32:5");
  EXPECT_EQ(show(sint64(INT64_MAX)->negate()), "sint64:-9223372036854775807");
  EXPECT_EQ(show(real32(0.1)->negate()), "real32:-0.1");
  EXPECT_EQ(show(real64(-2)->negate()), "real64:2");
}

TEST(CQoriValueArithmetic, NegationOfTheSmallestValueIsNull) {
  EXPECT_EQ(show(sint64(INT64_MIN)->negate()), "null");
  EXPECT_EQ(show(sint32(INT32_MIN)->negate()), "null");
  EXPECT_EQ(show(make(-32768, CQoriType::sint16)->negate()), "null");
  EXPECT_EQ(show(sint8(-128)->negate()), "null");
}

TEST(CQoriValueArithmetic, NegationOfUint64AndOfNoNumberIsAnError) {
  EXPECT_EQ(valueError([] { uint64(1)->negate(); }), "Cannot negate uint64");
  EXPECT_EQ(valueError([] { text("1")->negate(); }), "Cannot negate string");
  EXPECT_EQ(valueError([] { boolean(true)->negate(); }), "Cannot negate boolean");
}

// Every pair of edge values, judged by plain 128-bit arithmetic on the result's text.
TEST(CQoriValueArithmetic, SumsAndDifferencesAreExactOnAllEdges) {
  const long long edges[] = {INT64_MIN, INT64_MIN + 1, -1, 0, 1, INT64_MAX - 1, INT64_MAX};
  const auto exact = [](const Value& result, Wide expected) {
    const bool fits = expected >= INT64_MIN && expected <= static_cast<Wide>(UINT64_MAX);
    if (result.IsNull() || !fits) return result.IsNull() && !fits;
    return expected < 0 ? result->getSint64() == expected : result->getUint64() == static_cast<Wide>(expected);
  };
  for (const long long a : edges) {
    for (const long long b : edges) {
      EXPECT_TRUE(exact(sint64(a)->add(*sint64(b)), static_cast<Wide>(a) + b)) << a << " + " << b;
      EXPECT_TRUE(exact(sint64(a)->subtract(*sint64(b)), static_cast<Wide>(a) - b)) << a << " - " << b;
      EXPECT_TRUE(exact(sint64(a)->multiply(*sint64(b)), static_cast<Wide>(a) * b)) << a << " * " << b;
    }
  }
}

}  // namespace
