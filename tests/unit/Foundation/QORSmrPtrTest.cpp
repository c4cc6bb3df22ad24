// The counted pointer.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "cmpbase/QORNullPointerException.h"
#include "cmpbase/QORSmrPtr.h"
#include "cmpbase/QORValSlist.h"

namespace {

struct Base {
  explicit Base(int value = 0, int* deaths = nullptr) : value(value), deaths(deaths) {}
  virtual ~Base() {
    if (deaths != nullptr) ++*deaths;
  }
  bool operator<(const Base& other) const { return value < other.value; }
  bool operator>(const Base& other) const { return value > other.value; }
  int value;
  int* deaths;
};
struct Side {
  virtual ~Side() = default;
  int side = 7;
};
// As a Base it lies behind the Side part, so that conversion moves the pointer.
struct Derived : Side, Base {
  using Base::Base;
};

using Pointer = QORSmrPtr<Base>;

// The text that a null pointer's misuse raises.
template <class Action>
std::string nullPointerMessage(const Action& action) {
  try {
    action();
  } catch (const QORNullPointerException& error) {
    EXPECT_EQ(error.getType(), "NullPointer");
    EXPECT_EQ(error.getWho(), "QORSmrPtr");
    EXPECT_EQ(error.getCode(), 0U);
    EXPECT_EQ(error.getMessage(), "Null pointer in " + error.getWhere());
    return error.getMessage().c_str();
  }
  return "no error";
}

TEST(QORSmrPtr, DeletesTheObjectWithTheLastHolder) {
  int deaths = 0;
  {
    const Pointer a(new Base(1, &deaths));
    {
      const Pointer b(a);
      Pointer c;
      c = b;
      EXPECT_EQ(c->value, 1);
      EXPECT_FALSE(a.IsUnique());
    }
    EXPECT_EQ(deaths, 0);
    EXPECT_TRUE(a.IsUnique());
  }
  EXPECT_EQ(deaths, 1);
}

TEST(QORSmrPtr, NullIsNotAbsent) {
  const Pointer none(static_cast<Base*>(nullptr));
  EXPECT_TRUE(none.IsNull());
  EXPECT_EQ(none.Get(), nullptr);
  EXPECT_EQ(static_cast<void*>(none), nullptr);
  EXPECT_FALSE(none);
  EXPECT_FALSE(none.IsUnique());
  EXPECT_TRUE(Pointer().IsNull());
  EXPECT_TRUE(Pointer(nullptr).IsNull());
}

TEST(QORSmrPtr, NullDereferenceNamesTheOperation) {
  const Pointer none;
  EXPECT_EQ(nullPointerMessage([&] { static_cast<void>(none->value); }), "Null pointer in operator->()");
  EXPECT_EQ(nullPointerMessage([&] { static_cast<void>((*none).value); }), "Null pointer in operator*()");
}

TEST(QORSmrPtr, NullOrderingNamesTheOperationWhicheverSideIsNull) {
  const Pointer none;
  const Pointer some(new Base);
  EXPECT_EQ(nullPointerMessage([&] { static_cast<void>(none < some); }), "Null pointer in operator<()");
  EXPECT_EQ(nullPointerMessage([&] { static_cast<void>(some < none); }), "Null pointer in operator<()");
  EXPECT_EQ(nullPointerMessage([&] { static_cast<void>(none > some); }), "Null pointer in operator>()");
  EXPECT_EQ(nullPointerMessage([&] { static_cast<void>(none > none); }), "Null pointer in operator>()");
  EXPECT_EQ(nullPointerMessage([&] { static_cast<void>(some >= none); }), "Null pointer in operator<()");
  EXPECT_EQ(nullPointerMessage([&] { static_cast<void>(none <= some); }), "Null pointer in operator>()");
}

TEST(QORSmrPtr, OrdersTheObjects) {
  const Pointer one(new Base(1));
  const Pointer two(new Base(2));
  const Pointer alsoOne(new Base(1));
  EXPECT_TRUE(one < two);
  EXPECT_FALSE(two < one);
  EXPECT_TRUE(two > one);
  EXPECT_TRUE(one >= alsoOne);
  EXPECT_TRUE(one <= alsoOne);
  EXPECT_FALSE(one < one);
  EXPECT_FALSE(one > one);
}

TEST(QORSmrPtr, SameObjectIsNeitherLessNorGreaterEvenIfItSaysSo) {
  struct Odd {
    bool operator<(const Odd&) const { return true; }
    bool operator>(const Odd&) const { return true; }
  };
  const QORSmrPtr<Odd> odd(new Odd);
  const QORSmrPtr<Odd> same(odd);
  EXPECT_FALSE(odd < same);
  EXPECT_FALSE(odd > same);
}

TEST(QORSmrPtr, EqualityIsIdentityAndAnInt) {
  const Pointer a(new Base(1));
  const Pointer b(new Base(1));
  const Pointer copy(a);
  EXPECT_TRUE(a == copy);
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(Pointer() == Pointer());
  EXPECT_FALSE(a == Pointer());
  EXPECT_TRUE((std::is_same_v<decltype(a == b), int>));
}

TEST(QORSmrPtr, AssignmentOfTheSameBlockDoesNothing) {
  int deaths = 0;
  Pointer a(new Base(1, &deaths));
  const Pointer b(a);
  a = b;
  const Pointer& self = a;
  a = self;
  EXPECT_EQ(deaths, 0);
  EXPECT_EQ(a.Get(), b.Get());
}

TEST(QORSmrPtr, AssignmentReleasesTheOldObject) {
  int deaths = 0;
  Pointer a(new Base(1, &deaths));
  a = Pointer(new Base(2));
  EXPECT_EQ(deaths, 1);
  a = new Base(3, &deaths);
  a = nullptr;
  EXPECT_EQ(deaths, 2);
  EXPECT_TRUE(a.IsNull());
}

TEST(QORSmrPtr, InitAndSetTakeANewObject) {
  int deaths = 0;
  Pointer a;
  a.Init(new Base(1, &deaths));
  EXPECT_EQ(a->value, 1);
  a.Set(new Base(2, &deaths));
  EXPECT_EQ(deaths, 1);
  a.Set(nullptr);
  EXPECT_EQ(deaths, 2);
  EXPECT_TRUE(a.IsNull());
}

TEST(QORSmrPtr, ReleaseLetsGo) {
  int deaths = 0;
  Pointer a(new Base(1, &deaths));
  a.Release();
  EXPECT_TRUE(a.IsNull());
  EXPECT_EQ(deaths, 1);
  a.Release();
  EXPECT_EQ(deaths, 1);
}

// Counts deletions without being freed, so that it may be "deleted" twice.
struct Pinned {
  static void operator delete(void*) { ++deletions; }
  inline static int deletions = 0;
};

TEST(QORSmrPtr, SeparatePointersToOneObjectDoNotKnowOfEachOther) {
  Pinned pinned;
  Pinned::deletions = 0;
  QORSmrPtr<Pinned> a(&pinned);
  QORSmrPtr<Pinned> b(&pinned);
  const QORSmrPtr<Pinned> copyOfB(b);
  EXPECT_TRUE(a.IsUnique());
  EXPECT_FALSE(b.IsUnique());
  a.Release();
  EXPECT_EQ(Pinned::deletions, 1);
  b.Release();
  EXPECT_EQ(Pinned::deletions, 1);
  EXPECT_EQ(copyOfB.Get(), &pinned);
}

TEST(QORSmrPtr, AssigningTheSameRawPointerAgainMakesAnIndependentBlock) {
  Pinned pinned;
  Pinned::deletions = 0;
  QORSmrPtr<Pinned> a(&pinned);
  const QORSmrPtr<Pinned> copy(a);
  a = &pinned;
  EXPECT_TRUE(a.IsUnique());
  EXPECT_TRUE(copy.IsUnique());
  EXPECT_TRUE(a == copy);
}

TEST(QORSmrPtr, ConvertedPointerSharesTheCount) {
  int deaths = 0;
  QORSmrPtr<Derived> derived(new Derived(5, &deaths));
  Pointer base(derived);
  EXPECT_EQ(base->value, 5);
  EXPECT_EQ(base.Get(), static_cast<Base*>(derived.Get()));
  EXPECT_FALSE(base.IsUnique());
  EXPECT_FALSE(derived.IsUnique());
  derived.Release();
  EXPECT_TRUE(base.IsUnique());
  EXPECT_EQ(deaths, 0);
  base.Release();
  EXPECT_EQ(deaths, 1);
}

TEST(QORSmrPtr, ConvertedPointerMayGoFirst) {
  int deaths = 0;
  QORSmrPtr<Derived> derived(new Derived(5, &deaths));
  {
    const Pointer base(derived);
    const Pointer copy(base);
    EXPECT_EQ(copy->value, 5);
  }
  EXPECT_EQ(deaths, 0);
  EXPECT_TRUE(derived.IsUnique());
  derived.Release();
  EXPECT_EQ(deaths, 1);
}

TEST(QORSmrPtr, ConversionOfAConversionOutlivesBoth) {
  int deaths = 0;
  QORSmrPtr<const Base> last;
  {
    const QORSmrPtr<Derived> derived(new Derived(5, &deaths));
    const Pointer base(derived);
    last = base;
  }
  EXPECT_EQ(deaths, 0);
  EXPECT_EQ(last->value, 5);
  EXPECT_TRUE(last.IsUnique());
  last.Release();
  EXPECT_EQ(deaths, 1);
}

TEST(QORSmrPtr, ConvertingNullGivesNull) {
  const QORSmrPtr<Derived> none;
  const Pointer base(none);
  EXPECT_TRUE(base.IsNull());
}

TEST(QORSmrPtr, DynamicCastSharesTheCountOrGivesNull) {
  int deaths = 0;
  {
    QORSmrPtr<Derived> back;
    {
      const Pointer base(new Derived(5, &deaths));
      back = base.DynamicCast<Derived>();
      EXPECT_TRUE(Pointer(new Base).DynamicCast<Derived>().IsNull());
      EXPECT_TRUE(Pointer().DynamicCast<Derived>().IsNull());
      EXPECT_EQ(base.StaticCast<Derived>().Get(), back.Get());
      EXPECT_TRUE(Pointer().StaticCast<Derived>().IsNull());
    }
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(back->side, 7);
  }
  EXPECT_EQ(deaths, 1);
}

TEST(QORSmrPtr, MadeObjectBehavesAsAnyOther) {
  int deaths = 0;
  {
    Pointer made = Pointer::Make(5, &deaths);
    const Pointer copy(made);
    EXPECT_EQ(made->value, 5);
    EXPECT_FALSE(made.IsUnique());
    made.Release();
    EXPECT_EQ(deaths, 0);
    EXPECT_TRUE(copy.IsUnique());
  }
  EXPECT_EQ(deaths, 1);
}

TEST(QORSmrPtr, MadeObjectMayBeOfADerivedClass) {
  int deaths = 0;
  Pointer base = Pointer::Make<Derived>(5, &deaths);
  EXPECT_EQ(base->value, 5);
  QORSmrPtr<Derived> derived = base.DynamicCast<Derived>();
  EXPECT_EQ(derived->side, 7);
  base.Release();
  EXPECT_EQ(deaths, 0);
  EXPECT_EQ(derived->value, 5);
  derived.Release();
  EXPECT_EQ(deaths, 1);
}

TEST(QORSmrPtr, ConversionOfAMadeObjectMayOutliveIt) {
  int deaths = 0;
  QORSmrPtr<const Base> last;
  {
    const QORSmrPtr<Derived> derived = QORSmrPtr<Derived>::Make(5, &deaths);
    const Pointer base(derived);
    last = base;
  }
  EXPECT_EQ(last->value, 5);
  last.Release();
  EXPECT_EQ(deaths, 1);
}

TEST(QORSmrPtr, RoomBehindAMadeObjectIsItsOwn) {
  const QORSmrPtr<std::string> text = QORSmrPtr<std::string>::MakeWithRoom(1000, "text");
  std::memset(static_cast<void*>(text.Get() + 1), 'x', 1000);
  EXPECT_EQ(*text, "text");
}

TEST(QORSmrPtr, ConstructorThatThrowsLeavesNothingBehind) {
  struct Refuses {
    Refuses() { throw std::runtime_error("no"); }
  };
  EXPECT_THROW(QORSmrPtr<Refuses>::Make(), std::runtime_error);
}

TEST(QORSmrPtr, ThrowingDestructorOfAMadeObjectIsSwallowed) {
  struct Thrower {
    ~Thrower() noexcept(false) { throw std::runtime_error("from a destructor"); }
  };
  EXPECT_NO_THROW(QORSmrPtr<Thrower>::Make());
}

TEST(QORSmrPtr, MoveTakesTheHolderAlong) {
  int deaths = 0;
  Pointer a(new Base(1, &deaths));
  Pointer b(std::move(a));
  EXPECT_TRUE(a.IsNull());
  EXPECT_TRUE(b.IsUnique());
  Pointer c;
  c = std::move(b);
  EXPECT_EQ(c->value, 1);
  EXPECT_EQ(deaths, 0);
}

TEST(QORSmrPtr, ThrowingDestructorIsSwallowed) {
  struct Thrower {
    explicit Thrower(bool* destroyed) : destroyed(destroyed) {}
    ~Thrower() noexcept(false) {
      *destroyed = true;
      throw std::runtime_error("from a destructor");
    }
    bool* destroyed;
  };
  bool destroyed = false;
  EXPECT_NO_THROW({ const QORSmrPtr<Thrower> thrower(new Thrower(&destroyed)); });
  EXPECT_TRUE(destroyed);
}

TEST(QORSmrPtr, ObjectMayDropTheLastPointerToItsOwnHolder) {
  struct Node {
    QORSmrPtr<Node> next;
  };
  QORSmrPtr<Node> first(new Node);
  first->next = new Node;
  first = QORSmrPtr<Node>(first->next);
  EXPECT_TRUE(first->next.IsNull());
  EXPECT_TRUE(first.IsUnique());
}

TEST(QORSmrPtr, RaiseIsTheNullPointerErrorToo) {
  try {
    QORSmrPtrImpl::raise("misuse()");
  } catch (const QORNullPointerException& error) {
    EXPECT_EQ(error.getType(), "NullPointer");
    EXPECT_EQ(error.getWho(), "QORSmrPtr");
    EXPECT_EQ(error.getWhere(), "misuse()");
    EXPECT_EQ(error.getMessage(), "Null pointer in misuse()");
    return;
  }
  FAIL() << "nothing was raised";
}

TEST(QORSmrPtr, WorksAsAnElementOfLists) {
  int deaths = 0;
  {
    QORValSlist<Pointer> list;
    for (int i = 3; i > 0; --i) list.append(Pointer(new Base(i, &deaths)));
    list.sort(QORValSlist<Pointer>::Ascending);
    EXPECT_EQ(list.at(0)->value, 1);
    EXPECT_EQ(list.Max()->value, 3);
    const QORValSlist<Pointer> copy(list);
    list.clear();
    EXPECT_EQ(deaths, 0);
  }
  EXPECT_EQ(deaths, 3);
}

TEST(QORSmrPtr, CopiesMayBeMadeAndDroppedOnSeveralThreads) {
  std::atomic<int> alive{0};
  struct Counted : Base {
    explicit Counted(std::atomic<int>& alive) : alive(alive) { ++alive; }
    ~Counted() override { --alive; }
    std::atomic<int>& alive;
  };
  for (int round = 0; round < 50; ++round) {
    std::optional<QORSmrPtr<Counted>> shared(round % 2 == 0 ? QORSmrPtr<Counted>(new Counted(alive))
                                                            : QORSmrPtr<Counted>::Make(alive));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
      threads.emplace_back([mine = *shared]() mutable {
        for (int i = 0; i < 500; ++i) {
          const Pointer converted(mine);
          QORSmrPtr<Counted> copy(mine);
          mine = converted.StaticCast<Counted>();
        }
      });
    }
    shared.reset();
    for (std::thread& thread : threads) thread.join();
  }
  EXPECT_EQ(alive.load(), 0);
}

}  // namespace
