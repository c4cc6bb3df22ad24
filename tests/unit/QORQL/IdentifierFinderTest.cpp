// The one reference, and all classes, that stand in an expression.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Parsed;
using parsertest::plain;

struct Finding {
  const char* text;
  bool isProperty;
  bool isClass;
  const char* className;  // null: a null pointer
  const char* propertyName;
  const char* list;
};

class IdentifierFinder : public testing::TestWithParam<Finding> {};

std::string listed(const QORQL_IdentifierFinder& finder) {
  std::string text;
  const QORQL_IdentifierFinder::ClassNameList list = finder.getClassNameList();
  QORValSlistIterator<QORSmrPtr<QORString>> names(*list);
  while (++names) text += "<" + plain(*names.key()) + ">";
  return text;
}

TEST_P(IdentifierFinder, FindsNames) {
  const Parsed parsed(GetParam().text, Level::Comparison);
  QORQL_IdentifierFinder* const finder = new QORQL_IdentifierFinder;
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  parsed.tree->accept(visitor);
  EXPECT_EQ(finder->isPropertyReference(), GetParam().isProperty);
  EXPECT_EQ(finder->isClassReference(), GetParam().isClass);
  EXPECT_EQ(finder->getClassName().IsNull(), GetParam().className == nullptr);
  EXPECT_EQ(finder->getPropertyName().IsNull(), GetParam().propertyName == nullptr);
  if (GetParam().className != nullptr) {
    EXPECT_EQ(plain(*finder->getClassName()), GetParam().className);
  }
  if (GetParam().propertyName != nullptr) {
    EXPECT_EQ(plain(*finder->getPropertyName()), GetParam().propertyName);
  }
  EXPECT_EQ(listed(*finder), GetParam().list);
}

INSTANTIATE_TEST_SUITE_P(All, IdentifierFinder,
                         testing::Values(Finding{"x", true, false, "", "x", "<>"},
                                         Finding{"C.x", true, false, "C", "x", "<C>"},
                                         Finding{"C.*", true, false, "C", "*", "<C>"},
                                         Finding{"-C.x", true, false, "C", "x", "<C>"},
                                         Finding{"C.x IS NULL", true, false, "C", "x", "<C>"},
                                         Finding{"C.x + D.y", false, false, nullptr, nullptr, "<C><D>"},
                                         Finding{"C.x = 5", false, false, nullptr, nullptr, "<C>"},
                                         Finding{"5", false, false, nullptr, nullptr, ""},
                                         Finding{"A.firstref", true, true, "A", "firstref", "<A>"},
                                         Finding{"A.firstref = B.secondref", false, false, nullptr, nullptr, "<A><B>"},
                                         Finding{"OBJECTPATH(x)", true, true, "X", "NONE", "<X>"},
                                         Finding{"OBJECTPATH(x) + 1", false, false, nullptr, nullptr, "<X>"},
                                         Finding{"COUNT(C.x)", true, false, "C", "x", "<C>"}));

TEST(IdentifierFinder, SharesTheFactorsOwnStrings) {
  const Parsed parsed("x + C.y", Level::Expression);
  QORQL_IdentifierFinder* const finder = new QORQL_IdentifierFinder;
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  parsed.tree->accept(visitor);
  *finder->getClassNameList()->first() = "K";
  EXPECT_EQ(parsertest::print(parsed.tree), "(K.x + C.y)");
}

}  // namespace
