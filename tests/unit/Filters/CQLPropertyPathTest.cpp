// Properties that are reached through embedded objects, which may be missing, of another type
// or without end.
// SPDX-License-Identifier: Apache-2.0
#include <functional>

#include "ForeignObject.h"
#include "cimom/CQoriValue.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Value = QORSmrPtr<IQoriValue>;

using CQLPropertyPaths = ModificationFilter;

TEST_F(CQLPropertyPaths, AnEmbeddedObjectThatIsAbsent) {
  const Object none(world.indication("instance of CIM_InstModification { };"));
  for (const char* condition :
       {"SourceInstance ISA CIM_FCPort", "SourceInstance.Id = 'x'", "SourceInstance.CIM_FCPort::Id <> 'x'",
        "SourceInstance = PreviousInstance", "SourceInstance <> PreviousInstance",
        "SourceInstance.OperationalStatus[0] = 2", "ANY SourceInstance.OperationalStatus[*] = 2"}) {
    EXPECT_FALSE(modificationMatches(condition, none)) << condition;
  }
}

TEST_F(CQLPropertyPaths, AnEmbeddedObjectOfAnotherType) {
  const QORSmrPtr<ForeignObject> foreign(new ForeignObject("CIM_InstModification"));
  const Object instance(foreign);
  for (const auto& make : std::vector<std::function<Value()>>{
           [] { return Value(new CQoriValue(QORString("instance of CIM_FCPort { };"))); },
           [] { return Value(new CQoriValue(5, CQoriType::sint32)); },
           [] {
             const QORSmrPtr<IQoriValue::List> list(new IQoriValue::List());
             return Value(new CQoriValue(list, CQoriType::object));
           }}) {
    foreign->properties["SourceInstance"] = make;
    EXPECT_FALSE(modificationMatches("SourceInstance ISA CIM_FCPort", instance));
    EXPECT_FALSE(modificationMatches("SourceInstance.Id = 'x'", instance));
    EXPECT_FALSE(modificationMatches("SourceInstance.CIM_FCPort::Id = 'x'", instance));
  }
}

TEST_F(CQLPropertyPaths, AnObjectWithinAnObject) {
  const Object nested(world.indication(R"(instance of CIM_InstModification { SourceInstance =
    "instance of XYZ_Volume { Id = \"outer\"; Inner = \"instance of XYZ_Volume { Id = \\\"inner\\\"; Size = 7; };\"; };";
    };)"));
  EXPECT_TRUE(modificationMatches("SourceInstance.Inner.Size = 7", nested));
  EXPECT_TRUE(modificationMatches("SourceInstance.Inner.CIM_StorageVolume::Id = 'inner'", nested));
  EXPECT_TRUE(modificationMatches("CIM_InstModification.SourceInstance.Inner.Size = 7", nested));
  EXPECT_FALSE(modificationMatches("SourceInstance.Inner.CIM_FCPort::Id = 'inner'", nested));
  EXPECT_FALSE(modificationMatches("SourceInstance.Inner.Inner.Size = 7", nested));
}

TEST_F(CQLPropertyPaths, AnObjectNestedInItself) {
  const QORSmrPtr<ForeignObject> foreign(new ForeignObject("CIM_InstModification"));
  const Object instance(foreign);
  foreign->properties["SourceInstance"] = [&] { return Value(new CQoriValue(instance)); };
  foreign->properties["PreviousInstance"] = [&] { return Value(new CQoriValue(instance)); };
  foreign->properties["IndicationIdentifier"] = [] { return Value(new CQoriValue(QORString("me"))); };
  EXPECT_TRUE(modificationMatches("SourceInstance ISA CIM_InstIndication", instance));
  EXPECT_TRUE(
      modificationMatches("SourceInstance.PreviousInstance.SourceInstance.IndicationIdentifier = 'me'", instance));
  EXPECT_TRUE(modificationMatches("SourceInstance = PreviousInstance", instance));
  EXPECT_FALSE(modificationMatches("SourceInstance <> PreviousInstance", instance));
  for (const char* condition : {"SourceInstance = 'x'", "SourceInstance ISA CIM_FCPort", "SourceInstance + 1 = 5"}) {
    CQLQueryStatement statement("CQL", QORString(std::string(kFrom) + condition), kNameSpace, "");
    ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << condition;
    std::string why;
    EXPECT_FALSE(statement.explainMatch(instance, kNameSpace, why)) << condition;
    EXPECT_FALSE(why.empty()) << condition;
  }
  std::string path;
  for (int i = 0; i < 2000; ++i) path += "SourceInstance.";
  EXPECT_TRUE(modificationMatches(path + "IndicationIdentifier = 'me'", instance));
}

TEST_F(CQLPropertyPaths, APathInTheSelectListNeedsItsRoot) {
  CQLQueryStatement statement("CQL", "SELECT SourceInstance.CIM_StorageVolume::Size FROM CIM_InstModification",
                              kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << statement.getFault().message;
  EXPECT_EQ(textsOf(statement.getSelectPropertyList(classPath("CIM_InstModification"))),
            std::vector<std::string>{"SourceInstance"});
  EXPECT_TRUE(textsOf(statement.getWherePropertyList(classPath("CIM_InstModification"))).empty());
}

}  // namespace
