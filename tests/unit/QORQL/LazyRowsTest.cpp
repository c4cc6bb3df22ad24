// Lists of objects read in runs, and products of more rows than can be counted.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "QueryWorld.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriBaseObject.h"

namespace {

constexpr char kClass[] = "class Z { [key] uint32 k; };";

// An extent without an array of its objects, read in order, from the start
// again, and out of order.
TEST(Extent, RunsOfALongList) {
  QueryWorld world(kClass + std::string("instance of Z { k = 1; }; instance of Z { k = 2; };"));
  CIMApi client;
  const CIMApi::Instances two = client.enumerateInstances("root/cimv2", "Z", {}, -1, nullptr, nullptr, nullptr, {});
  const QORQL_Extent::ObjectList list(new QORValSlist<QORSmrPtr<IQoriObject>>);
  constexpr QORuint32 kCount = 140000;
  for (QORuint32 i = 0; i < kCount; ++i) list->append(i % 3 == 0 ? two->first() : two->last());
  const auto expected = [&](QORuint32 i) { return i % 3 == 0 ? two->first().Get() : two->last().Get(); };
  const QORQL_Extent extent(list);
  ASSERT_EQ(extent.size(), kCount);
  EXPECT_EQ(extent.layouts().size(), 1U);
  const auto expectRun = [&](QORuint32 first, std::size_t count) {
    std::vector<const IQoriObject*> run(count);
    extent.copyRun(first, count, run.data());
    for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(run[i], expected(first + static_cast<QORuint32>(i))) << first + i;
  };
  for (QORuint32 first = 0; first < kCount; first += 50) expectRun(first, 50);
  expectRun(0, 64);
  expectRun(64, 64);
  expectRun(kCount - 10, 10);
  expectRun(30, 64);
  expectRun(0, 1);
  for (const QORuint32 place : {0U, 4095U, 4096U, 139999U}) EXPECT_EQ(extent.object(place), expected(place));
  // Round the places that the extent remembers, and more often than it is worth remembering.
  for (int round = 0; round < 20; ++round) {
    for (const QORuint32 first : {139999U, 4095U, 4096U, 65536U, 8193U}) expectRun(first, first == 139999 ? 1 : 64);
  }
  expectRun(4160, 64);
  EXPECT_EQ(extent.object(139999), expected(139999));

  // Back to a remembered place, and from there on to where the reading would have been without that.
  const QORQL_Extent again(list);
  const auto expectRunAgain = [&](QORuint32 first) {
    std::array<const IQoriObject*, 64> run{};
    again.copyRun(first, run.size(), run.data());
    for (QORuint32 i = 0; i < run.size(); ++i) ASSERT_EQ(run[i], expected(first + i)) << first + i;
  };
  for (QORuint32 first = 0; first < 9024; first += 64) expectRunAgain(first);
  expectRunAgain(4096);
  expectRunAgain(9088);
  for (QORuint32 first = 9152; first < 20000; first += 64) expectRunAgain(first);
  expectRunAgain(12289);

  const QORQL_Extent unread(list);
  const IQoriObject* ahead = nullptr;
  unread.copyRun(50001, 1, &ahead);
  EXPECT_EQ(ahead, expected(50001));
}

// The layouts and cells of a run, of an extent with arrays of them and of one without, whole and in tuples.
TEST(Extent, LayoutsAndCellsAreThoseOfTheObjects) {
  QueryWorld world(kClass + std::string("class Y : Z { }; instance of Z { k = 1; }; instance of Y { k = 2; };"));
  CIMApi client;
  const CIMApi::Instances two = client.enumerateInstances("root/cimv2", "Z", {}, -1, nullptr, nullptr, nullptr, {});
  for (const QORuint32 count : {100U, 140000U}) {
    const QORQL_Extent::ObjectList list(new QORValSlist<QORSmrPtr<IQoriObject>>);
    for (QORuint32 i = 0; i < count; ++i) list->append(i % 3 == 0 ? two->first() : two->last());
    const auto extent = std::make_shared<const QORQL_Extent>(list);
    ASSERT_TRUE(extent->hasLayouts() && extent->hasCells());
    EXPECT_EQ(extent->layouts().size(), 2U);
    QORQL_LazyRows rows;
    rows.addExtent(extent);
    QORQL_RowBlock tuples;
    tuples.columns = {0};
    tuples.tuples = {3, QORQL_kNoObject, 1};
    tuples.rowCount = 3;
    std::array<const IQoriLayout*, 64> layoutBuffer{};
    std::array<const char*, 64> cellBuffer{};
    const QORQL_RowBlock& whole = rows.blocks().front();
    const auto* const layouts = whole.fetchLayouts(*extent, 0, 30, 64, layoutBuffer.data());
    for (QORuint32 i = 0; i < 64; ++i) ASSERT_EQ(layouts[i], extent->object(30 + i)->getLayout()) << count << " " << i;
    const auto* const cells = whole.fetchCells(*extent, 0, 30, 64, cellBuffer.data());
    for (QORuint32 i = 0; i < 64; ++i) ASSERT_EQ(cells[i], extent->object(30 + i)->getCells().cells) << count << i;
    const auto* const someLayouts = tuples.fetchLayouts(*extent, 0, 0, 3, layoutBuffer.data());
    const auto* const someCells = tuples.fetchCells(*extent, 0, 0, 3, cellBuffer.data());
    EXPECT_EQ(someLayouts[0], two->first()->getLayout());
    EXPECT_EQ(someCells[0], two->first()->getCells().cells);
    EXPECT_EQ(someLayouts[1], nullptr);
    EXPECT_EQ(someCells[1], nullptr);
    EXPECT_EQ(someLayouts[2], two->last()->getLayout());
    EXPECT_EQ(someCells[2], two->last()->getCells().cells);
  }
}

// Wherever in a list the first object of another kind stands.
TEST(Extent, TellsWhatOneObjectOfAListIs) {
  QueryWorld world(kClass + std::string("class Y : Z { }; instance of Z { k = 1; }; instance of Y { k = 2; };"));
  CIMApi client;
  const CIMApi::Instances two = client.enumerateInstances("root/cimv2", "Z", {}, -1, nullptr, nullptr, nullptr, {});
  const QORSmrPtr<IQoriObject> plain(new CQoriBaseObject(
      "root", "Z", "k", QORSmrPtr<CQoriBaseObject::PropertyList>(new CQoriBaseObject::PropertyList)));
  const auto extentWith = [&](const QORSmrPtr<IQoriObject>& other, QORuint32 place) {
    const QORQL_Extent::ObjectList list(new QORValSlist<QORSmrPtr<IQoriObject>>);
    for (QORuint32 i = 0; i < 100; ++i) list->append(i == place ? other : two->first());
    return std::make_unique<QORQL_Extent>(list);
  };
  for (const QORuint32 place : {0U, 1U, 15U, 16U, 99U}) {
    const auto same = extentWith(two->first(), place);
    EXPECT_TRUE(!same->hasNull() && same->hasCells() && same->layouts().size() == 1) << place;
    const auto mixed = extentWith(two->last(), place);
    EXPECT_TRUE(!mixed->hasNull() && mixed->hasCells() && mixed->hasLayouts()) << place;
    EXPECT_EQ(mixed->layouts().size(), 2U) << place;
    EXPECT_EQ(mixed->layouts().front(), mixed->object(0)->getLayout()) << place;
    const auto without = extentWith(plain, place);
    EXPECT_TRUE(!without->hasNull() && !without->hasCells() && !without->hasLayouts()) << place;
    EXPECT_TRUE(extentWith({}, place)->hasNull()) << place;
  }
}

// One layout is told for all objects without a record of each.
TEST(Extent, OneLayoutIsThatOfAllObjects) {
  QueryWorld world(kClass + std::string("instance of Z { k = 1; };"));
  CIMApi client;
  const auto one = client.enumerateInstances("root/cimv2", "Z", {}, -1, nullptr, nullptr, nullptr, {})->first();
  for (const QORuint32 count : {1U, 16U, 17U, 100U, 140000U}) {
    const QORQL_Extent::ObjectList list(new QORValSlist<QORSmrPtr<IQoriObject>>);
    for (QORuint32 i = 0; i < count; ++i) list->append(one);
    const QORQL_Extent extent(list);
    ASSERT_EQ(extent.layouts(), std::vector<const IQoriLayout*>{one->getLayout()}) << count;
    EXPECT_TRUE(extent.hasLayouts() && extent.hasCells() && !extent.hasNull()) << count;
    EXPECT_EQ(extent.layout(count - 1), one->getLayout()) << count;
    std::array<const IQoriLayout*, 64> buffer{};
    const std::size_t some = std::min<std::size_t>(count, 64);
    const IQoriLayout* const* const layouts = extent.layoutsOfRun(0, some, buffer.data());
    EXPECT_TRUE(std::all_of(layouts, layouts + some, [&](const auto* each) { return each == one->getLayout(); }));
  }
}

// Objects of a class, of two subclasses, without a layout and none at all, whichever the first few or the last are.
TEST(Extent, TellsTheLayoutsOfMixedObjectsInOrder) {
  QueryWorld world(kClass + std::string("class Y : Z { }; class X : Z { uint8 x; }; instance of Z { k = 1; };"
                                        "instance of Y { k = 2; }; instance of X { k = 3; };"));
  CIMApi client;
  const CIMApi::Instances three = client.enumerateInstances("root/cimv2", "Z", {}, -1, nullptr, nullptr, nullptr, {});
  const QORSmrPtr<IQoriObject> plain(new CQoriBaseObject(
      "root", "Z", "k", QORSmrPtr<CQoriBaseObject::PropertyList>(new CQoriBaseObject::PropertyList)));
  const std::vector<QORSmrPtr<IQoriObject>> kinds{three->at(0), three->at(1), three->at(2), plain, {}};
  // Where each kind begins; the one before goes on until there.
  const auto expectOrder = [&](const std::vector<std::size_t>& order, QORuint32 begin) {
    const QORQL_Extent::ObjectList list(new QORValSlist<QORSmrPtr<IQoriObject>>);
    std::vector<const IQoriLayout*> expected;
    for (QORuint32 i = 0; i < 3 * begin; ++i) {
      const QORSmrPtr<IQoriObject>& object = kinds[order[std::min<std::size_t>(i / begin, order.size() - 1)]];
      list->append(object);
      const IQoriLayout* const layout = object.IsNull() ? nullptr : object->getLayout();
      if (std::find(expected.begin(), expected.end(), layout) == expected.end()) expected.push_back(layout);
    }
    const bool hasLayouts = std::find(expected.begin(), expected.end(), nullptr) == expected.end();
    const bool hasNull = std::find(order.begin(), order.end(), 4U) != order.end();
    const QORQL_Extent extent(list);
    EXPECT_EQ(extent.hasLayouts(), hasLayouts);
    EXPECT_EQ(extent.hasCells(), hasLayouts);
    EXPECT_EQ(extent.hasNull(), hasNull);
    EXPECT_EQ(hasLayouts ? extent.layouts() : expected, expected);
    for (QORuint32 i = 0; hasLayouts && i < extent.size(); ++i) {
      ASSERT_EQ(extent.layout(i), extent.object(i)->getLayout()) << i;
    }
  };
  for (std::size_t a = 0; a < kinds.size(); ++a) {
    for (std::size_t b = 0; b < kinds.size(); ++b) {
      for (std::size_t c = 0; c < kinds.size(); ++c) {
        for (const QORuint32 begin : {1U, 6U, 20U, 45000U}) {
          if (begin > 20 && (a != 0 || b == 4)) continue;
          SCOPED_TRACE(std::to_string(a) + std::to_string(b) + std::to_string(c) + " " + std::to_string(begin));
          expectOrder({a, b, c}, begin);
        }
      }
    }
  }
}

// More rows than can be counted are as many as can be counted, not as many as remain.
TEST(LazyRows, AProductBeyondAllNumbersHasRows) {
  QueryWorld world(kClass + std::string("instance of Z { k = 1; };"));
  CIMApi client;
  const CIMApi::Instances one = client.enumerateInstances("root/cimv2", "Z", {}, -1, nullptr, nullptr, nullptr, {});
  const QORQL_Extent::ObjectList list(new QORValSlist<QORSmrPtr<IQoriObject>>);
  for (QORuint32 i = 0; i < 65536; ++i) list->append(one->first());
  const auto extent = std::make_shared<const QORQL_Extent>(list);
  QORQL_LazyRows rows;
  for (int column = 0; column < 3; ++column) rows.addExtent(extent);
  EXPECT_EQ(rows.rowCount(), QORuint64{1} << 48U);
  rows.addExtent(extent);
  EXPECT_EQ(rows.rowCount(), ~QORuint64{0});
  rows.addExtent(extent);
  EXPECT_EQ(rows.rowCount(), ~QORuint64{0});
}

// A product takes the place of the block that is named first, and blocks before it may go.
TEST(LazyRows, AProductTellsItsNumber) {
  QueryWorld world(kClass + std::string("instance of Z { k = 1; };"));
  CIMApi client;
  const CIMApi::Instances one = client.enumerateInstances("root/cimv2", "Z", {}, -1, nullptr, nullptr, nullptr, {});
  const auto extent = std::make_shared<const QORQL_Extent>(one);
  QORQL_LazyRows rows;
  for (int column = 0; column < 5; ++column) rows.addExtent(extent);
  const std::size_t number = rows.multiply({3, 0, 1});
  ASSERT_EQ(rows.blocks().size(), 3U);
  EXPECT_EQ(number, 1U);
  EXPECT_THAT(rows.blocks()[number].columns, testing::ElementsAre(0, 1, 3));
  QORQL_RowBlock block;
  block.columns = {0, 1, 2, 3};
  EXPECT_EQ(rows.replaceBlocks({0, 1}, std::move(block)), 0U);
  EXPECT_EQ(rows.blocks().size(), 2U);
}

}  // namespace
