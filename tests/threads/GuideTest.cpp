// The example of the guide to embedding, in several threads at once over one
// object manager: each prints what one alone prints. The example's own source is
// compiled in front of this one.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <iostream>
#include <streambuf>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 5;

// Keeps what each thread writes apart.
class PerThreadBuffer : public std::streambuf {
 public:
  static std::string taken() { return std::exchange(written(), std::string()); }

 protected:
  int_type overflow(int_type c) override {
    written() += traits_type::to_char_type(c);
    return c;
  }
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    written().append(text, static_cast<std::size_t>(count));
    return count;
  }

 private:
  static std::string& written() {
    thread_local std::string text;
    return text;
  }
};

class CoutScope {
 public:
  explicit CoutScope(std::streambuf* buffer) : _before(std::cout.rdbuf(buffer)) {}
  CoutScope(const CoutScope&) = delete;
  CoutScope& operator=(const CoutScope&) = delete;
  ~CoutScope() { std::cout.rdbuf(_before); }

 private:
  std::streambuf* _before;
};

std::string outputOf(const Subscriptions& subscriptions) {
  runQueryAndReport("SELECT Name, Price FROM Shop_Item WHERE Stock > 0 ORDER BY Name DESC");
  runQueryAndReport("SELECT Name FROM Shop_Item WHERE Stock >");
  deliverAll(subscriptions);
  return PerThreadBuffer::taken();
}

TEST(Guide, ItsExampleRunsInManyThreads) {
  PerThreadBuffer buffer;
  const CoutScope scope(&buffer);
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  std::string items;
  for (int i = 0; i < 300; ++i) items += "instance of Shop_Item { Name = \"n" + std::to_string(i) + "\"; };";
  MofLoader(manager.sink(), kNameSpace).loadText(kModel, "model");
  MofLoader(manager.sink(), kNameSpace).loadText(items.c_str(), "more");
  Subscriptions subscriptions;
  subscriptions.subscribe("the cashier", "SELECT * FROM Shop_Item WHERE Stock > 0 AND Price < 50");
  subscriptions.subscribe("the buyer", "SELECT * FROM Shop_Item WHERE Stock = 0");
  PerThreadBuffer::taken();
  std::vector<std::string> wrong(kThreads);
  std::vector<std::string> outputs(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      outputs[i] = outputOf(subscriptions);
      for (int round = 1; round < kRounds; ++round) {
        if (outputOf(subscriptions) != outputs[i]) wrong[i] = "round " + std::to_string(round) + " differs";
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  const std::string alone = outputOf(subscriptions);
  EXPECT_NE(alone.find("root/shop:Shop_Item.Name=\"lamp\"\n  goes to the cashier\n"), std::string::npos) << alone;
  EXPECT_NE(alone.find("root/shop:Shop_Item.Name=\"n299\"\n"), std::string::npos) << alone;
  for (std::size_t i = 0; i < kThreads; ++i) {
    EXPECT_EQ(outputs[i], alone) << "thread " << i;
    EXPECT_EQ(wrong[i], "") << "thread " << i;
  }
}

}  // namespace
