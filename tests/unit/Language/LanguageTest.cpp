// The rules of the language reference that a query script cannot show: the XML
// stream, long and deep statements, requests, and what values raise.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace {

using ::testing::HasSubstr;

const char* const kNameSpace = "root/cimv2";

const char* const kFilteredModel = R"mof(
Qualifier YRK_TRBS_ProviderFiltered : boolean = false, Scope(class), Flavor(EnableOverride, ToSubclass);
[YRK_TRBS_ProviderFiltered] class EX_Filtered { [Key] string Name; };
instance of EX_Filtered { Name = "b"; };
instance of EX_Filtered { Name = "a"; };
)mof";

class Language : public ::testing::Test {
 protected:
  Language() {
    _manager.makeCurrent();
    MofLoader loader(_manager.sink(), kNameSpace);
    loader.loadFiles({QORQL_SOURCE_DIR "/examples/language.mof"});
    loader.loadText(kFilteredModel, "filtered");
  }

  // The XML stream; the result table stays in _table.
  std::string run(const std::string& text) {
    const QORString query(text.c_str());
    const QORString language("DMTF:CQL");
    QORQL_Lexer lexer(query, false);
    QORQL_SymbolTable symbols(nullptr);
    const QORSmrPtr<QORQL_Executable> statement =
        QORQL_Query::parse(symbols, lexer, false, query, language, kNameSpace);
    _table = new QORQL_DataTable;
    std::ostringstream out;
    statement->execute(symbols, _table, &out, kNameSpace);
    return out.str();
  }

  // "parse <code> line <line>: <message>", "runtime <code>: <message>" or
  // "<type> <code>: <message>"; empty when nothing is raised.
  std::string errorOf(const std::string& text) {
    try {
      run(text);
      return "";
    } catch (const QORQL_ParseException& error) {
      return "parse " + std::to_string(error.getCode()) + " line " + std::to_string(error.getLineNr()) + ": " +
             error.what();
    } catch (const QORQL_Exception& error) {
      return "runtime " + std::to_string(error.getCode()) + ": " + error.what();
    } catch (const QoriBaseException& error) {
      return std::string(error.getType().c_str()) + " " + std::to_string(error.getCode()) + ": " + error.what();
    }
  }

  static std::string repeated(const char* text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
  }

  EmbeddedObjectManager _manager;
  QORSmrPtr<QORQL_DataTable> _table;
};

// rule: STMT-4
TEST_F(Language, AChainOfAHundredThousandConditionsWorks) {
  const std::string text = "SELECT Name FROM EX_Host WHERE Memory > 16" + repeated(" AND Memory < 64", 100'000);
  EXPECT_THAT(run(text), HasSubstr("<TABLEROW>\n<VALUE>beta</VALUE>\n</TABLEROW>\n</TABLE>"));
  EXPECT_EQ(_table->getRowCount(), 1u);
}

// rule: STMT-4
TEST_F(Language, AThousandParenthesesWork) {
  const std::string text =
      "SELECT Name FROM EX_Host WHERE " + repeated("(", 1000) + "Memory" + repeated(")", 1000) + " = 32";
  EXPECT_THAT(run(text), HasSubstr("<VALUE>beta</VALUE>"));
}

// rule: STMT-4, ERR-19
TEST_F(Language, OneMoreParenthesisIsRefused) {
  const std::string text =
      "SELECT Name FROM EX_Host WHERE " + repeated("(", 1001) + "Memory" + repeated(")", 1001) + " = 32";
  EXPECT_EQ(errorOf(text), "parse 2 line 1: expression nested too deeply");
}

// rule: WHERE-9
TEST_F(Language, InstancesThatTheirProviderFilteredAreNeitherFilteredNorOrderedAgain) {
  const std::string stream = run("SELECT Name FROM EX_Filtered WHERE Name = 'a' ORDER BY Name ASC");
  EXPECT_THAT(stream, HasSubstr("<TABLEROW>\n<VALUE>b</VALUE>\n</TABLEROW>\n"
                                "<TABLEROW>\n<VALUE>a</VALUE>\n</TABLEROW>\n"));
}

// rule: CMP-6, ERR-56
TEST_F(Language, KindsThatDoNotCompareAreNamed) {
  EXPECT_EQ(errorOf("SELECT Name FROM EX_Disk WHERE Size = 'big'"), "CIM_Value 0: Cannot compare uint64 with string");
}

// rule: ERR-56
TEST_F(Language, UnderAnyTheSameIsAnErrorOfTheEngine) {
  EXPECT_EQ(errorOf("SELECT Name FROM EX_Disk WHERE 'big' = ANY Ports"),
            "runtime 6: Cannot compare string with uint16");
}

// rule: ARITH-4, ERR-56
TEST_F(Language, DivisionByZeroIsRaised) {
  EXPECT_EQ(errorOf("SELECT Name FROM EX_Disk WHERE Size / 0 = 1"), "CIM_Value 0: Division by zero");
}

// rule: FUNC-3
TEST_F(Language, InstanceOfIsTheWholeObject) {
  _manager.resetStatistics();
  const std::string stream = run("SELECT h.Name, INSTANCEOF(h) AS whole FROM EX_Host AS h WHERE h.Name = 'beta'");
  EXPECT_THAT(stream, HasSubstr("Memory = 32"));
  EXPECT_EQ(_manager.statistics().getInstanceCalls, 1u);
}

// rule: OUT-2
TEST_F(Language, TheStreamShowsEachKindOfValue) {
  const std::string stream =
      run("SELECT Name, Errors, Ports, OBJECTPATH(d) AS path, Name + '<&' AS text FROM EX_Disk AS d WHERE Name = 'd2'");
  EXPECT_THAT(stream, HasSubstr("<TABLEROW>\n<VALUE>d2</VALUE>\n<VALUE.NULL></VALUE.NULL>\n"
                                "<VALUE.ARRAY>\n<VALUE>3</VALUE>\n</VALUE.ARRAY>\n<VALUE.REFERENCE>"));
  EXPECT_THAT(stream, HasSubstr("</VALUE.REFERENCE>\n<VALUE>d2&lt;&amp;</VALUE>\n</TABLEROW>\n"));
}

// rule: OUT-2, SEL-5
TEST_F(Language, ABareStarDeclaresItsCellsAndWritesRowsWithoutValues) {
  EXPECT_EQ(run("SELECT * FROM EX_Host WHERE Memory = 64"),
            "\n<IRETURNVALUE>\n<TABLE>\n<TABLEROW.DECLARATION>\n"
            "<TABLECELL.DECLARATION NAME=\"EX_HOST.Name\" TYPE=\"string\" ISARRAY=\"0\" CELLPOS=\"0\">"
            "</TABLECELL.DECLARATION>\n"
            "<TABLECELL.DECLARATION NAME=\"EX_HOST.Memory\" TYPE=\"uint32\" ISARRAY=\"0\" CELLPOS=\"1\">"
            "</TABLECELL.DECLARATION>\n"
            "</TABLEROW.DECLARATION>\n<TABLEROW>\n</TABLEROW>\n</TABLE>\n</IRETURNVALUE>\n");
}

// rule: SEL-8
TEST_F(Language, FirstLimitsTheStreamAndNotTheTable) {
  const std::string stream = run("SELECT FIRST 1 Name FROM EX_Host");
  EXPECT_THAT(stream, HasSubstr("<TABLEROW>\n<VALUE>alpha</VALUE>\n</TABLEROW>\n</TABLE>"));
  EXPECT_EQ(_table->getRowCount(), 3u);
}

// rule: OUT-3
TEST_F(Language, TheDeclaredTypeIsThatOfTheFirstObjectsValue) {
  EXPECT_THAT(run("SELECT Errors FROM EX_Disk WHERE Kind = 'ssd'"), HasSubstr("TYPE=\"sint32\""));
  EXPECT_THAT(run("SELECT Errors FROM EX_Disk WHERE Size = 250"), HasSubstr("TYPE=\"String\""));
}

// rule: OUT-1
TEST_F(Language, TheFormatClauseDoesNotChangeTheStream) {
  const std::string text = "SELECT Name FROM EX_Host";
  EXPECT_EQ(run(text + " FORMAT AS CSV"), run(text));
  EXPECT_EQ(run(text + " FORMAT AS HTML"), run(text + " FORMAT AS XML"));
}

// rule: AGG-5, ERR-34
TEST_F(Language, TheStreamRefusesANullAggregate) {
  EXPECT_EQ(errorOf("SELECT COUNT(Name) AS n FROM EX_Tape"),
            "parse 15 line 0: Aggregate functions must contain a valid expression.");
  EXPECT_EQ(_table->getRowCount(), 1u);
}

// rule: ERR-35
TEST_F(Language, TheStreamRefusesAnAggregateThatIsNoNumber) {
  EXPECT_EQ(errorOf("SELECT MAX(Size) > 3 AS m FROM EX_Disk"),
            "parse 15 line 0: Aggregate functions must contain an expression that results in a numeric value.");
}

}  // namespace
