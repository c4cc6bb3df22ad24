// The lists of a filter's properties name everything that matching reads, so
// that an instance with the listed properties alone gives the same answer.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "FilterWorld.h"
#include "cimom/CQoriBaseObject.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

struct FilterList : Filter {
  std::vector<std::string> whereList(const std::string& query, const char* className) {
    CQLQueryStatement statement("CQL", QORString(query), kNameSpace, "");
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << query << ": " << statement.getFault().message;
    return textsOf(statement.getWherePropertyList(classPath(className)));
  }
  // Whether the instance matches with the listed properties alone.
  bool matchesByList(const std::string& query, const QORSmrPtr<IQoriObject>& instance, const QORString& asked) {
    CQLQueryStatement statement("CQL", QORString(query), kNameSpace, "");
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << query << ": " << statement.getFault().message;
    const QORSmrPtr<IQoriInstanceName> path(new CQoriInstanceName(asked, nullptr, nullptr));
    const IQueryStatement::PropertyNames names(statement.getWherePropertyList(path));
    EXPECT_TRUE(statement.isMatch(instance, kNameSpace)) << query;
    return statement.isMatch(QORSmrPtr<IQoriObject>(new CQoriBaseObject(instance, names, false)), kNameSpace);
  }
};

TEST_F(FilterList, TheFormatBesideTheTestOfAnAlertsElement) {
  for (const char* test : {"AlertingManagedElement ISA CIM_FCPort", "'alertingmanagedelement' ISA CIM_FCPort",
                           "a.AlertingManagedElement ISA 'CIM_FCPort'", "'Alerting' + 'ManagedElement' ISA CIM_FCPort",
                           "(AlertingManagedElement ISA CIM_FCPort) = TRUE"}) {
    const std::string query = std::string("SELECT MessageID FROM CIM_AlertIndication AS a WHERE ") + test;
    const std::vector<std::string> names = whereList(query, "CIM_AlertIndication");
    ASSERT_EQ(names.size(), 2U) << test;
    EXPECT_TRUE(QORString("AlertingManagedElement").isEqualCaseInsensitive(names[0].c_str())) << test;
    EXPECT_EQ(names[1], "AlertingElementFormat") << test;
    EXPECT_TRUE(matchesByList(
        query, world.alert("AlertingElementFormat = 2; AlertingManagedElement = \"//h/n:CIM_FCPort.Id=1\";"),
        "CIM_AlertIndication"))
        << test;
  }
  EXPECT_THAT(whereList("SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_FCPort", "CIM_InstCreation"),
              ElementsAre("SourceInstance"));
}

TEST_F(FilterList, ThePropertyThatATextNames) {
  const QORSmrPtr<IQoriObject> created(world.indication(
      "instance of CIM_InstCreation { SourceInstance = \"instance of CIM_FCPort { Id = \\\"p\\\"; };\"; };"));
  for (const char* test : {"'SourceInstance' ISA CIM_FCPort", "('Source' + 'Instance') ISA CIM_FCPort"}) {
    const std::string query = std::string("SELECT IndicationIdentifier FROM CIM_InstCreation WHERE ") + test;
    EXPECT_THAT(whereList(query, "CIM_InstCreation"), ElementsAre("SourceInstance")) << test;
    EXPECT_TRUE(matchesByList(query, created, "CIM_InstCreation")) << test;
  }
  // It may be a property of a subclass alone.
  const std::string query = "SELECT IndicationIdentifier FROM CIM_Indication WHERE 'SourceInstance' ISA CIM_FCPort";
  EXPECT_TRUE(matchesByList(query, created, "CIM_Indication"));
  EXPECT_TRUE(matchesByList(query, created, "CIM_InstCreation"));
}

TEST_F(FilterList, WhatIsNoTestOfAClassNamesNothing) {
  EXPECT_THAT(whereList("SELECT * FROM CIM_InstCreation WHERE 5 ISA CIM_FCPort", "CIM_InstCreation"), IsEmpty());
  EXPECT_THAT(whereList("SELECT * FROM CIM_InstCreation", "CIM_InstCreation"), IsEmpty());
  EXPECT_THAT(whereList("SELECT * FROM CIM_InstModification WHERE PreviousInstance.SourceInstance ISA CIM_FCPort",
                        "CIM_InstModification"),
              ElementsAre("PreviousInstance"));
}

TEST_F(FilterList, ASubclassOfAFromClassHasThatClasssList) {
  const std::string query = "SELECT IndicationIdentifier FROM CIM_InstIndication AS i WHERE i.SourceInstance.Id = 'p'";
  CQLQueryStatement statement("CQL", QORString(query), kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  for (const char* className : {"CIM_InstIndication", "CIM_InstCreation", "cim_instmodification", "i"}) {
    EXPECT_THAT(textsOf(statement.getSelectPropertyList(classPath(className))), ElementsAre("IndicationIdentifier"));
    EXPECT_THAT(textsOf(statement.getWherePropertyList(classPath(className))), ElementsAre("SourceInstance"));
    EXPECT_THAT(textsOf(statement.getPropertyList(classPath(className))),
                ElementsAre("IndicationIdentifier", "SourceInstance"));
  }
  for (const char* className : {"CIM_Indication", "CIM_AlertIndication", "XYZ_Unheard"}) {
    EXPECT_THAT(textsOf(statement.getPropertyList(classPath(className))), IsEmpty()) << className;
  }
  CQLQueryStatement all("CQL", "SELECT * FROM CIM_InstIndication", kNameSpace, "");
  ASSERT_EQ(all.validate(), QUERY_VALIDATE_SUCCESS);
  EXPECT_TRUE(all.getPropertyList(classPath("CIM_InstCreation")).IsNull());
}

// Whatever FROM name stands before a property, matching reads it off the instance.
TEST_F(FilterList, APropertyBehindAnotherFromName) {
  const std::string query =
      "SELECT c.IndicationIdentifier FROM CIM_InstCreation AS c, CIM_InstModification AS m, CIM_AlertIndication AS a "
      "WHERE m.SourceInstance.Id = 'p'";
  EXPECT_THAT(whereList(query, "CIM_InstModification"), ElementsAre("SourceInstance"));
  EXPECT_THAT(whereList(query, "c"), ElementsAre("SourceInstance"));
  EXPECT_THAT(whereList(query, "CIM_AlertIndication"), IsEmpty());
  EXPECT_TRUE(matchesByList(
      query,
      world.indication(
          "instance of CIM_InstCreation { SourceInstance = \"instance of CIM_FCPort { Id = \\\"p\\\"; };\"; };"),
      "CIM_InstCreation"));
  CQLQueryStatement statement("CQL", QORString(query), kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  EXPECT_THAT(textsOf(statement.getSelectPropertyList(classPath("CIM_InstModification"))), IsEmpty());
  EXPECT_THAT(textsOf(statement.getPropertyList(classPath("CIM_InstCreation"))),
              UnorderedElementsAre("IndicationIdentifier", "SourceInstance"));
  EXPECT_THAT(whereList("SELECT * FROM CIM_AlertIndication AS a, CIM_InstCreation AS c WHERE a.U8 = 5 AND "
                        "c.IndicationIdentifier = 'x'",
                        "CIM_InstCreation"),
              ElementsAre("IndicationIdentifier"));
}

}  // namespace
