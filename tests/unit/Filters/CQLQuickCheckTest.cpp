// Conditions that are decided by a property's place in the instance's layout:
// the same answers for instances of several layouts in turn, and for every kind
// of property and constant.
// SPDX-License-Identifier: Apache-2.0
#include <cmath>
#include <memory>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/QORQL/Filter/CQLQuickCheck.h"
#include "FilterWorld.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace {

struct FilterQuickCheck : testing::Test {
  FilterWorld world;
};

TEST_F(FilterQuickCheck, InstancesOfSeveralLayoutsInTurn) {
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
TEST_F(FilterQuickCheck, InstancesOfOtherClassesInTurn) {
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
TEST_F(FilterQuickCheck, TheNamespaceCountsHoweverItComes) {
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
TEST_F(FilterQuickCheck, EveryRelationOfEveryKind) {
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

// Asked twice: what the first answer found out decides the second one.
TEST_F(FilterQuickCheck, UnsignedNumbersAtBothEnds) {
  const std::vector<std::string> numbers = {"0", "1", "5", "18446744073709551614", "18446744073709551615"};
  for (std::size_t left = 0; left < numbers.size(); ++left) {
    const auto alert = world.indication("instance of CIM_AlertIndication { U64 = " + numbers[left] + "; };");
    for (std::size_t right = 0; right < numbers.size(); ++right) {
      const std::vector<std::pair<const char*, bool>> expected = {{"=", left == right},  {"<>", left != right},
                                                                  {"<", left < right},   {">", left > right},
                                                                  {"<=", left <= right}, {">=", left >= right}};
      for (const auto& [relation, holds] : expected) {
        const std::string text = std::string("SELECT * FROM CIM_AlertIndication WHERE U64 ") + relation + " ";
        CQLQueryStatement filter("DMTF:CQL", (text + numbers[right]).c_str(), kNameSpace, kNameSpace);
        ASSERT_EQ(filter.validate(), QUERY_VALIDATE_SUCCESS);
        for (int round = 0; round < 2; ++round) {
          EXPECT_EQ(filter.isMatch(alert, kNameSpace), holds) << numbers[left] << relation << numbers[right];
        }
      }
    }
  }
}

// The same property stands at another place in each class.
TEST_F(FilterQuickCheck, InstancesOfTwoFromClassesInTurn) {
  FilterWorld two(
      "class CIM_Fan { [key] string Id; uint32 Speed; }; class CIM_Pump { uint32 Size; uint32 Load; uint32 Speed; "
      "[key] string Id; "
      "};");
  CQLQueryStatement filter("DMTF:CQL", "SELECT * FROM CIM_Fan AS f, CIM_Pump AS p WHERE f.Speed = 7", kNameSpace,
                           kNameSpace);
  ASSERT_EQ(filter.validate(), QUERY_VALIDATE_SUCCESS);
  const auto fan = two.indication("instance of CIM_Fan { Id = \"a\"; Speed = 7; };");
  const auto slowFan = two.indication("instance of CIM_Fan { Id = \"a\"; Speed = 6; };");
  const auto pump = two.indication("instance of CIM_Pump { Size = 6; Load = 6; Speed = 7; Id = \"a\"; };");
  const auto slowPump = two.indication("instance of CIM_Pump { Size = 7; Load = 7; Speed = 6; Id = \"a\"; };");
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(filter.isMatch(fan, kNameSpace));
    EXPECT_TRUE(filter.isMatch(pump, kNameSpace));
    EXPECT_FALSE(filter.isMatch(slowPump, kNameSpace));
    EXPECT_FALSE(filter.isMatch(slowFan, kNameSpace));
  }
}

// Infinity less infinity is no number: nothing is less, equal or greater.
TEST_F(FilterQuickCheck, AConstantThatIsNoNumberDiffersFromAll) {
  const std::string none = "1.0e308 * 10.0 - 1.0e308 * 10.0";
  for (const char* const relation : {"=", "<", ">", "<=", ">="}) {
    EXPECT_FALSE(world.alertMatches(std::string("R64 ") + relation + " " + none, "R64 = 0.5;")) << relation;
  }
  EXPECT_TRUE(world.alertMatches("R64 <> " + none, "R64 = 0.5;"));
}

// Instances with a measure that is no number.
class Gauges : public InstanceProvider {
 public:
  QORString getClassName() const override { return "CIM_Gauge"; }
  void enumerate(const Request& request, const Emit& emit) override {
    std::vector<QORSmrPtr<IQoriValue>> values;
    for (const QORString& name : request.propertyNames) {
      values.push_back(name == "Level" ? QORSmrPtr<IQoriValue>(new CQoriValue(std::nan(""), CQoriType::real64))
                                       : QORSmrPtr<IQoriValue>(new CQoriValue(QORString("g"))));
    }
    emit(std::move(values));
  }
};

TEST_F(FilterQuickCheck, APropertyThatIsNoNumberDiffersFromAll) {
  FilterWorld gauges("class CIM_Gauge { [key] string Id; real64 Level; };");
  gauges.manager().registerProvider(kNameSpace, std::make_shared<Gauges>());
  CIMApi client;
  const CIMApi::Instances found =
      client.enumerateInstances(kNameSpace, "CIM_Gauge", {}, -1, nullptr, nullptr, nullptr, {});
  ASSERT_EQ(found->entries(), 1U);
  ASSERT_NE(found->first()->getLayout(), nullptr);
  for (const char* const relation : {"=", "<", ">", "<=", ">="}) {
    const std::string filter = std::string("SELECT * FROM CIM_Gauge WHERE Level ") + relation + " 0.5";
    for (int round = 0; round < 2; ++round) EXPECT_FALSE(gauges.matches(filter, found->first())) << filter;
  }
  EXPECT_TRUE(gauges.matches("SELECT * FROM CIM_Gauge WHERE Level <> 0.5", found->first()));
}

// Only the first step of a way is a FROM name.
TEST_F(FilterQuickCheck, APropertyNamedLikeItsAlias) {
  const auto change = world.indication(
      "instance of CIM_InstModification { SourceInstance = instance of CIM_StorageVolume { Id = \"a\"; Size = 5; }; "
      "};");
  const std::string filter = "SELECT * FROM CIM_InstModification AS SourceInstance WHERE SourceInstance.";
  EXPECT_TRUE(world.matches(filter + "SourceInstance.Size = 5", change));
  EXPECT_FALSE(world.matches(filter + "SourceInstance.Size = 6", change));
}

TEST_F(FilterQuickCheck, ElementsUpToTheLast) {
  for (int index = 0; index < 4; ++index) {
    const std::string element = "A[" + std::to_string(index) + "]";
    EXPECT_EQ(world.alertMatches(element + " = " + std::to_string(index + 5), "A = {5, 6};"), index < 2) << element;
    EXPECT_EQ(world.alertMatches(element + " <> 99", "A = {5, 6};"), index < 2) << element;
  }
}

TEST_F(FilterQuickCheck, AnInstanceWithoutLayoutIsReadByName) {
  const QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList);
  properties->append(new CQoriProperty("Size", QORSmrPtr<IQoriValue>(new CQoriValue(11ULL, CQoriType::uint64)), false));
  const QORSmrPtr<IQoriObject> object(new CQoriBaseObject(kNameSpace, "CIM_StorageVolume", "Id", properties));
  EXPECT_TRUE(world.matches("SELECT * FROM CIM_StorageVolume WHERE Size > 10", object));
  EXPECT_FALSE(world.matches("SELECT * FROM CIM_StorageVolume WHERE Size > 11", object));
}

TEST(CQLQuickCheck, DecidesNothingWithoutPropertyOrLayout) {
  FilterWorld world;
  const auto volume = world.indication("instance of CIM_StorageVolume { Id = \"a\"; Size = 11; };");
  const QoriCells found = volume->getCells();
  const QORuint64 serial = found.layout->getSerial();
  EXPECT_EQ(CQLQuickCheck().check(*volume, found, serial), CQLQuickCheck::Outcome::Undecided);
  QoriScalar ten;
  ten.kind = QoriScalarKind::Unsigned;
  ten.u = 10;
  const CQLQuickCheck unknown("NoSuch", QoriRelation::Greater, ten);
  EXPECT_EQ(unknown.check(*volume, found, serial), CQLQuickCheck::Outcome::Undecided);
  const CQLQuickCheck size("Size", QoriRelation::Greater, ten);
  EXPECT_EQ(size.check(*volume, found, 0), CQLQuickCheck::Outcome::Undecided);
  EXPECT_EQ(size.check(*volume, found, serial), CQLQuickCheck::Outcome::Holds);
}

}  // namespace
