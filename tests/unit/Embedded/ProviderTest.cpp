// Live instances: when providers are called, with what, and what becomes of their answers.
// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Embedded/StopScope.h"
#include "EmbeddedFixture.h"
#include "cimom/CQoriProviderException.h"

using namespace embeddedtest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Emits what the test says; remembers what it was asked.
class ScriptedProvider : public InstanceProvider {
 public:
  using Row = std::vector<std::pair<const char*, Value>>;

  explicit ScriptedProvider(const char* className) : _className(className) {}
  QORString getClassName() const override { return _className; }
  void enumerate(const Request& request, const Emit& emit) override {
    ++calls;
    last = request;
    for (const Row& row : rows) {
      std::vector<Value> values;
      for (const QORString& name : request.propertyNames) values.push_back(valueOf(row, name));
      values.resize(values.size() + extraValues);
      emit(std::move(values));
    }
    if (failure) failure();
  }

  std::vector<Row> rows;
  std::function<void()> failure;
  std::size_t extraValues = 0;
  int calls = 0;
  Request last;

 private:
  static Value valueOf(const Row& row, const QORString& name) {
    for (const auto& [property, value] : row) {
      if (QORString::equalIgnoringCase(property, name.view())) return value;
    }
    return {};
  }
  QORString _className;
};

class Providers : public EmbeddedTest {
 protected:
  std::shared_ptr<ScriptedProvider> serve(const char* className, std::vector<ScriptedProvider::Row> rows) {
    auto provider = std::make_shared<ScriptedProvider>(className);
    provider->rows = std::move(rows);
    manager.registerProvider(kSpace, provider);
    return provider;
  }
  std::vector<std::string> requested(const ScriptedProvider& provider) {
    std::vector<std::string> result;
    for (const QORString& name : provider.last.propertyNames) result.emplace_back(name.c_str());
    return result;
  }
  std::vector<std::string> ids(const char* className) { return values(enumerate(className), "DeviceID"); }
};

TEST_F(Providers, LiveInstancesComeAfterStoredOnesAlsoForSuperclasses) {
  serve("cim_disk", {{{"DeviceID", text("live1")}, {"Size", number(3)}}, {{"DeviceID", text("live2")}}});
  createDisk("a");
  createDisk("b", 0, "CIM_FastDisk");
  EXPECT_THAT(ids("CIM_Device"), ElementsAre("a", "b", "live1", "live2"));
  EXPECT_THAT(ids("CIM_FastDisk"), ElementsAre("b"));
  EXPECT_THAT(paths(enumerate("CIM_Device"))[2], "root/cimv2:CIM_Disk.DeviceID=\"live1\"");
  EXPECT_THAT(values(enumerate("CIM_Device"), "Size"), ElementsAre("0", "0", "3", "NULL"));
}

TEST_F(Providers, ProvidersAreAskedInTheOrderOfTheirRegistration) {
  serve("CIM_FastDisk", {{{"DeviceID", text("fast")}}});
  serve("CIM_Disk", {{{"DeviceID", text("slow")}}});
  EXPECT_THAT(ids("CIM_Device"), ElementsAre("fast", "slow"));
}

TEST_F(Providers, RequestsNameKeysAndWantedPropertiesInTheClassesSpelling) {
  const auto provider = serve("CIM_Disk", {});
  enumerate("CIM_Device", names({"SIZE", "nosuch"}));
  EXPECT_STREQ("root/cimv2", provider->last.nameSpace.c_str());
  EXPECT_STREQ("CIM_Disk", provider->last.className.c_str());
  EXPECT_THAT(requested(*provider), ElementsAre("DeviceID", "Size"));
  EXPECT_TRUE(provider->last.needs("deviceid"));
  EXPECT_TRUE(provider->last.needs("Size"));
  EXPECT_FALSE(provider->last.needs("Caption"));
  EXPECT_FALSE(provider->last.needs(nullptr));
  EXPECT_TRUE(provider->last.transaction.IsNull());
  enumerate("CIM_Disk");
  EXPECT_THAT(requested(*provider), ElementsAre("DeviceID", "Caption", "Size", "Online"));
}

TEST_F(Providers, TheTransactionReachesTheProvider) {
  const auto provider = serve("CIM_Disk", {});
  const QORSmrPtr<QoriTransactionInfo> transaction(
      new QoriTransactionInfo({}, "", "", -1, "", "", "", "SELECT * FROM CIM_Disk", "CIM:CQL"));
  CIMApi().enumerateInstances(kSpace, "CIM_Disk", {}, -1, nullptr, nullptr, "", transaction);
  ASSERT_FALSE(provider->last.transaction.IsNull());
  EXPECT_STREQ("SELECT * FROM CIM_Disk", provider->last.transaction->getQueryString().c_str());
}

TEST_F(Providers, LiveInstancesShowExactlyTheListedPropertiesWithACompleteName) {
  serve("CIM_Disk", {{{"DeviceID", text("x")}, {"Size", number(3)}}});
  const Object live = enumerate("CIM_Disk", names({"Size", "Caption"}))->first();
  EXPECT_THAT(propertyNames(live), ElementsAre("Caption", "Size"));
  EXPECT_STREQ("root/cimv2:CIM_Disk.DeviceID=\"x\"", live->getInstanceName()->toString().c_str());
  EXPECT_TRUE(live->getProperty("Caption", true)->getValue().IsNull());
}

TEST_F(Providers, InstancesWithoutAKeyValueAreLeftOut) {
  serve("CIM_Disk", {{{"Size", number(1)}}, {{"DeviceID", text("x")}}});
  EXPECT_THAT(ids("CIM_Disk"), ElementsAre("x"));
}

TEST_F(Providers, WhatIsLeftOutIsTold) {
  std::vector<std::string> told;
  manager.setLogSink([&](const QORString&, const QORString& message, QORuint32) { told.emplace_back(message.view()); },
                     QoriTraceLog::kWarning);
  const ScriptedProvider::Row x = {{"DeviceID", text("x")}};
  const auto provider = serve("CIM_Disk", {x, x, x});
  EXPECT_THAT(ids("CIM_Disk"), ElementsAre("x"));
  provider->rows = {{{"Size", number(1)}}};
  enumerate("CIM_Disk");
  provider->rows = {x};
  createDisk("x", 9);  // stored instances go before live ones, which is no fault
  enumerate("CIM_Disk");
  declare(classOf("CIM_Slot", "", {property("Number", CQoriType::uint8, {flag("Key")})}));
  serve("CIM_Slot", {{{"Number", text("five")}}, {{"Number", number(6)}}});
  EXPECT_THAT(values(enumerate("CIM_Slot"), "Number"), ElementsAre("6"));
  manager.setLogSink({}, QoriTraceLog::kFatal);
  EXPECT_THAT(told, ElementsAre("CIM_Disk: 2 instances are left out, the first since its path occurs twice, "
                                "root/cimv2:CIM_Disk.DeviceID=\"x\"",
                                "CIM_Disk: an instance is left out: its key DeviceID has no value",
                                "CIM_Slot: an instance is left out: its key Number is a uint8, and the provider gave a "
                                "string, five"));
}

TEST_F(Providers, OfAClassAmongManyASourceThatIsNotThereIsAWarning) {
  std::vector<std::string> told;
  manager.setLogSink([&](const QORString&, const QORString& message, QORuint32) { told.emplace_back(message.view()); },
                     QoriTraceLog::kWarning);
  serve("CIM_Disk", {{{"DeviceID", text("x")}}})->failure = [] {
    throw CQoriProviderException("disks", "no disks here", InstanceProvider::kNoSource);
  };
  serve("CIM_FastDisk", {{{"DeviceID", text("y")}}});
  EXPECT_THAT(ids("CIM_Device"), ElementsAre("x", "y"));
  EXPECT_THAT(told, ElementsAre("no disks here"));
  EXPECT_EQ("no disks here", refusal([&] { enumerate("cim_disk"); }, 7, "provider"));
  manager.setLogSink({}, QoriTraceLog::kFatal);
}

TEST_F(Providers, ASourceThatIsNotThereFailsACallThatOnlyItCouldAnswer) {
  serve("CIM_Disk", {})->failure = [] {
    throw CQoriProviderException("disks", "no disks here", InstanceProvider::kNoSource);
  };
  EXPECT_EQ("no disks here", refusal([&] { enumerate("CIM_Device"); }, 7, "provider"));
  const auto other = serve("CIM_FastDisk", {});
  EXPECT_THAT(ids("CIM_Device"), IsEmpty()) << "one of them has said that there are none";
  other->failure = [] { throw CQoriProviderException("fast", "no fast disks here", InstanceProvider::kNoSource); };
  EXPECT_EQ("no disks here", refusal([&] { enumerate("CIM_Device"); }, 7, "provider"));
  createDisk("a");
  EXPECT_THAT(ids("CIM_Device"), ElementsAre("a"));
}

// Who asked, and from which question on the call is to end.
thread_local int theQuestions = 0;
bool isEnoughAfterTwo() { return ++theQuestions > 2; }

TEST_F(Providers, NothingIsReadAfterTheCallIsToEnd) {
  const auto provider = serve("CIM_Disk", {{{"DeviceID", text("a")}}, {{"DeviceID", text("b")}}});
  {
    theQuestions = 0;
    const StopScope stop(&isEnoughAfterTwo);
    EXPECT_THAT(ids("CIM_Device"), ElementsAre("a", "b"));
    EXPECT_EQ("the call was stopped", refusal([&] { enumerate("CIM_Device"); }, 1, "provider"));
    EXPECT_EQ(theQuestions, 3);
    const StopScope inner([] { return false; });
    EXPECT_THAT(ids("CIM_Device"), ElementsAre("a", "b"));
  }
  EXPECT_THAT(ids("CIM_Device"), ElementsAre("a", "b"));
}

TEST_F(Providers, OwnInstancesAreThoseOfTheClassAloneWhateverTheOthersDo) {
  const auto disks = serve("CIM_Disk", {{{"DeviceID", text("live1")}, {"Size", number(3)}}});
  const auto fast = serve("CIM_FastDisk", {{{"DeviceID", text("live2")}}});
  createDisk("a");
  createDisk("b", 0, "CIM_FastDisk");
  const auto own = [&](const char* className) {
    return values(manager.ownInstances(kSpace, className, names({"DeviceID", "Size"})), "DeviceID");
  };
  EXPECT_THAT(own("cim_DISK"), ElementsAre("a", "live1"));
  EXPECT_THAT(own("CIM_FastDisk"), ElementsAre("b", "live2"));
  EXPECT_THAT(own("CIM_Device"), IsEmpty());
  EXPECT_THAT(requested(*disks), ElementsAre("DeviceID", "Size"));
  fast->failure = [] { throw CQoriProviderException("fast", "broken", 1); };
  EXPECT_THROW(enumerate("CIM_Disk"), CQoriProviderException);
  EXPECT_THAT(own("CIM_Disk"), ElementsAre("a", "live1"));
  EXPECT_THROW(own("CIM_FastDisk"), CQoriProviderException);
  EXPECT_TRUE(manager.ownInstances(kSpace, "CIM_Nothing", {}).IsNull());
  EXPECT_TRUE(manager.ownInstances("root/elsewhere", "CIM_Disk", {}).IsNull());
}

TEST_F(Providers, PathsStayUnique) {
  serve("CIM_Disk", {{{"DeviceID", text("a")}, {"Size", number(1)}},
                     {{"DeviceID", text("x")}, {"Size", number(2)}},
                     {{"DeviceID", text("x")}, {"Size", number(3)}}});
  createDisk("a", 9);
  EXPECT_THAT(values(enumerate("CIM_Disk"), "Size"), ElementsAre("9", "2"));
}

TEST_F(Providers, ValuesAreBroughtToTheDeclaredTypesOrAreNull) {
  serve("CIM_Disk", {{{"DeviceID", text("x")}, {"Size", number(3, CQoriType::uint8)}},
                     {{"DeviceID", text("y")}, {"Size", text("many")}}});
  const Object live = enumerate("CIM_Disk")->first();
  EXPECT_STREQ("uint64", live->getProperty("Size", true)->getValue()->getType()->getName().c_str());
  EXPECT_STREQ("3", live->getProperty("Size", true)->getValue()->toString().c_str());
  EXPECT_THAT(values(enumerate("CIM_Disk"), "Size"), ElementsAre("3", "NULL"));
}

TEST_F(Providers, AProvidersExceptionPassesThroughUnchanged) {
  serve("CIM_Disk", {})->failure = [] { throw CQoriProviderException("disks", "cannot open the list", 42); };
  try {
    enumerate("CIM_Device");
    FAIL() << "nothing was thrown";
  } catch (const CQoriProviderException& error) {
    EXPECT_STREQ("cannot open the list", error.what());
    EXPECT_EQ(42u, error.getCode());
    EXPECT_STREQ("provider", error.getType().c_str());
  }
}

TEST_F(Providers, OtherFailuresOfAProviderBecomeItsException) {
  const auto provider = serve("CIM_Disk", {});
  const auto message = [&](std::function<void()> failure) -> std::string {
    provider->failure = std::move(failure);
    try {
      enumerate("CIM_Disk");
    } catch (const CQoriProviderException& error) {
      EXPECT_EQ(1u, error.getCode());
      return error.what();
    }
    return "nothing was thrown";
  };
  EXPECT_EQ("broken", message([] { throw std::runtime_error("broken"); }));
  EXPECT_EQ("inner", message([] { throw QoriBaseException("x", "y", "z", "inner", 7); }));
  EXPECT_EQ("the provider failed without a message", message([] { throw 5; }));
}

TEST_F(Providers, AWrongNumberOfValuesIsTheProvidersFailure) {
  const auto provider = serve("CIM_Disk", {{{"DeviceID", text("x")}}});
  provider->extraValues = 1;
  EXPECT_EQ("the provider gave 5 values for 4 properties", refusal([&] { enumerate("CIM_Disk"); }, 1, "provider"));
}

TEST_F(Providers, WhatCannotBeRegisteredIsRefused) {
  const auto provider = std::make_shared<ScriptedProvider>("CIM_None");
  EXPECT_EQ("provider for CIM_None: the class is not declared",
            refusal([&] { manager.registerProvider(kSpace, provider); }, kInvalidClass));
  EXPECT_EQ("namespace root/none does not exist",
            refusal([&] { manager.registerProvider("root/none", provider); }, kInvalidNamespace));
  EXPECT_EQ("there is no provider to register",
            refusal([&] { manager.registerProvider(kSpace, nullptr); }, kInvalidParameter));
  serve("CIM_Disk", {});
  EXPECT_EQ("class CIM_Disk has a provider already", refusal([&] { serve("cim_disk", {}); }, kAlreadyExists));
}

TEST_F(Providers, LiveInstancesAreReadAnewForEachEnumeration) {
  const auto provider = serve("CIM_Disk", {{{"DeviceID", text("x")}}});
  EXPECT_THAT(ids("CIM_Disk"), ElementsAre("x"));
  provider->rows = {{{"DeviceID", text("y")}}};
  EXPECT_THAT(ids("CIM_Disk"), ElementsAre("y"));
}

TEST_F(Providers, GetInstanceFindsLiveInstancesInAnySpellingAndTellsTheProviderWhichOne) {
  const auto provider = serve("CIM_Disk", {{{"DeviceID", text("x")}, {"Size", number(3)}}, {{"DeviceID", text("y")}}});
  const Object live = get(nameOf("ROOT/cimv2", "CIM_DISK", {{"deviceid", text("x")}}), names({"size"}));
  ASSERT_FALSE(live.IsNull());
  EXPECT_THAT(propertyNames(live), ElementsAre("Size"));
  EXPECT_STREQ("root/cimv2:CIM_Disk.DeviceID=\"x\"", provider->last.only->toString().c_str());
  EXPECT_THAT(requested(*provider), ElementsAre("DeviceID", "Size"));
  EXPECT_TRUE(get(nameOf(kSpace, "CIM_Disk", {{"DeviceID", text("z")}})).IsNull());
  EXPECT_TRUE(get(nameOf(kSpace, "CIM_FastDisk", {{"DeviceID", text("x")}})).IsNull());
}

TEST_F(Providers, StoredInstancesAreFoundWithoutCallingTheProvider) {
  const auto provider = serve("CIM_Disk", {});
  EXPECT_FALSE(get(createDisk("a")).IsNull());
  EXPECT_EQ(0, provider->calls);
}

TEST_F(Providers, AProviderMayCallTheObjectManager) {
  createDisk("a");
  const auto provider = serve("CIM_FastDisk", {});
  provider->failure = [&] {
    EXPECT_EQ(0u, enumerate("CIM_Uses")->entries());
    createDisk("from the provider");
  };
  EXPECT_THAT(ids("CIM_FastDisk"), IsEmpty());
  provider->failure = nullptr;
  EXPECT_THAT(ids("CIM_Disk"), ElementsAre("a", "from the provider"));
}

class LiveAssociations : public Providers {
 protected:
  static Value diskNamed(const char* id) { return reference(nameOf("", "cim_disk", {{"deviceid", text(id)}})); }
};

TEST_F(LiveAssociations, LiveAssociationsComeAfterStoredOnesAndLeadToStoredAndLiveObjects) {
  const auto associations = serve("CIM_Uses", {{{"User", diskNamed("s")}, {"Used", diskNamed("live")}},
                                               {{"User", diskNamed("s")}, {"Used", diskNamed("b")}},
                                               {{"User", diskNamed("other")}, {"Used", diskNamed("b")}}});
  const auto disks = serve("CIM_Disk", {{{"DeviceID", text("live")}, {"Size", number(8)}}});
  const Name source = createDisk("s");
  const Name a = createDisk("a");
  createDisk("b");
  createUses(source, a);
  EXPECT_THAT(values(associators(source, "CIM_Uses", "CIM_Disk"), "DeviceID"), ElementsAre("a", "live", "b"));
  EXPECT_THAT(values(associators(source, "CIM_Uses", "CIM_Disk", names({"Size"})), "Size"), ElementsAre("0", "8", "0"));
  EXPECT_THAT(values(associators(source, "CIM_Uses", "CIM_FastDisk"), "DeviceID"), IsEmpty());
}

TEST_F(LiveAssociations, StoredAssociationsLeadToLiveObjectsAndFromThem) {
  const auto disks = serve("CIM_Disk", {{{"DeviceID", text("live")}}});
  const Name a = createDisk("a");
  const Name live = enumerate("CIM_Disk")->last()->getInstanceName();
  createUses(a, live);
  EXPECT_THAT(values(associators(a), "DeviceID"), ElementsAre("live"));
  EXPECT_THAT(values(associators(live), "DeviceID"), ElementsAre("a"));
}

// A provider may name a disk by the keys of a fuller schema.
TEST_F(LiveAssociations, KeysThatTheClassLacksFallAwayWithAndWithoutANamespace) {
  const auto fuller = [](const char* nameSpace, const char* id) {
    return reference(nameOf(nameSpace, "CIM_Disk", {{"SystemName", text("host")}, {"DeviceID", text(id)}}));
  };
  serve("CIM_Uses", {{{"User", diskNamed("s")}, {"Used", fuller("", "a")}},
                     {{"User", diskNamed("s")}, {"Used", fuller(kSpace, "b")}}});
  const Name source = createDisk("s");
  createDisk("a");
  createDisk("b");
  EXPECT_THAT(values(associators(source), "DeviceID"), ElementsAre("a", "b"));
  EXPECT_THAT(values(enumerate("CIM_Uses"), "Used"),
              ElementsAre("root/cimv2:CIM_Disk.DeviceID=\"a\"", "root/cimv2:CIM_Disk.DeviceID=\"b\""));
}

TEST_F(LiveAssociations, OneClientReadsEachProviderOnce) {
  const auto associations = serve("CIM_Uses", {{{"User", diskNamed("s")}, {"Used", diskNamed("live")}},
                                               {{"User", diskNamed("live")}, {"Used", diskNamed("s")}}});
  const auto disks = serve("CIM_Disk", {{{"DeviceID", text("live")}}, {{"DeviceID", text("s")}}});
  CIMApi client;
  for (const char* id : {"s", "live", "s", "nobody"}) {
    client.associators(kSpace, nameOf(kSpace, "CIM_Disk", {{"DeviceID", text(id)}}), "", "", {}, 1, "", "", "");
  }
  EXPECT_EQ(1, associations->calls);
  EXPECT_EQ(1, disks->calls);
}

TEST_F(LiveAssociations, AClientFollowsAChangeOfTheCurrentObjectManager) {
  serve("CIM_Uses", {{{"User", diskNamed("s")}, {"Used", diskNamed("a")}}});
  const Name source = createDisk("s");
  createDisk("a");
  CIMApi client;
  const auto count = [&] { return client.associators(kSpace, source, "", "", {}, 1, "", "", "")->entries(); };
  EXPECT_EQ(1u, count());
  EmbeddedObjectManager other;
  other.makeCurrent();
  EXPECT_EQ(0u, count());
  manager.makeCurrent();
  EXPECT_EQ(1u, count());
}

TEST_F(LiveAssociations, AFailingAssociationProviderFailsTheCall) {
  serve("CIM_Uses", {})->failure = [] { throw CQoriProviderException("uses", "no associations today", 1); };
  const Name source = createDisk("s");
  EXPECT_EQ("no associations today", refusal([&] { associators(source); }, 1, "provider"));
}

TEST_F(LiveAssociations, AnAssociationThatIsNotThereFailsTheCallThatNamesIt) {
  serve("CIM_Uses", {})->failure = [] {
    throw CQoriProviderException("uses", "no associations here", InstanceProvider::kNoSource);
  };
  const Name source = createDisk("s");
  EXPECT_THAT(values(associators(source), "DeviceID"), IsEmpty());
  EXPECT_EQ("no associations here", refusal([&] { associators(source, "CIM_Uses"); }, 7, "provider"));
}

}  // namespace
