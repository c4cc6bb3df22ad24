// Restricted copies and objects of their own.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "AllocationCount.h"
#include "Cimom/Model/ModelRestriction.h"
#include "ModelTestSupport.h"
#include "cimom/CQoriBaseObject.h"

namespace {

using namespace model_test;

Object disk() {
  return object("CIM_Disk", {{"Name", text("sda")}, {"Size", uint64(500)}, {"Kind", uint16(3)}, {"On", boolean(true)}});
}

Object restricted(const Object& source, const QORSmrPtr<QORValSlist<QORString>>& list) {
  return {new CQoriBaseObject(source, list, true)};
}

void expectCellsToShow(const IQoriObject& object, QORuint32 position) {
  const QoriCells found = object.getCells();
  EXPECT_EQ(found.layout, object.getLayout());
  if (found.cells == nullptr) return;
  const QoriScalar& cell = QoriCells::at(found.cells, found.layout->getCellOffset(position));
  const QoriScalar view = object.getScalarAt(position);
  EXPECT_EQ(cell.kind, view.kind);
  EXPECT_EQ(cell.u, view.u);
}

// The object as the names and texts of its properties, read by position, by name and in its cells.
std::string contents(const Object& value) {
  std::string all;
  for (QORuint32 i = 0; i < value->getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> property = value->getPropertyAt(i);
    EXPECT_EQ(show(value->getProperty(property->getName(), true)->getValue()), show(property->getValue()));
    if (value->getLayout() != nullptr) {
      EXPECT_EQ(show(value->getValueAt(i)), show(property->getValue()));
      EXPECT_EQ(value->getScalarAt(i).isNull(), property->getValue().IsNull());
      expectCellsToShow(*value, i);
      EXPECT_EQ(value->getLayout()->getName(i), property->getName());
    }
    all += std::string(property->getName().view()) + "=" + show(property->getValue()) + " ";
  }
  return all;
}

TEST(CQoriBaseObject, RestrictedCopyKeepsListedPropertiesInTheSourcesOrder) {
  const Object copy = restricted(disk(), names({"KIND", "name", "Kind", "Missing"}));
  EXPECT_EQ(contents(copy), "Name=string:sda Kind=uint16:3 ");
  EXPECT_TRUE(copy->getProperty("Size", true).IsNull());
  EXPECT_EQ(copy->getScalarAt(1).u, 3U);
}

TEST(CQoriBaseObject, CopiesOfStoredInstancesHaveCells) {
  const Object copy = restricted(disk(), names({"Kind", "Size"}));
  EXPECT_EQ(contents(copy), "Size=uint64:500 Kind=uint16:3 ");
  ASSERT_NE(copy->getCells().cells, nullptr);
  ASSERT_NE(restricted(copy, names({"Kind"}))->getCells().cells, nullptr);
  EXPECT_EQ(contents(disk()), "Name=string:sda Size=uint64:500 Kind=uint16:3 On=boolean:TRUE ");
  EXPECT_NE(disk()->getCells().cells, nullptr);
}

TEST(CQoriBaseObject, RestrictedCopyKeepsClassNameNameAndNamespace) {
  const Object source = disk();
  const Object copy = restricted(source, names({"Size"}));
  EXPECT_EQ(copy->getClassName(), "CIM_Disk");
  EXPECT_EQ(copy->getNameSpace(), "root/cimv2");
  EXPECT_TRUE(copy->getInstanceName() == source->getInstanceName());
}

TEST(CQoriBaseObject, NullAndEmptyListsKeepNothing) {
  EXPECT_EQ(restricted(disk(), {})->getPropertyCount(), 0U);
  EXPECT_EQ(restricted(disk(), names({}))->getPropertyCount(), 0U);
  EXPECT_EQ(restricted(disk(), names({}))->getInstanceName()->toString(), "root/cimv2:CIM_Disk.Name=\"sda\"");
}

TEST(CQoriBaseObject, CopyOutlivesItsSource) {
  Object source = disk();
  const Object copy = restricted(source, names({"Name"}));
  source.Release();
  EXPECT_EQ(*copy->getScalarAt(0).text, "sda");
  EXPECT_EQ(contents(copy), "Name=string:sda ");
}

TEST(CQoriBaseObject, CopiesRestrictedAlikeShareOneLayout) {
  const Object source = disk();
  const Object first = restricted(source, names({"Size", "Name"}));
  EXPECT_EQ(first->getLayout(), restricted(source, names({"Size", "Name"}))->getLayout());
  EXPECT_EQ(first->getLayout(), restricted(source, names({"NAME", "SIZE"}))->getLayout());
  EXPECT_NE(first->getLayout(), restricted(source, names({"Size"}))->getLayout());
}

TEST(CQoriBaseObject, HundredThousandCopiesCostOneAllocationEach) {
  const Object source = disk();
  const QORSmrPtr<QORValSlist<QORString>> list = names({"Size", "Name"});
  const Object warm = restricted(source, list);
  std::vector<Object> copies;
  copies.reserve(100000);
  const unsigned long before = allocationCount();
  for (int i = 0; i < 100000; ++i) copies.push_back(Object::Make<CQoriBaseObject>(source, list, true));
  EXPECT_EQ(allocationCount(), before + 100000);
  EXPECT_EQ(copies.front()->getLayout(), copies.back()->getLayout());
}

TEST(CQoriBaseObject, ListThatChangesInPlaceIsLookedAtAgain) {
  const Object source = disk();
  const QORSmrPtr<QORValSlist<QORString>> list = names({"Size"});
  EXPECT_EQ(contents(restricted(source, list)), "Size=uint64:500 ");
  list->append(QORString("Kind"));
  EXPECT_EQ(contents(restricted(source, list)), "Size=uint64:500 Kind=uint16:3 ");
  list->at(0) = "On";
  EXPECT_EQ(contents(restricted(source, list)), "Kind=uint16:3 On=boolean:TRUE ");
}

TEST(CQoriBaseObject, LayoutsThatComeAndGoAreNotMistakenForEachOther) {
  const QORSmrPtr<QORValSlist<QORString>> list = names({"P"});
  for (unsigned i = 0; i < 200; ++i) {
    const Object source = i % 2 == 0 ? object("A", {{"P", uint32(i)}, {"Q", text("q")}})
                                     : object("B", {{"Q", text("q")}, {"P", uint32(i)}});
    EXPECT_EQ(contents(restricted(source, list)), "P=uint32:" + std::to_string(i) + " ");
  }
}

TEST(CQoriBaseObject, CopyOfACopyReadsTheFirstObject) {
  const Object source = disk();
  const Object first = restricted(source, names({"Name", "Kind", "On"}));
  const Object second = restricted(first, names({"On", "Kind", "Size"}));
  EXPECT_EQ(contents(second), "Kind=uint16:3 On=boolean:TRUE ");
  const Object third = restricted(second, names({"On"}));
  EXPECT_EQ(contents(third), "On=boolean:TRUE ");
  EXPECT_TRUE(third->getInstanceName() == source->getInstanceName());
  EXPECT_TRUE(second->getProperty("Name", true).IsNull());
}

TEST(CQoriBaseObject, StoredInstanceMayHaveADerivedLayout) {
  const Object source = disk();
  const QORSmrPtr<ModelLayout> layout(
      new ModelLayout({{"a", CQoriType::uint8}, {"b", CQoriType::uint8}, {"c", CQoriType::uint8}}));
  const QORSmrPtr<ModelRestriction> restriction = layout->restrictTo(*names({"b", "c"}));
  // Holds the values of b and c alone, unlike a copy of an object of the whole layout.
  class Narrow : public IQoriObject {
   public:
    explicit Narrow(const QORSmrPtr<ModelRestriction>& shape) : _shape(shape) {}
    const QORString& getClassName() const noexcept override { return QORString::emptyString(); }
    Name getInstanceName() const override { return {}; }
    QORString getNameSpace() const override { return {}; }
    QORuint32 getPropertyCount() const noexcept override { return 2; }
    QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override {
      return {new CQoriProperty(_shape->layout().getName(position), getValueAt(position), true)};
    }
    QORSmrPtr<IQoriProperty> getProperty(const QORString& property, bool) const override {
      const QORsint32 position = _shape->layout().getPosition(property);
      return position < 0 ? QORSmrPtr<IQoriProperty>() : getPropertyAt(static_cast<QORuint32>(position));
    }
    const IQoriLayout* getLayout() const noexcept override { return &_shape->layout(); }
    QoriScalar getScalarAt(QORuint32 position) const noexcept override { return _values[position]->scalar(); }
    Value getValueAt(QORuint32 position) const override { return _values[position]; }

   private:
    QORSmrPtr<ModelRestriction> _shape;
    Value _values[2] = {uint8(22), uint8(33)};
  };
  const Object narrow(new Narrow(restriction));
  const Object once = restricted(narrow, names({"c"}));
  EXPECT_EQ(contents(once), "c=uint8:33 ");
  const Object both = restricted(narrow, names({"c", "b"}));
  EXPECT_EQ(contents(restricted(both, names({"c"}))), "c=uint8:33 ");
  EXPECT_EQ(both->getCells().cells, nullptr);
}

TEST(CQoriBaseObject, PreparedRestrictionGivesTheSameCopies) {
  const Object source = disk();
  const ModelLayout& layout = *static_cast<const ModelInstance&>(*source).shape().layout;
  const QORSmrPtr<ModelRestriction> restriction = layout.restrictTo(*names({"Size", "On"}));
  const Object copy = ModelRestriction::apply(restriction, source);
  EXPECT_EQ(contents(copy), "Size=uint64:500 On=boolean:TRUE ");
  EXPECT_EQ(copy->getLayout(), restricted(source, names({"on", "size"}))->getLayout());
  EXPECT_EQ(contents(restricted(copy, names({"On"}))), "On=boolean:TRUE ");
}

Object pseudo(const char* key, const NamedValues& properties) {
  const QORSmrPtr<CQoriBaseObject::PropertyList> list(new CQoriBaseObject::PropertyList);
  for (const auto& [property, value] : properties) {
    list->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(property, value, true)));
  }
  return {new CQoriBaseObject("root", "VALUES", key, list)};
}

TEST(CQoriBaseObject, ObjectOfItsOwnHasItsProperties) {
  const Object values = pseudo("1", {{"1", uint64(4)}, {"2", Value()}});
  EXPECT_EQ(values->getClassName(), "VALUES");
  EXPECT_EQ(values->getNameSpace(), "root");
  EXPECT_EQ(values->getLayout(), nullptr);
  EXPECT_EQ(contents(values), "1=uint64:4 2=null ");
  EXPECT_TRUE(values->getProperty("3", true).IsNull());
  EXPECT_EQ(values->getInstanceName()->toString(), "root:VALUES.1=4");
  EXPECT_TRUE(values->getInstanceName() == values->getInstanceName());
}

TEST(CQoriBaseObject, ObjectOfItsOwnWithoutKeyHasNoName) {
  EXPECT_TRUE(pseudo("", {{"1", uint64(4)}})->getInstanceName().IsNull());
  EXPECT_TRUE(pseudo("2", {{"2", Value()}})->getInstanceName().IsNull());
  const CQoriBaseObject empty("root", "VALUES", "k", {});
  EXPECT_EQ(empty.getPropertyCount(), 0U);
  EXPECT_TRUE(empty.getInstanceName().IsNull());
}

TEST(CQoriBaseObject, LaterChangesOfTheListDoNotMatter) {
  const QORSmrPtr<CQoriBaseObject::PropertyList> list(new CQoriBaseObject::PropertyList);
  list->append(QORSmrPtr<IQoriProperty>(new CQoriProperty("a", uint8(1), true)));
  const CQoriBaseObject made("root", "C", "", list);
  list->clear();
  EXPECT_EQ(made.getPropertyCount(), 1U);
}

TEST(CQoriBaseObject, ObjectWithoutLayoutIsRestrictedByName) {
  const Object copy = restricted(pseudo("a", {{"a", uint8(1)}, {"b", uint8(2)}, {"c", uint8(3)}}), names({"C", "A"}));
  EXPECT_EQ(contents(copy), "a=uint8:1 c=uint8:3 ");
  EXPECT_EQ(copy->getLayout(), nullptr);
  EXPECT_EQ(copy->getClassName(), "VALUES");
  EXPECT_EQ(copy->getInstanceName()->toString(), "root:VALUES.a=1");
  EXPECT_EQ(copy->getNameSpace(), "root");
  EXPECT_EQ(contents(restricted(copy, names({"c"}))), "c=uint8:3 ");
  EXPECT_EQ(restricted(copy, {})->getPropertyCount(), 0U);
}

// Beyond some number properties are found through an index; of equal names the first counts.
TEST(CQoriBaseObject, FindsEachOfManyOwnProperties) {
  const QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList);
  for (int i = 0; i < 100; ++i) {
    const std::string property = "Prop" + std::to_string(i % 90);
    properties->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(property.c_str(), sint32(i), false)));
  }
  const CQoriBaseObject object("ns", "C", "Prop0", properties);
  for (int i = 0; i < 90; ++i) {
    const std::string wanted = "PROP" + std::to_string(i);
    ASSERT_FALSE(object.getProperty(wanted.c_str(), true).IsNull()) << i;
    EXPECT_EQ(object.getProperty(wanted.c_str(), true)->getValue()->getSint32(), i);
  }
  EXPECT_TRUE(object.getProperty("Prop90", true).IsNull());
}

}  // namespace
