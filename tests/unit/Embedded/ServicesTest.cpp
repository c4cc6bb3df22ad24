// Which object manager the services follow, what they answer without one, and the log.
// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "EmbeddedFixture.h"
#include "cimom/QoriProviderPluginManager.h"
#include "cimom/ZEMOConfigManager.h"

using namespace embeddedtest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

CIMApi::Instances enumerateX() {
  return CIMApi().enumerateInstances("root/cimv2", "CIM_X", {}, -1, nullptr, nullptr, "", {});
}

void declareX(EmbeddedObjectManager& manager) {
  manager.sink().declareClass("root/cimv2", classOf("CIM_X", "", {property("K", CQoriType::string, {flag("Key")})}));
}

TEST(Services, WithoutAnObjectManagerTheServicesAnswerNothing) {
  ASSERT_EQ(nullptr, EmbeddedObjectManager::current());
  const QoriProviderPluginManager* const plugins = QoriProviderPluginManager::getQoriProviderPluginManager();
  EXPECT_TRUE(plugins->getRepository().IsNull());
  ASSERT_FALSE(plugins->getNamespaceList().IsNull());
  EXPECT_EQ(0u, plugins->getNamespaceList()->entries());
  EXPECT_TRUE(enumerateX().IsNull());
  const Name name = nameOf("root/cimv2", "CIM_X", {{"K", text("a")}});
  EXPECT_TRUE(CIMApi().associators("root/cimv2", name, "", "", {}, 1, "", "", "").IsNull());
  EXPECT_TRUE(CIMApi().getInstance("root/cimv2", name, {}, 1, nullptr, nullptr, nullptr).IsNull());
  QORString value("old");
  ZEMOConfigManager::getInstance()->getString("ZEMO", "DisablePreFilter", value);
  EXPECT_TRUE(value.isEmpty());
  QORLog::log("CQL", "nobody listens", QoriTraceLog::kError, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
}

TEST(Services, TheLastOneMadeCurrentServes) {
  EmbeddedObjectManager first;
  EXPECT_EQ(nullptr, EmbeddedObjectManager::current());
  first.makeCurrent();
  declareX(first);
  EXPECT_EQ(&first, EmbeddedObjectManager::current());
  {
    EmbeddedObjectManager second;
    EXPECT_FALSE(enumerateX().IsNull());
    second.makeCurrent();
    EXPECT_EQ(&second, EmbeddedObjectManager::current());
    EXPECT_TRUE(enumerateX().IsNull());
  }
  EXPECT_EQ(nullptr, EmbeddedObjectManager::current());
  EXPECT_TRUE(enumerateX().IsNull());
  first.makeCurrent();
  EXPECT_FALSE(enumerateX().IsNull());
}

TEST(Services, OneThatIsNotCurrentLeavesTheCurrentOneAlone) {
  EmbeddedObjectManager current;
  current.makeCurrent();
  { EmbeddedObjectManager other; }
  EXPECT_EQ(&current, EmbeddedObjectManager::current());
}

TEST(Services, AnObjectManagerStartsWithTheDefaultNamespace) {
  EmbeddedObjectManager manager;
  ASSERT_EQ(1u, manager.namespaces().size());
  EXPECT_STREQ(EmbeddedObjectManager::kDefaultNamespace, manager.namespaces()[0].c_str());
}

class Logging : public EmbeddedTest {
 protected:
  void listen(QORuint32 maximum) {
    manager.setLogSink(
        [this](const QORString& who, const QORString& message, QORuint32 severity) {
          lines.push_back(std::string(who.c_str()) + "/" + message.c_str() + "/" + std::to_string(severity));
        },
        maximum);
  }
  static void log(const char* message, QoriTraceLog::Severity severity) {
    QORLog::log("CQL", message, severity, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
  }
  std::vector<std::string> lines;
};

TEST_F(Logging, LinesUpToTheLevelReachTheSink) {
  listen(QoriTraceLog::kWarning);
  log("fatal", QoriTraceLog::kFatal);
  log("error", QoriTraceLog::kError);
  log("warning", QoriTraceLog::kWarning);
  log("info", QoriTraceLog::kInfo);
  log("trace", QoriTraceLog::kTrace);
  EXPECT_THAT(lines, ElementsAre("CQL/fatal/0", "CQL/error/1", "CQL/warning/2"));
}

TEST_F(Logging, AnEmptySinkDisconnects) {
  listen(QoriTraceLog::kTrace);
  manager.setLogSink({}, QoriTraceLog::kTrace);
  log("error", QoriTraceLog::kError);
  EXPECT_THAT(lines, IsEmpty());
}

TEST_F(Logging, ASinkThatThrowsHarmsNobody) {
  manager.setLogSink([](const QORString&, const QORString&, QORuint32) { throw std::runtime_error("no"); },
                     QoriTraceLog::kTrace);
  log("error", QoriTraceLog::kError);
}

TEST_F(Logging, ASinkMayCallTheObjectManager) {
  manager.setLogSink([this](const QORString&, const QORString&, QORuint32) { createDisk("logged"); },
                     QoriTraceLog::kTrace);
  log("error", QoriTraceLog::kError);
  EXPECT_EQ(1u, enumerate("CIM_Disk")->entries());
}

}  // namespace
