// Objects as MOF text.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cmath>

#include "Cimom/Model/ModelMof.h"
#include "ModelTestSupport.h"

namespace {

using namespace model_test;

// The initializer that a value gets in MOF.
std::string initializer(const Value& value) {
  const std::string mof(model::mofText(*object("C", {{"p", value}})).view());
  const std::string before = "instance of C { p = ";
  const std::string after = "; };";
  if (!mof.starts_with(before) || !mof.ends_with(after)) return "unexpected: " + mof;
  return mof.substr(before.size(), mof.size() - before.size() - after.size());
}

TEST(ModelMof, ObjectOnOneLine) {
  EXPECT_EQ(model::mofText(*object("CIM_X", {{"a", uint32(1)}, {"b", text("t")}, {"c", Value()}})),
            "instance of CIM_X { a = 1; b = \"t\"; c = NULL; };");
  EXPECT_EQ(model::mofText(*object("Empty", {})), "instance of Empty { };");
}

TEST(ModelMof, Scalars) {
  EXPECT_EQ(initializer(sint32(-5)), "-5");
  EXPECT_EQ(initializer(boolean(false)), "FALSE");
  EXPECT_EQ(initializer(datetime("20240131120000.000000+060")), "\"20240131120000.000000+060\"");
  EXPECT_EQ(initializer(char16(u'x')), "'x'");
  EXPECT_EQ(initializer(char16(u'\'')), "'\\''");
  EXPECT_EQ(initializer(reference(name("n", "C", {{"K", text("v")}}))), "\"n:C.K=\\\"v\\\"\"");
}

TEST(ModelMof, RealsHaveAPoint) {
  EXPECT_EQ(initializer(real64(3)), "3.0");
  EXPECT_EQ(initializer(real64(0.5)), "0.5");
  EXPECT_EQ(initializer(real64(1e300)), "1.0e+300");
  EXPECT_EQ(initializer(real64(2.5e-300)), "2.5e-300");
  EXPECT_EQ(initializer(real32(0.1)), "0.1");
  EXPECT_EQ(initializer(real64(std::nan(""))), "NULL") << "MOF has no word for it";
}

TEST(ModelMof, StringsAreEscaped) {
  EXPECT_EQ(initializer(text("a\"b\\c'd")), "\"a\\\"b\\\\c'd\"");
  EXPECT_EQ(initializer(text("\b\t\n\f\r")), "\"\\b\\t\\n\\f\\r\"");
  EXPECT_EQ(initializer(text("\x01\x1F\x7F")), "\"\\x0001\\x001F\\x007F\"");
  EXPECT_EQ(initializer(text("\xC3\xA4")), "\"\xC3\xA4\"");
}

TEST(ModelMof, Arrays) {
  EXPECT_EQ(initializer(array(CQoriType::uint8, {uint8(1), Value(), uint8(2)})), "{1, NULL, 2}");
  EXPECT_EQ(initializer(array(CQoriType::string, {text("a")})), "{\"a\"}");
  EXPECT_EQ(initializer(array(CQoriType::string, {})), "{}");
}

TEST(ModelMof, EmbeddedObjectsAreQuotedMof) {
  EXPECT_EQ(initializer(embedded(object("D", {{"q", text("x")}}))), "\"instance of D { q = \\\"x\\\"; };\"");
}

TEST(ModelMof, AQuoteInATextStaysAsItIsAtEveryDepth) {
  EXPECT_EQ(initializer(embedded(object("D", {{"q", text("it's")}}))), "\"instance of D { q = \\\"it's\\\"; };\"");
  EXPECT_EQ(initializer(embedded(object("D", {{"q", char16(u'\'')}}))), "\"instance of D { q = '\\\\''; };\"");
}

TEST(ModelMof, NestingIsBounded) {
  Object nested = object("D", {{"q", uint8(1)}});
  for (int i = 0; i < 11; ++i) nested = object("D", {{"q", embedded(nested)}});
  EXPECT_EQ(valueError([&] { model::mofText(*nested); }), "no error");
  for (int i = 0; i < 50; ++i) nested = object("D", {{"q", embedded(nested)}});
  EXPECT_EQ(valueError([&] { model::mofText(*nested); }), "Embedded objects are nested too deeply");
}

}  // namespace
