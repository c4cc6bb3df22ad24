// Chains of nodes: the order of a walk, and how they are freed.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Chain.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Parsed;
using parsertest::plain;

std::string nameOf(const QORQL_Arithmetic& node) {
  const QORQL_Factor* const factor = parsertest::leadingFactor(node.getTerm());
  return factor == nullptr ? "none" : plain(*factor->getPropertyName());
}

std::string walked(QORQL_Arithmetic& head) {
  std::string trace;
  QORQL_walkChain(
      head, [&](QORQL_Arithmetic& node) { trace += "left " + nameOf(node) + ", "; },
      [&](QORSmrPtr<QORQL_Evaluatable>&) { trace += "right, "; },
      [&](QORQL_Arithmetic& node) { trace += "node " + nameOf(node) + ", "; });
  return trace;
}

TEST(Chain, VisitsLeftOperandsInOrderThenNodesFromTheLastBack) {
  const Parsed parsed("a + b - c", Level::Arithmetic);
  EXPECT_EQ(walked(static_cast<QORQL_Arithmetic&>(*parsed.tree)), "left a, left b, left c, node c, node b, node a, ");
  const Parsed one("a", Level::Arithmetic);
  EXPECT_EQ(walked(static_cast<QORQL_Arithmetic&>(*one.tree)), "left a, node a, ");
}

TEST(Chain, EndsWithARightOperandOfAnotherKind) {
  const Parsed parsed("a + b", Level::Arithmetic);
  auto& head = static_cast<QORQL_Arithmetic&>(*parsed.tree);
  head.chainLink() = Parsed("c", Level::Factor).tree;
  EXPECT_EQ(walked(head), "left a, right, node a, ");
}

TEST(Chain, LeavesWhatOthersHold) {
  const Parsed parsed("a + b + c", Level::Arithmetic);
  auto& head = static_cast<QORQL_Arithmetic&>(*parsed.tree);
  const QORSmrPtr<QORQL_Evaluatable> held = static_cast<QORQL_Arithmetic&>(*head.getArithmetic()).getArithmetic();
  QORQL_releaseChain<QORQL_Arithmetic>(head.chainLink());
  EXPECT_TRUE(head.getArithmetic().IsNull());
  EXPECT_EQ(nameOf(static_cast<QORQL_Arithmetic&>(*held)), "c");
  QORQL_releaseChain<QORQL_Arithmetic>(head.chainLink());
  EXPECT_TRUE(head.getArithmetic().IsNull());
}

}  // namespace
