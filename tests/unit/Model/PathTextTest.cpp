// An object's path, written without making its name.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ModelTestSupport.h"
#include "cimom/CQoriBaseObject.h"

namespace {

using namespace model_test;

std::string appended(const Object& object) {
  std::string text = "before ";
  object->appendPath(text);
  return text;
}

std::string named(const Object& object) {
  return "before " + std::string(object->getInstanceName()->toString().view());
}

TEST(AppendPath, IsThePathOfTheName) {
  const Object plain = object("C", {{"Id", text("a")}, {"Other", uint32(1)}});
  const Object quoted =
      object("C", {{"Id", text("a\"b\\c\"")}, {"B", text("")}, {"A", sint32(-3)}, {"x", text("y")}}, 3);
  const Object kinds = object("C",
                              {{"On", boolean(true)},
                               {"R", real64(0.5)},
                               {"T", datetime("20240131120000.000000+060")},
                               {"L", char16(u'"')},
                               {"To", reference(name("ns", "D", {{"k", text("v\"")}}))}},
                              5);
  for (const Object& each : {plain, quoted, kinds}) {
    EXPECT_EQ(appended(each), named(each));
    const Object restricted(new CQoriBaseObject(each, names({"x"}), true));
    EXPECT_EQ(appended(restricted), named(each));
    const Object twice(new CQoriBaseObject(restricted, names({"x"}), true));
    EXPECT_EQ(appended(twice), named(each));
  }
  EXPECT_EQ(appended(quoted), "before root/cimv2:C.A=-3,B=\"\",Id=\"a\\\"b\\\\c\\\"\"");
}

TEST(AppendPath, OfAGivenNameIsThatOne) {
  const QORSmrPtr<ModelLayout> layout(new ModelLayout({{"Id", CQoriType::string}}));
  const QORSmrPtr<ModelShape> shape(new ModelShape{"root/cimv2", "C", layout, {0}});
  const Object given = ModelInstance::create(shape, {text("own")}, name("elsewhere", "C", {{"Id", text("given")}}));
  EXPECT_EQ(appended(given), "before elsewhere:C.Id=\"given\"");
}

TEST(Identity, IsKeptByRestrictedCopies) {
  const QORSmrPtr<ModelLayout> layout(new ModelLayout({{"Id", CQoriType::string}}));
  const QORSmrPtr<ModelShape> shape(new ModelShape{"root/cimv2", "C", layout, {0}});
  const Object numbered = ModelInstance::create(shape, {text("a")}, {}, 42);
  const Object restricted(new CQoriBaseObject(numbered, names({}), true));
  EXPECT_EQ(numbered->getIdentity(), 42U);
  EXPECT_EQ(restricted->getIdentity(), 42U);
  EXPECT_EQ(ModelInstance::create(shape, {text("a")})->getIdentity(), 0U);
}

TEST(PathHash, IsThatOfThePathHoweverOftenItIsAsked) {
  const QORSmrPtr<ModelLayout> layout(new ModelLayout({{"Id", CQoriType::string}}));
  const QORSmrPtr<ModelShape> shape(new ModelShape{"root/cimv2", "C", layout, {0}});
  const Object stored = ModelInstance::create(shape, {text("a")});
  const Object restricted(new CQoriBaseObject(stored, names({}), true));
  const Object own = object("C", {{"Id", text("a")}}, 1);
  const Object nameless = object("C", {{"Id", Value()}});
  for (const Object& each : {stored, restricted, own, nameless}) {
    std::string path;
    each->appendPath(path);
    for (int time = 0; time < 2; ++time) EXPECT_EQ(each->getPathHash(), hashKeyBytes(path));
  }
  EXPECT_EQ(stored->getPathHash(), hashKeyBytes("root/cimv2:C.Id=\"a\""));
}

TEST(AppendPath, OfAnObjectWithoutNameIsEmpty) {
  EXPECT_EQ(appended(object("C", {{"Id", Value()}})), "before ");
  EXPECT_EQ(appended(object("C", {{"Id", text("a")}}, 0)), "before ");
  const QORSmrPtr<CQoriBaseObject::PropertyList> none(new CQoriBaseObject::PropertyList);
  EXPECT_EQ(appended(Object(new CQoriBaseObject("ns", "C", "Id", none))), "before ");
}

}  // namespace
