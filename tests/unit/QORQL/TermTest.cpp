// Products and quotients as they are parsed.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Parsed;
using parsertest::print;

const QORQL_Term& termOf(const Parsed& parsed) {
  return *static_cast<const QORQL_Arithmetic&>(*parsed.tree).getTermCasted();
}

TEST(Term, HoldsAFactorAndTheRestBehindItsOperator) {
  const Parsed parsed("a / b * c", Level::Arithmetic);
  EXPECT_EQ(termOf(parsed).getOperator(), QORQL_OperatorDIV);
  EXPECT_EQ(print(termOf(parsed).getFactor()), "a");
  EXPECT_EQ(print(termOf(parsed).getTerm()), "(b * c)");
}

TEST(Term, EndsBeforeASum) {
  const Parsed parsed("a * b + c", Level::Arithmetic);
  EXPECT_EQ(termOf(parsed).getOperator(), QORQL_OperatorMUL);
  EXPECT_EQ(print(termOf(parsed).getTerm()), "b");
}

TEST(Term, OfOneFactorHasNoOperator) {
  const Parsed parsed("a", Level::Arithmetic);
  EXPECT_EQ(termOf(parsed).getOperator(), QORQL_OperatorNONE);
  EXPECT_TRUE(termOf(parsed).getTerm().IsNull());
}

}  // namespace
