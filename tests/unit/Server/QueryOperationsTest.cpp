// Results of queries as instances, the reasons that queries are refused with, and what ends them.
// SPDX-License-Identifier: Apache-2.0
#include <thread>

#include "Cimom/Embedded/OuterSource.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Server/PullOperations.h"
#include "Cimom/Server/QueryMonitor.h"
#include "Cimom/Server/QueryOperations.h"
#include "Cimom/Server/QueryRows.h"
#include "ServerFixture.h"
#include "cimom/CQoriProviderException.h"

using namespace embeddedtest;
using servertest::Asked;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using namespace std::chrono_literals;

namespace {

class Queries : public ServerTest {
 protected:
  Queries() {
    createDisk("a", 10);
    createDisk("b", 20, "CIM_FastDisk");
  }

  std::string answer(Asked& asked) {
    ServerOperations operations;
    addQueryOperations(operations, contexts, limits);
    addPullOperations(operations, contexts, limits);
    const std::unique_ptr<ServerReply> reply = operations.answer(asked.on(held));
    return servertest::textOf(*reply);
  }
  static Asked asking(const std::string& query, const char* language = "DMTF:CQL") {
    return std::move(Asked("ExecQuery").text("QueryLanguage", language).text("Query", query));
  }
  // What stands in IRETURNVALUE.
  std::string rowsOf(const std::string& query) {
    Asked asked = asking(query);
    const std::string text = answer(asked);
    const std::string begin = "<IRETURNVALUE>";
    const std::size_t from = text.find(begin);
    return from == std::string::npos
               ? text
               : text.substr(from + begin.size(), text.find("</IRETURNVALUE>") - from - begin.size());
  }
  QORuint32 refused(Asked asked) {
    answer(asked);
    told = asked.note.statusText;
    return asked.note.status;
  }

  ServerLimits limits;
  std::shared_ptr<EnumerationContexts> contexts = std::make_shared<EnumerationContexts>(limits);
  std::string told;  // of the last refusal
};

TEST_F(Queries, RowsOfOneClassAreInstancesOfTheirClasses) {
  EXPECT_EQ(
      rowsOf("SELECT DeviceID, Size FROM CIM_Disk"),
      "<VALUE.OBJECT><INSTANCE CLASSNAME=\"CIM_Disk\"><PROPERTY NAME=\"DeviceID\" TYPE=\"string\"><VALUE>a</VALUE>"
      "</PROPERTY><PROPERTY NAME=\"Size\" TYPE=\"uint64\"><VALUE>10</VALUE></PROPERTY></INSTANCE></VALUE.OBJECT>"
      "<VALUE.OBJECT><INSTANCE CLASSNAME=\"CIM_FastDisk\"><PROPERTY NAME=\"DeviceID\" TYPE=\"string\"><VALUE>b"
      "</VALUE></PROPERTY><PROPERTY NAME=\"Size\" TYPE=\"uint64\"><VALUE>20</VALUE></PROPERTY></INSTANCE>"
      "</VALUE.OBJECT>");
}

TEST_F(Queries, OtherRowsAreInstancesOfAClassOfTheirOwnWithTheColumnsInOrder) {
  EXPECT_EQ(rowsOf("SELECT FIRST 1 Size / 4 AS Q, DeviceID, Caption FROM CIM_Disk"),
            "<VALUE.OBJECT><INSTANCE CLASSNAME=\"QueryResult\"><PROPERTY NAME=\"Q\" TYPE=\"uint64\"><VALUE>2</VALUE>"
            "</PROPERTY><PROPERTY NAME=\"DeviceID\" TYPE=\"string\"><VALUE>a</VALUE></PROPERTY>"
            "<PROPERTY NAME=\"Caption\" TYPE=\"string\"></PROPERTY></INSTANCE></VALUE.OBJECT>");
}

TEST_F(Queries, ColumnsOfOneNameAreNumbered) {
  EXPECT_THAT(rowsOf("SELECT FIRST 1 Size AS N, DeviceID AS n FROM CIM_Disk"),
              AllOf(HasSubstr("NAME=\"N\" TYPE=\"uint64\""), HasSubstr("NAME=\"N_2\" TYPE=\"string\"")));
}

TEST_F(Queries, JoinsNameColumnsAsTheToolDoes) {
  EXPECT_THAT(rowsOf("SELECT a.DeviceID, b.DeviceID FROM CIM_Disk AS a, CIM_FastDisk AS b WHERE a.Size < b.Size"),
              AllOf(HasSubstr("NAME=\"a.DeviceID\""), HasSubstr("NAME=\"b.DeviceID\"")));
}

TEST_F(Queries, TheOrderIsThatOfTheQuery) {
  const std::string rows = rowsOf("SELECT DeviceID FROM CIM_Disk ORDER BY Size DESC");
  EXPECT_LT(rows.find(">b<"), rows.find(">a<"));
}

TEST_F(Queries, AnAggregateIsOneRow) {
  EXPECT_THAT(rowsOf("SELECT COUNT(DeviceID) AS N FROM CIM_Disk"),
              HasSubstr("<PROPERTY NAME=\"N\" TYPE=\"uint64\"><VALUE>2</VALUE></PROPERTY>"));
}

TEST_F(Queries, AnEmptyResultIsNoRefusal) { EXPECT_THAT(rowsOf("SELECT * FROM CIM_Disk WHERE Size > 99"), IsEmpty()); }

TEST_F(Queries, AColumnHasOneTypeInAllRows) {
  createDisk("c", QORuint64{1} << 63);
  const std::string rows = rowsOf("SELECT Size + 0 AS S FROM CIM_Disk");
  EXPECT_THAT(rows, AllOf(HasSubstr("TYPE=\"uint64\"><VALUE>9223372036854775808<"), Not(HasSubstr("sint64"))));
}

TEST_F(Queries, LanguagesHaveFourNames) {
  for (const char* language : {"DMTF:CQL", "CIM:CQL", "cql", "WQL"}) {
    EXPECT_EQ(refused(asking("SELECT DeviceID FROM CIM_Disk", language)), 0U) << language;
  }
  EXPECT_EQ(refused(asking("SELECT DeviceID FROM CIM_Disk", "SQL")), 14U);
  EXPECT_THAT(told, HasSubstr("\"SQL\""));
}

TEST_F(Queries, AQueryThatIsWrongIsRefusedWithTheMessageOfTheEngine) {
  EXPECT_EQ(refused(asking("SELECT FROM CIM_Disk")), 15U);
  std::string message;
  try {
    QORQL_Statement("SELECT FROM CIM_Disk").parse();
  } catch (const QoriBaseException& error) {
    message = error.getMessage().view();
  }
  EXPECT_THAT(told, StartsWith(message));
  EXPECT_EQ(refused(asking("SELECT Sise FROM CIM_Disk")), 15U);
  EXPECT_THAT(told, HasSubstr("(line 1, column 8)"));
  EXPECT_EQ(refused(asking("SELECT Size FROM CIM_None")), 15U);
  EXPECT_EQ(refused(asking("SELECT Size FROM CIM_Disk WHERE Size > DeviceID")), 15U) << "only the rows show it";
  EXPECT_EQ(refused(asking("SELECT -Size AS M FROM CIM_Disk")), 15U) << told;
  EXPECT_EQ(refused(asking("SELECT Size FROM CIM_Disk WHERE COUNT(Size) = 1")), 15U) << told;
  EXPECT_EQ(refused(asking("SELECT Size FROM CIM_Disk ORDER BY -Size ASC")), 15U) << told;
}

TEST_F(Queries, WhatIsMissingIsRefused) {
  Asked without("ExecQuery");
  EXPECT_EQ(refused(without.text("Query", "SELECT Size FROM CIM_Disk")), 4U);
  Asked textless("ExecQuery");
  EXPECT_EQ(refused(textless.text("QueryLanguage", "CQL")), 4U);
  Asked elsewhere("ExecQuery", "root/none");
  EXPECT_EQ(refused(elsewhere.text("Query", "SELECT Size FROM CIM_Disk").text("QueryLanguage", "CQL")), 3U);
}

TEST_F(Queries, AnUnknownNamespaceIsToldBeforeAnythingElseThatIsWrong) {
  Asked elsewhere("ExecQuery", "root/none");
  EXPECT_EQ(refused(elsewhere.text("Query", "SELECT").text("QueryLanguage", "SQL")), 3U);
  Asked opened("OpenQueryInstances", "root/none");
  EXPECT_EQ(refused(opened.text("ContinueOnError", "true")), 3U);
  Asked filtered("OpenEnumerateInstances", "root/none");
  EXPECT_EQ(refused(filtered.className("ClassName", "CIM_Disk").text("OperationTimeout", "0")), 3U);
}

TEST_F(Queries, WhatCannotBeComputedIsRefusedBeforeTheReplyBegins) {
  createDisk("z", 0);
  EXPECT_EQ(refused(asking("SELECT 100 / Size AS Q FROM CIM_Disk")), 15U);
  EXPECT_EQ(told, "Division by zero");
}

TEST_F(Queries, ParametersThatTheyDoNotHaveAreRefused) {
  EXPECT_EQ(refused(asking("SELECT Size FROM CIM_Disk").text("MaxObjectCount", "1")), 4U);
  Asked opened("OpenQueryInstances");
  opened.text("FilterQueryLanguage", "CQL").text("FilterQuery", "SELECT Size FROM CIM_Disk");
  EXPECT_EQ(refused(opened.text("ReturnQueryResultClas", "true")), 4U);
  EXPECT_EQ(contexts->count(), 0U);
}

TEST_F(Queries, WhatIsComputedHasItsTypeWithoutRows) {
  const std::string rows = rowsOf(
      "SELECT MIN(Size) AS L, MAX(Size) AS M, SUM(Size) AS S, AVG(Size) AS A, COUNT(Size) AS N FROM CIM_Disk "
      "WHERE Size > 99");
  EXPECT_THAT(rows, AllOf(HasSubstr("NAME=\"L\" TYPE=\"uint64\""), HasSubstr("NAME=\"M\" TYPE=\"uint64\""),
                          HasSubstr("NAME=\"S\" TYPE=\"uint64\""), HasSubstr("NAME=\"A\" TYPE=\"real64\""),
                          HasSubstr("NAME=\"N\" TYPE=\"uint64\"")));
  Asked opened("OpenQueryInstances");
  opened.text("FilterQueryLanguage", "CQL").text("FilterQuery", "SELECT Size / 2 AS H FROM CIM_Disk WHERE Size > 99");
  EXPECT_THAT(answer(opened.text("ReturnQueryResultClass", "TRUE")), HasSubstr("<PROPERTY NAME=\"H\" TYPE=\"uint64\""));
}

TEST_F(Queries, AResultClassTellsTheClassOfAReference) {
  MofLoader(sink()).loadText("[Association] class Tie { [Key] CIM_Disk REF Left; [Key] CIM_Disk REF Right; };",
                             "test.mof");
  Asked opened("OpenQueryInstances");
  opened.text("FilterQueryLanguage", "CQL").text("FilterQuery", "SELECT Left AS L, Right FROM Tie");
  EXPECT_THAT(answer(opened.text("ReturnQueryResultClass", "TRUE")),
              HasSubstr("<PROPERTY.REFERENCE NAME=\"L\" REFERENCECLASS=\"CIM_Disk\"></PROPERTY.REFERENCE>"
                        "<PROPERTY.REFERENCE NAME=\"Right\" REFERENCECLASS=\"CIM_Disk\"></PROPERTY.REFERENCE>"));
}

TEST_F(Queries, EmbeddedObjectsAreMarkedAlsoWhereAllAreNull) {
  MofLoader(sink()).loadText(
      "class Box { [Key] uint8 Id; [EmbeddedInstance(\"CIM_Disk\")] string One; [EmbeddedObject] string All[]; };\n"
      "instance of Box { Id = 1; };",
      "test.mof");
  EXPECT_THAT(rowsOf("SELECT One, All FROM Box"),
              HasSubstr("<PROPERTY NAME=\"One\" TYPE=\"string\" EmbeddedObject=\"instance\"></PROPERTY>"
                        "<PROPERTY.ARRAY NAME=\"All\" TYPE=\"string\" EmbeddedObject=\"instance\"></PROPERTY.ARRAY>"));
}

TEST_F(Queries, AnInstanceHasNoPropertyThatItsClassLacks) {
  const std::string rows = rowsOf("SELECT * FROM CIM_Disk");
  EXPECT_THAT(rows, StartsWith("<VALUE.OBJECT><INSTANCE CLASSNAME=\"QueryResult\">"));
  EXPECT_THAT(rows,
              HasSubstr("<INSTANCE CLASSNAME=\"CIM_FastDisk\"><PROPERTY NAME=\"DeviceID\" TYPE=\"string\"><VALUE>b<"));
}

TEST_F(Queries, TheQueryIsNoted) {
  Asked asked = asking("SELECT Size FROM CIM_Disk");
  answer(asked);
  EXPECT_EQ(asked.note.subject, "SELECT Size FROM CIM_Disk");
}

TEST_F(Queries, AClientThatHasGoneEndsItsQuery) {
  Asked asked = asking("SELECT a.DeviceID FROM CIM_Disk AS a");
  asked.client.stopReason = [] { return StopReason::ClientGone; };
  EXPECT_EQ(refused(asked), 1U);
  EXPECT_EQ(told, "the client has gone");
}

TEST_F(Queries, AServerThatEndsThemSaysSo) {
  Asked asked = asking("SELECT a.DeviceID FROM CIM_Disk AS a");
  asked.client.stopReason = [] { return StopReason::ShuttingDown; };
  EXPECT_EQ(refused(asked), 28U);
  EXPECT_EQ(told, "the query was stopped: the server is shutting down");
}

TEST_F(Queries, TimeEndsAQuery) {
  limits.query = 0ms;
  EXPECT_EQ(refused(asking("SELECT DeviceID FROM CIM_Disk")), 27U);
  EXPECT_EQ(told, "the query was stopped: it took more than 0 seconds");
}

// Two rows of two places each.
constexpr const char* kPairs =
    "SELECT a.DeviceID, b.DeviceID FROM CIM_Disk AS a, CIM_FastDisk AS b WHERE a.Size < b.Size + 100";

TEST_F(Queries, MemoryEndsAQuery) {
  limits.memory = 10;
  EXPECT_EQ(refused(asking(kPairs)), 27U);
  EXPECT_EQ(told, "the query was stopped: its rows take more than 10 bytes of memory");
  limits.memory = 1000;
  EXPECT_EQ(refused(asking(kPairs)), 0U);
}

// An outer source that asks until it is stopped.
class SlowSource final : public OuterSource {
 public:
  bool provideClass(CimDeclarationSink&, const QORString&, const QORString&) override { return true; }
  void provideQualifiers(CimDeclarationSink&, const QORString&) override {}
  std::vector<QORString> classNames(const QORString&) override { return {}; }
  Objects instances(CimDeclarationSink&, const Request&) override {
    for (int i = 0; i < 5000 && !QORQL_currentMonitor()->isStopRequested(); ++i) std::this_thread::sleep_for(1ms);
    throw CQoriProviderException("array1", "the call was stopped", 1);
  }
  QORSmrPtr<IQoriObject> instance(CimDeclarationSink&, const Request&, const IQoriInstanceName&) override { return {}; }
  Associations associations(CimDeclarationSink&, const Request&) override { return {}; }
  Objects references(CimDeclarationSink&, const Request&, const IQoriInstanceName&) override { return {}; }
};

TEST_F(Queries, OneThatIsLateWhileOthersAreAskedSaysSo) {
  limits.query = 20ms;
  manager.setOuterSource(std::make_shared<SlowSource>());
  EXPECT_EQ(refused(asking("SELECT DeviceID FROM CIM_Disk")), 27U);
  EXPECT_EQ(told, "the query was stopped: it took more than 0 seconds");
}

TEST(QueryMonitor, LooksAtTheConnectionOnceInAWhile) {
  int looks = 0;
  const ServerClient client{"", "", [&] { return ++looks > 1 ? StopReason::ClientGone : StopReason::None; }};
  QueryMonitor monitor(client, 1h);
  EXPECT_FALSE(monitor.isStopRequested());
  EXPECT_FALSE(monitor.isStopRequested());
  EXPECT_EQ(looks, 1);
  std::this_thread::sleep_for(60ms);
  EXPECT_TRUE(monitor.isStopRequested());
  EXPECT_EQ(servertest::statusOf([&] { monitor.raiseStopped("query"); }), 1U) << "it is not late";
}

TEST_F(Queries, AreOpenedAndPulledAsInstances) {
  Asked asked("OpenQueryInstances");
  asked.text("FilterQueryLanguage", "CQL").text("FilterQuery", "SELECT DeviceID AS D FROM CIM_Disk");
  asked.text("MaxObjectCount", "1").text("ReturnQueryResultClass", "TRUE");
  const std::string first = answer(asked);
  EXPECT_THAT(first, HasSubstr("<IRETURNVALUE><INSTANCE CLASSNAME=\"QueryResult\"><PROPERTY NAME=\"D\" TYPE=\"string\">"
                               "<VALUE>a</VALUE></PROPERTY></INSTANCE></IRETURNVALUE>"));
  EXPECT_THAT(first, HasSubstr("<PARAMVALUE NAME=\"QueryResultClass\"><CLASS NAME=\"QueryResult\">"
                               "<PROPERTY NAME=\"D\" TYPE=\"string\""));
  const std::string before = "NAME=\"EnumerationContext\" PARAMTYPE=\"string\"><VALUE>";
  const std::string context = first.substr(first.find(before) + before.size(), 32);
  Asked pull("PullInstances");
  const std::string second = answer(pull.text("EnumerationContext", context).text("MaxObjectCount", "5"));
  EXPECT_THAT(second, AllOf(HasSubstr("<VALUE>b</VALUE>"), HasSubstr("<VALUE>TRUE</VALUE>")));
}

TEST_F(Queries, ThatAreOpenHoldSoMuchTogether) {
  limits.memory = 20;
  contexts = std::make_shared<EnumerationContexts>(limits);
  const auto open = [this] {
    Asked asked("OpenQueryInstances");
    asked.text("FilterQueryLanguage", "CQL").text("FilterQuery", kPairs);
    return refused(asked.text("MaxObjectCount", "0"));
  };
  EXPECT_EQ(open(), 0U);
  EXPECT_EQ(open(), 27U);
  EXPECT_EQ(told, "what this client has open and is being sent would hold more than 20 bytes of memory");
  EXPECT_EQ(contexts->count(), 1U);
  EXPECT_EQ(refused(asking(kPairs)), 27U);
}

TEST_F(Queries, ThatAreBeingSentHoldSoMuchTogether) {
  limits.memory = 20;
  contexts = std::make_shared<EnumerationContexts>(limits);
  ServerOperations operations;
  addQueryOperations(operations, contexts, limits);
  Asked first = asking(kPairs);
  std::unique_ptr<ServerReply> reply = operations.answer(first.on(held));
  EXPECT_EQ(refused(asking(kPairs)), 27U);
  EXPECT_EQ(told, "what this client has open and is being sent would hold more than 20 bytes of memory");
  Asked other = asking(kPairs);
  other.client.user = "other";
  EXPECT_EQ(refused(std::move(other)), 0U);
  servertest::textOf(*reply);
  EXPECT_EQ(refused(asking(kPairs)), 0U) << "the first has been sent";
  reply = operations.answer(first.on(held));
  reply.reset();
  EXPECT_EQ(refused(asking(kPairs)), 0U) << "the client has gone";
}

TEST_F(Queries, ThatCannotBeOpenedLeaveNothingOpen) {
  Asked asked("OpenQueryInstances");
  EXPECT_EQ(refused(asked.text("FilterQueryLanguage", "CQL").text("FilterQuery", "SELECT")), 15U);
  EXPECT_EQ(contexts->count(), 0U);
}

}  // namespace
