// The XML table, byte for byte.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "QueryWorld.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr char kModel[] = R"(
class C { [key] uint32 Id; string Text; uint16 A[]; real64 R; };
[association] class Link { [key] C REF Ref; uint32 N; };
class D { [key] uint32 Id; uint32 K; };
class Z { [key] uint32 Id; };
instance of C as $c1 { Id = 1; Text = "a<b>&\"'"; A = {1, NULL, 3}; R = 1.5; };
instance of C { Id = 2; };
instance of Link { Ref = $c1; };
instance of D { Id = 5; K = 9; };
)";

struct ResultStream : testing::Test {
  QueryWorld world{kModel};
  std::string stream(const char* query) { return world.run(query).stream; }
};

TEST_F(ResultStream, WholeTable) {
  EXPECT_EQ(stream("SELECT C.Id, C.Text AS T FROM C"),
            "\n<IRETURNVALUE>\n<TABLE>\n<TABLEROW.DECLARATION>\n"
            "<TABLECELL.DECLARATION NAME=\"C.Id\" TYPE=\"uint32\" ISARRAY=\"0\" CELLPOS=\"0\">"
            "</TABLECELL.DECLARATION>\n"
            "<TABLECELL.DECLARATION NAME=\"T\" TYPE=\"string\" ISARRAY=\"0\" CELLPOS=\"1\"></TABLECELL.DECLARATION>\n"
            "</TABLEROW.DECLARATION>\n"
            "<TABLEROW>\n<VALUE>1</VALUE>\n<VALUE>a&lt;b&gt;&amp;&quot;&apos;</VALUE>\n</TABLEROW>\n"
            "<TABLEROW>\n<VALUE>2</VALUE>\n<VALUE.NULL></VALUE.NULL>\n</TABLEROW>\n"
            "</TABLE>\n</IRETURNVALUE>\n");
}

TEST_F(ResultStream, ArraysSkipNullElements) {
  EXPECT_THAT(stream("SELECT A FROM C WHERE Id = 1"),
              HasSubstr("ISARRAY=\"1\" CELLPOS=\"0\"></TABLECELL.DECLARATION>\n</TABLEROW.DECLARATION>\n<TABLEROW>\n"
                        "<VALUE.ARRAY>\n<VALUE>1</VALUE>\n<VALUE>3</VALUE>\n</VALUE.ARRAY>\n</TABLEROW>\n"));
}

TEST_F(ResultStream, ReferencesAreInstancePaths) {
  const std::string text = stream("SELECT Ref FROM Link");
  EXPECT_THAT(text, HasSubstr("<VALUE.REFERENCE><INSTANCEPATH>"));
  EXPECT_THAT(text, HasSubstr("</INSTANCEPATH></VALUE.REFERENCE>\n"));
  EXPECT_THAT(text, HasSubstr("<KEYBINDING NAME=\"Id\">"));
}

// No MOF declares arrays of references; other object managers may have them.
TEST_F(ResultStream, ArraysOfReferencesAreEscapedPaths) {
  const QORString text("SELECT Refs FROM D");
  const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List());
  const QORSmrPtr<CQoriBaseObject::PropertyList> keys(new CQoriBaseObject::PropertyList());
  keys->append(new CQoriProperty("Id", new CQoriValue(QORString("a")), true));
  const QORSmrPtr<IQoriObject> target(new CQoriBaseObject("root/cimv2", "C", "Id", keys));
  elements->append(QORSmrPtr<IQoriValue>(new CQoriValue(target->getInstanceName())));
  elements->append(QORSmrPtr<IQoriValue>());
  const QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList());
  properties->append(
      new CQoriProperty("Refs", new CQoriValue(elements, CQoriType::arrayOf(CQoriType::reference)), true));
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  table->addColumn(new QORQL_TableHeader("D", "D", ""), 0, false);
  const QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
  row->addCell(0, new CQoriBaseObject("root/cimv2", "D", "Refs", properties));
  table->addRow(row);

  QueryWorld other("class D { [key] uint32 Id; uint32 Refs; };");
  QORQL_Lexer lexer(text, false);
  QORQL_SymbolTable symbols(nullptr);
  const auto parsed = QORQL_Query::parse(symbols, lexer, false, text, "", "root/cimv2");
  std::ostringstream stream;
  dynamic_cast<QORQL_Query&>(*parsed).getSelectList()->execute(symbols, table, &stream, "root/cimv2");
  EXPECT_THAT(stream.str(), HasSubstr("NAME=\"D.Refs\" TYPE=\"reference\" ISARRAY=\"1\" CELLPOS=\"0\""));
  EXPECT_THAT(stream.str(), HasSubstr("<TABLEROW>\n<VALUE.REFARRAY>\n<VALUE>root/cimv2:C.Id=&quot;a&quot;</VALUE>\n"
                                      "</VALUE.REFARRAY>\n</TABLEROW>\n"));
}

TEST_F(ResultStream, APropertyWithoutValueIsDeclaredString) {
  EXPECT_THAT(stream("SELECT R FROM C WHERE Id = 2"), HasSubstr("NAME=\"C.R\" TYPE=\"String\" ISARRAY=\"0\""));
}

TEST_F(ResultStream, StarDeclaresCellsAndWritesEmptyRows) {
  const std::string text = stream("SELECT * FROM D");
  EXPECT_THAT(text, HasSubstr("NAME=\"D.Id\""));
  EXPECT_THAT(text, HasSubstr("NAME=\"D.K\" TYPE=\"uint32\" ISARRAY=\"0\" CELLPOS=\"1\""));
  EXPECT_THAT(text, HasSubstr("<TABLEROW>\n</TABLEROW>\n</TABLE>"));
}

TEST_F(ResultStream, ClassStarWritesItsProperties) {
  const std::string text = stream("SELECT D.* FROM D");
  EXPECT_THAT(text, HasSubstr("NAME=\"D.Id\" TYPE=\"uint32\""));
  EXPECT_THAT(text, HasSubstr("<TABLEROW>\n<VALUE>5</VALUE>\n<VALUE>9</VALUE>\n</TABLEROW>\n"));
}

TEST_F(ResultStream, ClassStarOfAnAbsentObjectWritesANullForEachDeclaredCell) {
  EXPECT_THAT(stream("SELECT C.Id, D.* FROM C, D WHERE C.Id *= D.K"),
              HasSubstr("<VALUE.NULL></VALUE.NULL>\n</TABLEROW>\n"));
}

TEST_F(ResultStream, EmptyResultWritesTheDeclarationsAlone) {
  EXPECT_EQ(stream("SELECT Z.Id, 1 + 1 AS Two FROM Z"),
            "\n<IRETURNVALUE>\n<TABLE>\n<TABLEROW.DECLARATION>\n"
            "<TABLECELL.DECLARATION NAME=\"TWO\" TYPE=\"String\" ISARRAY=\"0\" CELLPOS=\"0\"></TABLECELL.DECLARATION>\n"
            "</TABLEROW.DECLARATION>\n</TABLE>\n</IRETURNVALUE>\n");
}

TEST_F(ResultStream, AClassWithoutAnyObjectDeclaresTheDefaultCell) {
  EXPECT_THAT(stream("SELECT C.Id, Z.Id FROM C, Z"),
              HasSubstr("NAME=\"Z.Id\" TYPE=\"String\" ISARRAY=\"0\" CELLPOS=\"1\""));
}

TEST_F(ResultStream, FirstLimitsTheRows) {
  const std::string text = stream("SELECT FIRST 1 Id FROM C");
  EXPECT_THAT(text, HasSubstr("<VALUE>1</VALUE>"));
  EXPECT_THAT(text, Not(HasSubstr("<VALUE>2</VALUE>")));
}

TEST_F(ResultStream, AggregatesWriteOneRow) {
  EXPECT_THAT(stream("SELECT COUNT(C.Text) AS N, MAX(C.Id) AS M FROM C"),
              HasSubstr("<TABLEROW>\n<VALUE>1</VALUE>\n<VALUE>2</VALUE>\n</TABLEROW>\n</TABLE>"));
}

TEST_F(ResultStream, AValueThatCannotBeComputedEndsTheRowsAndIsLogged) {
  const QueryOutcome outcome = world.runIn("SELECT C.Id, 1 / (2 - C.Id) AS Q FROM C", QORQL_DataTable::kExecutionLazy);
  EXPECT_THAT(outcome.stream, HasSubstr("<TABLEROW>\n<VALUE>1</VALUE>\n<VALUE>1</VALUE>\n</TABLEROW>\n"
                                        "<TABLEROW>\n<VALUE>2</VALUE>\n</TABLE>\n</IRETURNVALUE>\n"));
  EXPECT_THAT(outcome.log, testing::Contains("CQL/1: Caught an exception occured while streaming the data."));
}

TEST_F(ResultStream, AColumnThatCannotBeDeclaredFailsBehindTheDeclarationsBeforeIt) {
  const QueryOutcome outcome = world.run("SELECT C.Id, 1 / (1 - C.Id) AS Q FROM C");
  EXPECT_THAT(outcome.error, HasSubstr("Division by zero"));
  EXPECT_EQ(outcome.stream,
            "\n<IRETURNVALUE>\n<TABLE>\n<TABLEROW.DECLARATION>\n"
            "<TABLECELL.DECLARATION NAME=\"C.Id\" TYPE=\"uint32\" ISARRAY=\"0\" CELLPOS=\"0\">"
            "</TABLECELL.DECLARATION>\n");
}

TEST_F(ResultStream, ANullAggregateFailsBeforeAnythingIsWritten) {
  const QueryOutcome outcome = world.run("SELECT MAX(Id) AS M FROM Z");
  EXPECT_EQ(outcome.error, "parse 15 line 0: Aggregate functions must contain a valid expression.");
  EXPECT_EQ(outcome.stream, "");
}

TEST_F(ResultStream, TheFormatClauseDoesNotChangeTheStream) {
  EXPECT_EQ(stream("SELECT Id FROM C FORMAT AS CSV"), stream("SELECT Id FROM C"));
}

TEST_F(ResultStream, AWholeObjectIsDeclaredAndWrittenAsOne) {
  const std::string text = stream("SELECT D FROM D");
  EXPECT_THAT(text, HasSubstr("TYPE=\"object\""));
  EXPECT_THAT(text, HasSubstr("<VALUE>instance of D"));
}

}  // namespace
