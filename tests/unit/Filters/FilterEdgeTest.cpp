// Instances that are not as a filter expects them, and the steps of matching
// asked one by one: no match, and nothing else.
// SPDX-License-Identifier: Apache-2.0
#include "ForeignObject.h"
#include "cimom/CQoriValue.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Value = QORSmrPtr<IQoriValue>;

using FilterEdge = ModificationFilter;

TEST_F(FilterEdge, ObjectsThatHoldThemselvesCompareWithoutEnd) {
  const QORSmrPtr<ForeignObject> one(new ForeignObject("CIM_InstModification"));
  const QORSmrPtr<ForeignObject> other(new ForeignObject("CIM_InstModification"));
  const Object first(one);
  const Object second(other);
  one->properties["SourceInstance"] = [&] { return Value(new CQoriValue(first)); };
  one->properties["PreviousInstance"] = [&] { return Value(new CQoriValue(second)); };
  other->properties["SourceInstance"] = [&] { return Value(new CQoriValue(second)); };
  other->properties["PreviousInstance"] = [&] { return Value(new CQoriValue(first)); };
  EXPECT_FALSE(modificationMatches("SourceInstance = PreviousInstance", first));
}

TEST_F(FilterEdge, AnObjectThatFails) {
  const QORSmrPtr<ForeignObject> foreign(new ForeignObject("CIM_AlertIndication"));
  const Object instance(foreign);
  foreign->properties["U8"] = []() -> Value { throw QoriBaseException("a", "b", "c", "it fails", 1); };
  foreign->properties["U16"] = []() -> Value { throw 5; };
  foreign->properties["AlertingManagedElement"] = []() -> Value { throw std::bad_alloc(); };
  for (const char* condition : {"U8 = 5", "U16 = 5", "U8 + 1 = 6", "ANY U8 = 5"}) {
    CQLQueryStatement statement("CQL", QORString(std::string("SELECT * FROM CIM_AlertIndication WHERE ") + condition),
                                kNameSpace, "");
    ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
    EXPECT_FALSE(statement.isMatchWhereClause(instance)) << condition;
    bool result = true;
    const CQLQueryExceptionCode code = statement.doMatch(result, instance, kNameSpace);
    EXPECT_EQ(code, CQL_QUERY_ISMATCH_FAILURE) << condition;
    EXPECT_FALSE(result) << condition;
    EXPECT_FALSE(statement.isMatch(instance, kNameSpace)) << condition;
    std::string why;
    EXPECT_FALSE(statement.explainMatch(instance, kNameSpace, why)) << condition;
    EXPECT_FALSE(why.empty()) << condition;
  }
  EXPECT_FALSE(
      world.matches("SELECT * FROM CIM_AlertIndication WHERE AlertingManagedElement ISA CIM_FCPort", instance));
}

TEST_F(FilterEdge, AnInstanceOfAnUnknownClassOrOfNone) {
  const Object unknown(new ForeignObject("XYZ_Unheard"));
  EXPECT_FALSE(world.matches("SELECT * FROM CIM_Indication", unknown));
  const Object none(new ForeignObject(""));
  EXPECT_FALSE(world.matches("SELECT * FROM CIM_Indication", none));
  const QORSmrPtr<ForeignObject> foreign(new ForeignObject("CIM_InstModification"));
  const Object instance(foreign);
  foreign->properties["SourceInstance"] = [&] { return Value(new CQoriValue(unknown)); };
  EXPECT_FALSE(modificationMatches("SourceInstance ISA CIM_ManagedElement", instance));
  EXPECT_TRUE(modificationMatches("SourceInstance ISA xyz_unheard", instance));
  foreign->properties["SourceInstance"] = [&] { return Value(new CQoriValue(none)); };
  EXPECT_FALSE(modificationMatches("SourceInstance ISA CIM_ManagedElement", instance));
}

}  // namespace
