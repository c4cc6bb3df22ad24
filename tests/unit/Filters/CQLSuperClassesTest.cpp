// What is remembered of superclasses holds for one state of one schema.
// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <functional>
#include <thread>

#include "AllocationCount.h"
#include "Cimom/QORQL/CQLFilterSet.h"
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/CQLSuperClasses.h"
#include "FilterWorld.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"
#include "cimom/QoriProviderPluginManager.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;

// An instance of a class that the schema need not have.
Object instanceOf(const char* className, const CQoriBaseObject::PropertyList& properties = {}) {
  return new CQoriBaseObject(kNameSpace, QORString(className), "",
                             QORSmrPtr<CQoriBaseObject::PropertyList>(new CQoriBaseObject::PropertyList(properties)));
}

Object creationOf(const char* className) {
  CQoriBaseObject::PropertyList properties;
  properties.append(new CQoriProperty("SourceInstance", CQoriType::string,
                                      QORSmrPtr<IQoriValue>(new CQoriValue(instanceOf(className)))));
  return instanceOf("CIM_InstCreation", properties);
}

struct SuperClasses : Filter {
  void load(const std::string& mof) { MofLoader(world.manager().sink(), kNameSpace).loadText(mof, "more"); }
  static bool isSubClass(const char* name, const char* superName) {
    return CQLQueryValidator::isSubClass(kNameSpace, name, superName);
  }
  static QORuint64 version() {
    return QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository()->getVersion();
  }
};

TEST_F(SuperClasses, TheChainOfAClass) {
  const QORString nameSpace(kNameSpace);
  const QORString nowhere("root/nowhere");
  CQLSuperClasses superClasses(nameSpace);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(superClasses.of("XYZ_Volume"), "CIM_StorageVolume");
    EXPECT_EQ(superClasses.of("xyz_volume"), "CIM_StorageVolume");
    EXPECT_EQ(superClasses.of(superClasses.of("XYZ_Volume")), "CIM_ManagedElement");
    EXPECT_TRUE(superClasses.of("CIM_ManagedElement").isEmpty());
    EXPECT_TRUE(superClasses.of("CIM_Nope").isEmpty());
    EXPECT_TRUE(superClasses.of("").isEmpty());
    EXPECT_TRUE(CQLSuperClasses(nowhere).of("XYZ_Volume").isEmpty());
  }
}

TEST_F(SuperClasses, TheVersionChangesWithTheClassesAlone) {
  const QORuint64 before = version();
  EXPECT_NE(before, 0U);
  load("instance of CIM_FCPort { Id = \"1\"; };");
  load("class CIM_FCPort : CIM_ManagedElement { [key] string Id; };");
  EXPECT_THROW(load("class CIM_Late : CIM_FCPort { }; class CIM_Wrong : CIM_Nope { };"), QoriBaseException);
  EXPECT_EQ(version(), before);
  load("class CIM_Late : CIM_FCPort { };");
  const QORuint64 after = version();
  EXPECT_NE(after, before);
  FilterWorld other;
  EXPECT_NE(version(), before);
  EXPECT_NE(version(), after);
}

TEST_F(SuperClasses, AClassThatComesAfterAMatch) {
  EXPECT_FALSE(isSubClass("CIM_Late", "CIM_FCPort"));
  const Object instance = instanceOf("CIM_Late");
  const Object creation = creationOf("CIM_Late");
  CQLQueryStatement from("CQL", "SELECT * FROM CIM_FCPort", kNameSpace, "");
  CQLFilterSet::Statement isa(new CQLQueryStatement(
      "CQL", "SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_FCPort", kNameSpace, ""));
  ASSERT_EQ(from.validate(), QUERY_VALIDATE_SUCCESS);
  ASSERT_EQ(isa->validate(), QUERY_VALIDATE_SUCCESS);
  CQLFilterSet set;
  for (CQLFilterSet::Handle handle = 0; handle < 20; ++handle) set.add(handle, isa);
  std::vector<CQLFilterSet::Handle> found;
  const auto expectAnswers = [&](bool expected) {
    EXPECT_EQ(from.isMatch(instance, kNameSpace), expected);
    EXPECT_EQ(isa->isMatch(creation, kNameSpace), expected);
    set.match(creation, kNameSpace, found);
    EXPECT_EQ(found.size(), expected ? 20U : 0U);
  };
  expectAnswers(false);
  EXPECT_THROW(load("class CIM_Late : CIM_FCPort { }; class CIM_Wrong : CIM_Nope { };"), QoriBaseException);
  expectAnswers(false);
  load("class CIM_Late : CIM_FCPort { };");
  expectAnswers(true);
}

TEST_F(SuperClasses, AnotherObjectManagerHasOtherClasses) {
  load("class CIM_Late : CIM_FCPort { };");
  EXPECT_TRUE(isSubClass("CIM_Late", "CIM_FCPort"));
  {
    FilterWorld other;
    EXPECT_FALSE(isSubClass("CIM_Late", "CIM_FCPort"));
    MofLoader(other.manager().sink(), kNameSpace).loadText("class CIM_Late : CIM_ConcreteJob { };", "other");
    EXPECT_TRUE(isSubClass("CIM_Late", "CIM_ConcreteJob"));
    EXPECT_FALSE(isSubClass("CIM_Late", "CIM_FCPort"));
  }
  EXPECT_FALSE(isSubClass("CIM_Late", "CIM_FCPort"));
  EXPECT_TRUE(isSubClass("CIM_LATE", "cim_late"));
  world.manager().makeCurrent();
  EXPECT_TRUE(isSubClass("CIM_Late", "CIM_FCPort"));
  EXPECT_FALSE(isSubClass("CIM_Late", "CIM_ConcreteJob"));
}

TEST_F(SuperClasses, NamespacesHaveClassesOfTheirOwn) {
  world.manager().sink().createNamespace("root/other");
  MofLoader(world.manager().sink(), "root/other").loadText("class A { }; class XYZ_Volume : A { };", "other");
  for (int round = 0; round < 2; ++round) {
    EXPECT_TRUE(CQLQueryValidator::isSubClass("root/other", "XYZ_Volume", "A"));
    EXPECT_FALSE(CQLQueryValidator::isSubClass("root/other", "XYZ_Volume", "CIM_StorageVolume"));
    EXPECT_TRUE(isSubClass("XYZ_Volume", "CIM_StorageVolume"));
    EXPECT_FALSE(isSubClass("XYZ_Volume", "A"));
  }
}

// More classes than are remembered at a time.
TEST_F(SuperClasses, ManyClassesInTurn) {
  std::string mof = "class T_0 { };\n";
  for (int i = 1; i < 1500; ++i) {
    mof += "class T_" + std::to_string(i) + " : T_" + std::to_string(i / 2) + " { };\n";
  }
  load(mof);
  for (int round = 0; round < 3; ++round) {
    for (int i = 1; i < 1500; ++i) {
      const std::string name = "T_" + std::to_string(i);
      const std::string other = "T_" + std::to_string(i / 4 + 1);
      bool isBelow = false;
      for (int above = i; above > 0; above /= 2) isBelow = isBelow || above == i / 4 + 1;
      EXPECT_TRUE(isSubClass(name.c_str(), "T_0"));
      EXPECT_EQ(isSubClass(name.c_str(), other.c_str()), isBelow) << name << " " << other;
    }
  }
}

// Once a load is done, every thread that begins a match sees its classes.
TEST_F(SuperClasses, ThreadsSeeWhatHasBeenLoaded) {
  constexpr int kClasses = 40;
  const QORString nameSpace(kNameSpace);
  CQLQueryStatement filter("CQL", "SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_FCPort", nameSpace, "");
  ASSERT_EQ(filter.validate(), QUERY_VALIDATE_SUCCESS);
  std::vector<Object> creations;
  for (int i = 0; i < kClasses; ++i) creations.push_back(creationOf(("XYZ_New" + std::to_string(i)).c_str()));
  std::atomic<int> loaded{0};
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int known = 0; known < kClasses;) {
        known = loaded.load();
        for (int i = 0; i < kClasses; ++i) {
          const bool isMatch = filter.isMatch(creations[static_cast<std::size_t>(i)], nameSpace);
          if (i < known && !isMatch) ++wrong;
        }
      }
    });
  }
  for (int i = 0; i < kClasses; ++i) {
    load("class XYZ_New" + std::to_string(i) + " : CIM_FCPort { };");
    loaded.store(i + 1);
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

// Asks once more when what its thread remembers is gone, and tells what that made.
struct LateQuestion {
  LateQuestion() = default;
  LateQuestion(const LateQuestion&) = delete;
  LateQuestion& operator=(const LateQuestion&) = delete;
  ~LateQuestion() {
    const unsigned long before = allocationCount();
    EXPECT_TRUE(CQLQueryValidator::isSubClass(nameSpace, "XYZ_Volume", "CIM_ManagedElement"));
    if (allocations != nullptr) *allocations = allocationCount() - before;
  }

  const QORString nameSpace{kNameSpace};
  unsigned long* allocations = nullptr;
};

// Nobody would free it: what such a question needs it gives back at once, and so the next one needs it again.
TEST_F(SuperClasses, AThreadThatEndsRemembersNothingAnew) {
  unsigned long first = 0;
  unsigned long second = 0;
  std::thread([&] {
    thread_local LateQuestion later;
    thread_local LateQuestion sooner;
    later.allocations = &second;
    sooner.allocations = &first;
    EXPECT_TRUE(isSubClass("XYZ_Volume", "CIM_ManagedElement"));
  }).join();
  EXPECT_GT(second, 0U);
  EXPECT_EQ(first, second);
}

}  // namespace
