// What the values of an expression are, as far as the class repository tells.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/Explain/QORQL_DeclaredTypes.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "FetchedStatement.h"

namespace {

constexpr char kModel[] = R"(
class Base { [key] uint32 Id; };
class A : Base { uint64 Great; sint32 Low; real32 Small; real64 Real; string Text; uint16 List[]; };
)";

struct DeclaredTypes : testing::Test {
  QORQL_DeclaredType of(const char* expression) {
    FetchedStatement fetched((std::string("SELECT ") + expression + " AS X FROM A AS a").c_str());
    return types(fetched).of(fetched.entry(0)->getExpression().Get());
  }
  static QORQL_DeclaredTypes types(const FetchedStatement& fetched) {
    return {static_cast<const QORQL_FromClause&>(*fetched.query->getFromClause()), "root/cimv2"};
  }
  QueryWorld world{kModel};
};

TEST_F(DeclaredTypes, AreThoseOfPropertiesAndLiterals) {
  using Type = QORQL_DeclaredType;
  EXPECT_EQ(of("Id").kind, Type::kUnsigned);
  EXPECT_EQ(of("Great").kind, Type::kUint64);
  EXPECT_EQ(of("Low").kind, Type::kSigned);
  EXPECT_EQ(of("Real").kind, Type::kReal);
  EXPECT_EQ(of("Text").kind, Type::kOther);
  EXPECT_EQ(of("1.5").kind, Type::kReal);
}

TEST_F(DeclaredTypes, OfFunctionsAreKnownForCountsAndUnsignedSums) {
  using Type = QORQL_DeclaredType;
  EXPECT_EQ(of("COUNT(Text)").kind, Type::kUint64);
  EXPECT_EQ(of("SUM(Id)").kind, Type::kUint64);
  EXPECT_EQ(of("SUM(Low)").kind, Type::kUnknown);
  EXPECT_EQ(of("INSTANCEOF(a)").kind, Type::kUnknown);
}

TEST_F(DeclaredTypes, TellArraysAndReal32) {
  EXPECT_TRUE(of("List").isArray);
  EXPECT_FALSE(of("Id").isArray);
  EXPECT_TRUE(of("Small").isReal32);
  EXPECT_FALSE(of("Real").isReal32);
}

TEST_F(DeclaredTypes, FollowTheRulesOfArithmetic) {
  using Type = QORQL_DeclaredType;
  EXPECT_EQ(of("Id + 1").kind, Type::kUint64);
  EXPECT_EQ(of("Id - Low").kind, Type::kSigned);
  EXPECT_EQ(of("Id * 1.5").kind, Type::kReal);
}

TEST_F(DeclaredTypes, KnowTheNamesOfFrom) {
  FetchedStatement fetched("SELECT a.Id FROM A AS a");
  const QORQL_DeclaredTypes types(this->types(fetched));
  EXPECT_TRUE(types.isFromName("a"));
  EXPECT_FALSE(types.isFromName("Base"));
  EXPECT_TRUE(types.classNameOf("A").isEqualCaseInsensitive("A"));
  EXPECT_EQ(types.classNameOf("Nowhere"), "Nowhere");
  EXPECT_TRUE(types.classOf("Nowhere").IsNull());
  EXPECT_TRUE(types.isA("A", "Base"));
  EXPECT_FALSE(types.isA("Base", "A"));
}

}  // namespace
