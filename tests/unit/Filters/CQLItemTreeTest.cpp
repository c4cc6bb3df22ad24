// The tree of items by hash: what it holds after each change, and that old roots stay as they were.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <utility>
#include <vector>

#include "Cimom/QORQL/Filter/CQLItemTree.h"

namespace {

using Root = const CQLItemTree::Node*;
using Order = QORuint64;

// A tree of which each change frees what it replaced, and the map that it should be.
class Tree {
 public:
  ~Tree() { CQLItemTree::destroy(root); }
  void insert(QORuint64 hash, Order order) {
    CQLItemTree::Steps steps;
    root = CQLItemTree::insert(root, {hash, order, targetOf(hash, order)}, steps);
    freeReplaced(steps);
    expected[{hash, order}] = targetOf(hash, order);
  }
  void erase(QORuint64 hash, Order order) {
    CQLItemTree::Steps steps;
    root = CQLItemTree::erase(root, {hash, order, nullptr}, steps);
    freeReplaced(steps);
    expected.erase({hash, order});
  }
  void check(QORuint64 hash) const {
    std::vector<const void*> found;
    CQLItemTree::forEach(root, hash, [&](const void* target) {
      found.push_back(target);
      return true;
    });
    std::vector<const void*> wanted;
    for (auto i = expected.lower_bound({hash, 1}); i != expected.end() && i->first.first == hash; ++i) {
      wanted.push_back(i->second);
    }
    EXPECT_EQ(found, wanted) << hash;
    const auto zero = expected.find({hash, 0});
    EXPECT_EQ(CQLItemTree::find(root, hash), zero == expected.end() ? nullptr : zero->second) << hash;
  }

  static const void* targetOf(QORuint64 hash, Order order) {
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(hash * 1000 + order + 1));
  }
  Root root = nullptr;
  std::map<std::pair<QORuint64, Order>, const void*> expected;

 private:
  static void freeReplaced(const CQLItemTree::Steps& steps) {
    for (const void* node : steps.replaced) CQLItemTree::freeNode(node);
  }
};

TEST(CQLItemTree, HoldsWhatWasPutIn) {
  Tree tree;
  std::mt19937 random(7);
  std::vector<std::pair<QORuint64, Order>> held;
  for (int i = 0; i < 4000; ++i) {
    if (held.empty() || random() % 3 != 0) {
      const std::pair<QORuint64, Order> key(random() % 300, random() % 20);
      if (tree.expected.contains(key)) continue;
      tree.insert(key.first, key.second);
      held.push_back(key);
    } else {
      const std::size_t at = random() % held.size();
      tree.erase(held[at].first, held[at].second);
      held[at] = held.back();
      held.pop_back();
    }
    tree.check(random() % 300);
  }
  for (const auto& key : held) tree.erase(key.first, key.second);
  EXPECT_EQ(tree.root, nullptr);
}

TEST(CQLItemTree, LeavesEarlierRootsAsTheyWere) {
  CQLItemTree::Steps steps;
  Root before = nullptr;
  for (Order order = 1; order <= 100; ++order) before = CQLItemTree::insert(before, {5, order, &steps}, steps);
  const Root after = CQLItemTree::erase(before, {5, 50, &steps}, steps);
  const auto count = [](Root root) {
    int items = 0;
    CQLItemTree::forEach(root, 5, [&](const void*) { return ++items != 0; });
    return items;
  };
  EXPECT_EQ(count(before), 100);
  EXPECT_EQ(count(after), 99);
  for (const void* node : steps.made) CQLItemTree::freeNode(node);
}

TEST(CQLItemTree, StopsWhenItIsTold) {
  Tree tree;
  for (Order order = 1; order <= 10; ++order) tree.insert(5, order);
  int visits = 0;
  CQLItemTree::forEach(tree.root, 5, [&](const void*) { return ++visits < 3; });
  EXPECT_EQ(visits, 3);
  EXPECT_EQ(CQLItemTree::find(nullptr, 5), nullptr);
}

}  // namespace
