// Stored instances.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <thread>

#include "AllocationCount.h"
#include "Cimom/Model/ModelInstance.h"
#include "ModelTestSupport.h"

namespace {

using namespace model_test;

QORSmrPtr<ModelShape> diskShape() {
  const QORSmrPtr<ModelLayout> layout(new ModelLayout({{"Name", CQoriType::string},
                                                       {"Size", CQoriType::uint64},
                                                       {"On", CQoriType::boolean},
                                                       {"Ids", CQoriType::arrayOf(CQoriType::uint16)},
                                                       {"Since", CQoriType::datetime},
                                                       {"Load", CQoriType::real32},
                                                       {"Letter", CQoriType::char16},
                                                       {"Delta", CQoriType::sint32}}));
  return {new ModelShape{"root/cimv2", "CIM_Disk", layout, {0}}};
}

std::vector<Value> diskValues() {
  return {text("sda"),
          uint64(500),
          boolean(true),
          array(CQoriType::uint16, {uint16(1), uint16(2)}),
          datetime("20240131120000.000000+060"),
          real32(0.1),
          char16(u'C'),
          sint32(-4)};
}

TEST(ModelInstance, GivesItsValuesByPositionAndName) {
  const Object disk = ModelInstance::create(diskShape(), diskValues());
  EXPECT_EQ(disk->getClassName(), "CIM_Disk");
  EXPECT_EQ(disk->getNameSpace(), "root/cimv2");
  EXPECT_EQ(IQoriObject::getLocalNameSpace(disk), "root/cimv2");
  EXPECT_EQ(disk->getPropertyCount(), 8U);
  const std::vector<Value> values = diskValues();
  for (QORuint32 i = 0; i < 8; ++i) {
    const QORSmrPtr<IQoriProperty> property = disk->getPropertyAt(i);
    EXPECT_EQ(property->getName(), disk->getLayout()->getName(i));
    EXPECT_EQ(show(property->getValue()), show(values[i]));
    EXPECT_EQ(show(disk->getValueAt(i)), show(values[i]));
    EXPECT_EQ(show(disk->getProperty(QORString::toUpperCase(property->getName()), true)->getValue()), show(values[i]));
    EXPECT_TRUE(property->getType() == disk->getLayout()->getType(i));
  }
  EXPECT_TRUE(disk->getProperty("Nothing", true).IsNull());
}

TEST(ModelInstance, GivesScalarsInPlace) {
  const Object disk = ModelInstance::create(diskShape(), diskValues());
  const unsigned long before = allocationCount();
  EXPECT_EQ(*disk->getScalarAt(0).text, "sda");
  EXPECT_EQ(disk->getScalarAt(1).u, 500U);
  EXPECT_TRUE(disk->getScalarAt(2).b);
  EXPECT_EQ(disk->getScalarAt(3).kind, QoriScalarKind::Complex);
  EXPECT_EQ(disk->getScalarAt(4).kind, QoriScalarKind::DateTime);
  EXPECT_EQ(disk->getScalarAt(5).r, static_cast<double>(0.1F));
  EXPECT_EQ(disk->getScalarAt(6).c, u'C');
  EXPECT_EQ(disk->getScalarAt(7).s, -4);
  EXPECT_EQ(allocationCount(), before);
  EXPECT_EQ(disk->getScalarAt(3).value, disk->getValueAt(3).Get());
}

TEST(ModelInstance, KeepsNoValueObjectsForScalars) {
  const Value size = uint64(500);
  const Object disk = ModelInstance::create(diskShape(), {text("sda"), size});
  EXPECT_TRUE(size.IsUnique());
}

TEST(ModelInstance, MissingValuesAreNull) {
  const Object disk = ModelInstance::create(diskShape(), {text("sda"), Value()});
  EXPECT_TRUE(disk->getScalarAt(1).isNull());
  EXPECT_TRUE(disk->getValueAt(1).IsNull());
  EXPECT_TRUE(disk->getProperty("Delta", true)->getValue().IsNull());
  EXPECT_EQ(disk->getProperty("Delta", true)->getType()->getName(), "sint32");
}

TEST(ModelInstance, ValuesBeyondTheLayoutAreIgnored) {
  std::vector<Value> values = diskValues();
  values.push_back(text("more"));
  EXPECT_EQ(ModelInstance::create(diskShape(), values)->getPropertyCount(), 8U);
}

TEST(ModelInstance, ValuesTakeTheDeclaredType) {
  const Object disk = ModelInstance::create(
      diskShape(), {text("sda"), uint8(5), Value(), array(CQoriType::uint32, {uint32(7)}), text("t")});
  EXPECT_EQ(show(disk->getValueAt(1)), "uint64:5");
  EXPECT_EQ(show(disk->getValueAt(3)), "uint16:7");
  EXPECT_EQ(show(disk->getValueAt(4)), "datetime:t");
}

TEST(ModelInstance, ValueThatCannotBeOfTheTypeNamesTheProperty) {
  EXPECT_EQ(valueError([] {
              ModelInstance::create(diskShape(), {text("sda"), text("big")});
            }),
            "Property CIM_Disk.Size: Cannot convert string to uint64");
}

TEST(ModelInstance, NameIsMadeOfTheKeysOnce) {
  const Object disk = ModelInstance::create(diskShape(), diskValues());
  const Name first = disk->getInstanceName();
  EXPECT_EQ(first->toString(), "root/cimv2:CIM_Disk.Name=\"sda\"");
  EXPECT_EQ(first->getNameSpacePath()->getNameSpace(), "root/cimv2");
  EXPECT_TRUE(disk->getInstanceName() == first);
}

TEST(ModelInstance, NameIsNullWithoutKeysOrKeyValue) {
  EXPECT_TRUE(ModelInstance::create(diskShape(), {Value(), uint64(1)})->getInstanceName().IsNull());
  EXPECT_TRUE(object("C", {{"p", uint8(1)}}, 0)->getInstanceName().IsNull());
}

TEST(ModelInstance, NameShowsTheKeysInNameOrder) {
  const Name inner = name("root/cimv2", "D", {{"K", uint8(1)}});
  const NamedValues keys = {{"zeta", text("z\"")},  {"Beta", reference(inner)}, {"alpha", boolean(true)},
                            {"gamma", real32(0.1)}, {"Delta", char16(u'd')},    {"eta", sint32(-1)}};
  const Name made = object("C", keys, 6)->getInstanceName();
  EXPECT_EQ(made->toString(),
            "root/cimv2:C.alpha=TRUE,Beta=\"root/cimv2:D.K=1\",Delta=\"d\",eta=-1,gamma=0.1,zeta=\"z\\\"\"");
  EXPECT_EQ(made->toString(), name("root/cimv2", "C", keys)->toString());
  EXPECT_EQ(made->getClassName(), "C");
  ASSERT_EQ(made->getKeys()->entries(), 6U);
  EXPECT_EQ(made->getKeys()->at(1)->getName(), "Beta");
  EXPECT_TRUE(made->getKeys()->at(1)->getValue()->getReference() == inner);
  EXPECT_EQ(show(made->getKeys()->at(4)->getValue()), "real32:0.1");
  EXPECT_TRUE(made->getKeys() == made->getKeys());
}

TEST(ModelInstance, GivenNameWins) {
  const Name given = name("other", "CIM_Disk", {{"Id", uint32(9)}});
  const Object disk = ModelInstance::create(diskShape(), diskValues(), given);
  EXPECT_TRUE(disk->getInstanceName() == given);
}

TEST(ModelInstance, NameOutlivesTheInstance) {
  Object disk = ModelInstance::create(diskShape(), diskValues());
  const Name kept = disk->getInstanceName();
  disk.Release();
  EXPECT_EQ(kept->toString(), "root/cimv2:CIM_Disk.Name=\"sda\"");
  EXPECT_EQ(kept->getKeys()->first()->getValue()->toString(), "sda");
}

TEST(ModelInstance, ThreadsSeeOneName) {
  for (int round = 0; round < 100; ++round) {
    const Object disk = ModelInstance::create(diskShape(), diskValues());
    Name seen[4];
    std::vector<std::thread> threads;
    for (Name& slot : seen) {
      threads.emplace_back([&slot, &disk] {
        slot = disk->getInstanceName();
        EXPECT_EQ(slot->getKeys()->entries(), 1U);
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (const Name& slot : seen) {
      ASSERT_TRUE(slot == seen[0]);
      ASSERT_TRUE(slot->getKeys() == seen[0]->getKeys());
    }
  }
}

TEST(ModelInstance, InstancesShareTheirLayout) {
  const QORSmrPtr<ModelShape> shape = diskShape();
  EXPECT_EQ(ModelInstance::create(shape, diskValues())->getLayout(),
            ModelInstance::create(shape, diskValues())->getLayout());
}

TEST(ModelInstance, CostsOneAllocationBesideItsValues) {
  const QORSmrPtr<ModelShape> shape = diskShape();
  const std::vector<Value> values = diskValues();
  const unsigned long before = allocationCount();
  const Object disk = ModelInstance::create(shape, values);
  EXPECT_EQ(allocationCount(), before + 1);
}

}  // namespace
