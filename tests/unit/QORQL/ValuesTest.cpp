// Operations on values and on views of them.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "NumberViews.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;

const Value kNone;

Value text(const char* of) { return Value(new CQoriValue(QORString(of))); }
Value unsignedNumber(unsigned int of) { return Value(new CQoriValue(of, CQoriType::uint32)); }
std::string shown(const Value& value) { return value.IsNull() ? "null" : std::string(value->toString().view()); }

TEST(Values, CombineNumbersAndJoinTexts) {
  EXPECT_EQ(shown(QORQL_combine(QORQL_OperatorMINUS, unsignedNumber(2), unsignedNumber(5))), "-3");
  EXPECT_EQ(shown(QORQL_combine(QORQL_OperatorDIV, unsignedNumber(7), unsignedNumber(2))), "3");
  EXPECT_EQ(shown(QORQL_combine(QORQL_OperatorPLUS, text("a"), text("b"))), "ab");
}

TEST(Values, CombineNothingElse) {
  EXPECT_EQ(shown(QORQL_combine(QORQL_OperatorMINUS, text("a"), text("b"))), "null");
  EXPECT_EQ(shown(QORQL_combine(QORQL_OperatorPLUS, text("a"), unsignedNumber(1))), "null");
  EXPECT_EQ(shown(QORQL_combine(QORQL_OperatorPLUS, kNone, unsignedNumber(1))), "null");
  EXPECT_EQ(shown(QORQL_combine(QORQL_OperatorPLUS, unsignedNumber(1), kNone)), "null");
  EXPECT_THROW(QORQL_combine(QORQL_OperatorDIV, unsignedNumber(1), unsignedNumber(0)), QoriBaseException);
}

TEST(Values, CombineAChainFromItsEnd) {
  EXPECT_EQ(shown(QORQL_combineChain({QORQL_OperatorMINUS, QORQL_OperatorMINUS},
                                     {unsignedNumber(10), unsignedNumber(4), unsignedNumber(3)})),
            "9");
  EXPECT_EQ(shown(QORQL_combineChain({QORQL_OperatorPLUS, QORQL_OperatorPLUS}, {text("a"), text("b"), text("c")})),
            "abc");
  EXPECT_EQ(shown(QORQL_combineChain({QORQL_OperatorPLUS, QORQL_OperatorPLUS},
                                     {unsignedNumber(1), kNone, unsignedNumber(3)})),
            "null");
}

TEST(Values, NegateAllNumbersButUint64) {
  EXPECT_EQ(shown(QORQL_negate(unsignedNumber(5))), "-5");
  try {
    QORQL_negate(Value(new CQoriValue(5ULL, CQoriType::uint64)));
    FAIL() << "no error";
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getCode(), QORQL_Exception::QORQL_INVALID_DATA_TYPE);
  }
}

TEST(Values, TruthsAreValuesAndBack) {
  for (const QoriTruth truth : {QoriTruth::False, QoriTruth::True, QoriTruth::Null}) {
    EXPECT_EQ(QORQL_truthOf(QORQL_truthValue(truth)), truth);
  }
  EXPECT_TRUE(QORQL_truthValue(QoriTruth::Null).IsNull());
}

TEST(Values, RelationsOfOperatorsAndTheirMirrors) {
  EXPECT_EQ(QORQL_relationOf(QORQL_OperatorLEFTJOIN), QoriRelation::Equal);
  EXPECT_EQ(QORQL_relationOf(QORQL_OperatorLESSEQUAL), QoriRelation::LessEqual);
  EXPECT_TRUE(QORQL_isRelational(QORQL_OperatorFULLOUTERJOIN));
  EXPECT_FALSE(QORQL_isRelational(QORQL_OperatorLIKE));
  EXPECT_FALSE(QORQL_isRelational(QORQL_OperatorNONE));
  for (const QoriRelation relation : {QoriRelation::Equal, QoriRelation::NotEqual, QoriRelation::Less,
                                      QoriRelation::Greater, QoriRelation::LessEqual, QoriRelation::GreaterEqual}) {
    EXPECT_EQ(QORQL_relateViews(number(1ULL), relation, number(2ULL)),
              QORQL_relateViews(number(2ULL), QORQL_mirrored(relation), number(1ULL)));
  }
}

TEST(Values, ViewsAreRelatedWhereTheirKindsTell) {
  const QORString a("a");
  const QORString b("b");
  QoriScalar textA = number(0ULL);
  textA.kind = QoriScalarKind::Text;
  textA.text = &a;
  QoriScalar textB = textA;
  textB.text = &b;
  EXPECT_EQ(QORQL_relateViews(textA, QoriRelation::Less, textB), QORQL_ViewTruth::True);
  EXPECT_EQ(QORQL_relateViews(number(-1LL), QoriRelation::Less, number(~0ULL)), QORQL_ViewTruth::True);
  EXPECT_EQ(QORQL_relateViews(number(1.0), QoriRelation::NotEqual, number(1ULL)), QORQL_ViewTruth::False);
  EXPECT_EQ(QORQL_relateViews(QoriScalar(), QoriRelation::Equal, textA), QORQL_ViewTruth::Null);
  EXPECT_EQ(QORQL_relateViews(textA, QoriRelation::Equal, number(1ULL)), QORQL_ViewTruth::Undecided);
}

}  // namespace
