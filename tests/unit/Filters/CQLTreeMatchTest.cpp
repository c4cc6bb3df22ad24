// The steps of matching asked one by one: no match, and nothing else, where they are given
// what they cannot use.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "ForeignObject.h"
#include "cimom/CQoriValue.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Value = QORSmrPtr<IQoriValue>;

using CQLTreeMatching = Filter;

TEST_F(CQLTreeMatching, StepsGivenNoNodeOrAnotherOneAreFalse) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_AlertIndication WHERE U8 = 5", kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  const Object alert(world.alert("U8 = 5;"));
  const CQLQueryStatement::Node none;
  const CQLQueryStatement::Node other(
      new QORQL_Comparison(CQLQueryStatement::Node(), CQLQueryStatement::Node(), QORQL_OperatorEQUAL));
  for (const CQLQueryStatement::Node& node : {none, other}) {
    EXPECT_FALSE(statement.isMatchExpression(node, alert));
    EXPECT_FALSE(statement.isMatchExpressionTerm(node, alert));
    EXPECT_FALSE(statement.isMatchExpressionFactor(node, alert));
    EXPECT_FALSE(statement.isMatchComparison(node, alert));
    EXPECT_TRUE(statement.doMatchArithmetic(node, alert).IsNull());
    EXPECT_TRUE(statement.doMatchTerm(node, alert).IsNull());
    EXPECT_TRUE(statement.doMatchFactor(node, alert).IsNull());
  }
}

// The left side of the first condition.
CQLQueryStatement::Node leftOf(const CQLQueryStatement::Node& comparison) {
  return dynamic_cast<const QORQL_Comparison&>(*comparison).getLHSArithmeticExpression();
}

TEST_F(CQLTreeMatching, ValuesThatCannotBeComputedAreNull) {
  const QORSmrPtr<ForeignObject> foreign(new ForeignObject("CIM_AlertIndication"));
  foreign->properties["U8"] = []() -> Value { throw QoriBaseException("a", "b", "c", "it fails", 1); };
  const Object failing(foreign);
  const Object alert(world.alert("U8 = 5; MessageID = \"x\";"));
  for (const char* left :
       {"U8", "U8 / 0", "U8 / (U16 - U16)", "1 + U8 * MessageID", "-MessageID", "MAX(U8)", "S8 + 1"}) {
    QORQL_SymbolTable symbols(nullptr);
    QORQL_Lexer lexer(QORString(left) + " = 1", false);
    QORQL_ProjectionMap map(QORQL_newProjectionMap(lexer.slabs()));
    const CQLQueryStatement::Node node(QORQL_Comparison::parse(symbols, lexer, map, "", ""));
    CQLQueryStatement statement("CQL", "SELECT * FROM CIM_AlertIndication", kNameSpace, "");
    ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
    const CQLQueryStatement::Node sum(leftOf(node));
    EXPECT_TRUE(statement.doMatchArithmetic(sum, Object()).IsNull()) << left;
    EXPECT_TRUE(statement.doMatchArithmetic(sum, failing).IsNull()) << left;
    EXPECT_EQ(statement.doMatchArithmetic(sum, alert).IsNull(), std::string(left) != "U8") << left;
  }
}

TEST_F(CQLTreeMatching, ComparisonsAreBooleanValues) {
  const Value five(new CQoriValue(5, CQoriType::uint8));
  const Value six(new CQoriValue(6, CQoriType::sint64));
  const Value text(new CQoriValue(QORString("5")));
  constexpr auto kNone = QORQL_Comparison::ArrayCompNone;
  const Value less(CQLQueryStatement::doComparisonOpGreaterLess(five, six, QORQL_OperatorLESS, kNone));
  EXPECT_EQ(less->getType()->getName(), "boolean");
  EXPECT_TRUE(less->getBoolean());
  const Value same(CQLQueryStatement::doComparisonOpEqualsNotEquals(five, text, QORQL_OperatorEQUAL, kNone));
  EXPECT_EQ(same->getType()->getName(), "boolean");
  EXPECT_FALSE(same->getBoolean());
  EXPECT_FALSE(CQLQueryStatement::doComparisonOperation(Value(), five, QORQL_OperatorEQUAL));
  EXPECT_FALSE(CQLQueryStatement::doComparisonOperation(five, Value(), QORQL_OperatorNOTEQUAL));
  EXPECT_TRUE(
      CQLQueryStatement::compareRealValues(five, Value(new CQoriValue(5.0, CQoriType::real64)), QORQL_OperatorEQUAL));
}

TEST_F(CQLTreeMatching, NumericalDataIsTwoNumbers) {
  const std::vector<const char*> numbers = {"uint8",  "uint16", "uint32", "uint64", "sint8",
                                            "sint16", "sint32", "sint64", "real32", "real64"};
  for (const char* number : numbers) {
    for (const char* other : numbers) EXPECT_TRUE(CQLQueryStatement::isNumericalData(number, other));
    for (const char* other : {"string", "boolean", "datetime", "char16", "reference", "object", ""}) {
      EXPECT_FALSE(CQLQueryStatement::isNumericalData(number, other));
      EXPECT_FALSE(CQLQueryStatement::isNumericalData(other, number));
    }
  }
}

}  // namespace
