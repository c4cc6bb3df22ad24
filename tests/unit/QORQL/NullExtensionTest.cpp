// Rows for objects without a partner.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "Cimom/QORQL/Lazy/QORQL_NullExtension.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace {

QORSmrPtr<IQoriObject> objectOfItsOwn(const std::string& key) {
  const QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList);
  const QORSmrPtr<IQoriValue> value(new CQoriValue(QORString(key.data(), key.size())));
  properties->append(QORSmrPtr<IQoriProperty>(new CQoriProperty("k", value, true)));
  return QORSmrPtr<IQoriObject>(new CQoriBaseObject("root", "Z", "k", properties));
}

struct NullExtension : testing::Test {
  void add(const std::string& key) { list->append(objectOfItsOwn(key)); }
  bool collect(const std::vector<bool>& isUnmatched) {
    rows.addExtent(std::make_shared<QORQL_Extent>(list));
    return QORQL_collectExtensions(rows, rows.blocks().front(), isUnmatched, extensions);
  }
  const QORQL_Extent::ObjectList list{new QORValSlist<QORSmrPtr<IQoriObject>>};
  QORQL_LazyRows rows;
  std::vector<QORQL_NullExtension> extensions;
};

// Objects without numbers are told apart by their paths.
TEST_F(NullExtension, ComesInTheOrderOfTheMapByPath) {
  std::vector<bool> isUnmatched;
  for (int i = 0; i < 400; ++i) {
    add(i % 7 == 0 ? "other" + std::to_string(i)
                   : std::string(static_cast<std::size_t>(i % 5), 'x') + std::to_string(i));
    isUnmatched.push_back(i % 3 != 0);
  }
  std::vector<std::pair<QORuint32, QORuint32>> expected;
  for (QORuint32 i = 0; i < 400; ++i) {
    if (i % 3 != 0) expected.emplace_back(hashKeyQORString(list->at(i)->getInstanceName()->toString()) % 150, i);
  }
  std::stable_sort(expected.begin(), expected.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  ASSERT_TRUE(collect(isUnmatched));
  ASSERT_EQ(extensions.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(extensions[i].index, expected[i].second);
}

TEST_F(NullExtension, IsRefusedWhenTwoObjectsShareAPath) {
  for (const char* const key : {"a", "b", "a"}) add(key);
  EXPECT_FALSE(collect({false, true, false}));
}

TEST_F(NullExtension, OfNoObjectNeedsNoPaths) {
  for (const char* const key : {"a", "a"}) add(key);
  EXPECT_TRUE(collect({false, false}));
  EXPECT_TRUE(extensions.empty());
}

// Behind rows of two columns, of which neither has tuples of its own before.
TEST_F(NullExtension, SeveralAreAppendedAsOneAfterTheOther) {
  add("a");
  add("b");
  const auto extent = std::make_shared<QORQL_Extent>(list);
  QORQL_LazyRows oneByOne;
  for (int i = 0; i < 2; ++i) oneByOne.addExtent(extent);
  oneByOne.flatten();
  QORQL_LazyRows together(oneByOne);
  extensions = {{0, 0, 1}, {0, 1, 0}, {0, 0, 0}};
  for (const QORQL_NullExtension& each : extensions) QORQL_appendExtendedRow(oneByOne, each.column, each.index);
  QORQL_appendExtendedRows(together, extensions);
  EXPECT_EQ(together.blocks().front().tuples, oneByOne.blocks().front().tuples);
  EXPECT_EQ(together.rowCount(), 7U);

  QORQL_LazyRows whole;
  whole.addExtent(extent);
  QORQL_appendExtendedRows(whole, {});
  EXPECT_TRUE(whole.blocks().front().isWholeExtent);
  QORQL_appendExtendedRows(whole, {{0, 0, 1}});
  EXPECT_EQ(whole.blocks().front().tuples, (std::vector<QORuint32>{0, 1, 1}));
}

}  // namespace
