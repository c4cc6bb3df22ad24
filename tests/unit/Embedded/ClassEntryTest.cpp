// Classes that are read when somebody needs them: nobody must be able to tell.
// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <map>
#include <stdexcept>
#include <thread>

#include "Cimom/Embedded/ClassEntry.h"
#include "EmbeddedFixture.h"

using namespace embeddedtest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kLater = "root/later";

// Declarations in memory, with a count of how often each was asked for.
class CountedSource final : public CimDeclarationSource {
 public:
  explicit CountedSource(std::vector<CimClassDeclaration> classes) : _classes(std::move(classes)) {}

  CimClassDeclaration read(QORuint32 number) override {
    note("read ", number);
    if (_damaged.contains(number)) throw std::runtime_error("damaged");
    return _changed.contains(number) ? _changed[number] : _classes.at(number);
  }
  CimClassDeclaration readElsewhere(QORuint32 number) override {
    note("elsewhere ", number);
    if (_lost.contains(number)) throw QoriBaseException("CIM_Repository", "test", "", "it is lost", kFailed);
    return _classes.at(number);
  }

  std::vector<std::string> takeNotes() { return std::exchange(_notes, {}); }
  void damage(QORuint32 number) { _damaged[number] = true; }
  void lose(QORuint32 number) { _lost[number] = true; }
  void change(QORuint32 number, CimClassDeclaration declaration) { _changed[number] = std::move(declaration); }

 private:
  void note(const char* what, QORuint32 number) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _notes.push_back(what + std::string(_classes.at(number).name.view()));
  }

  std::vector<CimClassDeclaration> _classes;
  std::map<QORuint32, bool> _damaged;
  std::map<QORuint32, bool> _lost;
  std::map<QORuint32, CimClassDeclaration> _changed;
  std::mutex _mutex;
  std::vector<std::string> _notes;
};

class LaterClassLoads : public EmbeddedTest {
 protected:
  static std::vector<CimClassDeclaration> model() {
    return {classOf("L_Base", "", {property("K", CQoriType::string, {flag("Key")})}, {flag("Abstract", false)}),
            classOf("L_Part", "l_base", {property("N", CQoriType::uint32, {}, number(7, CQoriType::uint32))}),
            classOf("L_Link", "", {refer("From", "L_Part"), refer("To", "L_Part")}, {flag("Association")}),
            classOf("L_Fast", "L_Part", {property("Speed", CQoriType::uint64)}),
            classOf("L_Other", "L_Base", {property("Text", CQoriType::string)})};
  }
  static std::vector<CimClassHeading> headings() {
    return {{kLater, "L_Base", CimClassHeading::kNoSuperClass},
            {kLater, "L_Part", 0},
            {kLater, "L_Link", CimClassHeading::kNoSuperClass},
            {kLater, "L_Fast", 1},
            {kLater, "L_Other", 0}};
  }
  bool declareLater(const std::vector<CimClassHeading>& list = headings()) {
    source = std::make_shared<CountedSource>(model());
    return sink().declareClasses(list, source);
  }
  void load() {
    sink().begin();
    sink().createNamespace(kLater);
    ASSERT_TRUE(declareLater());
    sink().commit();
  }
  QORSmrPtr<IQoriClass> find(const char* className) const { return manager.repository()->getClass(kLater, className); }
  // The refusal of headings, after which there is nothing of them.
  std::string refusalOf(const std::vector<CimClassHeading>& list, QORuint32 code) {
    sink().begin();
    sink().createNamespace(kLater);
    const std::string told = refusal([&] { declareLater(list); }, code);
    sink().rollback();
    EXPECT_THAT(manager.classNames(kLater), IsEmpty());
    return told;
  }

  std::shared_ptr<CountedSource> source;
};

TEST_F(LaterClassLoads, NamesAreThereWithoutReadingAnything) {
  load();
  EXPECT_THAT(manager.classNames(kLater), ElementsAre("L_Base", "L_Part", "L_Link", "L_Fast", "L_Other"));
  EXPECT_TRUE(find("L_None").IsNull());
  EXPECT_STREQ("L_Base", manager.superClassName(kLater, "l_part").c_str());
  EXPECT_FALSE(manager.superClassName(kLater, "L_Base").isNull());
  EXPECT_TRUE(manager.superClassName(kLater, "L_Base").isEmpty());
  EXPECT_TRUE(manager.superClassName(kLater, "L_None").isNull());
  EXPECT_THAT(source->takeNotes(), IsEmpty());
}

TEST_F(LaterClassLoads, AClassIsReadOnceWithItsSuperclasses) {
  load();
  const QORSmrPtr<IQoriClass> fast = find("l_FAST");
  ASSERT_FALSE(fast.IsNull());
  EXPECT_THAT(source->takeNotes(), ElementsAre("read L_Base", "read L_Part", "read L_Fast"));
  EXPECT_STREQ("L_Fast", fast->getClassName().c_str());
  EXPECT_STREQ("L_Part", fast->getSuperClassName().c_str());
  EXPECT_NE(nullptr, fast->getProperty("k", true));
  EXPECT_EQ(fast.Get(), find("L_Fast").Get());
  EXPECT_STREQ("L_Base", find("L_Part")->getSuperClassName().c_str()) << "as the superclass writes itself";
  EXPECT_THAT(source->takeNotes(), IsEmpty());
  EXPECT_FALSE(find("L_Other").IsNull());
  EXPECT_THAT(source->takeNotes(), ElementsAre("read L_Other"));
}

TEST_F(LaterClassLoads, TheyAreAsThoseThatWereDeclaredAtOnce) {
  load();
  sink().createNamespace("root/eager");
  for (const CimClassDeclaration& declaration : model()) sink().declareClass("root/eager", declaration);
  for (const QORString& name : manager.classNames("root/eager")) {
    EXPECT_EQ(manager.classMof("root/eager", name, true), manager.classMof(kLater, name, true));
    EXPECT_EQ(manager.allProperties("root/eager", name).size(), manager.allProperties(kLater, name).size());
    EXPECT_EQ(manager.isAssociation("root/eager", name), manager.isAssociation(kLater, name));
  }
  EXPECT_EQ(manager.classNames("root/eager"), manager.classNames(kLater));
}

TEST_F(LaterClassLoads, TheyTakeInstancesAndSubclassesAndSources) {
  load();
  EXPECT_THAT(paths(enumerate("L_Base", {}, kLater)), IsEmpty());
  sink().declareClass(kLater, classOf("L_New", "L_Fast", {property("More", CQoriType::uint8)}));
  sink().begin();
  const Name made = sink().createInstance(kLater, instanceOf("L_New", {{"K", text("a")}}));
  sink().commit();
  EXPECT_STREQ("root/later:L_New.K=\"a\"", made->toString().c_str());
  EXPECT_THAT(values(enumerate("L_Base", {}, kLater), "N"), ElementsAre("7"));
  EXPECT_EQ("instance of L_Base: the class is abstract",
            refusal(
                [&] {
                  sink().createInstance(kLater, instanceOf("L_Base", {{"K", text("b")}}));
                },
                kInvalidClass));
  EXPECT_EQ("class L_Part is declared already, with another declaration",
            refusal([&] { sink().declareClass(kLater, classOf("L_Part", "", {})); }, kAlreadyExists));
  EXPECT_NO_THROW(sink().declareClass(kLater, model()[1])) << "an equal declaration";
}

TEST_F(LaterClassLoads, WhatIsRolledBackIsForgotten) {
  const QORuint64 version = manager.repository()->getVersion();
  sink().begin();
  sink().createNamespace(kLater);
  ASSERT_TRUE(declareLater());
  EXPECT_THAT(manager.classNames(kLater), IsEmpty()) << "of a load that is open";
  EXPECT_FALSE(sink().findClass(kLater, "L_Fast").IsNull()) << "the loader sees it";
  EXPECT_TRUE(find("L_Fast").IsNull());
  sink().rollback();
  EXPECT_TRUE(sink().findClass(kLater, "L_Fast").IsNull());
  EXPECT_EQ(version, manager.repository()->getVersion());
  load();
  EXPECT_NE(version, manager.repository()->getVersion());
  EXPECT_FALSE(find("L_Fast").IsNull());
}

TEST_F(LaterClassLoads, OnlyTheFirstClassesOfANamespaceAreLeftForLater) {
  EXPECT_FALSE(declareLater()) << "no load is open";
  sink().begin();
  sink().createNamespace(kLater);
  sink().declareClass(kLater, classOf("L_First", "", {}));
  EXPECT_FALSE(declareLater());
  EXPECT_TRUE(sink().findClass(kLater, "L_Base").IsNull());
  sink().rollback();
}

TEST_F(LaterClassLoads, HeadingsThatContradictEachOtherAreRefused) {
  std::vector<CimClassHeading> list = headings();
  list.push_back({kLater, "l_fast", 1});
  EXPECT_EQ("class l_fast is declared already", refusalOf(list, kAlreadyExists));
  list = headings();
  list[1].superClass = 1;
  EXPECT_EQ("class L_Part: its superclass does not come before it", refusalOf(list, kInvalidSuperclass));
  list = headings();
  list[1].superClass = -3;
  EXPECT_EQ("class L_Part: its superclass does not come before it", refusalOf(list, kInvalidSuperclass));
  list = {{kLater, "", CimClassHeading::kNoSuperClass}};
  EXPECT_EQ("a class needs a name", refusalOf(list, kInvalidParameter));
  list = {{"root/none", "L_Base", CimClassHeading::kNoSuperClass}};
  EXPECT_EQ("namespace root/none does not exist", refusalOf(list, kInvalidNamespace));
  list = {{kLater, "L_0", CimClassHeading::kNoSuperClass}};
  for (int i = 1; i <= 501; ++i) list.push_back({kLater, QORString("L_" + std::to_string(i)), i - 1});
  EXPECT_EQ("class L_501: inheritance is nested too deeply", refusalOf(list, kInvalidSuperclass));
}

TEST_F(LaterClassLoads, ASuperclassOfAnotherNamespaceIsRefused) {
  sink().begin();
  sink().createNamespace(kLater);
  sink().createNamespace("root/beside");
  EXPECT_EQ("class L_Part: its superclass does not come before it",
            refusal(
                [&] {
                  declareLater({{"root/beside", "L_Base", CimClassHeading::kNoSuperClass}, {kLater, "L_Part", 0}});
                },
                kInvalidSuperclass));
  sink().rollback();
  EXPECT_THAT(manager.namespaces(), ElementsAre("root/cimv2"));
}

TEST_F(LaterClassLoads, WhatCannotBeReadComesFromElsewhere) {
  load();
  source->damage(1);
  source->change(3, classOf("L_Slow", "L_Part", {}));
  source->change(4, classOf("L_Other", "L_Link", {}));
  EXPECT_NE(nullptr, find("L_Fast")->getProperty("Speed", false));
  EXPECT_THAT(source->takeNotes(),
              ElementsAre("read L_Base", "read L_Part", "elsewhere L_Part", "read L_Fast", "elsewhere L_Fast"));
  EXPECT_STREQ("L_Base", find("L_Other")->getSuperClassName().c_str());
}

// Nothing of it is shown, and the next one who asks is told the same.
TEST_F(LaterClassLoads, WhatCannotBeReadAtAllIsRefusedEachTime) {
  load();
  source->damage(1);
  source->lose(1);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ("it is lost", refusal([&] { find("L_Part"); }, kFailed));
    EXPECT_EQ("it is lost", refusal([&] { find("L_Fast"); }, kFailed));
    EXPECT_EQ("it is lost", refusal([&] { manager.classMof(kLater, "L_Fast", true); }, kFailed));
  }
  EXPECT_FALSE(find("L_Other").IsNull());
  EXPECT_EQ(5U, manager.classNames(kLater).size());
}

// Declarations that a sink would refuse are no classes, wherever they come from.
TEST_F(LaterClassLoads, TheRulesOfClassesHold) {
  load();
  source->change(1, classOf("L_Part", "L_Base", {property("More", CQoriType::string, {flag("Key")})}));
  EXPECT_EQ(nullptr, find("L_Part")->getProperty("More", true));
  EXPECT_THAT(source->takeNotes(), ElementsAre("read L_Base", "read L_Part", "elsewhere L_Part"));
}

TEST_F(LaterClassLoads, ManyThreadsGetTheSameClasses) {
  constexpr int kClasses = 400;
  constexpr int kThreads = 4;
  std::vector<CimClassDeclaration> classes{classOf("L_0", "", {property("K", CQoriType::string, {flag("Key")})})};
  std::vector<CimClassHeading> list{{kLater, "L_0", CimClassHeading::kNoSuperClass}};
  for (int i = 1; i < kClasses; ++i) {
    const std::string name = "L_" + std::to_string(i);
    const int above = (i - 1) / 2;
    classes.push_back(classOf(name.c_str(), ("L_" + std::to_string(above)).c_str(),
                              {property(("P" + std::to_string(i)).c_str(), CQoriType::uint32)}));
    list.push_back({kLater, QORString(name), above});
  }
  source = std::make_shared<CountedSource>(classes);
  sink().begin();
  sink().createNamespace(kLater);
  ASSERT_TRUE(sink().declareClasses(list, source));
  sink().commit();
  std::vector<std::vector<QORSmrPtr<IQoriClass>>> found(kThreads);
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int i = 0; i < kClasses; ++i) {
        const int number = thread % 2 == 0 ? i : kClasses - 1 - i;
        const std::string name = "L_" + std::to_string(number);
        found[static_cast<std::size_t>(thread)].push_back(find(name.c_str()));
        if (i % 16 != 0) continue;
        wrong += manager.classNames(kLater).size() >= static_cast<std::size_t>(kClasses) ? 0 : 1;
        wrong += enumerate(name.c_str(), names({"K"}), kLater).IsNull() ? 1 : 0;
        wrong += manager.classMof(kLater, QORString(name), true).isEmpty() ? 1 : 0;
      }
    });
  }
  for (int i = 0; i < 50; ++i) {
    const std::string name = "L_" + std::to_string(kClasses + i);
    sink().declareClass(kLater, classOf(name.c_str(), ("L_" + std::to_string(7 * i)).c_str(), {}));
    sink().begin();
    sink().createInstance(kLater, instanceOf(name.c_str(), {{"K", text(name.c_str())}}));
    sink().commit();
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0, wrong);
  EXPECT_EQ(static_cast<std::size_t>(kClasses), source->takeNotes().size()) << "each is read once";
  for (std::size_t i = 0; i < static_cast<std::size_t>(kClasses); ++i) {
    const IQoriClass* const first = found[0][i].Get();
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(first, found[2][i].Get());
    EXPECT_EQ(first, found[1][static_cast<std::size_t>(kClasses) - 1 - i].Get());
    EXPECT_EQ(first, found[3][static_cast<std::size_t>(kClasses) - 1 - i].Get());
  }
  EXPECT_EQ(50U, enumerate("L_0", names({"K"}), kLater)->entries());
}

}  // namespace
