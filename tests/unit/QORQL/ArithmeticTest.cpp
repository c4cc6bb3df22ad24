// Sums and differences as they are parsed.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Parsed;
using parsertest::print;

TEST(Arithmetic, HoldsATermAndTheRestBehindItsOperator) {
  const Parsed parsed("a - b + c", Level::Arithmetic);
  const auto& node = static_cast<const QORQL_Arithmetic&>(*parsed.tree);
  EXPECT_EQ(node.getOperator(), QORQL_OperatorMINUS);
  EXPECT_EQ(print(node.getTerm()), "a");
  EXPECT_EQ(print(node.getArithmetic()), "(b + c)");
  EXPECT_EQ(node.getTermCasted(), node.getTerm().Get());
}

TEST(Arithmetic, OfOneTermHasNoOperator) {
  const Parsed parsed("a * b", Level::Arithmetic);
  const auto& node = static_cast<const QORQL_Arithmetic&>(*parsed.tree);
  EXPECT_EQ(node.getOperator(), QORQL_OperatorNONE);
  EXPECT_TRUE(node.getArithmetic().IsNull());
}

TEST(Arithmetic, CastsNothingThatIsNoTerm) {
  const QORQL_Arithmetic node(Parsed("a", Level::Factor).tree, nullptr, QORQL_OperatorNONE);
  EXPECT_EQ(node.getTermCasted(), nullptr);
}

}  // namespace
