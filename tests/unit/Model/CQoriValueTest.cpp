// Values: construction, conversion, text and getters.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "ModelTestSupport.h"
#include "cimom/CQoriValue.h"

namespace {

using namespace model_test;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(CQoriValue, IntegersAreDecimalText) {
  EXPECT_EQ(show(uint64(UINT64_MAX)), "uint64:18446744073709551615");
  EXPECT_EQ(show(sint64(INT64_MIN)), "sint64:-9223372036854775808");
  EXPECT_EQ(show(uint8(200)), "uint8:200");
  EXPECT_EQ(show(sint8(-128)), "sint8:-128");
}

TEST(CQoriValue, RealsAreTheShortestTextThatReadsBack) {
  EXPECT_EQ(show(real64(0.1)), "real64:0.1");
  EXPECT_EQ(show(real64(3)), "real64:3");
  EXPECT_EQ(show(real64(-2.5e300)), "real64:-2.5e+300");
  EXPECT_EQ(show(real64(1.0 / 3)), "real64:0.3333333333333333");
  EXPECT_EQ(show(real32(0.1)), "real32:0.1") << "not 0.10000000149011612";
  EXPECT_EQ(show(real64(kInfinity)), "real64:inf");
  EXPECT_EQ(show(real64(-kInfinity)), "real64:-inf");
  EXPECT_EQ(show(real64(std::nan(""))), "real64:nan");
}

TEST(CQoriValue, OtherScalarsAsText) {
  EXPECT_EQ(show(boolean(true)), "boolean:TRUE");
  EXPECT_EQ(show(boolean(false)), "boolean:FALSE");
  EXPECT_EQ(show(text("it's")), "string:it's");
  EXPECT_EQ(show(datetime("20240131120000.000000+060")), "datetime:20240131120000.000000+060");
  EXPECT_EQ(show(char16(u'x')), "char16:x");
  EXPECT_EQ(show(char16(u'\u00E4')), "char16:\xC3\xA4");
  EXPECT_EQ(show(char16(u'\u20AC')), "char16:\xE2\x82\xAC");
  EXPECT_EQ(show(char16(static_cast<char16_t>(0xD800))), "char16:\xEF\xBF\xBD") << "half a surrogate pair";
}

TEST(CQoriValue, ArraysAreTheirElementsJoined) {
  EXPECT_EQ(show(array(CQoriType::uint32, {uint32(1), uint32(2)})), "uint32:1,2");
  EXPECT_EQ(show(array(CQoriType::string, {text("a"), Value(), text("c")})), "string:a,,c");
  EXPECT_EQ(show(array(CQoriType::string, {})), "string:");
}

TEST(CQoriValue, ReferencesAndObjectsAsText) {
  EXPECT_EQ(show(reference(name("root/cimv2", "C", {{"K", uint32(1)}}))), "reference:root/cimv2:C.K=1");
  EXPECT_EQ(show(embedded(object("C", {{"K", uint32(1)}}))), "object:instance of C { K = 1; };");
}

TEST(CQoriValue, EveryFundamentalScalarCanBeGiven) {
  EXPECT_EQ(show(make('a', CQoriType::char16)), "char16:a");
  EXPECT_EQ(show(make(static_cast<signed char>(-1), CQoriType::sint8)), "sint8:-1");
  EXPECT_EQ(show(make(static_cast<unsigned char>(255), CQoriType::uint8)), "uint8:255");
  EXPECT_EQ(show(make(static_cast<short>(-2), CQoriType::sint16)), "sint16:-2");
  EXPECT_EQ(show(make(static_cast<unsigned short>(65535), CQoriType::uint16)), "uint16:65535");
  EXPECT_EQ(show(make(-3, CQoriType::sint32)), "sint32:-3");
  EXPECT_EQ(show(make(3U, CQoriType::uint32)), "uint32:3");
  EXPECT_EQ(show(make(-4L, CQoriType::sint64)), "sint64:-4");
  EXPECT_EQ(show(make(4UL, CQoriType::uint64)), "uint64:4");
  EXPECT_EQ(show(make(-5LL, CQoriType::sint64)), "sint64:-5");
  EXPECT_EQ(show(make(5ULL, CQoriType::uint64)), "uint64:5");
  EXPECT_EQ(show(make(1.5, CQoriType::real64)), "real64:1.5");
}

TEST(CQoriValue, GivenScalarIsConvertedToTheType) {
  EXPECT_EQ(show(make(-1, CQoriType::uint8)), "uint8:255") << "integers wrap";
  EXPECT_EQ(show(make(300, CQoriType::uint8)), "uint8:44");
  EXPECT_EQ(show(make(UINT64_MAX, CQoriType::sint64)), "sint64:-1");
  EXPECT_EQ(show(make(200U, CQoriType::sint8)), "sint8:-56");
  EXPECT_EQ(show(make(2.9, CQoriType::uint32)), "uint32:2") << "reals truncate";
  EXPECT_EQ(show(make(-2.9, CQoriType::sint32)), "sint32:-2");
  EXPECT_EQ(show(make(1e300, CQoriType::sint64)), "sint64:9223372036854775807") << "and saturate";
  EXPECT_EQ(show(make(-1.0, CQoriType::uint64)), "uint64:0");
  EXPECT_EQ(show(make(300.0, CQoriType::uint8)), "uint8:255");
  EXPECT_EQ(show(make(std::nan(""), CQoriType::sint64)), "sint64:0");
  EXPECT_EQ(show(make(7, CQoriType::real64)), "real64:7");
  EXPECT_EQ(show(make(1e300, CQoriType::real32)), "real32:inf");
  EXPECT_EQ(show(make(7, CQoriType::boolean)), "boolean:TRUE");
  EXPECT_EQ(show(make(0.0, CQoriType::boolean)), "boolean:FALSE");
  EXPECT_EQ(show(make(true, CQoriType::uint16)), "uint16:1");
}

TEST(CQoriValue, RealsAtTheEdgesOfIntegersSaturateExactly) {
  EXPECT_EQ(make(9223372036854775808.0, CQoriType::sint64)->getSint64(), INT64_MAX);
  EXPECT_EQ(make(-9223372036854775808.0, CQoriType::sint64)->getSint64(), INT64_MIN);
  EXPECT_EQ(make(9223372036854774784.0, CQoriType::sint64)->getSint64(), 9223372036854774784LL);
  EXPECT_EQ(make(18446744073709551616.0, CQoriType::uint64)->getUint64(), UINT64_MAX);
  EXPECT_EQ(make(127.9, CQoriType::sint8)->getSint8(), 127);
  EXPECT_EQ(make(-128.9, CQoriType::sint8)->getSint8(), -128);
}

TEST(CQoriValue, TypeThatHoldsNoSuchScalarIsRefused) {
  EXPECT_EQ(valueError([] { make(1, CQoriType::string); }), "Cannot convert sint32 to string");
  EXPECT_EQ(valueError([] { make(true, CQoriType::reference); }), "Cannot convert boolean to reference");
  EXPECT_EQ(valueError([] { make(1.0, CQoriType::arrayOf(CQoriType::real64)); }), "Cannot convert real64 to real64[]");
  EXPECT_EQ(valueError([] { CQoriValue(QORString("1"), CQoriType::uint32); }), "Cannot convert string to uint32");
  EXPECT_EQ(valueError([] { make(1, QORSmrPtr<IQoriType>()); }), "A value needs a type");
  EXPECT_EQ(valueError([] { CQoriValue(QORString("x"), QORSmrPtr<IQoriType>()); }), "A value needs a type");
  EXPECT_EQ(valueError([] { array(QORSmrPtr<IQoriType>(), {}); }), "A value needs a type");
}

TEST(CQoriValue, ArrayTakesElementOrArrayType) {
  const Value byElement = array(CQoriType::uint32, {uint32(1)});
  const Value byArray = array(CQoriType::arrayOf(CQoriType::uint32), {uint32(1)});
  EXPECT_TRUE(byElement->isArray());
  EXPECT_TRUE(byElement->getType() == byArray->getType());
  EXPECT_EQ(byElement->getArray()->entries(), 1U);
}

TEST(CQoriValue, ArraySharesTheList) {
  const QORSmrPtr<IQoriValue::List> list(new IQoriValue::List);
  const CQoriValue value(list, CQoriType::uint8);
  EXPECT_TRUE(value.getArray() == list);
  EXPECT_EQ(CQoriValue(QORSmrPtr<IQoriValue::List>(), CQoriType::uint8).getArray()->entries(), 0U);
}

TEST(CQoriValue, OnlyTheRightPartIsThere) {
  const Value number = uint32(1);
  EXPECT_FALSE(number->isArray());
  EXPECT_TRUE(number->getArray().IsNull());
  EXPECT_TRUE(number->getReference().IsNull());
  EXPECT_TRUE(number->getObject().IsNull());
  const Name target = name("n", "C", {});
  EXPECT_TRUE(reference(target)->getReference() == target);
  EXPECT_TRUE(reference(target)->getObject().IsNull());
  const Object inner = object("C", {});
  EXPECT_TRUE(embedded(inner)->getObject() == inner);
  EXPECT_TRUE(embedded(inner)->getArray().IsNull());
}

TEST(CQoriValue, ScalarViewPointsIntoTheValue) {
  const Value string = text("abc");
  EXPECT_EQ(string->scalar().kind, QoriScalarKind::Text);
  EXPECT_EQ(*string->scalar().text, "abc");
  const Value list = array(CQoriType::uint8, {});
  EXPECT_EQ(list->scalar().kind, QoriScalarKind::Complex);
  EXPECT_EQ(list->scalar().value, list.Get());
  EXPECT_EQ(datetime("x")->scalar().kind, QoriScalarKind::DateTime);
  EXPECT_EQ(real32(0.5)->scalar().r, 0.5);
}

TEST(CQoriValue, CopiesStandAlone) {
  Value string = text("abc");
  const CQoriValue copy(*string);
  string.Release();
  EXPECT_EQ(copy.toString(), "abc");
  EXPECT_EQ(*copy.scalar().text, "abc");

  Value list = array(CQoriType::uint8, {uint8(1)});
  const CQoriValue listCopy(*list);
  list.Release();
  EXPECT_EQ(listCopy.toString(), "1");
  EXPECT_EQ(listCopy.scalar().value, &listCopy);

  const CQoriValue again(copy);
  EXPECT_EQ(again.toString(), "abc");
}

TEST(CQoriValue, CopyIntoAnotherType) {
  EXPECT_EQ(show(Value(new CQoriValue(*uint32(7), CQoriType::sint64))), "sint64:7");
  EXPECT_EQ(show(Value(new CQoriValue(*real64(0.1), CQoriType::real32))), "real32:0.1");
  EXPECT_EQ(show(Value(new CQoriValue(*sint32(-1), CQoriType::string))), "string:-1");
  EXPECT_EQ(show(Value(new CQoriValue(*text("x"), CQoriType::string))), "string:x");
  EXPECT_EQ(show(Value(new CQoriValue(*text("t"), CQoriType::datetime))), "datetime:t");
  EXPECT_EQ(show(Value(new CQoriValue(*datetime("t"), CQoriType::string))), "string:t");
  EXPECT_EQ(valueError([] { CQoriValue(*text("1"), CQoriType::uint32); }), "Cannot convert string to uint32");
  EXPECT_EQ(valueError([] { CQoriValue(*uint32(1), CQoriType::datetime); }), "Cannot convert uint32 to datetime");
  EXPECT_EQ(valueError([] { CQoriValue(*embedded(object("C", {})), CQoriType::string); }),
            "Cannot convert object to string");
  EXPECT_EQ(valueError([] { CQoriValue(*uint32(1), QORSmrPtr<IQoriType>()); }), "A value needs a type");
}

TEST(CQoriValue, ArraysConvertElementByElement) {
  const Value numbers = array(CQoriType::uint32, {uint32(300), Value()});
  const CQoriValue narrow(*numbers, CQoriType::arrayOf(CQoriType::uint8));
  EXPECT_EQ(narrow.toString(), "44,");
  EXPECT_EQ(narrow.getType()->getName(), "uint8");
  EXPECT_EQ(numbers->toString(), "300,");
  EXPECT_EQ(valueError([&] { CQoriValue(*numbers, CQoriType::uint8); }), "Cannot convert uint32[] to uint8");
  EXPECT_EQ(valueError([&] { CQoriValue(*uint8(1), CQoriType::arrayOf(CQoriType::uint8)); }),
            "Cannot convert uint8 to uint8[]");
}

TEST(CQoriValue, GettersConvert) {
  const Value big = uint64(0x1234567890ULL);
  EXPECT_EQ(big->getUint8(), 0x90);
  EXPECT_EQ(big->getSint8(), static_cast<QORsint8>(0x90));
  EXPECT_EQ(big->getUint16(), 0x7890);
  EXPECT_EQ(big->getSint16(), 0x7890);
  EXPECT_EQ(big->getUint32(), 0x34567890U);
  EXPECT_EQ(big->getSint32(), 0x34567890);
  EXPECT_EQ(big->getSint64(), 0x1234567890);
  EXPECT_EQ(big->getUint64(), 0x1234567890U);
  EXPECT_EQ(big->getReal64(), 78187493520.0);
  EXPECT_EQ(uint8(5)->getReal32(), 5.0F);
  EXPECT_EQ(sint32(-1)->getUint64(), UINT64_MAX);
  EXPECT_EQ(real64(-1e30)->getSint32(), INT32_MIN);
  EXPECT_EQ(boolean(true)->getSint32(), 1);
  EXPECT_EQ(char16(u'A')->getUint8(), 65);
  EXPECT_EQ(uint8(65)->getChar16(), u'A');
}

TEST(CQoriValue, GettersOfWhatIsNoNumberNameBothTypes) {
  EXPECT_EQ(valueError([] { text("5")->getUint32(); }), "Cannot convert string to uint32");
  EXPECT_EQ(valueError([] { datetime("5")->getReal64(); }), "Cannot convert datetime to real64");
  EXPECT_EQ(valueError([] { array(CQoriType::uint8, {})->getUint8(); }), "Cannot convert uint8[] to uint8");
  EXPECT_EQ(valueError([] { text("x")->getChar16(); }), "Cannot convert string to char16");
  EXPECT_EQ(valueError([] { embedded(object("C", {}))->getSint64(); }), "Cannot convert object to sint64");
}

TEST(CQoriValue, ConditionOfAValue) {
  EXPECT_TRUE(boolean(true)->getBoolean());
  EXPECT_FALSE(boolean(false)->getBoolean());
  EXPECT_TRUE(text("TRUE")->getBoolean());
  EXPECT_TRUE(text("tRuE")->getBoolean());
  EXPECT_FALSE(text("FALSE")->getBoolean());
  EXPECT_FALSE(text("yes")->getBoolean());
  EXPECT_FALSE(text("")->getBoolean());
  EXPECT_TRUE(uint32(2)->getBoolean());
  EXPECT_TRUE(sint32(-1)->getBoolean());
  EXPECT_TRUE(real64(0.5)->getBoolean());
  EXPECT_FALSE(uint32(0)->getBoolean());
  EXPECT_FALSE(sint32(0)->getBoolean());
  EXPECT_FALSE(real64(0)->getBoolean());
  EXPECT_FALSE(array(CQoriType::uint8, {uint8(1)})->getBoolean());
  EXPECT_FALSE(datetime("TRUE")->getBoolean());
  EXPECT_FALSE(char16(u'T')->getBoolean());
}

TEST(CQoriValue, NullPartsGiveEmptyText) {
  EXPECT_EQ(CQoriValue(Name()).toString(), "");
  EXPECT_EQ(CQoriValue(Object()).toString(), "");
}

TEST(CQoriValue, ArraysNestSixtyFourDeep) {
  Value value = uint8(1);
  for (int i = 0; i < 64; ++i) value = array(CQoriType::uint8, {value});
  EXPECT_EQ(value->toString(), "1");
  EXPECT_EQ(valueError([&] { array(CQoriType::uint8, {value})->toString(); }), "Values are nested too deeply");
}

TEST(CQoriValue, ArraysNestedTooDeeplyAreRefusedNotFollowed) {
  Value value = uint8(1);
  for (int i = 0; i < 5000; ++i) value = array(CQoriType::uint8, {value});
  EXPECT_EQ(valueError([&] { value->toString(); }), "Values are nested too deeply");
  EXPECT_EQ(valueError([&] { value->relate(QoriRelation::Equal, *value); }), "Values are nested too deeply");
}

}  // namespace
