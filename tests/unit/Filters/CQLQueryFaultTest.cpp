// Why a filter is refused, and where its text is wrong.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "FilterWorld.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct FilterFault : Filter {
  std::vector<std::string> log;

  FilterFault() {
    world.manager().setLogSink(
        [this](const QORString& who, const QORString& message, QORuint32 severity) {
          log.push_back(QueryWorld::textOf(who) + "/" + std::to_string(severity) + ": " + QueryWorld::textOf(message));
        },
        QoriTraceLog::kTrace);
  }
  ~FilterFault() override { world.manager().setLogSink({}, 0); }

  CQLQueryFault faultOf(const std::string& filter, const char* language = "CQL") {
    log.clear();
    CQLQueryStatement statement(language, QORString(filter), kNameSpace, "");
    EXPECT_NE(statement.validate(), QUERY_VALIDATE_SUCCESS) << filter;
    return statement.getFault();
  }
};

TEST_F(FilterFault, AValidFilterHasNone) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_InstCreation", kNameSpace, "");
  EXPECT_EQ(statement.getFault().kind, CQLQueryFault::kNone);
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  EXPECT_EQ(statement.getFault().kind, CQLQueryFault::kNone);
  EXPECT_TRUE(statement.getFault().message.isEmpty());
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(FilterFault, ALanguage) {
  const CQLQueryFault fault = faultOf("SELECT * FROM CIM_InstCreation", "SQL");
  EXPECT_EQ(fault.kind, CQLQueryFault::kLanguage);
  EXPECT_EQ(fault.name, "SQL");
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate()/1: Unsupported Query Language"));
}

TEST_F(FilterFault, ATextThatDoesNotParseIsWrongAtAToken) {
  const CQLQueryFault fault = faultOf("SELECT * FORM CIM_InstCreation");
  EXPECT_EQ(fault.kind, CQLQueryFault::kSyntax);
  EXPECT_EQ(fault.offset, 9U);
  EXPECT_EQ(fault.message, "'FROM' expected");
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate/1: 'FROM' expected"));
  EXPECT_EQ(faultOf("").offset, 0U);
  EXPECT_EQ(faultOf("SELECT * FROM CIM_InstCreation WHERE").offset, 36U);
  EXPECT_EQ(faultOf("SELECT * FROM CIM_AlertIndication WHERE U8 ISA 5").kind, CQLQueryFault::kSyntax);
  EXPECT_EQ(faultOf("SELECT * FROM CIM_AlertIndication WHERE ANY A[*] = A[*]").kind, CQLQueryFault::kSyntax);
}

TEST_F(FilterFault, EveryNameAtFaultHasItsPlaceWhateverIsSpelledLikeIt) {
  const struct {
    const char* filter;
    CQLQueryFault::Kind kind;
    const char* before;  // the text before the word at fault
  } rows[] = {
      {"SELECT COUNT(U8) AS n, U16 FROM CIM_AlertIndication", CQLQueryFault::kSyntax, "SELECT COUNT(U8) AS n, "},
      {"SELECT U8 AS Owner FROM CIM_AlertIndication WHERE Absent = 'Owner' AND Owner = 1", CQLQueryFault::kProperty,
       "SELECT U8 AS Owner FROM CIM_AlertIndication WHERE Absent = 'Owner' AND "},
      {"SELECT a.U8 AS Owner, a.Owner FROM CIM_AlertIndication AS a", CQLQueryFault::kProperty,
       "SELECT a.U8 AS Owner, a."},
      {"SELECT SUM(a . Owner) AS s FROM CIM_AlertIndication AS a", CQLQueryFault::kProperty, "SELECT SUM(a . "},
      {"SELECT i.Owner.C::Owner FROM CIM_InstCreation AS i", CQLQueryFault::kProperty, "SELECT i."},
      {"SELECT a.U8 AS n, n.U16 FROM CIM_AlertIndication AS a", CQLQueryFault::kQualifier, "SELECT a.U8 AS n, "},
      {"SELECT a.U8 AS Nope FROM CIM_AlertIndication AS a,\n Nope AS b", CQLQueryFault::kClass,
       "SELECT a.U8 AS Nope FROM CIM_AlertIndication AS a,\n "},
      {"SELECT a.U8 AS IndicationIdentifier FROM CIM_AlertIndication AS a, CIM_InstCreation WHERE IndicationIdentifier "
       "= ''",
       CQLQueryFault::kAmbiguous,
       "SELECT a.U8 AS IndicationIdentifier FROM CIM_AlertIndication AS a, CIM_InstCreation WHERE "},
  };
  for (const auto& row : rows) {
    const CQLQueryFault fault = faultOf(row.filter);
    EXPECT_EQ(fault.kind, row.kind) << row.filter;
    EXPECT_EQ(std::string(row.filter).substr(0, fault.offset), row.before) << row.filter;
  }
}

TEST_F(FilterFault, AClass) {
  const CQLQueryFault fault = faultOf("SELECT * FROM CIM_InstCreation, CIM_Nothing AS n");
  EXPECT_EQ(fault.kind, CQLQueryFault::kClass);
  EXPECT_TRUE(fault.name.isEqualCaseInsensitive("CIM_Nothing"));
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate()/1: Invalid Schema"));
}

TEST_F(FilterFault, AProperty) {
  const CQLQueryFault bare = faultOf("SELECT * FROM CIM_AlertIndication WHERE Owner = 'x'");
  EXPECT_EQ(bare.kind, CQLQueryFault::kProperty);
  EXPECT_EQ(bare.name, "Owner");
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate/1: property 'Owner' not found in any class"));
  const CQLQueryFault selected = faultOf("SELECT a.Owner FROM CIM_AlertIndication AS a");
  EXPECT_EQ(selected.kind, CQLQueryFault::kProperty);
  EXPECT_EQ(selected.name, "Owner");
  EXPECT_TRUE(selected.className.isEqualCaseInsensitive("CIM_AlertIndication"));
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate()/1: Invalid Schema"));
  EXPECT_EQ(faultOf("SELECT SUM(a.Owner) AS s FROM CIM_AlertIndication AS a").kind, CQLQueryFault::kProperty);
}

TEST_F(FilterFault, APropertyOfSeveralClasses) {
  const CQLQueryFault fault =
      faultOf("SELECT * FROM CIM_AlertIndication, CIM_InstCreation WHERE IndicationIdentifier = 'x'");
  EXPECT_EQ(fault.kind, CQLQueryFault::kAmbiguous);
  EXPECT_EQ(fault.name, "IndicationIdentifier");
}

TEST_F(FilterFault, AQualifier) {
  const CQLQueryFault fault = faultOf("SELECT Nobody.U8 FROM CIM_AlertIndication");
  EXPECT_EQ(fault.kind, CQLQueryFault::kQualifier);
  EXPECT_TRUE(fault.name.isEqualCaseInsensitive("Nobody"));
}

TEST_F(FilterFault, ASecondValidationRepeatsNothing) {
  CQLQueryStatement statement("CQL", "SELECT", kNameSpace, "");
  statement.validate();
  log.clear();
  EXPECT_EQ(statement.validate(), QUERY_INVALID_QUERY);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(FilterFault, WithoutARepositoryNothingIsValid) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_InstCreation", "root/nowhere", "");
  EXPECT_EQ(statement.validate(), QUERY_INVALID_QUERY);
  EXPECT_EQ(statement.getFault().kind, CQLQueryFault::kClass);
}

}  // namespace
