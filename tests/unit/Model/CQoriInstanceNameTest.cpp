// Instance names and their paths.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ModelTestSupport.h"
#include "cimom/CQoriInstanceName.h"

namespace {

using namespace model_test;

std::string path(const Name& value) { return std::string(value->toString().view()); }

TEST(CQoriInstanceName, TextIsQuotedNumbersAndBooleansAreBare) {
  EXPECT_EQ(path(name("root/cimv2", "CIM_X", {{"Key1", text("v")}, {"Key2", uint32(2)}})),
            "root/cimv2:CIM_X.Key1=\"v\",Key2=2");
  EXPECT_EQ(path(name("n", "C", {{"B", boolean(true)}, {"R", real64(1.5)}, {"S", sint32(-1)}})),
            "n:C.B=TRUE,R=1.5,S=-1");
  EXPECT_EQ(path(name("n", "C", {{"T", datetime("20240131120000.000000+060")}, {"X", char16(u'x')}})),
            "n:C.T=\"20240131120000.000000+060\",X=\"x\"");
}

TEST(CQoriInstanceName, QuotesAndBackslashesAreEscaped) {
  EXPECT_EQ(path(name("n", "C", {{"K", text("a\"b\\c")}})), "n:C.K=\"a\\\"b\\\\c\"");
  EXPECT_EQ(path(name("n", "C", {{"K", text("\"")}})), "n:C.K=\"\\\"\"");
  EXPECT_EQ(path(name("n", "C", {{"K", text("")}})), "n:C.K=\"\"");
}

TEST(CQoriInstanceName, KeysComeInNameOrderIgnoringCaseInTheirSpelling) {
  const Name value = name("n", "C", {{"zeta", uint32(1)}, {"Beta", uint32(2)}, {"alpha", uint32(3)}});
  EXPECT_EQ(path(value), "n:C.alpha=3,Beta=2,zeta=1");
  EXPECT_EQ(value->getKeys()->first()->getName(), "alpha");
  EXPECT_EQ(value->getKeys()->entries(), 3U);
}

TEST(CQoriInstanceName, GivenKeyListStaysAsItIs) {
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty("b", uint32(1), false)));
  keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty("a", uint32(2), false)));
  const CQoriInstanceName value("C", keys, {});
  EXPECT_EQ(keys->first()->getName(), "b");
  EXPECT_EQ(value.toString(), "C.a=2,b=1");
}

TEST(CQoriInstanceName, ReferencesAreQuotedPaths) {
  const Name inner = name("n", "D", {{"K", text("x\"y")}});
  EXPECT_EQ(path(name("n", "A", {{"R", reference(inner)}})), "n:A.R=\"n:D.K=\\\"x\\\\\\\"y\\\"\"");
}

TEST(CQoriInstanceName, ClassPathHasNoKeys) {
  const CQoriInstanceName value("C", {}, QORSmrPtr<IQoriNameSpacePath>(new CQoriNameSpacePath("host", "root")));
  EXPECT_EQ(value.toString(), "root:C") << "the host is no part of the path";
  EXPECT_TRUE(value.getKeys()->isEmpty());
  EXPECT_EQ(value.getNameSpacePath()->getHost(), "host");
  EXPECT_EQ(value.getNameSpacePath()->getNameSpace(), "root");
  EXPECT_EQ(value.getClassName(), "C");
}

TEST(CQoriInstanceName, MissingNameSpacePathIsEmpty) {
  const CQoriInstanceName value("C", {}, {});
  EXPECT_EQ(value.toString(), "C");
  EXPECT_EQ(value.getNameSpacePath()->getNameSpace(), "");
}

TEST(CQoriInstanceName, KeyWithoutValueIsShown) { EXPECT_EQ(path(name("n", "C", {{"K", Value()}})), "n:C.K=NULL"); }

TEST(CQoriInstanceName, PathIsMadeOnce) {
  const Name value = name("n", "C", {{"K", uint32(1)}});
  EXPECT_EQ(value->toString().data(), value->toString().data());
}

TEST(CQoriProperty, TypeIsTheValuesOrString) {
  EXPECT_EQ(CQoriProperty("p", uint32(1), true).getType()->getName(), "uint32");
  EXPECT_EQ(CQoriProperty("p", Value(), true).getType()->getName(), "string");
  EXPECT_EQ(CQoriProperty("p", CQoriType::uint64, Value()).getType()->getName(), "uint64");
  const Value value = uint32(1);
  const CQoriProperty property("p", value, false);
  EXPECT_EQ(property.getName(), "p");
  EXPECT_TRUE(property.getValue() == value);
}

}  // namespace
