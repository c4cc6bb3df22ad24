// Plain instances are read into rows; nobody must be able to tell.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofRowReader.h"
#include "MofFixture.h"

using namespace moftest;
using testing::ElementsAre;

namespace {

constexpr std::size_t kNone = std::string_view::npos;

// Whether the text of one instance is plain.
bool isPlain(const std::string& text) {
  const MofSource source("test.mof", text);
  MofRows rows;
  MofRow row;
  return MofRowReader(source, rows).read(0, "root/cimv2", row) != kNone;
}

bool isPlainValue(const std::string& value) { return isPlain("instance of T { P = " + value + "; };"); }

TEST(MofRowReader, ReadsPlainInstances) {
  EXPECT_TRUE(isPlain("instance of T { };"));
  EXPECT_TRUE(isPlain("INSTANCE\n\tOF T{A=1;B=\"x\";}\r\n;"));
  for (const char* const value : {"0", "7", "-7", "123456789012345678", "1.5", "-0.25", "01.5", "true", "FALSE", "Null",
                                  "\"\"", "\"a \\\" b\"", "\"\xC3\xA4\"", "{}", "{ 1 , NULL }", "{\"a\",\"b\"}"}) {
    EXPECT_TRUE(isPlainValue(value)) << value;
  }
}

TEST(MofRowReader, LeavesEverythingElseToTheParser) {
  for (const char* const text :
       {"instance of T as $a { };", "instance of /* */ T { };", "instance of T { [Key] A = 1; };", "instance of T { }",
        "instance of T { A = 1 };", "instance T { };", "instance of T { A 1; };", "instance of T { A = 1;", "instance",
        "instance of T\xC3\xA4 { };", "instance of T { A\xC3\xA4 = 1; };"}) {
    EXPECT_FALSE(isPlain(text)) << text;
  }
  for (const char* const value : {"017",      "0x1F",
                                  "101b",     "1e3",
                                  "1.5e3",    "+1",
                                  "-0",       "1.5.2",
                                  "12a",      "1234567890123456789",
                                  "$a",       "'c'",
                                  "trues",    "\"a\" \"b\"",
                                  "\"a\nb\"", "\"\\q\"",
                                  "\"\xFF\"", "\"open",
                                  "\"open\\", "{{1}}",
                                  "{1 2}",    "{1,",
                                  "{,}",      "instance of T { }",
                                  "",         "-",
                                  ".5",       "true\xC3\xA4",
                                  "1\xC3\xA4"}) {
    EXPECT_FALSE(isPlainValue(value)) << value;
  }
}

TEST(MofRowReader, InstancesThatAreWrittenAlikeShareAForm) {
  const std::string text =
      "instance of T { A = 1; };instance of T { A = \"\"; };instance of T { B = 1; };"
      "instance of U { A = 1; };instance of T { A = 2; };";
  const MofSource source("test.mof", text);
  MofRows rows;
  MofRowReader reader(source, rows);
  std::vector<QORuint32> forms;
  MofRow row;
  for (std::size_t at = 0; at < text.size();) {
    at = reader.read(at, "root/cimv2", row);
    forms.push_back(row.form);
  }
  EXPECT_THAT(forms, ElementsAre(0, 0, 1, 2, 0));
  reader.read(0, "root/other", row);
  EXPECT_EQ(3U, row.form);
}

TEST(MofRows, AreNotMadeOfTooManyForms) {
  MofRows rows;
  for (std::size_t i = 0; i < MofRows::kMaximumForms; ++i) {
    EXPECT_EQ(i, rows.form("root/cimv2", "T" + std::to_string(i), {}));
  }
  EXPECT_EQ(MofRows::kMaximumForms, rows.form("root/cimv2", "One", {"More"}));
  EXPECT_EQ(5U, rows.form("root/cimv2", "T5", {}));
}

TEST(MofRows, KeepCellsUntilTheyAreReleased) {
  MofRows rows;
  std::vector<std::string_view> kept;
  for (std::size_t i = 0; i < 3000; ++i)
    kept.push_back(rows.keep(std::string(i % 200, static_cast<char>('a' + i % 26))));
  kept.push_back(rows.keep(std::string(200000, 'x')));
  kept.push_back(rows.keep("last"));
  for (std::size_t i = 0; i < kept.size(); ++i) {
    rows.releaseBefore(kept[i]);
    if (i >= 3000) continue;
    ASSERT_EQ(std::string(i % 200, static_cast<char>('a' + i % 26)), kept[i]);
  }
  EXPECT_EQ("last", kept.back());
}

// The same text with a comment that makes no instance plain, and that moves nothing before it.
std::string withoutRows(std::string text) {
  for (std::size_t end = text.find("};"); end != kNone; end = text.find("};", end + 6)) text.insert(end + 1, "/**/");
  return text;
}

class MofRowLoads : public MofTest {
 protected:
  // What a load makes: the faults, or the instances of T with all they hold.
  static std::string outcomeOf(const std::string& text, bool isLenient) {
    EmbeddedObjectManager manager;
    MofLoader loader(manager.sink());
    loader.setLenient(isLenient);
    std::string outcome;
    try {
      loader.loadText(text, "test.mof");
    } catch (const MofException& refusal) {
      for (const MofDiagnostic& fault : refusal.getDiagnostics()) outcome += place(fault) + '\n';
      return outcome;
    }
    for (const MofDiagnostic& fault : loader.getFaults().shown) outcome += place(fault) + '\n';
    const QORSmrPtr<QORValSlist<Object>> list = manager.ownInstances("root/cimv2", "T", {});
    if (list.IsNull()) return outcome + "no class";
    QORValSlistIterator<Object> each(*list);
    while (++each) outcome += std::string(EmbeddedObjectManager::instanceMof(*each.key()).view()) + '\n';
    return outcome;
  }
  static void expectSame(const std::string& text) {
    for (const bool isLenient : {false, true}) {
      EXPECT_EQ(outcomeOf(withoutRows(text), isLenient), outcomeOf(text, isLenient)) << text;
    }
  }
};

constexpr const char* kTypes[] = {"uint8",    "sint8",     "uint16",   "sint16",  "uint32",   "sint32",
                                  "uint64",   "sint64",    "real32",   "real64",  "boolean",  "string",
                                  "datetime", "char16",    "T ref",    "uint8[]", "string[]", "datetime[]",
                                  "uint8[2]", "boolean[]", "real64[]", "sint8[]"};
constexpr const char* kValues[] = {"0",
                                   "-0",
                                   "1",
                                   "-1",
                                   "127",
                                   "128",
                                   "-128",
                                   "-129",
                                   "255",
                                   "256",
                                   "65535",
                                   "65536",
                                   "4294967296",
                                   "9223372036854775807",
                                   "9223372036854775808",
                                   "18446744073709551615",
                                   "18446744073709551616",
                                   "017",
                                   "0x7F",
                                   "11b",
                                   "1.5",
                                   "-1.5",
                                   "1.0",
                                   "3.5e38",
                                   "400000000000000000000000000000000000000.0",
                                   "true",
                                   "FALSE",
                                   "NULL",
                                   "\"\"",
                                   "\"text\"",
                                   "\"a\\tb\\\\\"",
                                   "\"\xC3\xA4\"",
                                   "\"a\" \"b\"",
                                   "\"20200101000000.000000+000\"",
                                   "\"20201301000000.000000+000\"",
                                   "'c'",
                                   "\"T.K=\\\"a\\\"\"",
                                   "{}",
                                   "{1}",
                                   "{1, 2}",
                                   "{1, 2, 3}",
                                   "{300}",
                                   "{-1}",
                                   "{\"a\", NULL}",
                                   "{NULL}",
                                   "{true}",
                                   "{1.5}",
                                   "{\"20200101000000.000000+000\"}",
                                   "{\"2020\"}"};

TEST_F(MofRowLoads, EveryValueForEveryTypeIsTakenOrRefusedAlike) {
  for (const std::string type : kTypes) {
    const std::size_t bracket = type.find('[');
    const std::string declared = type.substr(0, bracket) + " P" + (bracket == kNone ? "" : type.substr(bracket));
    for (const char* const value : kValues) {
      expectSame("[Association] class T { [Key] string K; " + declared + "; string Q = \"default\"; };\n" +
                 "instance of T { K = \"a\"; P = " + value + "; };\ninstance of T { P = " + value + "; k = \"b\"; };");
    }
  }
}

TEST_F(MofRowLoads, FaultsAreToldAlike) {
  const std::string declared = "class T { [Key] string K; uint8 P = 3; }; class Base { [Key] uint32 K; };\n";
  for (const char* const instances :
       {"instance of T { K = \"a\"; };\ninstance of T { K = \"b\"; };\ninstance of T { K = \"a\"; };",
        "instance of None { K = 1; };\ninstance of T { K = \"a\"; };", "instance of T { K = \"a\"; Q = 1; };",
        "instance of T { K = \"a\"; P = 1; p = 2; };", "instance of T { P = 1; };", "instance of T { K = NULL; };",
        "instance of T { K = \"a\"; P = 1; }\ninstance of T { K = \"b\"; };",
        "instance of T { K = \"a\" P = 1; };\ninstance of T { K = \"b\"; };",
        "instance of T { K = \"a\"; P = {1}; };\ninstance of T { K = 7; };",
        "instance of T { K = \"a; P = 1; };\ninstance of T { K = \"b\"; };",
        "#pragma namespace(\"root/other\")\ninstance of T { K = \"a\"; };",
        "instance of T as $a { K = \"a\"; };\ninstance of T { K = \"b\"; };\ninstance of T as $a { K = \"a\"; };"}) {
    expectSame(declared + instances);
  }
}

TEST_F(MofRowLoads, ADuplicateNamesThePlaceOfARow) {
  load("class T { [Key] string K; };");
  EXPECT_EQ("3:13: instance root/cimv2:T.K=\"a\" exists already, declared at test.mof:1:13",
            faultOf("instance of T { K = \"a\"; };\ninstance of T { K = \"b\"; };\ninstance of T { K = \"a\"; };"));
}

TEST_F(MofRowLoads, OrderIsThatOfTheText) {
  load(
      "instance of T { K = \"1\"; };\ninstance of /* no row */ T { K = \"2\"; };\ninstance of T { K = \"3\"; };\n"
      "class T { [Key] string K; };");
  std::vector<std::string> keys;
  for (const Object& object : instancesOf("T")) keys.emplace_back(valueOf(object, "K")->toString().view());
  EXPECT_THAT(keys, ElementsAre("1", "2", "3"));
}

}  // namespace
