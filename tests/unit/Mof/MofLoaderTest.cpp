// Loading as a whole: files, folders, includes, namespaces, transactions.
// SPDX-License-Identifier: Apache-2.0
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "Cimom/Mof/MofInput.h"
#include "MofFixture.h"

namespace {

namespace fs = std::filesystem;
using moftest::MofTest;
using moftest::Object;

class MofLoad : public MofTest {
 protected:
  MofLoad() {
    std::string pattern = (fs::temp_directory_path() / "mofXXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    _folder = pattern;
  }
  ~MofLoad() override { fs::remove_all(_folder); }

  std::string write(const std::string& name, const std::string& text) {
    const fs::path path = _folder / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return path.string();
  }
  void loadFiles(const std::vector<std::string>& paths) { MofLoader(_manager.sink()).loadFiles(paths); }
  std::vector<std::string> refusals(const std::vector<std::string>& paths) {
    try {
      loadFiles(paths);
    } catch (const MofException& refusal) {
      std::vector<std::string> found;
      for (const MofDiagnostic& fault : refusal.getDiagnostics()) {
        found.push_back(fs::path(fault.file).lexically_relative(_folder).string() + ':' + place(fault));
      }
      return found;
    }
    return {};
  }

  fs::path _folder;
};

using ::testing::ElementsAre;

TEST_F(MofLoad, ReadsIncludesRelativeToTheirFile) {
  write("classes/base.mof", "#pragma include (\"../deep/more.mof\")\nclass Base { [Key] string K; };");
  write("deep/more.mof", "class More : Base { };");
  const std::string main = write("main.mof",
                                 "#pragma locale(\"en_US\")\n#pragma include (\"classes/base.mof\")\n"
                                 "#pragma something (\"else\")\ninstance of More { K = \"a\"; };");
  loadFiles({main});
  EXPECT_EQ(instancesOf("Base").size(), 1U);
}

TEST_F(MofLoad, ReadsAnIncludeInItsPlace) {
  write("one.mof", "instance of T { K = \"1\"; };");
  loadFiles({write("main.mof",
                   "class T { [Key] string K; };\ninstance of T { K = \"0\"; };\n#pragma include (\"one.mof\")\n"
                   "instance of T { K = \"2\"; };")});
  const auto instances = instancesOf("T");
  ASSERT_EQ(instances.size(), 3U);
  EXPECT_EQ(textOf(instances[1], "K"), "1");
}

TEST_F(MofLoad, ReadsAFileOnceThatSeveralInclude) {
  write("base.mof", "class T { [Key] string K; T2 REF R; };\n");
  write("disk.mof", "class T { [Key] string K; };\ninstance of T as $base { K = \"a\"; };");
  write("x.mof",
        "#pragma include (\"disk.mof\")\n[Association] class X { [Key] T REF R; }; instance of X { R = $base; };");
  write("y.mof",
        "#pragma include (\"./disk.mof\")\n[Association] class Y { [Key] T REF R; }; instance of Y { R = $base; };");
  loadFiles({(_folder / "x.mof").string(), (_folder / "y.mof").string()});
  EXPECT_EQ(instancesOf("T").size(), 1U);
  EXPECT_EQ(textOf(instancesOf("Y").at(0), "R"), "root/cimv2:T.K=\"a\"");
}

TEST_F(MofLoad, ReadsAnIncludeOnceForEachNamespace) {
  write("part.mof", "instance of T as $t { K = \"p\"; };\n");
  write("schema.mof",
        "class T { [Key] string K; };\n[Association] class L { [Key] T REF R; };\n#pragma include (\"part.mof\")\n"
        "instance of L { R = $t; };\n");
  const std::string main =
      write("main.mof",
            "#pragma namespace (\"interop\")\n#pragma include (\"schema.mof\")\n#pragma include (\"schema.mof\")\n"
            "#pragma namespace (\"root/device\")\n#pragma include (\"part.mof\")\n#pragma include (\"schema.mof\")\n");
  MofLoader loader(_manager.sink());
  loader.setNotesInputs(true);
  loader.loadFile(main);
  EXPECT_EQ(loader.getInputs().size(), 3U);
  for (const char* const nameSpace : {"interop", "root/device"}) {
    EXPECT_EQ(instancesOf("T", nameSpace).size(), 1U);
    const auto links = instancesOf("L", nameSpace);
    ASSERT_EQ(links.size(), 1U);
    EXPECT_EQ(textOf(links[0], "R"), std::string(nameSpace) + ":T.K=\"p\"");
  }
}

TEST_F(MofLoad, AnIncludeOfOthersThatAreReadIsReadForAnotherNamespace) {
  write("part.mof", "class T { [Key] string K; };\n");
  write("all.mof", "#pragma include (\"part.mof\")\n");
  loadFiles({write("main.mof",
                   "#pragma namespace (\"root/a\")\n#pragma include (\"part.mof\")\n#pragma include (\"all.mof\")\n"
                   "#pragma namespace (\"root/b\")\n#pragma include (\"all.mof\")\ninstance of T { K = \"b\"; };\n")});
  EXPECT_EQ(instancesOf("T", "root/b").size(), 1U);
}

TEST_F(MofLoad, AnIncludeThatNamesItsNamespaceFirstIsReadOnce) {
  write("own.mof", "#pragma namespace (\"root/own\")\nclass T { [Key] string K; };\ninstance of T { K = \"1\"; };\n");
  write("outer.mof", "#pragma include (\"own.mof\")\ninstance of T { K = \"2\"; };\n");
  loadFiles({write("main.mof",
                   "#pragma include (\"outer.mof\")\n#pragma namespace (\"root/x\")\n#pragma include (\"own.mof\")\n"
                   "#pragma include (\"outer.mof\")\n")});
  EXPECT_EQ(instancesOf("T", "root/own").size(), 2U);
}

TEST_F(MofLoad, AnIncludeThatNamesItsNamespaceLaterIsNotReadForThatOneAgain) {
  write("late.mof",
        "class A { [Key] string K; };\n#pragma namespace (\"root/own\")\nclass T { [Key] string K; };\n"
        "instance of T { K = \"1\"; };\n");
  loadFiles({write("main.mof", "#pragma include (\"late.mof\")\n#pragma include (\"late.mof\")\n")});
  EXPECT_EQ(instancesOf("T", "root/own").size(), 1U);
}

TEST_F(MofLoad, FaultsOfAFileThatIsReadTwiceAreToldOnce) {
  write("part.mof", "class T { [Key] string K; };\nklass;\n");
  const std::string main =
      write("main.mof",
            "#pragma namespace (\"root/a\")\n#pragma include (\"part.mof\")\n#pragma namespace (\"root/b\")\n"
            "#pragma include (\"part.mof\")\n");
  EXPECT_EQ(refusals({main}).size(), 1U);
}

TEST_F(MofLoad, TellsOfAnUndeclaredClassInEachNamespace) {
  const std::string main =
      write("main.mof", "instance of T { };\ninstance of T { };\n#pragma namespace (\"root/b\")\ninstance of T { };\n");
  EXPECT_THAT(refusals({main}),
              ElementsAre("main.mof:1:13: class T is not declared in namespace root/cimv2 (first of 2 places)",
                          "main.mof:4:13: class T is not declared in namespace root/b"));
}

TEST_F(MofLoad, DeclaredAlreadyNamesTheFile) {
  const std::string a = write("a.mof", "\n  class T { };\n");
  const std::string b = write("b.mof", "class T { uint8 A; };\n");
  EXPECT_THAT(refusals({a, b}),
              ElementsAre("b.mof:1:7: class T is declared already, with another declaration, at " + a + ":2:9"));
}

TEST_F(MofLoad, AliasesBelongToAFileAndItsIncludes) {
  write("part.mof", "instance of T as $inner { K = \"i\"; };\ninstance of L { R = $outer; };");
  const std::string a = write("a.mof",
                              "class T { [Key] string K; };\n[Association] class L { [Key] T REF R; };\n"
                              "instance of T as $outer { K = \"o\"; };\n#pragma include (\"part.mof\")\n"
                              "instance of L { R = $inner; };");
  const std::string b = write("b.mof", "instance of T as $outer { K = \"b\"; };");
  loadFiles({a, b});
  EXPECT_EQ(textOf(instancesOf("L").at(0), "R"), "root/cimv2:T.K=\"o\"");
  const std::string c = write("c.mof", "instance of L { R = $outer; };");
  EXPECT_THAT(refusals({b, c}), ::testing::Contains("c.mof:1:21: unknown alias $outer"));
}

TEST_F(MofLoad, LoadsEveryMofOfAFolderInTheOrderOfNames) {
  write("all/2.mof", "instance of T { K = \"2\"; };");
  write("all/1.MOF", "instance of T { K = \"1\"; };");
  write("all/z.mof", "class T { [Key] string K; };");
  write("all/readme.txt", "not MOF");
  loadFiles({(_folder / "all").string()});
  const auto instances = instancesOf("T");
  ASSERT_EQ(instances.size(), 2U);
  EXPECT_EQ(textOf(instances[0], "K"), "1");
}

// Files of the kernel's own tell a size of 0.
TEST_F(MofLoad, ReadsAPlainFileWhoseSizeIsNotTold) {
  char before[16] = {};
  ASSERT_EQ(prctl(PR_GET_NAME, before), 0);
  ASSERT_EQ(prctl(PR_SET_NAME, "class Told {};"), 0);
  loadFiles({"/proc/thread-self/comm"});
  prctl(PR_SET_NAME, before);
  EXPECT_THAT(_manager.classNames("root/cimv2"), ElementsAre(QORString("Told")));
}

// The space that a string, a list of qualifiers or of elements takes while it is read serves the next one.
TEST_F(MofLoad, ListsInsideListsAndAfterFaultsAreReadWhole) {
  const std::string main =
      write("main.mof",
            "class In { [Key] string K; string L[]; };\n"
            "class Out { [Key] string K; [EmbeddedInstance(\"In\")] string Many[]; };\n"
            "instance of Out { K = \"o\"; Many = {instance of In { K = \"1\"; L = {\"a\", \"b\"}; },\n"
            "  instance of In { K = \"2\"; L = {\"a long one that \" \"has two parts\"}; }}; };");
  loadFiles({main});
  const auto outs = instancesOf("Out");
  ASSERT_EQ(outs.size(), 1U);
  const auto many = valueOf(outs[0], "Many")->getArray();
  ASSERT_EQ(many->entries(), 2U);
  EXPECT_THAT(refusals({write("bad.mof",
                              "[Description(\"x\"), Values{\"1\", 2 3}]\nclass Bad { };\n"
                              "[Values{\"4\"}]\nclass Bad { uint9 x; };")}),
              ::testing::SizeIs(2));
}

TEST_F(MofLoad, TellsOfFilesThatCannotBeRead) {
  const std::string main =
      write("main.mof", "class A { };\n  #pragma include (\"no.mof\")\nclass B : Unknown { uint9 x; };");
  const auto found = refusals({main});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0], "main.mof:2:20: cannot read " + (_folder / "no.mof").string() + ": there is no such file");
  EXPECT_THAT(refusals({(_folder / "gone.mof").string()}),
              ElementsAre("gone.mof:0:0: cannot be read: there is no such file"));
  fs::create_directory(_folder / "empty");
  EXPECT_THAT(refusals({(_folder / "empty").string()}), ElementsAre("empty:0:0: the folder holds no .mof file"));
  write("sub/x.mof", "#pragma include (\"..\")");
  EXPECT_THAT(refusals({(_folder / "sub/x.mof").string()}),
              ElementsAre(::testing::AllOf(::testing::StartsWith("sub/x.mof:1:18: cannot read"),
                                           ::testing::EndsWith("it is a folder"))));
}

// What has no size and no place to go back to: the text is all that comes until the writer closes.
TEST_F(MofLoad, ReadsAPipe) {
  const std::string pipe = (_folder / "pipe.mof").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::string text = std::string(10000, ' ') + "class Piped { [Key] string K; };";
  std::jthread writer([&] { std::ofstream(pipe) << text; });
  loadFiles({pipe});
  EXPECT_THAT(_manager.classNames("root/cimv2"), ElementsAre(QORString("Piped")));
}

// The first piece of a file is read apart from the rest, whose size is asked for.
TEST_F(MofLoad, ReadsFilesOfAnySizeToTheirEnd) {
  constexpr std::size_t kPiece = 64U << 10U;
  for (const std::size_t size : {kPiece - 1, kPiece, kPiece + 1, 2 * kPiece, 5 * kPiece + 7}) {
    const std::string name = "Of" + std::to_string(size);
    const std::string end = "class " + name + " { };";
    const std::string path = write("sized.mof", std::string(size - end.size(), '\n') + end);
    std::string text = "what was there before";
    EXPECT_EQ(readMofFile(path, text), "");
    EXPECT_EQ(text.size(), size);
    EXPECT_TRUE(text.ends_with("\n" + end));
    loadFiles({path});
    EXPECT_FALSE(_manager.sink().findClass("root/cimv2", QORString(name)).IsNull());
  }
}

TEST_F(MofLoad, ReadsALongPipeToItsEnd) {
  const std::string pipe = (_folder / "pipe.mof").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::string written = std::string(200000, ' ') + "class Piped { [Key] string K; };";
  std::jthread writer([&] { std::ofstream(pipe) << written; });
  std::string text;
  EXPECT_EQ(readMofFile(pipe, text), "");
  EXPECT_TRUE(text == written);
}

TEST_F(MofLoad, NotesWhatItReadsOnlyWhenAsked) {
  const std::string path = write("a.mof", "class A { };");
  const fs::file_time_type changed = fs::last_write_time(path) - std::chrono::nanoseconds(1234567891);
  fs::last_write_time(path, changed);
  MofLoader loader(_manager.sink());
  loader.loadFile(_folder.string());
  EXPECT_TRUE(loader.getInputs().empty());
  loader.setNotesInputs(true);
  loader.loadFile(_folder.string());
  ASSERT_EQ(loader.getInputs().size(), 2U);
  EXPECT_TRUE(loader.getInputs()[0].isFolder);
  EXPECT_EQ(loader.getInputs()[1].path, path);
  EXPECT_EQ(loader.getInputs()[1].size, 12U);
  EXPECT_EQ(loader.getInputs()[1].modified, changed.time_since_epoch().count());
}

TEST_F(MofLoad, TellsWhyAFileDoesNotOpen) {
  std::string text;
  EXPECT_EQ(readMofFile((_folder / "gone").string(), text), "there is no such file");
  EXPECT_EQ(readMofFile(write("a.mof", "") + "/b.mof", text), "there is no such file");
  EXPECT_EQ(readMofFile(_folder.string(), text), "it is a folder");
  EXPECT_EQ(readMofFile(std::string(300, 'a'), text), "File name too long");
  fs::create_symlink("loop", _folder / "loop");
  EXPECT_EQ(readMofFile((_folder / "loop").string(), text), "Too many levels of symbolic links");
}

// A file of the system that opens and then refuses to be read from its start.
TEST_F(MofLoad, TellsOfAFileThatOpensAndCannotBeRead) {
  std::string text;
  EXPECT_EQ(readMofFile("/proc/self/mem", text), "reading it fails");
}

TEST_F(MofLoad, TellsOfIncludeLoops) {
  write("a.mof", "#pragma include (\"b.mof\")");
  write("b.mof", "\n#pragma include (\"./sub/../a.mof\")");
  fs::create_directory(_folder / "sub");
  EXPECT_THAT(refusals({(_folder / "a.mof").string()}),
              ElementsAre("b.mof:2:18: include loop: a.mof includes b.mof includes a.mof"));
  write("self.mof", "#pragma include (\"self.mof\")");
  EXPECT_THAT(refusals({(_folder / "self.mof").string()}),
              ElementsAre("self.mof:1:18: include loop: self.mof includes self.mof"));
}

TEST_F(MofLoad, BoundsTheDepthOfIncludes) {
  for (int i = 0; i < 70; ++i) {
    write(std::to_string(i) + ".mof", "#pragma include (\"" + std::to_string(i + 1) + ".mof\")");
  }
  EXPECT_THAT(refusals({(_folder / "0.mof").string()}),
              ElementsAre("63.mof:1:18: includes nested too deeply: more than 64 files"));
}

TEST_F(MofLoad, RefusesWhatIsNoText) {
  EXPECT_THAT(refusals({write("binary.mof", std::string("\x7F"
                                                        "ELF\x02\x01\x01\0\0\0",
                                                        10))}),
              ElementsAre("binary.mof:0:0: this is not text: it contains zero bytes"));
}

TEST_F(MofLoad, NamespacePragmasHoldToTheEndOfTheOutermostFile) {
  write("inner.mof", "#pragma namespace (\"root/inner\")\nclass T { [Key] string K; };\ninstance of T { K = \"i\"; };");
  const std::string main = write("main.mof",
                                 "class M { [Key] string K; };\n#pragma include (\"inner.mof\")\n"
                                 "instance of T { K = \"m\"; };\n#pragma namespace (\"//./root/cimv2\")\n"
                                 "instance of M { K = \"m\"; };");
  loadFiles({main, write("next.mof", "instance of M { K = \"n\"; };")});
  EXPECT_EQ(instancesOf("T", "root/inner").size(), 2U);
  EXPECT_EQ(pathOf(instancesOf("T", "root/inner").at(0)), "root/inner:T.K=\"i\"");
  EXPECT_EQ(instancesOf("M").size(), 2U);
  EXPECT_EQ(refusals({write("bad.mof", "#pragma namespace (\"a b\")")}).at(0),
            "bad.mof:1:20: \"a b\" is not a namespace");
}

TEST_F(MofLoad, AnotherNamespaceMayBeTheDefault) {
  MofLoader(_manager.sink(), "root/mine").loadText("class T { [Key] string K; }; instance of T { K = \"a\"; };", "t");
  EXPECT_EQ(pathOf(instancesOf("T", "root/mine").at(0)), "root/mine:T.K=\"a\"");
}

TEST_F(MofLoad, ARefusedLoadStoresNothing) {
  loadFiles({write("first.mof", "class T { [Key] string K; };\ninstance of T { K = \"a\"; };")});
  const auto found = refusals({write("good.mof",
                                     "#pragma namespace(\"root/new\")\nclass N { [Key] string K; };\n"
                                     "#pragma namespace(\"root/cimv2\")\nclass U { [Key] string K; };\n"
                                     "Qualifier Q : string, Scope(any);\ninstance of T { K = \"b\"; };"),
                               write("bad.mof", "instance of T { K = \"a\"; };")});
  EXPECT_THAT(found, ElementsAre("bad.mof:1:13: instance root/cimv2:T.K=\"a\" exists already"));
  EXPECT_EQ(_manager.classNames("root/cimv2").size(), 1U);
  EXPECT_TRUE(_manager.classNames("root/new").empty());
  EXPECT_EQ(instancesOf("T").size(), 1U);
  CimQualifierDeclaration qualifier;
  EXPECT_FALSE(_manager.sink().describeQualifier("root/cimv2", "Q", qualifier));
  EXPECT_NO_THROW(loadFiles({(_folder / "good.mof").string()}));
  EXPECT_EQ(instancesOf("T").size(), 2U);
}

TEST_F(MofLoad, FaultsOfSeveralFilesComeFileByFile) {
  const std::string a = write("a.mof", "class A : None { };\nklass B;\n");
  const std::string b = write("b.mof", "klass C;\nclass D : Nobody { };\n");
  EXPECT_THAT(
      refusals({a, b}),
      ElementsAre("a.mof:1:11: superclass None of class A is not declared in namespace root/cimv2",
                  "a.mof:2:1: found \"klass\", expected a declaration: \"class\", \"instance of\", \"Qualifier\" "
                  "or \"#pragma\"",
                  "b.mof:1:1: found \"klass\", expected a declaration: \"class\", \"instance of\", \"Qualifier\" "
                  "or \"#pragma\"",
                  "b.mof:2:11: superclass Nobody of class D is not declared in namespace root/cimv2"));
}

TEST_F(MofLoad, LoadsTheStorageExample) {
  loadFiles({QORQL_SOURCE_DIR "/examples/storage.mof"});
  EXPECT_EQ(instancesOf("CIM_ManagedElement").size(), 20U);
  EXPECT_EQ(instancesOf("CIM_StorageVolume").size(), 5U);
  EXPECT_EQ(instancesOf("CIM_SystemDevice").size(), 8U);
  const Object drive = instancesOf("CIM_DiskDrive").at(1);
  EXPECT_EQ(textOf(valueOf(drive, "Health")->getObject(), "MediaErrors"), "17");
  const auto accesses = instancesOf("CIM_VolumeAccess");
  ASSERT_EQ(accesses.size(), 4U);
  EXPECT_EQ(textOf(accesses[3], "Volume"), pathOf(instancesOf("CIM_StorageVolume").at(3)));
  EXPECT_EQ(textOf(accesses[3], "Host"), textOf(accesses[2], "Host"));
}

}  // namespace
