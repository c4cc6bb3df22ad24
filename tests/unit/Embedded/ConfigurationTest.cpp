// Settings from INI files and from calls, as the configuration service shows them.
// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "EmbeddedFixture.h"
#include "cimom/ZEMOConfigManager.h"

using namespace embeddedtest;

namespace {

class Configurations : public ::testing::Test {
 protected:
  Configurations() : path(testing::TempDir() + "qorql-configuration-" + std::to_string(::getpid()) + ".ini") {
    manager.makeCurrent();
  }
  ~Configurations() override { std::remove(path.c_str()); }

  void write(const std::string& text) { std::ofstream(path, std::ios::binary) << text; }
  void load(const std::string& text) {
    write(text);
    manager.loadConfiguration(path);
  }
  std::string refusedFile(const std::string& text) {
    write(text);
    return refusal([&] { manager.loadConfiguration(path); }, 1, "CIM_Configuration");
  }
  static std::string get(const char* section, const char* key) {
    QORString value("not set by the call");
    ZEMOConfigManager::getInstance()->getString(section, key, value);
    return value.c_str();
  }

  const std::string path;
  EmbeddedObjectManager manager;
};

TEST_F(Configurations, SectionsAndKeysIgnoreCase) {
  load("[ZEMO]\nDisablePreFilter = TRUE\n[Other]\nDisablePreFilter=no\n");
  EXPECT_EQ("TRUE", get("zemo", "DISABLEPREFILTER"));
  EXPECT_EQ("no", get("OTHER", "disableprefilter"));
}

TEST_F(Configurations, WhatIsNotSetIsEmpty) {
  load("[A]\nk=v\n");
  EXPECT_EQ("", get("A", "other"));
  EXPECT_EQ("", get("B", "k"));
  EXPECT_EQ("", get("", ""));
}

TEST_F(Configurations, CommentsBlankLinesAndIndentationAreAccepted) {
  load("; comment\n# comment\n\n  [A]\r\n   one = 1\r\n\ttwo = 2 ; inline\n  three: 3");
  EXPECT_EQ("1", get("A", "one"));
  EXPECT_EQ("2", get("A", "two"));
  EXPECT_EQ("3", get("A", "three"));
}

TEST_F(Configurations, KeysBeforeAnySectionBelongToTheEmptySection) {
  load("k = v\n[A]\nk = w\n");
  EXPECT_EQ("v", get("", "k"));
}

TEST_F(Configurations, LaterSettingsReplaceEarlierOnes) {
  load("[A]\nk=1\nK=2\nj=1\n");
  EXPECT_EQ("2", get("A", "k"));
  load("[a]\nk=3\n");
  EXPECT_EQ("3", get("A", "K"));
  EXPECT_EQ("1", get("A", "j"));
  manager.setConfiguration("A", "k", "4");
  EXPECT_EQ("4", get("a", "k"));
}

TEST_F(Configurations, AFaultyLineIsNamedAndNothingIsTaken) {
  EXPECT_EQ(path + ":3: neither a section nor a key with a value", refusedFile("[A]\nk=1\nnonsense\n"));
  EXPECT_EQ("", get("A", "k"));
  EXPECT_EQ(path + ":2: neither a section nor a key with a value", refusedFile("k=1\n[A\n"));
}

TEST_F(Configurations, LinesThatWouldBeCutAreRefused) {
  const std::string fits(197 - 2, 'x');
  load("[A]\nk=" + fits + "\n");
  EXPECT_EQ(fits, get("A", "k"));
  EXPECT_EQ(path + ":2: the line is longer than 197 bytes", refusedFile("[A]\nk=" + fits + "x\n"));
  EXPECT_EQ(path + ":2: the line contains a zero byte", refusedFile(std::string("[A]\nk=1\0000\n", 9)));
}

TEST_F(Configurations, AnEmptyFileSetsNothing) {
  load("");
  EXPECT_EQ("", get("A", "k"));
}

TEST_F(Configurations, AFileWithoutAnEndIsRefused) {
  EXPECT_EQ("configuration file /dev/zero is larger than 16 MB",
            refusal([&] { manager.loadConfiguration("/dev/zero"); }, 1, "CIM_Configuration"));
  EXPECT_EQ("cannot read configuration file /proc/self/mem",
            refusal([&] { manager.loadConfiguration("/proc/self/mem"); }, 1, "CIM_Configuration"));
}

TEST_F(Configurations, AFileThatCannotBeReadIsNamed) {
  EXPECT_EQ("cannot read configuration file /no/such/file.ini",
            refusal([&] { manager.loadConfiguration("/no/such/file.ini"); }, 1, "CIM_Configuration"));
  EXPECT_EQ("cannot read configuration file /tmp",
            refusal([&] { manager.loadConfiguration("/tmp"); }, 1, "CIM_Configuration"));
}

}  // namespace
