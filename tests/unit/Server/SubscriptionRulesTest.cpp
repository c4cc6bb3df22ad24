// What clients may write of filters, listeners and subscriptions.
// SPDX-License-Identifier: Apache-2.0
#include <future>
#include <thread>

#include "Cimom/Embedded/OuterSource.h"
#include "Cimom/Server/SubscriptionRules.h"
#include "PlayedListeners.h"

namespace {

using namespace embeddedtest;
using servertest::PlayedListeners;
using servertest::Server;
using servertest::statusOf;
using ::testing::HasSubstr;

constexpr const char* kAll = "SELECT * FROM CIM_InstIndication";

struct SubscriptionRules : ::testing::Test {
  PlayedListeners listeners;
  Server server{listeners, ""};

  QORuint32 statusOfFilter(std::initializer_list<std::pair<const char*, Value>> values) {
    return statusOf([&] { server.create(kSubscriptionSpace, instanceOf(kFilterClass, values)); });
  }
  QORuint32 statusOfSubscription(std::vector<CimInstanceProperty> more) {
    if (filter.IsNull()) {
      filter = server.createFilter("f", kAll);
      handler = server.createHandler("h", "http://a");
    }
    const QORuint32 status = statusOf([&] { last = server.subscribe(filter, handler, std::move(more)); });
    if (status == 0) server.service.writer().remove(*server.manager, last);
    return status;
  }
  static Value small(QORuint64 value) { return number(value, CQoriType::uint16); }

  Name filter, handler, last;
};

TEST_F(SubscriptionRules, KeysThatAreLeftOutAreFilledIn) {
  const Name name(server.create(kSubscriptionSpace, instanceOf(kFilterClass, {{"Query", text(kAll)}})));
  const std::string path(name->toString().view());
  EXPECT_THAT(path, HasSubstr("CIM_ComputerSystem"));
  EXPECT_THAT(path, HasSubstr("\"host\""));
  EXPECT_THAT(path, HasSubstr("CreationClassName=\"CIM_IndicationFilter\""));
  const Name other(server.create(kSubscriptionSpace, instanceOf(kFilterClass, {{"Query", text(kAll)}})));
  EXPECT_NE(other->toString().view(), path);
}

TEST_F(SubscriptionRules, AnotherCreationClassNameIsRefused) {
  EXPECT_EQ(statusOfFilter({{"Query", text(kAll)}, {"CreationClassName", text("CIM_Other")}}), 4U);
}

TEST_F(SubscriptionRules, AFilterThatIsNotValidIsRefusedWithTheReason) {
  try {
    server.createFilter("f", "SELECT * FROM CIM_Nothing");
    FAIL() << "it was taken";
  } catch (const CimStatusException& refusal) {
    EXPECT_EQ(refusal.getCode(), 15U);
    EXPECT_THAT(std::string(refusal.getDescription().view()), HasSubstr("'CIM_NOTHING' is not a class of root/cimv2"));
  }
  EXPECT_EQ(statusOfFilter({{"Query", text("SELECT FROM WHERE")}}), 15U);
  EXPECT_EQ(server.countOf(kFilterClass), 0U);
}

TEST_F(SubscriptionRules, AFilterHasAQueryInAKnownLanguage) {
  EXPECT_EQ(statusOfFilter({{"Name", text("f")}}), 4U);
  EXPECT_EQ(statusOfFilter({{"Query", text(kAll)}, {"QueryLanguage", text("SQL")}}), 14U);
  for (const char* language : {"DMTF:CQL", "CIM:CQL", "CQL", "WQL", "dmtf:cql", "cim:cql", "Cql", "wql"}) {
    EXPECT_EQ(statusOfFilter({{"Query", text(kAll)}, {"QueryLanguage", text(language)}}), 0U) << language;
  }
}

TEST_F(SubscriptionRules, AFilterIsCheckedAgainstItsSourceNamespace) {
  EXPECT_EQ(statusOfFilter({{"Query", text(kAll)}, {"SourceNamespace", text("root/nowhere")}}), 15U);
}

TEST_F(SubscriptionRules, ADestinationIsAUrl) {
  for (const char* url : {"", "http://", "ftp://a", "a:5988", "http://a b"}) {
    EXPECT_EQ(statusOf([&] { server.createHandler("h", url); }), 4U) << url;
  }
  EXPECT_EQ(statusOf([&] { server.createHandler("h", "HTTPS://[::1]:5989/x"); }), 0U);
}

TEST_F(SubscriptionRules, AListenerIsPermanentOrTransient) {
  const auto statusFor = [&](QORuint64 type) {
    return statusOf([&] {
      server.create(kSubscriptionSpace,
                    instanceOf(kHandlerClass, {{"Destination", text("http://a")}, {"PersistenceType", small(type)}}));
    });
  };
  EXPECT_EQ(statusFor(1), 4U);
  EXPECT_EQ(statusFor(2), 0U);
  EXPECT_EQ(statusFor(3), 0U);
}

TEST_F(SubscriptionRules, ASubscriptionRefersToWhatIsThere) {
  filter = server.createFilter("f", kAll);
  handler = server.createHandler("h", "http://a");
  EXPECT_EQ(statusOf([&] { server.subscribe(handler, handler); }), 4U);
  EXPECT_EQ(statusOf([&] { server.subscribe(filter, filter); }), 4U);
  server.service.writer().remove(*server.manager, handler);
  EXPECT_EQ(statusOf([&] { server.subscribe(filter, handler); }), 4U);
}

TEST_F(SubscriptionRules, PoliciesThatNobodyFollowsAreRefused) {
  EXPECT_EQ(statusOfSubscription({}), 0U);
  EXPECT_EQ(statusOfSubscription({{"OnFatalErrorPolicy", small(1)}}), 4U);
  EXPECT_EQ(statusOfSubscription({{"OnFatalErrorPolicy", small(5)}}), 4U);
  EXPECT_EQ(statusOfSubscription({{"OnFatalErrorPolicy", small(4)}}), 0U);
  EXPECT_EQ(statusOfSubscription({{"RepeatNotificationPolicy", small(3)}}), 4U);
  EXPECT_EQ(statusOfSubscription({{"RepeatNotificationPolicy", small(3)}, {"RepeatNotificationInterval", number(1)}}),
            4U);
  EXPECT_EQ(statusOfSubscription({{"RepeatNotificationPolicy", small(3)},
                                  {"RepeatNotificationInterval", number(1)},
                                  {"RepeatNotificationCount", small(1)}}),
            0U);
  EXPECT_EQ(statusOfSubscription({{"SubscriptionDuration", number(9)}}), 4U);
  for (const QORuint64 state : {0, 1, 3, 5}) {
    EXPECT_EQ(statusOfSubscription({{"SubscriptionState", small(state)}}), 4U) << state;
  }
  EXPECT_EQ(statusOfSubscription({{"SubscriptionState", small(4)}}), 0U);
}

TEST_F(SubscriptionRules, WhatASubscriptionRefersToStays) {
  filter = server.createFilter("f", kAll);
  handler = server.createHandler("h", "http://a");
  const Name subscription(server.subscribe(filter, handler));
  EXPECT_EQ(statusOf([&] { server.service.writer().remove(*server.manager, filter); }), 1U);
  EXPECT_EQ(statusOf([&] { server.service.writer().remove(*server.manager, handler); }), 1U);
  for (const Name& name : {subscription, filter, handler}) {
    EXPECT_EQ(statusOf([&] { server.service.writer().remove(*server.manager, name); }), 0U);
  }
}

TEST_F(SubscriptionRules, AChangeIsCheckedAsACreation) {
  filter = server.createFilter("f", kAll);
  const auto statusFor = [&](const char* property, const Value& value) {
    return statusOf([&] { server.service.writer().modify(*server.manager, filter, {{property, value}}); });
  };
  EXPECT_EQ(statusFor("Query", text("SELECT * FROM CIM_Nothing")), 15U);
  EXPECT_EQ(statusFor("QueryLanguage", text("SQL")), 14U);
  EXPECT_EQ(statusFor("Query", text("SELECT * FROM CIM_InstCreation")), 0U);
}

TEST_F(SubscriptionRules, ThereIsALimitOfListeners) {
  IndicationOptions options;
  options.listenerLimit = 1;
  Server small(listeners, "", options);
  small.createHandler("h", "http://a");
  EXPECT_EQ(statusOf([&] { small.createHandler("i", "http://b"); }), 27U);
}

TEST_F(SubscriptionRules, DestinationsThatNobodyCanReachAreRefused) {
  int count = 0;
  const auto statusOfUrl = [&](const char* url) {
    return statusOf([&] { server.createHandler(std::to_string(++count).c_str(), url); });
  };
  for (const char* url : {"http:///x", "http://", "http://:80/", "http://a:99999", "http://a:0/", "http://a:x/",
                          "https://[::1", "http://[]/", "http://[zz]/", "http://[::1]x/", "http://u:p@/", "http://a b/",
                          "http://a\x7f\n/", "http://a:80:80/"}) {
    EXPECT_EQ(statusOfUrl(url), 4U) << url;
  }
  for (const char* url : {"http://a", "HTTPS://a:65535/x?y", "http://[::1]:80/", "https://[fe80::1]", "http://u:p@a:1/",
                          "http://127.0.0.1:9/", "http://a/x@y:z"}) {
    EXPECT_EQ(statusOfUrl(url), 0U) << url;
  }
}

TEST_F(SubscriptionRules, PasswordsOfDestinationsAreNotTold) {
  try {
    server.createHandler("h", "http://anna:secret@a:99999/x");
    FAIL() << "it was taken";
  } catch (const CimStatusException& refusal) {
    EXPECT_THAT(std::string(refusal.getDescription().view()), ::testing::Not(HasSubstr("secret")));
  }
  server.createHandler("h", "http://anna:secret@a/x");
  EXPECT_EQ(server.queueValue("Destination"), "http://***@a/x");
}

TEST_F(SubscriptionRules, ThereIsOneServiceAndItHasSettings) {
  const auto services = server.manager->ownInstances(kSubscriptionSpace, kIndicationServiceClass, {});
  const Name service(services->first()->getInstanceName());
  InstanceWriter& writer = server.service.writer();
  EXPECT_EQ(statusOf([&] { writer.remove(*server.manager, service); }), 7U);
  EXPECT_EQ(statusOf([&] {
              server.create(kSubscriptionSpace, instanceOf(kIndicationServiceClass,
                                                           {{"SystemCreationClassName", text("CIM_ComputerSystem")},
                                                            {"SystemName", text("host")},
                                                            {"CreationClassName", text(kIndicationServiceClass)},
                                                            {"Name", text("another")}}));
            }),
            7U);
  for (const char* setting : {"DeliveryRetryAttempts", "DeliveryRetryInterval"}) {
    EXPECT_EQ(statusOf([&] { writer.modify(*server.manager, service, {{setting, Value()}}); }), 4U) << setting;
  }
  EXPECT_EQ(statusOf([&] { writer.modify(*server.manager, service, {{"ElementName", Value()}}); }), 0U);
  EXPECT_EQ(server.countOf(kIndicationServiceClass), 1U);
}

// Has a class of indications, and lets others write before it says so.
class SlowIndications final : public OuterSource {
 public:
  explicit SlowIndications(std::function<void()> wait) : _wait(std::move(wait)) {}
  bool mayHave(const QORString&, const QORString& name) const override { return name.isEqualCaseInsensitive("Far"); }
  bool provideClass(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& name) override {
    if (!name.isEqualCaseInsensitive("Far")) return false;
    _wait();
    sink.declareClass(nameSpace, classOf("Far", "CIM_Indication", {}));
    return true;
  }
  void provideQualifiers(CimDeclarationSink&, const QORString&) override {}
  std::vector<QORString> classNames(const QORString&) override { return {}; }
  Objects instances(CimDeclarationSink&, const Request&) override { return {}; }
  QORSmrPtr<IQoriObject> instance(CimDeclarationSink&, const Request&, const IQoriInstanceName&) override { return {}; }
  Associations associations(CimDeclarationSink&, const Request&) override { return {}; }
  Objects references(CimDeclarationSink&, const Request&, const IQoriInstanceName&) override { return {}; }

 private:
  const std::function<void()> _wait;
};

TEST_F(SubscriptionRules, OthersWriteWhileAnotherServerIsAskedForTheClassOfAFilter) {
  bool couldWrite = false;
  std::thread other;
  server.manager->setOuterSource(std::make_shared<SlowIndications>([&] {
    std::promise<void> written;
    const std::future<void> isWritten = written.get_future();
    other = std::thread([this, made = std::move(written)]() mutable {
      server.createDisk("a");
      made.set_value();
    });
    couldWrite = isWritten.wait_for(std::chrono::seconds(2)) == std::future_status::ready;
  }));
  EXPECT_EQ(statusOfFilter({{"Query", text("SELECT * FROM Far")}}), 0U);
  if (other.joinable()) other.join();
  EXPECT_TRUE(couldWrite);
}

TEST_F(SubscriptionRules, InstancesOfClassesBelowAreRefused) {
  for (const char* known : {kFilterClass, kHandlerClass, kSubscriptionClass}) {
    const std::string below = std::string("My_") + known;
    server.manager->sink().declareClass(kSubscriptionSpace, classOf(below.c_str(), known, {}));
    EXPECT_EQ(statusOf([&] {
                server.create(kSubscriptionSpace, instanceOf(below.c_str(), {{"Name", text("x")}}));
              }),
              4U)
        << known;
  }
}

}  // namespace
