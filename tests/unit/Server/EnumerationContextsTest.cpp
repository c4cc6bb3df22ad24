// Enumerations are found by those who opened them alone, in one turn at a time, until their time is over.
// SPDX-License-Identifier: Apache-2.0
#include <optional>
#include <thread>

#include "Cimom/Server/EnumerationContexts.h"
#include "ServerFixture.h"

using servertest::Asked;
using servertest::statusOf;
using testing::SizeIs;
using namespace std::chrono_literals;

namespace {

using Kind = EnumerationContexts::Kind;
using Turn = EnumerationContexts::Turn;

// So many elements that are not looked at.
class Some final : public EnumerationItems {
 public:
  explicit Some(int count) : _count(count) {}
  bool hasNext() const override { return _count > 0; }
  QORuint64 heldBytes() const override { return static_cast<QORuint64>(_count) * 100; }
  void writeNext(CimXmlWriter& /*writer*/) override { --_count; }

 private:
  int _count;
};

class Enumerations : public ServerTest {
 protected:
  static ServerLimits fewLimits() {
    ServerLimits limits;
    limits.enumerations = 2;
    limits.memory = 1000;
    return limits;
  }

  // The name of a new enumeration with that many elements.
  std::string open(int count = 1, std::chrono::milliseconds betweenPulls = 1min, Kind kind = Kind::Paths) {
    Turn turn = contexts.open(asked.on(held), kind, betweenPulls);
    turn.setItems(std::make_unique<Some>(count));
    return turn.end();
  }
  // The status of a pull that takes nothing.
  QORuint32 pull(const std::string& name, Kind kind = Kind::Paths) { return pullBy(asked, name, kind); }
  QORuint32 pullBy(Asked& caller, const std::string& name, Kind kind = Kind::Paths) {
    return statusOf([&] { contexts.take(caller.on(held), name, kind).end(); });
  }

  EnumerationContexts contexts{fewLimits()};
  Asked asked{"OpenEnumerateInstancePaths"};
};

TEST_F(Enumerations, GoOnByTheirNamesUntilNothingIsLeft) {
  const std::string name = open(1);
  EXPECT_THAT(name, SizeIs(32));
  EXPECT_EQ(pull(name), 0U);
  EXPECT_EQ(pull(name), 0U) << "nothing was taken";
  std::string text;
  CimXmlWriter writer(text);
  Turn turn = contexts.take(asked.on(held), name, Kind::Paths);
  turn.items().writeNext(writer);
  EXPECT_EQ(turn.end(), "");
  EXPECT_EQ(pull(name), 21U);
  EXPECT_EQ(contexts.count(), 0U);
}

TEST_F(Enumerations, EachHasANameOfItsOwn) { EXPECT_NE(open(), open()); }

TEST_F(Enumerations, BelongToNamespaceAndUser) {
  const std::string name = open();
  Asked elsewhere("PullInstancePaths", "root/other");
  EXPECT_EQ(pullBy(elsewhere, name), 21U);
  Asked somebody("PullInstancePaths");
  somebody.client.user = "else";
  EXPECT_EQ(pullBy(somebody, name), 21U);
  EXPECT_EQ(statusOf([&] { contexts.close(somebody.on(held), name); }), 21U);
  Asked spelled("PullInstancePaths", "ROOT/CIMV2");
  EXPECT_EQ(pullBy(spelled, name), 0U);
}

TEST_F(Enumerations, GoOnWithTheOperationOfTheirKind) {
  const std::string name = open();
  EXPECT_EQ(pull(name, Kind::Instances), 4U);
  EXPECT_EQ(pull(name), 0U);
}

TEST_F(Enumerations, AreInOneTurnAtATime) {
  const std::string name = open();
  Turn turn = contexts.take(asked.on(held), name, Kind::Paths);
  EXPECT_EQ(pull(name), 1U);
  turn.end();
  EXPECT_EQ(pull(name), 0U);
}

TEST_F(Enumerations, EndWithATurnThatIsNotEnded) {
  const std::string name = open();
  { const Turn turn = contexts.take(asked.on(held), name, Kind::Paths); }
  EXPECT_EQ(pull(name), 21U);
}

TEST_F(Enumerations, ThatAreClosedWhileTheyAreSentEndAfterIt) {
  const std::string name = open(5);
  Turn turn = contexts.take(asked.on(held), name, Kind::Paths);
  contexts.close(asked.on(held), name);
  EXPECT_TRUE(turn.items().hasNext());
  EXPECT_EQ(turn.end(), name) << "it does not tell that these were all";
  EXPECT_EQ(pull(name), 21U);
  EXPECT_EQ(statusOf([&] { contexts.close(asked.on(held), name); }), 21U);
}

TEST_F(Enumerations, OfAClientAreLimited) {
  const std::string first = open();
  open();
  EXPECT_EQ(statusOf([&] { open(); }), 27U);
  Asked other("OpenEnumerateInstances");
  other.client.address = "127.0.0.2";
  Turn turn = contexts.open(other.on(held), Kind::Paths, 1min);
  turn.setItems(std::make_unique<Some>(0));
  turn.end();
  contexts.close(asked.on(held), first);
  EXPECT_NE(open(), "") << "one has ended";
}

TEST_F(Enumerations, OfAClientHoldSoMuchTogether) {
  const std::string first = open(6);
  EXPECT_EQ(statusOf([&] { open(5); }), 27U);
  EXPECT_EQ(contexts.count(), 1U);
  EXPECT_EQ(pull(first), 0U);
  contexts.close(asked.on(held), first);
  EXPECT_NE(open(10), "") << "the first has ended";
}

TEST_F(Enumerations, ThatFailWhileTheyAreOpenedDoNotCount) {
  for (int i = 0; i < 5; ++i) contexts.open(asked.on(held), Kind::Paths, 1min);
  EXPECT_EQ(contexts.count(), 0U);
}

TEST_F(Enumerations, EndWhenNobodyPullsInTime) {
  const std::string name = open(1, 1ms);
  std::this_thread::sleep_for(5ms);
  EXPECT_EQ(pull(name), 21U);
}

TEST_F(Enumerations, AreDroppedWhenTheirTimeIsOverThoughNobodyCalls) {
  open(1, 1min);
  open(1, 20ms);
  for (int i = 0; i < 500 && contexts.count() == 2; ++i) std::this_thread::sleep_for(10ms);
  EXPECT_EQ(contexts.count(), 1U);
}

TEST_F(Enumerations, EndWhenAnotherObjectManagerTakesThePlace) {
  const std::string name = open();
  EmbeddedObjectManager next;
  const std::shared_ptr<EmbeddedObjectManager> nextHeld(std::shared_ptr<void>(), &next);
  EXPECT_EQ(statusOf([&] { contexts.take(asked.on(nextHeld), name, Kind::Paths); }), 21U);
}

}  // namespace
