// Layouts and their restrictions.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "Cimom/Model/ModelLayout.h"
#include "Cimom/Model/ModelRestriction.h"
#include "ModelTestSupport.h"

namespace {

using namespace model_test;

QORSmrPtr<ModelLayout> layoutOf(std::initializer_list<const char*> columnNames) {
  std::vector<ModelLayout::Column> columns;
  for (const char* const column : columnNames) columns.push_back({column, CQoriType::string});
  return {new ModelLayout(columns)};
}

TEST(ModelLayout, PositionsFollowTheColumnsIgnoringCase) {
  const ModelLayout layout({{"Name", CQoriType::string}, {"Size", CQoriType::uint64}});
  EXPECT_EQ(layout.getPropertyCount(), 2U);
  EXPECT_EQ(layout.getPosition("NAME"), 0);
  EXPECT_EQ(layout.getPosition("size"), 1);
  EXPECT_EQ(layout.getPosition("Siz"), -1);
  EXPECT_EQ(layout.getPosition(""), -1);
  EXPECT_EQ(layout.getName(1), "Size");
  EXPECT_EQ(layout.getType(1)->getName(), "uint64");
}

TEST(ModelLayout, FoldingIsThatOfLettersOnly) {
  const QORSmrPtr<ModelLayout> layout = layoutOf({"a_1", "[", "{"});
  EXPECT_EQ(layout->getPosition("A_1"), 0);
  EXPECT_EQ(layout->getPosition("["), 1);
  EXPECT_EQ(layout->getPosition("{"), 2);
  EXPECT_EQ(layout->getPosition("A\x7F"
                                "1"),
            -1);
}

TEST(ModelLayout, FirstOfEqualNamesCounts) {
  const ModelLayout layout({{"a", CQoriType::string}, {"A", CQoriType::uint8}, {"b", CQoriType::uint8}});
  EXPECT_EQ(layout.getPropertyCount(), 2U);
  EXPECT_EQ(layout.getPosition("b"), 1);
  EXPECT_EQ(layout.getType(0)->getName(), "string");
}

TEST(ModelLayout, EmptyLayoutFindsNothing) {
  EXPECT_EQ(layoutOf({})->getPosition("a"), -1);
  EXPECT_EQ(layoutOf({})->getPropertyCount(), 0U);
}

TEST(ModelLayout, FindsEveryOneOfManyNames) {
  std::vector<ModelLayout::Column> columns;
  for (int i = 0; i < 1000; ++i) {
    columns.push_back({QORString(("Property" + std::to_string(i)).c_str()), CQoriType::uint32});
  }
  const ModelLayout layout(columns);
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(layout.getPosition(QORString(("PROPERTY" + std::to_string(i)).c_str())), i);
  }
  EXPECT_EQ(layout.getPosition("Property1000"), -1);
}

TEST(ModelLayout, SerialsAreNeverUsedTwice) {
  const QORuint64 first = layoutOf({"a"})->getSerial();
  EXPECT_GT(layoutOf({"a"})->getSerial(), first);
}

TEST(ModelRestriction, KeepsListedPropertiesInTheSourcesOrder) {
  const QORSmrPtr<ModelLayout> layout = layoutOf({"a", "b", "c", "d"});
  const QORSmrPtr<ModelRestriction> restriction = layout->restrictTo(*names({"D", "b", "nothing", "B"}));
  EXPECT_EQ(restriction->positions(), (std::vector<QORuint32>{1, 3}));
  EXPECT_EQ(restriction->layout().getName(0), "b");
  EXPECT_EQ(restriction->layout().getPosition("D"), 1);
  EXPECT_EQ(restriction->layout().getPosition("a"), -1);
}

TEST(ModelRestriction, NoNamesKeepNothing) {
  EXPECT_EQ(layoutOf({"a"})->restrictTo(*names({}))->layout().getPropertyCount(), 0U);
}

TEST(ModelRestriction, SameKeptPositionsShareOneLayout) {
  const QORSmrPtr<ModelLayout> layout = layoutOf({"a", "b", "c"});
  const QORSmrPtr<ModelRestriction> first = layout->restrictTo(*names({"a", "c"}));
  EXPECT_TRUE(layout->restrictTo(*names({"C", "A", "x"})) == first);
  EXPECT_FALSE(layout->restrictTo(*names({"a"})) == first);
}

TEST(ModelRestriction, ManyNameListsDoNotPileUp) {
  std::vector<ModelLayout::Column> columns;
  for (int i = 0; i < 200; ++i) {
    columns.push_back({QORString(("p" + std::to_string(i)).c_str()), CQoriType::uint32});
  }
  const ModelLayout layout(columns);
  const QORSmrPtr<ModelRestriction> first = layout.restrictTo(*names({"p0"}));
  for (int i = 1; i < 200; ++i) layout.restrictTo(*names({("p" + std::to_string(i)).c_str()}));
  EXPECT_TRUE(first.IsUnique()) << "the layout has let the oldest go";
}

TEST(ModelRestriction, OutlivesItsSourceLayout) {
  QORSmrPtr<ModelLayout> layout = layoutOf({"a", "b"});
  const QORSmrPtr<ModelRestriction> restriction = layout->restrictTo(*names({"b"}));
  layout.Release();
  EXPECT_EQ(restriction->layout().getName(0), "b");
}

TEST(ModelRestriction, StepsCompose) {
  const QORSmrPtr<ModelLayout> layout = layoutOf({"a", "b", "c", "d"});
  const QORSmrPtr<ModelRestriction> first = layout->restrictTo(*names({"b", "c", "d"}));
  const QORSmrPtr<ModelRestriction> second = first->layout().restrictTo(*names({"d", "b"}));
  EXPECT_EQ(second->positions(), (std::vector<QORuint32>{0, 2}));
  EXPECT_EQ(second->rootPositions(), (std::vector<QORuint32>{1, 3}));
  EXPECT_EQ(first->rootPositions(), first->positions());
}

TEST(ModelRestriction, ThreadsShareTheCache) {
  const QORSmrPtr<ModelLayout> layout = layoutOf({"a", "b", "c", "d", "e", "f"});
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&layout] {
      const char* const all[] = {"a", "b", "c", "d", "e", "f"};
      for (unsigned i = 0; i < 2000; ++i) {
        const QORSmrPtr<ModelRestriction> found = layout->restrictTo(*names({all[i % 6], all[i % 5]}));
        ASSERT_GE(found->layout().getPosition(all[i % 6]), 0);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
