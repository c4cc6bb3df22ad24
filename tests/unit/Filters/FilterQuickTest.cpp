// Conditions that are decided by a property's place in the instance's layout:
// the same answers for instances of several layouts in turn, and for every kind
// of property and constant.
#include "Cimom/QORQL/CQLQuickTest.h"
#include "FilterWorld.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace {

struct FilterQuick : testing::Test {
  FilterWorld world;
};

TEST_F(FilterQuick, instancesOfSeveralLayoutsInTurn) {
  CQLQueryStatement filter("DMTF:CQL", "SELECT * FROM CIM_StorageVolume WHERE Size > 10 AND Id <> 'x'", kNameSpace,
                           kNameSpace);
  ASSERT_EQ(filter.validate(), QUERY_VALIDATE_SUCCESS);
  const auto great = world.indication("instance of CIM_StorageVolume { Id = \"a\"; Size = 11; };");
  const auto small = world.indication("instance of XYZ_Volume { Id = \"a\"; Size = 10; Extra = \"e\"; };");
  const auto greatSub = world.indication("instance of XYZ_Volume { Id = \"a\"; Size = 11; };");
  const auto named = world.indication("instance of CIM_StorageVolume { Id = \"x\"; Size = 11; };");
  const auto unset = world.indication("instance of CIM_StorageVolume { Id = \"a\"; };");
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(filter.isMatch(great, kNameSpace));
    EXPECT_FALSE(filter.isMatch(small, kNameSpace));
    EXPECT_TRUE(filter.isMatch(greatSub, kNameSpace));
    EXPECT_FALSE(filter.isMatch(named, kNameSpace));
    EXPECT_FALSE(filter.isMatch(unset, kNameSpace));
  }
}

// A class outside FROM is refused again and again, whatever matched before it.
TEST_F(FilterQuick, instancesOfOtherClassesInTurn) {
  CQLQueryStatement filter("DMTF:CQL", "SELECT * FROM CIM_ConcreteJob WHERE Id = 'a'", kNameSpace, kNameSpace);
  ASSERT_EQ(filter.validate(), QUERY_VALIDATE_SUCCESS);
  const auto job = world.indication("instance of CIM_ConcreteJob { Id = \"a\"; };");
  const auto otherJob = world.indication("instance of CIM_ConcreteJob { Id = \"b\"; };");
  const auto system = world.indication("instance of CIM_ComputerSystem { Id = \"a\"; };");
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(filter.isMatch(job, kNameSpace));
    EXPECT_FALSE(filter.isMatch(system, kNameSpace));
    EXPECT_FALSE(filter.isMatch(otherJob, kNameSpace));
  }
}

// The filter's own namespace text is recognised by its place in memory; others are compared.
TEST_F(FilterQuick, theNamespaceCountsHoweverItComes) {
  const QORString own(kNameSpace);
  CQLQueryStatement filter("DMTF:CQL", "SELECT * FROM CIM_ConcreteJob WHERE Id = 'a'", own, own);
  ASSERT_EQ(filter.validate(), QUERY_VALIDATE_SUCCESS);
  const auto job = world.indication("instance of CIM_ConcreteJob { Id = \"a\"; };");
  const QORString elsewhere("root/elsewhere");
  const QORString upper(QORString::toUpperCase(own));
  const QORString same(std::string(own.view()).c_str());
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(filter.isMatch(job, own));
    EXPECT_TRUE(filter.isMatch(job, same));
    EXPECT_TRUE(filter.isMatch(job, upper));
    EXPECT_FALSE(filter.isMatch(job, elsewhere));
    EXPECT_FALSE(filter.isMatch(job, QORString::emptyString()));
    EXPECT_THROW(filter.isMatch(job, QORString()), CQLQueryException);
  }
}

// alertMatches compares with the walk of the tree.
TEST_F(FilterQuick, everyRelationOfEveryKind) {
  const std::string properties =
      "U8 = 5; U64 = 5; S8 = -5; S64 = 5; R32 = 5.5; R64 = -0.5; B = TRUE; OwningEntity = \"SNIA\"; A = {5}; C = 'x';";
  for (const char* const relation : {"=", "<>", "<", ">", "<=", ">="}) {
    for (const char* const left : {"U8", "U64", "S8", "S64", "R32", "R64", "B", "OwningEntity", "A", "C", "Absent"}) {
      for (const char* const right : {"5", "-5", "4", "5.5", "-0.5", "'SNIA'", "'SN'", "'SNIAX'", "TRUE", "U8"}) {
        world.alertMatches(std::string(left) + " " + relation + " " + right, properties);
      }
    }
  }
}

TEST_F(FilterQuick, anInstanceWithoutLayoutIsReadByName) {
  const QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList);
  properties->append(new CQoriProperty("Size", QORSmrPtr<IQoriValue>(new CQoriValue(11ULL, CQoriType::uint64)), false));
  const QORSmrPtr<IQoriObject> object(new CQoriBaseObject(kNameSpace, "CIM_StorageVolume", "Id", properties));
  EXPECT_TRUE(world.matches("SELECT * FROM CIM_StorageVolume WHERE Size > 10", object));
  EXPECT_FALSE(world.matches("SELECT * FROM CIM_StorageVolume WHERE Size > 11", object));
}

TEST(CQLQuickTest, decidesNothingWithoutPropertyOrLayout) {
  FilterWorld world;
  const auto volume = world.indication("instance of CIM_StorageVolume { Id = \"a\"; Size = 11; };");
  const IQoriLayout* const layout = volume->getLayout();
  EXPECT_EQ(CQLQuickTest().test(*volume, layout, layout->getSerial()), CQLQuickTest::Outcome::Undecided);
  QoriScalar ten;
  ten.kind = QoriScalarKind::Unsigned;
  ten.u = 10;
  const CQLQuickTest unknown("NoSuch", QoriRelation::Greater, ten);
  EXPECT_EQ(unknown.test(*volume, layout, layout->getSerial()), CQLQuickTest::Outcome::Undecided);
  const CQLQuickTest size("Size", QoriRelation::Greater, ten);
  EXPECT_EQ(size.test(*volume, layout, 0), CQLQuickTest::Outcome::Undecided);
  EXPECT_EQ(size.test(*volume, layout, layout->getSerial()), CQLQuickTest::Outcome::Holds);
}

}  // namespace
