// Comparison of values.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "AllocationCount.h"
#include "Cimom/Model/ModelDateTime.h"
#include "ModelTestSupport.h"
#include "cimom/QoriDateTime.h"

namespace {

using namespace model_test;

constexpr QoriRelation kAll[] = {QoriRelation::Equal,   QoriRelation::NotEqual,  QoriRelation::Less,
                                 QoriRelation::Greater, QoriRelation::LessEqual, QoriRelation::GreaterEqual};

// The answers of all six relations in the order = <> < > <= >=: T, F or N.
std::string relations(const Value& a, const Value& b) {
  std::string answers;
  for (const QoriRelation relation : kAll) {
    const QoriTruth truth = a->relate(relation, *b);
    answers += truth == QoriTruth::Null ? 'N' : (truth == QoriTruth::True ? 'T' : 'F');
  }
  return answers;
}

constexpr char kEqual[] = "TFFFTT";
constexpr char kLess[] = "FTTFTF";
constexpr char kGreater[] = "FTFTFT";
constexpr char kUnordered[] = "FTFFFF";
constexpr char kNoOrder[] = "NNNNNN";

void expectOrder(const Value& small, const Value& large) {
  EXPECT_EQ(relations(small, large), kLess) << show(small) << " against " << show(large);
  EXPECT_EQ(relations(large, small), kGreater) << show(large) << " against " << show(small);
  EXPECT_TRUE(*small < *large);
  EXPECT_FALSE(*small > *large);
  EXPECT_TRUE(*large > *small);
}

void expectEqual(const Value& a, const Value& b) {
  EXPECT_EQ(relations(a, b), kEqual) << show(a) << " against " << show(b);
  EXPECT_EQ(relations(b, a), kEqual) << show(b) << " against " << show(a);
  EXPECT_FALSE(*a < *b);
  EXPECT_FALSE(*a > *b);
}

void expectRefused(const Value& a, const Value& b, const std::string& names) {
  for (const QoriRelation relation : kAll) {
    EXPECT_EQ(valueError([&] { a->relate(relation, *b); }), "Cannot compare " + names);
  }
}

TEST(CQoriValueRelate, NumbersByMathematicalValueAcrossAllTypes) {
  expectEqual(uint8(5), sint64(5));
  expectEqual(uint64(5), real32(5));
  expectEqual(sint8(-1), real64(-1));
  expectOrder(sint32(-1), uint64(0));
  expectOrder(sint64(-1), uint64(UINT64_MAX));
  expectOrder(real64(0.5), uint8(1));
  expectOrder(sint32(-2), real64(-1.5));
  expectOrder(real64(-1.5), sint32(-1));
}

TEST(CQoriValueRelate, LargeIntegersAndRealsCompareExactly) {
  expectOrder(real64(9007199254740992.0), uint64(9007199254740993ULL));
  expectOrder(sint64(9007199254740991LL), real64(9007199254740992.0));
  expectOrder(uint64(UINT64_MAX), real64(18446744073709551616.0));
  expectOrder(sint64(INT64_MAX), real64(9223372036854775808.0));
  expectEqual(sint64(INT64_MIN), real64(-9223372036854775808.0));
  expectOrder(sint64(INT64_MAX), uint64(9223372036854775808ULL));
  expectOrder(real32(0.1), real64(0.11));
  expectOrder(uint64(UINT64_MAX), real64(std::numeric_limits<double>::infinity()));
  expectOrder(real64(-std::numeric_limits<double>::infinity()), sint64(INT64_MIN));
  expectEqual(real64(0.0), real64(-0.0));
}

TEST(CQoriValueRelate, NotANumberIsOnlyUnequal) {
  const Value nan = real64(std::nan(""));
  for (const Value& other : {nan, real64(1), uint64(1), sint64(-1)}) {
    EXPECT_EQ(relations(nan, other), kUnordered);
    EXPECT_EQ(relations(other, nan), kUnordered);
  }
}

TEST(CQoriValueRelate, StringsByteByByteWithCase) {
  expectEqual(text("abc"), text("abc"));
  expectOrder(text("abc"), text("abd"));
  expectOrder(text("B"), text("a"));
  expectOrder(text("ab"), text("abc"));
  expectOrder(text(""), text("a"));
  expectOrder(text("z"), text("\xC3\xA4"));
  expectOrder(text("10"), text("9"));
}

TEST(CQoriValueRelate, BooleansWithBooleansAndTheirTexts) {
  expectEqual(boolean(true), boolean(true));
  expectOrder(boolean(false), boolean(true));
  expectEqual(boolean(true), text("TRUE"));
  expectEqual(boolean(true), text("true"));
  expectEqual(boolean(false), text("False"));
  expectOrder(boolean(false), text("TRUE"));
  expectOrder(text("FALSE"), boolean(true));
}

TEST(CQoriValueRelate, BooleanWithAnythingElseIsRefused) {
  expectRefused(boolean(true), text("yes"), "boolean with string");
  expectRefused(text(""), boolean(true), "string with boolean");
  expectRefused(boolean(true), uint32(1), "boolean with uint32");
  expectRefused(sint8(1), boolean(true), "sint8 with boolean");
}

TEST(CQoriValueRelate, MixedPairsAreRefusedNamingBothTypes) {
  expectRefused(text("5"), uint32(5), "string with uint32");
  expectRefused(uint32(5), text("5"), "uint32 with string");
  expectRefused(char16(u'5'), uint8(53), "char16 with uint8");
  expectRefused(datetime("20240131120000.000000+060"), uint64(1), "datetime with uint64");
  expectRefused(boolean(true), datetime("20240131120000.000000+060"), "boolean with datetime");
  expectRefused(embedded(object("C", {})), text("C"), "object with string");
  expectRefused(embedded(object("C", {})), reference(name("n", "C", {})), "object with reference");
  expectRefused(reference(name("n", "C", {})), uint8(1), "reference with uint8");
  expectRefused(uint8(1), reference(name("n", "C", {})), "uint8 with reference");
  expectRefused(Value(new CQoriValue(Name())), text("x"), "reference with string");
}

TEST(CQoriValueRelate, Char16WithCharactersAndTextOfOne) {
  expectEqual(char16(u'a'), char16(u'a'));
  expectOrder(char16(u'a'), char16(u'b'));
  expectEqual(char16(u'a'), text("a"));
  expectEqual(char16(u'\u00E4'), text("\xC3\xA4"));
  expectEqual(char16(u'\u20AC'), text("\xE2\x82\xAC"));
  expectOrder(text("a"), char16(u'b'));
  expectRefused(char16(u'a'), text("ab"), "char16 with string");
  expectRefused(char16(u'a'), text(""), "char16 with string");
  expectRefused(text("\xF0\x9F\x98\x80"), char16(u'a'), "string with char16");
  expectRefused(char16(u'a'), text("\xC3"), "char16 with string");
}

TEST(CQoriValueRelate, TimestampsByInstant) {
  const Value noonInBerlin = datetime("20240131120000.000000+060");
  expectEqual(noonInBerlin, datetime("20240131110000.000000+000"));
  expectEqual(noonInBerlin, datetime("20240131060000.000000-300"));
  expectOrder(noonInBerlin, datetime("20240131110000.000001+000"));
  expectOrder(datetime("20231231235959.999999+000"), datetime("20240101000000.000000+000"));
  expectOrder(datetime("20240228235959.000000+000"), datetime("20240229000000.000000+000"));
  expectOrder(datetime("00000101000000.000000+000"), datetime("99991231235959.999999+000"));
}

TEST(CQoriValueRelate, DatetimesWithDatetimeText) {
  expectEqual(datetime("20240131120000.000000+060"), text("20240131110000.000000+000"));
  expectOrder(text("20240131110000.000000+000"), datetime("20240131120000.000000+000"));
  for (const char* malformed : {"yesterday", "", "20240131110000.000000+00", "20241331110000.000000+000",
                                "20230229000000.000000+000", "20240131240000.000000+000", "20240131110000,000000+000",
                                "20240131110000.000000 000", "2024013111000a.000000+000"}) {
    expectRefused(datetime("20240131120000.000000+060"), text(malformed), "datetime with string");
    expectRefused(text(malformed), datetime("20240131120000.000000+060"), "string with datetime");
  }
}

TEST(CQoriValueRelate, IntervalsByDuration) {
  expectEqual(datetime("00000001000000.000000:000"), datetime("00000001000000.000000:000"));
  expectOrder(datetime("00000000235959.999999:000"), datetime("00000001000000.000000:000"));
  expectOrder(datetime("00000009000000.000000:000"), text("99999999000000.000000:000"));
}

TEST(CQoriValueRelate, IncompleteDatetimesCompareAsText) {
  expectEqual(datetime("20240131******.******+000"), text("20240131******.******+000"));
  EXPECT_EQ(relations(datetime("20240131******.******+000"), datetime("20240131110000.000000+000")), kLess);
  EXPECT_EQ(relations(datetime("********000000.000000:000"), datetime("00000001000000.000000:000")), kLess);
}

TEST(ModelDateTime, FormIsChecked) {
  for (const char* good : {"20240131110000.000000+000", "20240131110000.000000-720", "00000001020304.000005:000",
                           "2024**********.******+000", "20240131235960.000000+000", "20240131110000.000***+000"}) {
    EXPECT_TRUE(model::isDateTime(good)) << good;
  }
  for (const char* bad : {"00000001020304.000005:001", "00000001250304.000005:000", "20240100110000.000000+000",
                          "20240131116000.000000+000", "20240131110061.000000+000", "20240131110000.000000+0000"}) {
    EXPECT_FALSE(model::isDateTime(bad)) << bad;
  }
}

TEST(QoriDateTime, MomentsAreInstantsInUtcAndDurations) {
  const auto microseconds = [](const char* text) { return qori::readDateTime(text).microseconds; };
  EXPECT_EQ(microseconds("19700101010000.000001+060"), 1);
  EXPECT_EQ(microseconds("19691231235959.999999+000"), -1);
  EXPECT_EQ(microseconds("19691231190000.000000-300"), 0);
  EXPECT_EQ(microseconds("20161231235960.000000+000"), microseconds("20170101000000.000000+000"));
  EXPECT_EQ(microseconds("00000001000000.000001:000"), 86400000001);
  EXPECT_FALSE(qori::readDateTime("19700101010000.000001+060").interval);
  EXPECT_TRUE(qori::readDateTime("00000001000000.000001:000").interval);
  for (const char* const none : {"1970010101****.000001+060", "20230229000000.000000+000", "now", ""}) {
    EXPECT_FALSE(qori::readDateTime(none).complete) << none;
  }
}

TEST(CQoriValueRelate, ReferencesByPathAlsoWithPathText) {
  const Value a = reference(name("root/cimv2", "C", {{"B", uint32(2)}, {"a", text("x")}}));
  const Value same = reference(name("root/cimv2", "C", {{"a", text("x")}, {"B", uint32(2)}}));
  expectEqual(a, same);
  expectEqual(a, text("root/cimv2:C.a=\"x\",B=2"));
  expectOrder(a, reference(name("root/cimv2", "D", {})));
  expectOrder(text("root"), a);
}

// The quotes at the end of a literal are lost.
TEST(CQoriValueRelate, PathTextWithoutItsLastQuotes) {
  const auto path = [](const char* key) { return reference(name("n", "C", {{"a", text(key)}})); };
  expectEqual(path("x"), text("n:C.a=\"x"));
  expectEqual(path(""), text("n:C.a=\""));
  expectEqual(path(""), text("n:C.a="));
  expectEqual(path("x\""), text("n:C.a=\"x\\"));
  expectEqual(path("x\""), text("n:C.a=\"x\\\""));
  expectOrder(text("n:C.a=\"x"), path("xy"));
  expectOrder(text("n:C.a=\"x"), path("x#"));
  expectOrder(path("x!"), text("n:C.a=\"x"));
  expectOrder(path("x y"), text("n:C.a=\"x"));
  expectOrder(text("n:C.a="), path("x"));
  expectOrder(path("w"), text("n:C.a=\"x"));
  expectOrder(path("x"), text("n:C.a=\"x\"\""));
  expectOrder(text("n:C.b"), reference(name("n", "C", {{"b", uint32(2)}})));
}

TEST(CQoriValueRelate, ArraysAreEqualByLengthAndElements) {
  const Value a = array(CQoriType::uint32, {uint32(1), uint32(2)});
  EXPECT_EQ(relations(a, array(CQoriType::sint8, {sint8(1), sint8(2)})), "TFNNNN");
  EXPECT_EQ(relations(a, array(CQoriType::uint32, {uint32(1)})), "FTNNNN");
  EXPECT_EQ(relations(a, array(CQoriType::uint32, {uint32(1), uint32(3)})), "FTNNNN");
  EXPECT_EQ(relations(a, array(CQoriType::uint32, {uint32(1), Value()})), "FTNNNN");
  EXPECT_EQ(relations(array(CQoriType::uint32, {Value()}), array(CQoriType::uint32, {Value()})), "TFNNNN");
}

TEST(CQoriValueRelate, ArraysOfDifferentElementTypesAreNullUnlessBothAreNumbers) {
  const Value numbers = array(CQoriType::uint32, {uint32(1), uint32(2)});
  EXPECT_EQ(relations(numbers, array(CQoriType::real64, {real64(1.0), real64(2.0)})), "TFNNNN");
  EXPECT_EQ(relations(numbers, array(CQoriType::string, {text("1"), text("2")})), kNoOrder);
  EXPECT_EQ(relations(array(CQoriType::uint32, {}), array(CQoriType::string, {})), kNoOrder);
  EXPECT_EQ(relations(array(CQoriType::boolean, {}), array(CQoriType::string, {text("TRUE")})), kNoOrder);
  EXPECT_EQ(relations(array(CQoriType::real64, {}), array(CQoriType::boolean, {})), kNoOrder);
}

TEST(CQoriValueRelate, ArrayAgainstScalarIsNull) {
  const Value a = array(CQoriType::uint32, {uint32(1)});
  EXPECT_EQ(relations(a, uint32(1)), kNoOrder);
  EXPECT_EQ(relations(uint32(1), a), kNoOrder);
  EXPECT_EQ(relations(text("x"), a), kNoOrder);
  EXPECT_EQ(relations(a, reference(name("n", "C", {}))), kNoOrder);
  EXPECT_FALSE(*a < *uint32(9)) << "sorting takes Null as false";
}

TEST(CQoriValueRelate, EmbeddedObjectsByClassAndProperties) {
  const Value a = embedded(object("CIM_A", {{"K", uint32(1)}, {"P", text("x")}}));
  expectEqual(a, embedded(object("cim_a", {{"k", uint32(1)}, {"P", text("x")}})));
  expectEqual(a, embedded(object("CIM_A", {{"P", text("x")}, {"K", uint32(1)}})));
  expectOrder(a, embedded(object("CIM_B", {{"K", uint32(1)}, {"P", text("x")}})));
  expectOrder(a, embedded(object("CIM_A", {{"K", uint32(1)}, {"P", text("y")}})));
  expectOrder(embedded(object("CIM_A", {{"K", uint32(1)}, {"P", Value()}})), a);
  expectOrder(a, embedded(object("CIM_A", {{"K", uint32(1)}, {"P", text("x")}, {"Q", Value()}})));
}

TEST(CQoriValueRelate, EmbeddedObjectsWithUnequalArraysHaveNoOrder) {
  const Value a = embedded(object("C", {{"L", array(CQoriType::uint8, {uint8(1)})}}));
  const Value b = embedded(object("C", {{"L", array(CQoriType::uint8, {uint8(2)})}}));
  EXPECT_EQ(relations(a, b), kUnordered);
  expectEqual(a, embedded(object("C", {{"L", array(CQoriType::uint8, {uint8(1)})}})));
}

TEST(CQoriValueRelate, ScalarsCompareWithoutAllocation) {
  const Value values[][2] = {{uint64(1), real64(2)},          {sint32(-1), uint8(3)},
                             {text("a"), text("b")},          {boolean(true), text("FALSE")},
                             {boolean(true), boolean(false)}, {char16(u'a'), text("b")}};
  for (const auto& [a, b] : values) {
    const unsigned long before = allocationCount();
    static_cast<void>(a->relate(QoriRelation::Less, *b));
    static_cast<void>(b->relate(QoriRelation::Equal, *a));
    EXPECT_EQ(allocationCount(), before);
  }
}

TEST(CQoriValueRelate, AllocationsAreCounted) {
  const unsigned long before = allocationCount();
  const Value value = uint64(1);
  EXPECT_EQ(allocationCount(), before + 2) << "a value and its control block";
  static_cast<void>(value->add(*value));
  EXPECT_EQ(allocationCount(), before + 3) << "a result is one";
}

}  // namespace
