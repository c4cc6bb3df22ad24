// Filter statements: validation, class and property lists, matching one instance.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FilterWorld.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriValue.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(Filter, Languages) {
  for (const char* language : {"CQL", "DMTF:CQL", "WQL", "dmtf:cql", "wql"}) {
    CQLQueryStatement statement(language, "SELECT * FROM CIM_InstCreation", kNameSpace, "");
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << language;
    EXPECT_EQ(statement.getQueryLanguage(), language);
    EXPECT_EQ(statement.getQuery(), "SELECT * FROM CIM_InstCreation");
  }
}

TEST_F(Filter, AnotherLanguageIsUnsupportedAndStaysUnvalidated) {
  std::vector<std::string> log;
  world.manager().setLogSink(
      [&log](const QORString& who, const QORString& message, QORuint32) {
        log.push_back(QueryWorld::textOf(who) + ": " + QueryWorld::textOf(message));
      },
      QoriTraceLog::kTrace);
  CQLQueryStatement statement("SQL", "SELECT * FROM CIM_InstCreation", kNameSpace, "");
  EXPECT_EQ(statement.validate(), QUERY_UNSUPPORTED_LANGUAGE);
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate(): Unsupported Query Language"));
  EXPECT_EQ(queryError([&] { statement.getClassList(); }), "CQLQUERYSTATEMENT::getClassList|query is not validated |2");
}

TEST_F(Filter, AnUnsupportedLanguageIsToldAtEachValidation) {
  std::vector<std::string> log;
  world.manager().setLogSink(
      [&log](const QORString&, const QORString& message, QORuint32) { log.push_back(QueryWorld::textOf(message)); },
      QoriTraceLog::kTrace);
  CQLQueryStatement statement("SQL", "SELECT", kNameSpace, "");
  EXPECT_EQ(statement.validate(), QUERY_UNSUPPORTED_LANGUAGE);
  EXPECT_EQ(statement.validate(), QUERY_UNSUPPORTED_LANGUAGE);
  EXPECT_THAT(log, ElementsAre("Unsupported Query Language", "Unsupported Query Language"));
  world.manager().setLogSink({}, 0);
}

TEST_F(Filter, OrderFormatAndFirstChangeNoAnswer) {
  const QORSmrPtr<IQoriObject> alert(world.alert("U8 = 5; MessageID = \"x\";"));
  for (const char* filter :
       {"SELECT FIRST 1 MessageID FROM CIM_AlertIndication WHERE U8 = 5",
        "SELECT MessageID FROM CIM_AlertIndication WHERE U8 = 5 ORDER BY MessageID DESC",
        "SELECT * FROM CIM_AlertIndication WHERE U8 = 5 FORMAT AS HTML",
        "SELECT MAX(U8) AS m FROM CIM_AlertIndication WHERE U8 = 5", "SELECT * FROM CIM_FCPort, CIM_AlertIndication"}) {
    EXPECT_TRUE(world.matches(filter, alert)) << filter;
  }
}

TEST_F(Filter, OperationsBeforeValidationNameThemselves) {
  const CQLQueryStatement statement("CQL", "SELECT * FROM CIM_InstCreation", kNameSpace, "");
  const QORSmrPtr<IQoriInstanceName> name(classPath("CIM_InstCreation"));
  EXPECT_EQ(queryError([&] { statement.getClassList(); }), "CQLQUERYSTATEMENT::getClassList|query is not validated |2");
  EXPECT_EQ(queryError([&] { statement.getPropertyList(name); }),
            "CQLQUERYSTATEMENT::getPropertyList|query is not validated |2");
  EXPECT_EQ(queryError([&] { statement.getSelectPropertyList(name); }),
            "CQLQUERYSTATEMENT::getSelectPropertyList|query is not validated |2");
  EXPECT_EQ(queryError([&] { statement.getWherePropertyList(name); }),
            "CQLQUERYSTATEMENT::getWherePropertyList|query is not validated |2");
  EXPECT_EQ(queryError([&] { statement.isMatch(QORSmrPtr<IQoriObject>(), kNameSpace); }),
            "CQLQUERYSTATEMENT::isMatch|query is not validated |2");
}

TEST_F(Filter, ARefusedStatementStaysRefused) {
  CQLQueryStatement statement("CQL", "SELECT FROM", kNameSpace, "");
  EXPECT_EQ(statement.validate(), QUERY_INVALID_QUERY);
  EXPECT_EQ(statement.validate(), QUERY_INVALID_QUERY);
  EXPECT_EQ(queryError([&] { statement.getClassList(); }), "CQLQUERYSTATEMENT::getClassList|query is not validated |1");
  EXPECT_EQ(queryError([&] { statement.isMatch(world.alert(""), kNameSpace); }),
            "CQLQUERYSTATEMENT::isMatch|query is not validated |1");
}

TEST_F(Filter, AnUnknownClassOrPropertyIsRefused) {
  for (const char* query :
       {"SELECT * FROM Nope", "SELECT Nope FROM CIM_InstCreation", "SELECT CIM_InstCreation.Nope FROM CIM_InstCreation",
        "SELECT * FROM CIM_InstCreation WHERE Nope = 1", "SELECT X.Y FROM CIM_InstCreation"}) {
    CQLQueryStatement statement("CQL", query, kNameSpace, "");
    EXPECT_EQ(statement.validate(), QUERY_INVALID_QUERY) << query;
    EXPECT_FALSE(statement.getFault().message.isEmpty()) << query;
  }
}

TEST_F(Filter, TheSourceNamespaceIsPreferred) {
  CQLQueryStatement other("CQL", "SELECT * FROM CIM_InstCreation", kNameSpace, "root/other");
  EXPECT_EQ(other.validate(), QUERY_INVALID_QUERY);  // the schema is not there
  CQLQueryStatement own("CQL", "SELECT * FROM CIM_InstCreation", "root/other", kNameSpace);
  EXPECT_EQ(own.validate(), QUERY_VALIDATE_SUCCESS);
  const QORSmrPtr<IQoriObject> creation(world.indication("instance of CIM_InstCreation { };"));
  EXPECT_TRUE(own.isMatch(creation, kNameSpace));
  EXPECT_TRUE(own.isMatch(creation, "ROOT/cimv2"));
  EXPECT_FALSE(own.isMatch(creation, "root/other"));
}

TEST_F(Filter, ClassListHoldsTheClassesOfFromAsPaths) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_InstCreation AS i, CIM_AlertIndication", kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  const CQLQueryStatement::ClassList list(statement.getClassList());
  ASSERT_EQ(list->entries(), 2U);
  EXPECT_EQ(list->at(0)->getClassName(), "CIM_INSTCREATION");
  EXPECT_EQ(list->at(0)->getNameSpacePath()->getNameSpace(), kNameSpace);
  EXPECT_EQ(list->at(1)->getClassName(), "CIM_ALERTINDICATION");
}

TEST_F(Filter, PropertyLists) {
  CQLQueryStatement statement("CQL",
                              "SELECT MessageID, a.U8 FROM CIM_AlertIndication AS a WHERE OwningEntity = 'x' AND "
                              "messageid = 'y'",
                              kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  const QORSmrPtr<IQoriInstanceName> name(classPath("cim_alertindication"));
  EXPECT_THAT(textsOf(statement.getSelectPropertyList(name)), ElementsAre("MessageID", "U8"));
  EXPECT_THAT(textsOf(statement.getWherePropertyList(name)), ElementsAre("OwningEntity", "messageid"));
  EXPECT_THAT(textsOf(statement.getPropertyList(name)), ElementsAre("MessageID", "U8", "OwningEntity"));
  EXPECT_THAT(textsOf(statement.getPropertyList(classPath("a"))), ElementsAre("MessageID", "U8", "OwningEntity"));
  EXPECT_THAT(textsOf(statement.getPropertyList(classPath("CIM_InstCreation"))), IsEmpty());
  EXPECT_THAT(textsOf(statement.getPropertyList(classPath("CIM_Indication"))), IsEmpty());
  EXPECT_THAT(textsOf(statement.getPropertyList(classPath("XYZ_Unheard"))), IsEmpty());
  EXPECT_THAT(textsOf(statement.getPropertyList(classPath(""))), IsEmpty());
  EXPECT_EQ(queryError([&] { statement.getSelectPropertyList(QORSmrPtr<IQoriInstanceName>()); }),
            "CQLQUERYSTATEMENT::getSelectPropertyList|Invalid or NULL param encountered|3");
  EXPECT_EQ(queryError([&] { statement.getWherePropertyList(QORSmrPtr<IQoriInstanceName>()); }),
            "CQLQUERYSTATEMENT::getWherePropertyList|Invalid or NULL param encountered|3");
  EXPECT_EQ(queryError([&] { statement.getPropertyList(QORSmrPtr<IQoriInstanceName>()); }),
            "CQLQUERYSTATEMENT::getPropertyList|Invalid or NULL param encountered|3");
}

TEST_F(Filter, StarNeedsEveryPropertyAndAPathItsRoot) {
  CQLQueryStatement statement(
      "CQL", "SELECT * FROM CIM_InstModification WHERE SourceInstance.CIM_StorageVolume::Size > 5", kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  const QORSmrPtr<IQoriInstanceName> name(classPath("CIM_InstModification"));
  EXPECT_TRUE(statement.getSelectPropertyList(name).IsNull());
  EXPECT_TRUE(statement.getPropertyList(name).IsNull());
  EXPECT_THAT(textsOf(statement.getWherePropertyList(name)), ElementsAre("SourceInstance"));
}

TEST_F(Filter, APathBehindAnAliasIsOfTheObjectThatItsRootHolds) {
  const std::string from = " FROM CIM_InstModification AS i";
  for (const char* path : {"i.SourceInstance.CIM_StorageVolume::Size", "i.SourceInstance.Size",
                           "CIM_InstModification.SourceInstance.Size", "i.SourceInstance.Inner.CIM_StorageVolume::Id",
                           "SourceInstance.Inner.Size", "sourceinstance.cim_storagevolume::size"}) {
    CQLQueryStatement statement("CQL", QORString(std::string("SELECT ") + path + from), kNameSpace, "");
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << path << ": " << statement.getFault().message;
    const std::vector<std::string> names = textsOf(statement.getPropertyList(classPath("CIM_InstModification")));
    ASSERT_EQ(names.size(), 1U) << path;
    EXPECT_TRUE(QORString("SourceInstance").isEqualCaseInsensitive(names[0].c_str())) << path;
  }
  for (const char* path : {"i.Wheels.Size", "i.Wheels.CIM_StorageVolume::Size", "i.Wheels", "Wheels.Size"}) {
    CQLQueryStatement statement("CQL", QORString(std::string("SELECT ") + path + from), kNameSpace, "");
    EXPECT_EQ(statement.validate(), QUERY_INVALID_QUERY) << path;
    EXPECT_TRUE(statement.getFault().name.isEqualCaseInsensitive("Wheels")) << path;
  }
}

TEST_F(Filter, WhatNamesAnObjectNeedsNoneOfItsProperties) {
  CQLQueryStatement statement("CQL",
                              "SELECT OBJECTPATH(a) AS p, U8 FROM CIM_AlertIndication AS a WHERE OBJECTPATH(a) = "
                              "MessageID AND a.firstref <> MessageID",
                              kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << statement.getFault().message;
  const QORSmrPtr<IQoriInstanceName> name(classPath("CIM_AlertIndication"));
  EXPECT_THAT(textsOf(statement.getSelectPropertyList(name)), ElementsAre("U8"));
  EXPECT_THAT(textsOf(statement.getWherePropertyList(name)), ElementsAre("MessageID"));
  EXPECT_THAT(textsOf(statement.getPropertyList(name)), ElementsAre("U8", "MessageID"));
}

TEST_F(Filter, APropertyNamedLikeAnEndOfAnAssociationIsOne) {
  FilterWorld own("class T_Ends { [Key] string firstref; string other; };");
  CQLQueryStatement statement("CQL", "SELECT e.firstref FROM T_Ends AS e WHERE e.secondref = 'x'", kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << statement.getFault().message;
  EXPECT_THAT(textsOf(statement.getPropertyList(classPath("T_Ends"))), ElementsAre("firstref"));
}

TEST_F(Filter, ANullInstanceIsRefused) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_InstCreation", kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  EXPECT_EQ(queryError([&] { statement.isMatch(QORSmrPtr<IQoriObject>(), kNameSpace); }),
            "CQLQUERYSTATEMENT::isMatch|Invalid or NULL param encountered|3");
  EXPECT_EQ(queryError([&] { statement.isMatch(world.alert(""), QORString()); }),
            "CQLQUERYSTATEMENT::isMatch|CQL internal error|4");
}

TEST_F(Filter, WithoutWhereTheClassAndItsSubclassesMatch) {
  const QORSmrPtr<IQoriObject> creation(world.indication("instance of CIM_InstCreation { };"));
  EXPECT_TRUE(world.matches("SELECT * FROM CIM_InstCreation", creation));
  EXPECT_TRUE(world.matches("select * from cim_instindication", creation));
  EXPECT_FALSE(world.matches("SELECT * FROM CIM_InstModification", creation));
}

constexpr char kVolume[] = "instance of XYZ_Volume { Id = \\\"v\\\"; OperationalStatus = {2, 17}; Size = 10; };";
constexpr char kChangedVolume[] = "instance of XYZ_Volume { Id = \\\"v\\\"; OperationalStatus = {2, 6}; Size = 10; };";

std::string modification(const std::string& source, const std::string& previous) {
  return "instance of CIM_InstModification { SourceInstance = \"" + source + "\"; PreviousInstance = \"" + previous +
         "\"; };";
}

TEST_F(Filter, PublishedStorageFilters) {
  const QORSmrPtr<IQoriObject> creation(
      world.indication(std::string("instance of CIM_InstCreation { SourceInstance = \"") + kVolume + "\"; };"));
  EXPECT_TRUE(world.matches("SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_StorageVolume", creation));
  EXPECT_TRUE(world.matches("select * from cim_instcreation where sourceinstance isa cim_storagevolume", creation));
  EXPECT_TRUE(world.matches("SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA 'CIM_StorageVolume'", creation));
  EXPECT_FALSE(world.matches("SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_FCPort", creation));

  const QORSmrPtr<IQoriObject> changed(world.indication(modification(kVolume, kChangedVolume)));
  const QORSmrPtr<IQoriObject> same(world.indication(modification(kVolume, kVolume)));
  const std::string operational =
      "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_StorageVolume AND "
      "SourceInstance.CIM_StorageVolume::OperationalStatus <> PreviousInstance.CIM_StorageVolume::OperationalStatus";
  EXPECT_TRUE(world.matches(operational, changed));
  EXPECT_FALSE(world.matches(operational, same));
  const std::string first =
      "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_StorageVolume AND "
      "SourceInstance.OperationalStatus[1] <> PreviousInstance.OperationalStatus[1]";
  EXPECT_TRUE(world.matches(first, changed));
  EXPECT_FALSE(world.matches(first, same));
}

TEST_F(Filter, JobsThatFinished) {
  const std::string job = "instance of CIM_ConcreteJob { Id = \\\"j\\\"; OperationalStatus = {17, 2}; };";
  const QORSmrPtr<IQoriObject> done(world.indication(modification(job, job)));
  EXPECT_TRUE(
      world.matches("SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_ConcreteJob AND "
                    "ANY SourceInstance.CIM_ConcreteJob::OperationalStatus[*] = 17 AND "
                    "ANY SourceInstance.CIM_ConcreteJob::OperationalStatus[*] = 2",
                    done));
  EXPECT_FALSE(world.matches(
      "SELECT * FROM CIM_InstModification WHERE ANY SourceInstance.CIM_ConcreteJob::OperationalStatus[*] = 6", done));
  EXPECT_FALSE(world.matches(
      "SELECT * FROM CIM_InstModification WHERE ANY SourceInstance.CIM_FCPort::OperationalStatus[*] = 17", done));
}

TEST_F(Filter, Alerts) {
  EXPECT_TRUE(world.alertMatches("OwningEntity = 'SNIA' AND MessageID = 'FC1'",
                                 "OwningEntity = \"SNIA\"; MessageID = \"FC1\";"));
  EXPECT_FALSE(world.alertMatches("OwningEntity = 'SNIA' AND MessageID = 'FC1'",
                                  "OwningEntity = \"SNIA\"; MessageID = \"fc1\";"));
  const std::string element = "AlertingElementFormat = 2; AlertingManagedElement = \"//host/root/ns:CIM_FCPort.Id=1\";";
  EXPECT_TRUE(world.alertMatches("AlertingManagedElement ISA CIM_FCPort", element));
  EXPECT_TRUE(world.alertMatches("AlertingManagedElement ISA CIM_ManagedElement", element));
  EXPECT_FALSE(world.alertMatches("AlertingManagedElement ISA CIM_StorageVolume", element));
  EXPECT_FALSE(world.alertMatches("AlertingManagedElement ISA CIM_FCPort",
                                  "AlertingElementFormat = 1; AlertingManagedElement = \"//h/ns:CIM_FCPort.Id=1\";"));
  EXPECT_FALSE(world.alertMatches("AlertingManagedElement ISA CIM_FCPort",
                                  "AlertingElementFormat = 2; AlertingManagedElement = \"root/ns:CIM_FCPort.Id=1\";"));
  EXPECT_FALSE(world.alertMatches("AlertingManagedElement ISA CIM_FCPort",
                                  "AlertingElementFormat = 2; AlertingManagedElement = \"//h/ns\";"));
}

TEST_F(Filter, WhatNeverMatches) {
  const std::string values = "U8 = 5; OwningEntity = \"abc\";";
  EXPECT_FALSE(world.alertMatches("U8 = 5 OR U8 = 5", values));
  EXPECT_FALSE(world.alertMatches("NOT U8 = 6", values));
  EXPECT_FALSE(world.alertMatches("OwningEntity LIKE 'abc'", values));
  EXPECT_FALSE(world.alertMatches("Absent IS NULL", values));
  EXPECT_FALSE(world.alertMatches("U8 IS NOT NULL", values));
  EXPECT_FALSE(world.alertMatches("Absent = 'x'", values));
  EXPECT_FALSE(world.alertMatches("OwningEntity = 5", values));
  EXPECT_FALSE(world.alertMatches("U8 = 'abc'", values));
  EXPECT_FALSE(world.alertMatches("B", "B = TRUE;"));
}

TEST_F(Filter, NoInstanceIsOfAFromClass) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_InstCreation", kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  EXPECT_FALSE(statement.isMatchFromClause(QORSmrPtr<IQoriObject>()));
  bool result = true;
  EXPECT_EQ(statement.doMatch(result, QORSmrPtr<IQoriObject>(), kNameSpace), CQL_QUERY_ISMATCH_FAILURE);
  EXPECT_FALSE(result);
}

TEST_F(Filter, TheFromClauseOfAStatementThatIsNotValidated) {
  const CQLQueryStatement fresh("CQL", "SELECT * FROM CIM_InstCreation", kNameSpace, "");
  const QORSmrPtr<IQoriObject> creation(world.indication("instance of CIM_InstCreation { };"));
  EXPECT_EQ(queryError([&] { fresh.isMatchFromClause(creation); }),
            "CQLQUERYSTATEMENT::getClassList|query is not validated |2");
  EXPECT_FALSE(fresh.isMatchFromClause(QORSmrPtr<IQoriObject>()));
  CQLQueryStatement refused("CQL", "SELECT Nope FROM CIM_InstCreation", kNameSpace, "");
  ASSERT_EQ(refused.validate(), QUERY_INVALID_QUERY);
  EXPECT_EQ(queryError([&] { refused.isMatchFromClause(creation); }),
            "CQLQUERYSTATEMENT::getClassList|query is not validated |1");
}

TEST_F(Filter, ArithmeticParenthesesAndMinus) {
  const std::string values = "U8 = 5; S32 = -3; U64 = 7;";
  EXPECT_TRUE(world.alertMatches("U8 + 2 = 7", values));
  EXPECT_TRUE(world.alertMatches("(U8 = 5)", values));
  EXPECT_FALSE(world.alertMatches("(U8 = 6)", values));
  EXPECT_TRUE(world.alertMatches("-S32 = 3", values));
  EXPECT_TRUE(world.alertMatches("-(U8) = S32 - 2", values));
  EXPECT_FALSE(world.alertMatches("-U64 < 0", values));
  EXPECT_FALSE(world.alertMatches("U8 / 0 = 1", values));
}

TEST_F(Filter, BooleansCompareWithTheirTexts) {
  EXPECT_TRUE(world.alertMatches("B = TRUE", "B = TRUE;"));
  EXPECT_TRUE(world.alertMatches("B <> false", "B = TRUE;"));
  EXPECT_FALSE(world.alertMatches("B = 'other'", "B = TRUE;"));
}

TEST_F(Filter, AnyAndEveryKeepTheWrittenOrder) {
  EXPECT_TRUE(world.alertMatches("ANY A[*] < 2", "A = {1, 5};"));
  EXPECT_FALSE(world.alertMatches("ANY A[*] < 1", "A = {1, 5};"));
  EXPECT_TRUE(world.alertMatches("EVERY A[*] > 0", "A = {1, 5};"));
  EXPECT_FALSE(world.alertMatches("EVERY A[*] > 1", "A = {1, 5};"));
  EXPECT_TRUE(world.alertMatches("4 < ANY A[*]", "A = {1, 5};"));
  EXPECT_FALSE(world.alertMatches("ANY A[*] = 1", "A = {};"));
  EXPECT_FALSE(world.alertMatches("EVERY A[*] = 1", "A = {};"));
}

TEST_F(Filter, EveryOperatorForEveryPairOfIntegerTypes) {
  const std::vector<std::string> types = {"U8", "U16", "U32", "U64", "S8", "S16", "S32", "S64", "R32", "R64"};
  const std::string values =
      "U8 = 3; U16 = 3; U32 = 3; U64 = 3; S8 = 3; S16 = 3; S32 = 3; S64 = 3; R32 = 3.0; R64 = 3.0;";
  const QORSmrPtr<IQoriObject> instance(world.alert(values));
  const auto holds = [&](const std::string& condition) {
    return world.matches("SELECT * FROM CIM_AlertIndication WHERE " + condition, instance);
  };
  for (const std::string& left : types) {
    for (const std::string& right : types) {
      EXPECT_TRUE(holds(left + " = " + right)) << left << right;
      EXPECT_FALSE(holds(left + " <> " + right)) << left << right;
      EXPECT_FALSE(holds(left + " < " + right)) << left << right;
      EXPECT_FALSE(holds(left + " > " + right)) << left << right;
      EXPECT_TRUE(holds(left + " <= " + right)) << left << right;
      EXPECT_TRUE(holds(left + " >= " + right)) << left << right;
    }
    EXPECT_TRUE(holds(left + " < 4")) << left;
    EXPECT_TRUE(holds(left + " > 2")) << left;
    EXPECT_TRUE(holds(left + " > -1")) << left;
  }
}

TEST_F(Filter, AGreatUint64IsNegativeBesideASignedNumber) {
  EXPECT_TRUE(world.alertMatches("U64 < S64", "U64 = 18446744073709551615; S64 = 0;"));
  EXPECT_FALSE(world.alertMatches("U64 < U8", "U64 = 18446744073709551615; U8 = 0;"));
}

TEST(FilterPrecision, TheTableForEveryPair) {
  const std::vector<std::string> types = {"uint8", "uint16", "uint32", "uint64", "sint8", "sint16", "sint32", "sint64"};
  // Rows: right type; columns: left type, both in the order above.
  const int expected[8][8] = {{0, 2, 2, 2, 3, 2, 2, 2}, {1, 0, 2, 2, 4, 4, 2, 5}, {1, 1, 0, 2, 5, 5, 5, 5},
                              {1, 1, 1, 0, 5, 5, 5, 5}, {3, 4, 5, 5, 0, 2, 2, 2}, {1, 4, 5, 5, 1, 0, 2, 2},
                              {1, 1, 5, 5, 1, 1, 0, 2}, {1, 1, 1, 5, 1, 1, 1, 0}};
  for (std::size_t right = 0; right < types.size(); ++right) {
    for (std::size_t left = 0; left < types.size(); ++left) {
      EXPECT_EQ(CQLQueryStatement::findPrecisionType(types[left].c_str(), types[right].c_str()), expected[right][left])
          << types[left] << " against " << types[right];
    }
  }
  for (const char* other : {"real32", "real64", "string", "boolean"}) {
    EXPECT_THROW(CQLQueryStatement::findPrecisionType(other, "uint8"), int) << other;
    EXPECT_THROW(CQLQueryStatement::findPrecisionType("uint8", other), int) << other;
  }
}

TEST(FilterPrecision, ConversionTakesTheOtherType) {
  const QORSmrPtr<IQoriValue> value(new CQoriValue(200U, CQoriType::uint8));
  const QORSmrPtr<IQoriValue> converted(CQLQueryStatement::convertToHighPrecision("uint8", "sint64", value));
  EXPECT_EQ(converted->getType()->getName(), "sint64");
  EXPECT_EQ(converted->toString(), "200");
}

TEST_F(Filter, ChainsOfManyConditions) {
  std::string filter = "SELECT * FROM CIM_AlertIndication WHERE U8 = 5";
  for (int i = 0; i < 20000; ++i) filter += " AND U8 = 5";
  EXPECT_TRUE(world.matches(filter, world.alert("U8 = 5;")));
}

TEST_F(Filter, WhyItDoesNotMatch) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_AlertIndication WHERE U8 = 5 AND MessageID = 'x'", kNameSpace,
                              "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  std::string why;
  EXPECT_FALSE(statement.explainMatch(world.alert("U8 = 5; MessageID = \"y\";"), kNameSpace, why));
  EXPECT_EQ(why, "MessageID = 'x' ('y' = 'x')");
  EXPECT_TRUE(statement.explainMatch(world.alert("U8 = 5; MessageID = \"x\";"), kNameSpace, why));
}

}  // namespace
