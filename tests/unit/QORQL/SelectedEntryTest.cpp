// Entries of a select list: their shape, alias and value.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ParserSupport.h"

namespace {

using parsertest::Parsed;
using parsertest::plain;
using parsertest::Selected;

TEST(SelectedEntry, OfAnAsterisk) {
  const Selected selected("SELECT *");
  const QORQL_SelectedEntry& entry = selected.entry(0);
  EXPECT_TRUE(entry.isSelectAll());
  EXPECT_TRUE(entry.getExpression().IsNull());
  EXPECT_TRUE(entry.getClassNameList().IsNull());
  EXPECT_FALSE(entry.isProperty());
  EXPECT_FALSE(entry.isPlainProperty());
  EXPECT_FALSE(entry.isClassAll());
  EXPECT_FALSE(entry.isEntryAggregate());
  EXPECT_EQ(entry.GetFunctionID(), 0U);
}

struct Shape {
  const char* text;
  const char* className;
  const char* propertyName;
  QORuint32 functionID;
  bool isAggregate;
  bool isPlain;
};

class EntryShape : public testing::TestWithParam<Shape> {};

TEST_P(EntryShape, IsClassified) {
  const Selected selected(QORString("SELECT ") + GetParam().text + " AS n");
  const QORQL_SelectedEntry& entry = selected.entry(0);
  EXPECT_EQ(plain(entry.getClassName()), GetParam().className);
  EXPECT_EQ(plain(entry.getPropertyName()), GetParam().propertyName);
  EXPECT_EQ(entry.GetFunctionID(), GetParam().functionID);
  EXPECT_EQ(entry.isEntryAggregate(), GetParam().isAggregate);
  EXPECT_EQ(entry.isPlainProperty(), GetParam().isPlain);
  EXPECT_EQ(entry.isProperty(), *GetParam().className != '\0');
  EXPECT_FALSE(entry.isSelectAll());
  EXPECT_EQ(plain(entry.getAlias()), "N");
}

INSTANTIATE_TEST_SUITE_P(
    All, EntryShape,
    testing::Values(Shape{"x", "", "x", 0, false, true}, Shape{"C.x", "C", "x", 0, false, true},
                    Shape{"Cls::x", "", "x", 0, false, true}, Shape{"C.*", "C", "*", 0, false, false},
                    Shape{"C.a.b", "C", "b", 0, false, false}, Shape{"C.e.Cls::x", "C", "x", 0, false, false},
                    Shape{"-x", "", "x", 0, false, false}, Shape{"(x)", "", "x", 0, false, false},
                    Shape{"ANY x", "", "x", 0, false, false}, Shape{"x IS NULL", "", "x", 0, false, false},
                    Shape{"x + 1", "", "", 0, false, false}, Shape{"x * 2", "", "", 0, false, false},
                    Shape{"x = y", "", "", 0, false, false}, Shape{"5", "", "", 0, false, false},
                    Shape{"OBJECTPATH(x)", "X", "NONE", 1, false, false}, Shape{"MIN(x)", "", "x", 2, true, false},
                    Shape{"MAX(C.x)", "C", "x", 3, true, false}, Shape{"COUNT(x)", "", "x", 4, true, false},
                    Shape{"AVG(x)", "", "x", 5, true, false}, Shape{"SUM(x)", "", "x", 6, true, false},
                    Shape{"SUM(x) / 2", "", "", 6, true, false}, Shape{"-SUM(x)", "", "x", 6, true, false},
                    Shape{"INSTANCEOF(x)", "", "x", 7, false, false}));

TEST(SelectedEntry, OfAWholeObjectIsNoPlainProperty) {
  const Selected selected("SELECT C AS n");
  QORQL_SelectedEntry& entry = *selected.list().getSelectedEntries()->first();
  EXPECT_TRUE(entry.isPlainProperty());
  entry.setClassName("C");
  entry.setPropertyName("");
  EXPECT_TRUE(entry.isProperty());
  EXPECT_FALSE(entry.isPlainProperty());
}

TEST(SelectedEntry, TellsAllOfAClass) {
  EXPECT_TRUE(Selected("SELECT C.*").entry(0).isClassAll());
  EXPECT_FALSE(Selected("SELECT C.x").entry(0).isClassAll());
  EXPECT_FALSE(Selected("SELECT COUNT(C.*) AS n").entry(0).isClassAll());
}

TEST(SelectedEntry, KeepsAnAggregateValue) {
  const Selected selected("SELECT x");
  QORQL_SelectedEntry& entry = *selected.list().getSelectedEntries()->first();
  EXPECT_TRUE(entry.GetAggregateValue().IsNull());
  const Parsed five("5", parsertest::Level::Factor);
  entry.SetAggregateValue(static_cast<const QORQL_Factor&>(*five.tree).getLiteral());
  EXPECT_EQ(plain(entry.GetAggregateValue()->toString()), "5");
}

}  // namespace
