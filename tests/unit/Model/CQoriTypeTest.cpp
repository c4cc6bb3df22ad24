// The type singletons.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "cimom/CQoriType.h"

namespace {

struct NamedType {
  const char* name;
  const QORSmrPtr<IQoriType>& type;
};

const NamedType kTypes[] = {
    {"sint8", CQoriType::sint8},       {"uint8", CQoriType::uint8},     {"sint16", CQoriType::sint16},
    {"uint16", CQoriType::uint16},     {"sint32", CQoriType::sint32},   {"uint32", CQoriType::uint32},
    {"sint64", CQoriType::sint64},     {"uint64", CQoriType::uint64},   {"real32", CQoriType::real32},
    {"real64", CQoriType::real64},     {"boolean", CQoriType::boolean}, {"string", CQoriType::string},
    {"datetime", CQoriType::datetime}, {"char16", CQoriType::char16},   {"reference", CQoriType::reference},
    {"object", CQoriType::object}};

TEST(CQoriType, SingletonsHaveTheirNames) {
  for (const NamedType& entry : kTypes) {
    EXPECT_EQ(entry.type->getName(), entry.name);
    EXPECT_FALSE(entry.type->isArray());
  }
}

TEST(CQoriType, FindGivesTheSingletonsIgnoringCase) {
  for (const NamedType& entry : kTypes) {
    EXPECT_TRUE(CQoriType::find(entry.name, false) == entry.type) << entry.name;
    EXPECT_TRUE(CQoriType::find(QORString::toUpperCase(entry.name), false) == entry.type) << entry.name;
  }
  EXPECT_TRUE(CQoriType::find("uint128", false).IsNull());
  EXPECT_TRUE(CQoriType::find("", true).IsNull());
}

TEST(CQoriType, ArrayTypesAreSharedAndNamedAfterTheirElements) {
  for (const NamedType& entry : kTypes) {
    const QORSmrPtr<IQoriType> array = CQoriType::arrayOf(entry.type);
    EXPECT_EQ(array->getName(), entry.name);
    EXPECT_TRUE(array->isArray());
    EXPECT_TRUE(array == CQoriType::find(entry.name, true));
  }
}

TEST(CQoriType, ArrayOfAnUnknownTypeKeepsItsName) {
  const QORSmrPtr<IQoriType> other(new CQoriType("uint128", false));
  EXPECT_EQ(CQoriType::arrayOf(other)->getName(), "uint128");
  EXPECT_TRUE(CQoriType::arrayOf(other)->isArray());
}

class ForeignType : public IQoriType {
 public:
  explicit ForeignType(const char* name) : _name(name) {}
  const QORString& getName() const noexcept override { return _name; }
  bool isArray() const noexcept override { return false; }

 private:
  QORString _name;
};

TEST(CQoriType, CodesGoByName) {
  EXPECT_EQ(CQoriType::codeOf(*CQoriType::uint64), CQoriType::Code::Uint64);
  EXPECT_EQ(CQoriType::codeOf(CQoriType("UINT64", true)), CQoriType::Code::Uint64);
  EXPECT_EQ(CQoriType::codeOf(ForeignType("Real32")), CQoriType::Code::Real32);
  EXPECT_EQ(CQoriType::codeOf(ForeignType("other")), CQoriType::Code::Unknown);
}

}  // namespace
