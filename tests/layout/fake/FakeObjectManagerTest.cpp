// Runs queries through the engine library with a fake object manager behind it:
// the engine needs nothing but the platform interface, and asks it these things.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/Explain/QORQL_Surprises.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriProviderException.h"
#include "tests/layout/fake/FakeObjectManager.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class FakeObjectManagers : public ::testing::Test {
 protected:
  FakeObjectManagers() {
    _manager.reset();
    _manager.addClass({"Fake_Disk", {"Name", "Size"}, {}});
    _manager.addClass({"Fake_Host", {"Name"}, {}});
    _manager.addInstance("Fake_Disk", {{"Name", "a"}, {"Size", "10"}});
    _manager.addInstance("Fake_Disk", {{"Name", "b"}, {"Size", "30"}});
    _manager.addInstance("Fake_Disk", {{"Name", "c"}, {"Size", "20"}});
    _manager.addInstance("Fake_Host", {{"Name", "h"}});
  }

  // What the engine streamed; the result table stays in _table.
  std::string run(const char* text, const char* language = "QORQL") {
    const QORString query(text);
    QORQL_Lexer lexer(query, false);
    QORQL_SymbolTable symbols(nullptr);
    const QORSmrPtr<QORQL_Executable> statement =
        QORQL_Query::parse(symbols, lexer, false, query, language, "root/fake");
    _table = new QORQL_DataTable;
    std::ostringstream out;
    statement->execute(symbols, _table, &out, "root/fake");
    return out.str();
  }

  FakeObjectManager& _manager = FakeObjectManager::instance();
  QORSmrPtr<QORQL_DataTable> _table;
};

TEST_F(FakeObjectManagers, RunsAQueryFromTextToStream) {
  EXPECT_EQ(run("SELECT d.Name, Size FROM Fake_Disk AS d WHERE Size > 15 ORDER BY Size DESC"),
            "\n<IRETURNVALUE>\n<TABLE>\n"
            "<TABLEROW.DECLARATION>\n"
            "<TABLECELL.DECLARATION NAME=\"d.Name\" TYPE=\"string\" ISARRAY=\"0\" CELLPOS=\"0\">"
            "</TABLECELL.DECLARATION>\n"
            "<TABLECELL.DECLARATION NAME=\"FAKE_DISK.Size\" TYPE=\"uint64\" ISARRAY=\"0\" CELLPOS=\"1\">"
            "</TABLECELL.DECLARATION>\n"
            "</TABLEROW.DECLARATION>\n"
            "<TABLEROW>\n<VALUE>b</VALUE>\n<VALUE>30</VALUE>\n</TABLEROW>\n"
            "<TABLEROW>\n<VALUE>c</VALUE>\n<VALUE>20</VALUE>\n</TABLEROW>\n"
            "</TABLE>\n</IRETURNVALUE>\n");
  EXPECT_EQ(_table->getRowCount(), 2u);
  EXPECT_THAT(_manager.encodedTexts, IsEmpty());
}

TEST_F(FakeObjectManagers, TextIsWrittenAsThePlatformEncodesIt) {
  _manager.addInstance("Fake_Disk", {{"Name", "<d> & 'e'"}, {"Size", "5"}});
  _manager.addInstance("Fake_Disk", {{"Name", "f/g"}, {"Size", "6"}});
  const std::string stream = run("SELECT Name, Name + ';' AS Twice FROM Fake_Disk WHERE Size < 10");
  EXPECT_THAT(stream,
              ::testing::HasSubstr("<TABLEROW>\n<VALUE>{<d> & 'e'}</VALUE>\n<VALUE>{<d> & 'e';}</VALUE>\n</TABLEROW>\n"
                                   "<TABLEROW>\n<VALUE>{f/g}</VALUE>\n<VALUE>{f/g;}</VALUE>\n</TABLEROW>\n"));
  EXPECT_THAT(_manager.encodedTexts, ElementsAre("<d> & 'e'", "<d> & 'e';", "f/g", "f/g;"));
}

// rule: FROM-9
TEST_F(FakeObjectManagers, EnumeratesEachClassOnceWithThePropertiesAndTheQuery) {
  const char* const text = "SELECT d.Name FROM Fake_Disk AS d WHERE d.Size > 15";
  run(text);
  ASSERT_EQ(_manager.calls.size(), 1u);
  const FakeCall& call = _manager.calls.front();
  EXPECT_EQ(call.operation, "enumerateInstances");
  EXPECT_EQ(call.nameSpace, "root/fake");
  EXPECT_EQ(call.className, "FAKE_DISK");
  EXPECT_FALSE(call.wantsAll);
  EXPECT_THAT(call.properties, UnorderedElementsAre("Name", "Size"));
  EXPECT_EQ(call.timeout, -1);
  EXPECT_EQ(call.queryText, text);
  EXPECT_EQ(call.queryLanguage, "QORQL");
}

TEST_F(FakeObjectManagers, SelectAllAsksForEveryProperty) {
  run("SELECT * FROM Fake_Host");
  ASSERT_EQ(_manager.calls.size(), 1u);
  EXPECT_TRUE(_manager.calls.front().wantsAll);
}

TEST_F(FakeObjectManagers, AnEmptyLanguageSendsNoTransaction) {
  run("SELECT Name FROM Fake_Host", "");
  ASSERT_EQ(_manager.calls.size(), 1u);
  EXPECT_EQ(_manager.calls.front().queryText, "");
}

TEST_F(FakeObjectManagers, TracesEachEnumerationInTheManagersChannel) {
  run("SELECT Name FROM Fake_Host");
  ASSERT_EQ(_manager.log.size(), 1u);
  const FakeLogLine& line = _manager.log.front();
  EXPECT_EQ(line.who, "CQL");
  EXPECT_EQ(line.message, "Issued an enumerate instance call for 'FAKE_HOST'");
  EXPECT_EQ(line.severity, 4u);
  EXPECT_EQ(line.verbosity, 2u);
  EXPECT_EQ(line.number, 0u);
  EXPECT_EQ(line.channel, QORLog::CIMOMLOG);
}

TEST_F(FakeObjectManagers, AnAssociationAsksForTheAssociatesOfEachSource) {
  _manager.addAssociate("root/fake:Fake_Disk.Name=\"a\"", "root/fake:Fake_Host.Name=\"h\"");
  const std::string stream =
      run("SELECT d.Name, h.Name FROM Fake_Disk AS d, Fake_Host AS h WHERE Fake_On = d AND Fake_On = h");
  EXPECT_THAT(stream, ::testing::HasSubstr("<TABLEROW>\n<VALUE>a</VALUE>\n<VALUE>h</VALUE>\n</TABLEROW>\n"));
  EXPECT_EQ(_table->getRowCount(), 1u);
  ASSERT_EQ(_manager.calls.size(), 4u);  // the sources, then one call for each
  EXPECT_EQ(_manager.calls[0].operation, "enumerateInstances");
  const FakeCall& call = _manager.calls[1];
  EXPECT_EQ(call.operation, "associators");
  EXPECT_EQ(call.association, "Fake_On");
  EXPECT_EQ(call.className, "FAKE_HOST");
  EXPECT_EQ(call.source, "root/fake:Fake_Disk.Name=\"a\"");
  EXPECT_EQ(call.timeout, CIMApi::DefaultTimeout);
}

TEST_F(FakeObjectManagers, InstanceOfFetchesTheWholeInstance) {
  run("SELECT h.Name, INSTANCEOF(h) AS whole FROM Fake_Host AS h");
  ASSERT_EQ(_manager.calls.size(), 2u);
  const FakeCall& call = _manager.calls[1];
  EXPECT_EQ(call.operation, "getInstance");
  EXPECT_EQ(call.source, "root/fake:Fake_Host.Name=\"h\"");
  EXPECT_TRUE(call.wantsAll);
  EXPECT_EQ(call.timeout, CIMApi::DefaultTimeout);
}

TEST_F(FakeObjectManagers, AReferenceIsStreamedByThePlatform) {
  const std::string stream = run("SELECT OBJECTPATH(h) AS path FROM Fake_Host AS h");
  EXPECT_THAT(stream,
              ::testing::HasSubstr("<VALUE.REFERENCE>[root/fake:Fake_Host.Name=\"h\"|||10]</VALUE.REFERENCE>\n"));
}

TEST_F(FakeObjectManagers, TheConfigurationIsReadOnceInAProcess) {
  run("SELECT Name FROM Fake_Host");
  _manager.configurationReads.clear();
  run("SELECT Name FROM Fake_Host");
  EXPECT_THAT(_manager.configurationReads, IsEmpty());
}

TEST_F(FakeObjectManagers, AMissingListIsAnErrorAndIsLogged) {
  _manager.failEnumeration = true;
  const char* const message = "Enumerateinstance call for 'FAKE_HOST' returned NULL";
  try {
    run("SELECT Name FROM Fake_Host");
    FAIL() << "no exception";
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getMessage(), message);
    EXPECT_EQ(error.getCode(), static_cast<QORuint32>(QORQL_Exception::QORQL_INTERNAL_ERROR));
  }
  ASSERT_EQ(_manager.log.size(), 2u);
  EXPECT_EQ(_manager.log[1].message, message);
  EXPECT_EQ(_manager.log[1].severity, 1u);
}

TEST_F(FakeObjectManagers, AProvidersFailurePassesThrough) {
  _manager.failEnumerationMessage = "the disk is on fire";
  try {
    run("SELECT Name FROM Fake_Host");
    FAIL() << "no exception";
  } catch (const CQoriProviderException& error) {
    EXPECT_EQ(error.getMessage(), "the disk is on fire");
  }
}

// Whether a scope is a superclass is asked up to the root, which such classes do not have.
TEST_F(FakeObjectManagers, SuperClassesInACircleEnd) {
  _manager.addClass({"Fake_A", {"Name"}, {}, "Fake_B"});
  _manager.addClass({"Fake_B", {"Name"}, {}, "Fake_A"});
  const QORString text("SELECT Fake_Host::Name, Fake_B::Name FROM Fake_A");
  QORQL_Lexer lexer(text, false);
  QORQL_SymbolTable symbols(nullptr);
  const auto query = QORQL_Query::parse(symbols, lexer, false, text, "CQL", "root/fake").StaticCast<QORQL_Query>();
  const std::vector<QORQL_Surprise> surprises = QORQL_findSurprises(*query, "root/fake");
  ASSERT_EQ(surprises.size(), 1U);
  EXPECT_EQ(surprises.front().rule, std::string("NAME-6"));
}

}  // namespace
