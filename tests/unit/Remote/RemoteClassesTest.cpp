// Classes of servers, declared here when somebody needs them.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Remote/RemoteClasses.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/CQoriType.h"

namespace {

using testing::ElementsAre;

const QORString kSpace("root/cimv2");

CimClassDeclaration classOf(const char* name, const char* superClass, const std::vector<const char*>& properties) {
  CimClassDeclaration declaration;
  declaration.name = name;
  declaration.superClass = superClass;
  for (const char* const property : properties) {
    CimPropertyDeclaration own;
    own.name = property;
    own.type = CQoriType::string;
    declaration.properties.push_back(own);
  }
  return declaration;
}

class RemoteClassesOfServers : public testing::Test {
 protected:
  RemoteClasses classes(bool hasServerNames = false) {
    return RemoteClasses(
        [this](const QORString&, const QORString& className) {
          asked.push_back(std::string(QORString::toUpperCase(className).view()));
          RemoteClasses::Fetched fetched;
          for (const CimClassDeclaration& one : served) {
            if (one.name.isEqualCaseInsensitive(className)) fetched.declarations.push_back(one);
          }
          fetched.isComplete = isComplete;
          if (asked.back() == failing) throw CQoriProviderException(className, "it fails", 1);
          return fetched;
        },
        hasServerNames);
  }
  std::vector<std::string> propertiesOf(const char* className) {
    std::vector<std::string> names;
    for (const CimPropertyDeclaration& property : manager.allProperties(kSpace, className)) {
      names.emplace_back(property.name.view());
    }
    return names;
  }
  std::string refusalOf(RemoteClasses& asker, const char* className) {
    try {
      asker.provide(manager.sink(), kSpace, className);
    } catch (const CQoriProviderException& refusal) {
      return std::string(refusal.getMessage().view());
    }
    return {};
  }

  EmbeddedObjectManager manager;
  std::vector<CimClassDeclaration> served;
  std::vector<std::string> asked;
  std::string failing;
  bool isComplete = true;
};

TEST_F(RemoteClassesOfServers, SuperclassesAreFetchedAndEachOnce) {
  served = {classOf("A", "", {"Id"}), classOf("B", "A", {"More"})};
  RemoteClasses asker = classes();
  EXPECT_TRUE(asker.provide(manager.sink(), kSpace, "b"));
  EXPECT_TRUE(asker.provide(manager.sink(), kSpace, "A"));
  EXPECT_THAT(asked, ElementsAre("B", "A"));
  EXPECT_THAT(propertiesOf("B"), ElementsAre("Id", "More"));
}

TEST_F(RemoteClassesOfServers, PropertiesOfAllServers) {
  served = {classOf("A", "", {"Id", "One"}), classOf("A", "", {"ID", "Two"})};
  RemoteClasses asker = classes(true);
  EXPECT_TRUE(asker.provide(manager.sink(), kSpace, "A"));
  EXPECT_THAT(propertiesOf("A"), ElementsAre("__SERVER", "Id", "One", "Two"));
}

TEST_F(RemoteClassesOfServers, SuperclassesOfAllServersAreFetched) {
  served = {classOf("B", "A", {}), classOf("B", "M", {}), classOf("M", "A", {"New"}), classOf("A", "", {"Id"})};
  RemoteClasses asker = classes(true);
  EXPECT_TRUE(asker.provide(manager.sink(), kSpace, "B"));
  EXPECT_THAT(propertiesOf("B"), ElementsAre("__SERVER", "Id", "New"));
}

TEST_F(RemoteClassesOfServers, OnlyTheRootGainsTheServerProperty) {
  served = {classOf("A", "", {"Id"}), classOf("B", "A", {"More"})};
  RemoteClasses asker = classes(true);
  EXPECT_TRUE(asker.provide(manager.sink(), kSpace, "B"));
  EXPECT_THAT(propertiesOf("B"), ElementsAre("__SERVER", "Id", "More"));
}

TEST_F(RemoteClassesOfServers, MissingClassIsAskedForAgainWhenItIsForgotten) {
  RemoteClasses asker = classes();
  EXPECT_FALSE(asker.provide(manager.sink(), kSpace, "A"));
  EXPECT_FALSE(asker.provide(manager.sink(), kSpace, "A"));
  EXPECT_THAT(asked, ElementsAre("A"));
  asker.forgetMissing();
  served = {classOf("A", "", {"Id"})};
  EXPECT_TRUE(asker.provide(manager.sink(), kSpace, "A"));
}

TEST_F(RemoteClassesOfServers, ClassThatIsNotCompleteIsForgottenOnRequest) {
  served = {classOf("A", "", {"Id"}), classOf("B", "", {"Id"})};
  RemoteClasses asker = classes();
  EXPECT_TRUE(asker.provide(manager.sink(), kSpace, "A"));
  EXPECT_FALSE(asker.forgetIncomplete());
  isComplete = false;
  EXPECT_TRUE(asker.provide(manager.sink(), kSpace, "B"));
  EXPECT_TRUE(asker.forgetIncomplete());
  EXPECT_FALSE(asker.forgetIncomplete());
  EmbeddedObjectManager fresh;
  EXPECT_TRUE(asker.provide(fresh.sink(), kSpace, "A"));
  EXPECT_TRUE(asker.provide(fresh.sink(), kSpace, "B"));
  EXPECT_THAT(asked, ElementsAre("A", "B", "B"));
}

TEST_F(RemoteClassesOfServers, LineThatIsACircleOrHasNoBeginningIsRefused) {
  served = {classOf("A", "B", {}), classOf("B", "A", {}), classOf("C", "Nobody", {})};
  RemoteClasses asker = classes();
  EXPECT_EQ("class A derives from itself on the server", refusalOf(asker, "A"));
  EXPECT_EQ("the server has class C, but not its superclass Nobody", refusalOf(asker, "C"));
  EXPECT_EQ("class B derives from itself on the server", refusalOf(asker, "B"));
}

TEST_F(RemoteClassesOfServers, EndlessLineIsRefusedWithTheSameWordsAgain) {
  for (int i = 0; i <= 600; ++i) {
    served.push_back(classOf(("L" + std::to_string(i)).c_str(), ("L" + std::to_string(i + 1)).c_str(), {}));
  }
  RemoteClasses asker = classes();
  const std::string first = refusalOf(asker, "L0");
  EXPECT_NE(std::string::npos, first.find("has superclasses without end")) << first;
  EXPECT_EQ(first, refusalOf(asker, "L0"));
}

TEST_F(RemoteClassesOfServers, ClassWhoseSuperclassFailedCanBeAskedForAgain) {
  served = {classOf("A", "", {"Id"}), classOf("B", "A", {})};
  RemoteClasses asker = classes();
  failing = "A";
  EXPECT_EQ("it fails", refusalOf(asker, "B"));
  failing.clear();
  EXPECT_TRUE(asker.provide(manager.sink(), kSpace, "B"));
}

}  // namespace
