// One class of what several servers declare.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Remote/RemoteUnion.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

using testing::ElementsAre;
using Properties = std::vector<std::pair<const char*, QORSmrPtr<IQoriType>>>;

const QORString kSpace("root/cimv2");

CimClassDeclaration classOf(const char* name, const char* superClass, const Properties& properties) {
  CimClassDeclaration declaration;
  declaration.name = name;
  declaration.superClass = superClass;
  for (const auto& [property, type] : properties) {
    CimPropertyDeclaration own;
    own.name = property;
    own.type = type;
    declaration.properties.push_back(own);
  }
  return declaration;
}

std::string typeOf(const CimPropertyDeclaration& property) {
  return std::string(property.type->getName().view()) + (property.type->isArray() ? "[]" : "");
}

// The type of a property that two servers declare.
std::string common(const QORSmrPtr<IQoriType>& one, const QORSmrPtr<IQoriType>& two) {
  const RemoteUnion all = remote::unionOf({classOf("A", "", {{"N", one}}), classOf("A", "", {{"n", two}})});
  EXPECT_EQ(1U, all.declaration.properties.size());
  return typeOf(all.declaration.properties.front());
}

TEST(RemoteUnion, NumbersGetATypeForThoseOfAllServers) {
  using Type = CQoriType;
  const std::tuple<QORSmrPtr<IQoriType>, QORSmrPtr<IQoriType>, const char*> cases[] = {
      {Type::uint32, Type::uint64, "uint64"}, {Type::sint8, Type::sint16, "sint16"},
      {Type::uint8, Type::sint8, "sint16"},   {Type::uint8, Type::sint16, "sint16"},
      {Type::uint16, Type::sint8, "sint32"},  {Type::uint32, Type::sint32, "sint64"},
      {Type::uint32, Type::sint64, "sint64"}, {Type::uint64, Type::sint8, "sint64"},
      {Type::uint64, Type::sint64, "sint64"}, {Type::real32, Type::real64, "real64"},
      {Type::real32, Type::uint8, "real64"},  {Type::real64, Type::sint64, "real64"},
      {Type::real32, Type::real32, "real32"}};
  for (const auto& [one, two, wanted] : cases) {
    EXPECT_EQ(wanted, common(one, two));
    EXPECT_EQ(wanted, common(two, one));
  }
  EXPECT_EQ("sint32[]", common(Type::arrayOf(Type::uint16), Type::arrayOf(Type::sint8)));
}

TEST(RemoteUnion, WhatIsNoNumberIsAsTheFirstServerHasIt) {
  EXPECT_EQ("uint16", common(CQoriType::uint16, CQoriType::string));
  EXPECT_EQ("string", common(CQoriType::string, CQoriType::uint16));
  EXPECT_EQ("uint8", common(CQoriType::uint8, CQoriType::arrayOf(CQoriType::uint16)));
  EXPECT_EQ("uint16[]", common(CQoriType::arrayOf(CQoriType::uint16), CQoriType::uint8));
  EXPECT_EQ("uint8", common(CQoriType::uint8, CQoriType::boolean));
}

TEST(RemoteUnion, DefaultOfAnotherTypeIsDropped) {
  CimClassDeclaration one = classOf("A", "", {{"N", CQoriType::uint8}});
  one.properties.front().defaultValue = QORSmrPtr<IQoriValue>(new CQoriValue(7ULL, CQoriType::uint8));
  const RemoteUnion same = remote::unionOf({one, one});
  EXPECT_FALSE(same.declaration.properties.front().defaultValue.IsNull());
  const RemoteUnion wider = remote::unionOf({one, classOf("A", "", {{"N", CQoriType::uint16}})});
  EXPECT_TRUE(wider.declaration.properties.front().defaultValue.IsNull());
}

TEST(RemoteUnion, SuperclassesOfAllServersEachOnce) {
  const RemoteUnion all =
      remote::unionOf({classOf("C", "A", {}), classOf("C", "", {}), classOf("C", "a", {}), classOf("C", "B", {})});
  EXPECT_THAT(all.superClasses, ElementsAre(QORString("A"), QORString("B")));
}

class RemoteUnionOfLines : public testing::Test {
 protected:
  RemoteUnionOfLines() {
    for (const CimClassDeclaration& one :
         {classOf("A", "", {{"Id", CQoriType::string}}), classOf("M", "A", {{"New", CQoriType::uint32}}),
          classOf("O", "A", {{"Old", CQoriType::string}})}) {
      manager.sink().declareClass(kSpace, one);
    }
  }
  // Superclass and properties of a class with one property of its own.
  std::vector<std::string> settled(const std::vector<QORString>& superClasses, const Properties& own) {
    CimClassDeclaration declaration = classOf("C", superClasses.front().c_str(), own);
    remote::settleInheritance(manager.sink(), kSpace, superClasses, declaration);
    std::vector<std::string> told = {std::string(declaration.superClass.view())};
    for (const CimPropertyDeclaration& property : declaration.properties) {
      told.push_back(std::string(property.name.view()) + ' ' + typeOf(property));
    }
    return told;
  }

  EmbeddedObjectManager manager;
};

TEST_F(RemoteUnionOfLines, SuperclassIsTheOneThatDerivesFromTheOther) {
  EXPECT_THAT(settled({"A", "M"}, {{"X", CQoriType::string}}), ElementsAre("M", "X string"));
  EXPECT_THAT(settled({"M", "A"}, {{"X", CQoriType::string}}), ElementsAre("M", "X string"));
}

TEST_F(RemoteUnionOfLines, PropertiesOfAnotherLineBecomeOwnOnes) {
  EXPECT_THAT(settled({"M", "O"}, {{"X", CQoriType::string}}), ElementsAre("M", "X string", "Old string"));
  EXPECT_THAT(settled({"O", "M"}, {{"new", CQoriType::uint8}}), ElementsAre("O", "new uint8"));
}

TEST_F(RemoteUnionOfLines, WhatIsInheritedInAnotherTypeKeepsThat) {
  EXPECT_THAT(settled({"M"}, {{"New", CQoriType::string}}), ElementsAre("M", "New uint32"));
}

}  // namespace
