// MOF that is taken from a cache: the same outcome, and nothing taken that is not sound and fresh.
// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "Cimom/Mof/MofCache.h"
#include "Cimom/Mof/MofCacheFile.h"
#include "Cimom/Mof/MofCacheReader.h"
#include "MofFixture.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kModel =
    "Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);\n"
    "Qualifier Note : string = \"n\", Scope(any), Flavor(EnableOverride, Restricted, Translatable);\n"
    "Qualifier Words : string[3] = {\"a\", \"b\"}, Scope(any);\n"
    "[Note(\"root\"), Unknown(1.5)] class Root { [Key] string Id; };\n"
    "[Words{\"x\", NULL}] class Part : Root { uint8 A = 1; sint64 B = -9223372036854775808; real32 C = 1.5; real64 D;\n"
    "  boolean E = true; datetime F = \"20260101000000.000000+000\"; char16 G = 'x'; uint64 H = 18446744073709551615;\n"
    "  string I[] = {\"p\", NULL, \"q\"}; uint16 J[4]; [EmbeddedObject] string K; [EmbeddedObject] string L[];\n"
    "  [Note] uint32 Run([Note(\"by\")] uint8 by, Part REF other, string words[2]); boolean Stop(); };\n"
    "[Association] class Link { [Key] Root REF From; [Key] Part REF To; };\n"
    "instance of Part as $a { Id = \"\xC3\xA4\\n\\\"\"; A = 255; C = NULL; I = {}; J = {1, NULL};\n"
    "  K = \"instance of Part { Id = \\\"in\\\"; K = \\\"instance of Part { D = 2.5; };\\\"; };\";\n"
    "  L = {\"class New : Root { uint8 X = 3; }\", NULL, \"instance of Root { Id = \\\"r\\\"; }\"}; };\n"
    "instance of Link { From = $a; To = \"Part.Id=\\\"elsewhere\\\"\"; };\n"
    "#pragma namespace (\"root/other\")\n"
    "class Other { [Key] uint8 N = 4; };\ninstance of Other { };\n";

class MofCaching : public moftest::MofTest {
 protected:
  MofCaching() : _folder(fs::temp_directory_path() / ("qorql-cache-" + std::to_string(std::random_device()()))) {
    fs::create_directories(_folder / "mof");
    _file = (_folder / "kept.mofcache").string();
    _model = write("mof/model.mof", kModel);
    age(_model);
  }
  ~MofCaching() override { fs::remove_all(_folder); }

  std::string write(const std::string& name, const std::string& text) {
    const fs::path path = _folder / name;
    std::ofstream(path, std::ios::binary) << text;
    return path.string();
  }
  // As if written an hour ago: what is new is compared by content.
  static void age(const std::string& path) {
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
  }
  std::string contentOf(const std::string& path) const {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

  // A load into a new object manager, which is current afterwards.
  MofCache::Outcome open(const std::vector<std::string>& paths, const char* nameSpace = "root/cimv2") {
    _fresh = std::make_unique<EmbeddedObjectManager>();
    _fresh->makeCurrent();
    return MofCache(_file).loadFiles(_fresh->sink(), nameSpace, paths);
  }
  // All that there is, as text.
  std::string everything() {
    std::string text;
    for (const QORString& space : _fresh->namespaces()) {
      text += std::string(space.view()) + '\n';
      for (const QORString& name : _fresh->classNames(space)) {
        text += _fresh->classMof(space, name, true).view();
        for (const moftest::Object& object : instancesOf(name.c_str(), space.c_str())) {
          text += pathOf(object) + '\n' + std::string(EmbeddedObjectManager::instanceMof(*object).view());
        }
      }
    }
    return text;
  }
  std::size_t filesIn(const fs::path& folder) const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
  }

  // The model without instances, whose making would read their classes.
  static std::string classes() {
    return std::string(kModel).substr(0, std::string(kModel).find("instance of Part as"));
  }

  static constexpr const char* kRefused = "refused";
  static constexpr const char* kRefusedClass = "refused class";
  // What the content of a cache declares, as text; kRefused when it is refused as a whole, kRefusedClass in the place
  // of a class that is. `owner`: null when all is to be read at once.
  std::string declared(const std::string& content, const std::shared_ptr<const void>& owner) {
    _fresh = std::make_unique<EmbeddedObjectManager>();
    _fresh->makeCurrent();
    try {
      const MofCacheReader reader(content);
      reader.inputs();
      reader.key();
      reader.declare(_fresh->sink(), owner, {});
    } catch (const std::exception&) {
      EXPECT_EQ(_fresh->namespaces().size(), 1U);
      EXPECT_TRUE(_fresh->classNames("root/cimv2").empty());
      return kRefused;
    }
    std::string text;
    for (const QORString& space : _fresh->namespaces()) {
      for (const QORString& name : _fresh->classNames(space)) {
        try {
          text += _fresh->classMof(space, name, true).view();
        } catch (const QoriBaseException&) {
          text += kRefusedClass;
        }
      }
    }
    return text;
  }

  // Writes a cache in which a class has become another one, and all checksums are right. The model is made longer by a
  // text that occurs in that class alone.
  void damageClass(const std::string& mark) {
    std::string model = classes();
    model.insert(model.find("Words{\"x\""), "Note(\"" + mark + "\"), ");
    write("mof/model.mof", model);
    age(_model);
    open({_model});
    std::string content = readMofCacheFile(_file);
    const std::size_t place = content.find(mark);
    ASSERT_NE(place, std::string::npos);
    QORuint32 length = 0;
    std::memcpy(&length, content.data() + place - sizeof length, sizeof length);
    ASSERT_EQ(length, mark.size());
    length = 0x7FFFFFFF;
    std::memcpy(content.data() + place - sizeof length, &length, sizeof length);
    content[place] = '?';
    MofCacheOutput output(_file);
    output.append(content);
    output.finish();
  }

  fs::path _folder;
  std::string _file;
  std::string _model;
  std::unique_ptr<EmbeddedObjectManager> _fresh;
};

TEST_F(MofCaching, ASecondLoadIsTakenFromItAndIsTheSame) {
  const MofCache::Outcome first = open({_model});
  EXPECT_FALSE(first.isFromCache);
  EXPECT_EQ(first.passedOver, "");
  EXPECT_EQ(first.notWritten, "");
  const std::string read = everything();
  const MofCache::Outcome second = open({_model});
  EXPECT_TRUE(second.isFromCache);
  EXPECT_EQ(everything(), read);
  EXPECT_NE(read.find("class New : Root"), std::string::npos);
  EXPECT_NE(read.find("root/other"), std::string::npos);
  EXPECT_EQ(filesIn(_folder), 2U) << "a file was left behind";
}

TEST_F(MofCaching, AnEqualLoadAfterItIsAccepted) {
  open({_model});
  ASSERT_TRUE(open({_model}).isFromCache);
  EXPECT_NO_THROW(MofLoader(_fresh->sink()).loadText(classes(), "again.mof"));
}

TEST_F(MofCaching, ManyPlainInstancesAreTheSame) {
  std::string text = "class Base { [Key] uint32 K; string T; }; class Sub : Base { uint8 L[]; };\n";
  for (int i = 0; i < 300; ++i) {
    const std::string number = std::to_string(i);
    text += i < 100 ? "instance of Base { K = " + number + "; T = \"t" + number + "\"; };\n"
                    : "instance of Sub { K = " + number + "; L = {1, " + std::to_string(i % 7) + "}; };\n";
  }
  const std::string many = write("many.mof", text);
  EXPECT_FALSE(open({many}).isFromCache);
  const std::string read = everything();
  EXPECT_TRUE(open({many}).isFromCache);
  EXPECT_EQ(everything(), read);
  EXPECT_TRUE(open({many}).isFromCache);
  EXPECT_EQ(instancesOf("Base").size(), 300U);
  write("many.mof", text + "instance of /* not plain */ Base { K = 300; };");
  EXPECT_FALSE(open({many}).isFromCache);
  const std::string more = everything();
  EXPECT_TRUE(open({many}).isFromCache);
  EXPECT_EQ(everything(), more);
}

// Instances alone are kept while their class changes beside them.
TEST_F(MofCaching, RowsOfAClassThatIsDeclaredElsewhereAreCheckedAgain) {
  std::string text;
  for (int i = 0; i < 100; ++i) {
    text += "instance of Base { K = " + std::to_string(i) + "; T = \"same\"; };\n";
  }
  const std::string rows = write("rows.mof", text);
  const auto load = [&](const char* declaration) {
    _fresh = std::make_unique<EmbeddedObjectManager>();
    _fresh->makeCurrent();
    MofLoader(_fresh->sink()).loadText(declaration, "class.mof");
    return MofCache(_file).loadFiles(_fresh->sink(), "root/cimv2", {rows});
  };
  constexpr const char* kPlain = "class Base { [Key] uint32 K; string T; };";
  EXPECT_FALSE(load(kPlain).isFromCache);
  EXPECT_TRUE(load(kPlain).isFromCache);
  EXPECT_EQ(instancesOf("Base").size(), 100U);
  EXPECT_THROW(load("class Base { uint32 K; [Key] string T; };"), MofException) << "they have one path";
  EXPECT_THROW(load("class Base { [Key] uint32 K; datetime T; };"), MofException) << "no text is a datetime";
}

TEST_F(MofCaching, AChangedFileMakesItStale) {
  open({_model});
  write("mof/model.mof", std::string(kModel) + "class More { };\n");
  const MofCache::Outcome outcome = open({_model});
  EXPECT_FALSE(outcome.isFromCache);
  EXPECT_EQ(outcome.passedOver, _model + " has changed");
  EXPECT_FALSE(_fresh->sink().findClass("root/other", "More").IsNull());
  EXPECT_TRUE(open({_model}).isFromCache) << "it was not replaced";
}

TEST_F(MofCaching, AChangeThatKeepsTheSizeIsSeen) {
  open({_model});
  std::string changed(kModel);
  changed.replace(changed.find("uint8 A = 1"), 11, "uint8 A = 2");
  write("mof/model.mof", changed);
  EXPECT_FALSE(open({_model}).isFromCache);
  // Also within one step of the file system's clock: the time alone is not trusted then.
  changed.replace(changed.find("uint8 A = 2"), 11, "uint8 A = 3");
  const fs::file_time_type time = fs::last_write_time(_model);
  write("mof/model.mof", changed);
  fs::last_write_time(_model, time);
  EXPECT_FALSE(open({_model}).isFromCache);
}

TEST_F(MofCaching, AChangeThatKeepsTheTimeIsSeenByItsSize) {
  open({_model});
  const fs::file_time_type time = fs::last_write_time(_model);
  write("mof/model.mof", std::string(kModel) + "class More { };\n");
  fs::last_write_time(_model, time);
  EXPECT_FALSE(open({_model}).isFromCache);
}

TEST_F(MofCaching, AFileThatWasOnlyTouchedIsFresh) {
  open({_model});
  fs::last_write_time(_model, fs::file_time_type::clock::now() - std::chrono::hours(3));
  EXPECT_TRUE(open({_model}).isFromCache);
}

TEST_F(MofCaching, AChangedIncludeMakesItStale) {
  const std::string inner = write("mof/inner.mof", "class Inner { uint8 A; };");
  const std::string outer = write("outer.mof", "#pragma include (\"mof/inner.mof\")\nclass Outer : Inner { };\n");
  open({outer});
  EXPECT_TRUE(open({outer}).isFromCache);
  write("mof/inner.mof", "class Inner { uint8 B; };");
  EXPECT_FALSE(open({outer}).isFromCache);
  fs::remove(inner);
  EXPECT_THROW(open({outer}), MofException);
  EXPECT_TRUE(_fresh->classNames("root/cimv2").empty());
}

TEST_F(MofCaching, AFileThatComesOrGoesMakesAFolderStale) {
  const std::string folder = (_folder / "mof").string();
  open({folder});
  EXPECT_TRUE(open({folder}).isFromCache);
  write("mof/notes.txt", "no MOF");
  EXPECT_TRUE(open({folder}).isFromCache);
  const std::string added = write("mof/added.mof", "class Added { };");
  EXPECT_FALSE(open({folder}).isFromCache);
  EXPECT_TRUE(open({folder}).isFromCache);
  fs::remove(added);
  EXPECT_FALSE(open({folder}).isFromCache);
  EXPECT_TRUE(_fresh->sink().findClass("root/cimv2", "Added").IsNull());
}

TEST_F(MofCaching, OtherPathsOrAnotherNamespaceAreAnotherLoad) {
  const std::string more = write("more.mof", "class More { };");
  open({_model});
  EXPECT_EQ(open({_model, more}).passedOver, "it was made of other files");
  EXPECT_EQ(open({_model, more}, "root/elsewhere").passedOver, "it was made of other files");
  EXPECT_TRUE(open({_model, more}, "root/elsewhere").isFromCache);
  const auto fileIn = [this](const char* space, const std::vector<std::string>& paths) {
    return MofCache::fileIn(_folder.string(), space, paths);
  };
  EXPECT_NE(fileIn("root/a", {_model}), fileIn("root/b", {_model}));
  EXPECT_NE(fileIn("root/a", {_model}), fileIn("root/a", {more}));
  EXPECT_NE(fileIn("root/a", {_model, more}), fileIn("root/a", {more, _model}));
  EXPECT_EQ(fileIn("root/a", {_model}), fileIn("root/a", {(_folder / "mof/../mof/model.mof").string()}));
}

TEST_F(MofCaching, ATruncatedFileIsReplaced) {
  open({_model});
  const std::string whole = contentOf(_file);
  const std::string read = everything();
  for (std::size_t length = 0; length < whole.size(); length += length < 40 ? 1 : whole.size() / 20) {
    write("kept.mofcache", whole.substr(0, length));
    const MofCache::Outcome outcome = open({_model});
    EXPECT_FALSE(outcome.isFromCache) << length;
    EXPECT_NE(outcome.passedOver, "") << length;
    EXPECT_EQ(everything(), read);
    EXPECT_TRUE(open({_model}).isFromCache) << length;
  }
}

TEST_F(MofCaching, AFlippedBitIsNoticed) {
  open({_model});
  const std::string whole = contentOf(_file);
  for (std::size_t i = 0; i < whole.size(); i += i < 40 ? 1 : 37) {
    std::string flipped = whole;
    flipped[i] = static_cast<char>(flipped[i] ^ (1 << (i % 8)));
    write("kept.mofcache", flipped);
    EXPECT_THROW(readMofCacheFile(_file), std::runtime_error) << i;
  }
  write("kept.mofcache", "QORQLMOF" + std::string(1, static_cast<char>(kMofCacheVersion + 1)) + whole.substr(9));
  EXPECT_EQ(open({_model}).passedOver, "it is of another version");
}

// A file with a sound checksum and any content: refused or read, never worse. What is read when it is needed is what is
// read at once, or it is refused then.
TEST_F(MofCaching, DamagedContentIsRefusedOrReadWithoutHarm) {
  open({_model});
  std::vector<std::string> contents{readMofCacheFile(_file)};
  open({write("classes.mof", classes())});
  contents.push_back(readMofCacheFile(_file));
  std::mt19937 random(4711);
  std::size_t refused = 0;
  std::size_t refusedLater = 0;
  for (std::size_t round = 0; round < 3000; ++round) {
    const auto damaged = std::make_shared<std::string>(contents[round % 2]);
    for (std::size_t i = 0; i < 1 + round % 4; ++i)
      (*damaged)[random() % damaged->size()] = static_cast<char>(random());
    if (round % 7 == 0) damaged->resize(random() % damaged->size());
    const std::string atOnce = declared(*damaged, nullptr);
    const std::string later = declared(*damaged, damaged);
    refused += atOnce == kRefused;
    refusedLater += later == kRefused;
    if (atOnce == kRefused) {
      EXPECT_TRUE(later == kRefused || later.find(kRefusedClass) != std::string::npos) << later;
    } else {
      EXPECT_EQ(later, atOnce);
    }
  }
  EXPECT_GT(refused, 500U);
  EXPECT_GT(refusedLater, 200U);
  EXPECT_GT(refused - refusedLater, 200U) << "none of the classes was damaged";
}

TEST_F(MofCaching, ClassesAreTheSameWhetherTheyAreReadAtOnceOrLater) {
  open({_model});
  const auto content = std::make_shared<std::string>(readMofCacheFile(_file));
  const std::string atOnce = declared(*content, nullptr);
  EXPECT_NE(atOnce.find("class Part : Root"), std::string::npos);
  EXPECT_EQ(declared(*content, content), atOnce);
}

TEST_F(MofCaching, ADamagedClassIsTakenFromTheText) {
  damageClass("elsewhere in this class");
  _fresh = std::make_unique<EmbeddedObjectManager>();
  _fresh->makeCurrent();
  MofLoader(_fresh->sink()).loadFile(_model);
  const std::string read = everything();
  EXPECT_TRUE(open({_model}).isFromCache) << "nobody has looked at the class";
  EXPECT_EQ(everything(), read);
  const std::string file = contentOf(_file);
  EXPECT_NE(file.find("elsewhere in this class"), std::string::npos) << "the cache has not been made anew";
  EXPECT_TRUE(open({_model}).isFromCache);
  EXPECT_EQ(everything(), read);
  EXPECT_EQ(contentOf(_file), file);
}

TEST_F(MofCaching, ADamagedClassWhoseTextHasChangedIsRefused) {
  damageClass("elsewhere in this class");
  ASSERT_TRUE(open({_model}).isFromCache);
  write("mof/model.mof", classes() + "class More { };\n");
  try {
    _fresh->classMof("root/cimv2", "Part", false);
    FAIL() << "not refused";
  } catch (const QoriBaseException& refusal) {
    EXPECT_EQ(std::string(refusal.what()), "class Part: the cache is damaged, and " + _model + " has changed");
  }
  EXPECT_FALSE(_fresh->sink().findClass("root/cimv2", "Root").IsNull()) << "the others are sound";
  EXPECT_FALSE(open({_model}).isFromCache);
}

TEST_F(MofCaching, AClassThatIsDeclaredAgainIsKeptOnce) {
  const std::string again = write("again.mof", "class A { uint8 P; };\nclass B : A { };\nclass a { uint8 p; };\n");
  EXPECT_FALSE(open({again}).isFromCache);
  const std::string read = everything();
  EXPECT_TRUE(open({again}).isFromCache);
  EXPECT_EQ(everything(), read);
}

TEST_F(MofCaching, ClassesUnderThoseOfElsewhereAreCheckedAgain) {
  const std::string part = write("part.mof", "class Sub : Base { uint8 Own; };");
  const auto load = [&](const char* declaration) {
    _fresh = std::make_unique<EmbeddedObjectManager>();
    _fresh->makeCurrent();
    MofLoader(_fresh->sink()).loadText(declaration, "class.mof");
    return MofCache(_file).loadFiles(_fresh->sink(), "root/cimv2", {part});
  };
  EXPECT_FALSE(load("class Base { [Key] uint32 K; };").isFromCache);
  EXPECT_TRUE(load("class Base { [Key] uint32 K; };").isFromCache);
  EXPECT_THROW(load("class Base { string Own; };"), MofException) << "it is of another type there";
}

TEST_F(MofCaching, ACacheThatCannotBeWrittenIsNoFailure) {
  _file = (_folder / "mof/model.mof/inside.mofcache").string();
  const MofCache::Outcome outcome = open({_model});
  EXPECT_FALSE(outcome.isFromCache);
  EXPECT_NE(outcome.notWritten, "");
  EXPECT_EQ(_fresh->classNames("root/cimv2").size(), 3U);
}

TEST_F(MofCaching, AFileInItsPlaceThatIsNoCacheIsKept) {
  for (const std::string& letters : {std::string("my letters"), std::string(100, 'x'), std::string("q")}) {
    write("kept.mofcache", letters);
    const MofCache::Outcome outcome = open({_model});
    EXPECT_EQ(outcome.passedOver, "it is not a cache");
    EXPECT_EQ(outcome.notWritten, "the file in its place is not a cache");
    EXPECT_EQ(contentOf(_file), letters);
  }
}

TEST_F(MofCaching, WhatIsNoPlainFileIsNeitherReadNorReplaced) {
  const fs::path pipe = _folder / "pipe";  // nobody writes: who opens it waits
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  fs::create_symlink("/dev/zero", _folder / "device");
  for (const fs::path& place : {pipe, _folder / "device", _folder / "mof"}) {
    const fs::file_type type = fs::status(place).type();
    _file = place.string();
    const MofCache::Outcome outcome = open({_model});
    EXPECT_EQ(outcome.passedOver, "it is not a regular file") << place;
    EXPECT_EQ(outcome.notWritten, "it is not a regular file") << place;
    EXPECT_EQ(fs::status(place).type(), type) << place;
    EXPECT_EQ(_fresh->classNames("root/cimv2").size(), 3U);
  }
}

// Without reading it: there is more than any cache has.
TEST_F(MofCaching, AFileOfAnySizeIsPassedOver) {
  open({_model});
  fs::resize_file(_file, std::uintmax_t{1} << 33U);
  EXPECT_EQ(open({_model}).passedOver, "it is damaged");
  EXPECT_TRUE(open({_model}).isFromCache) << "it is made anew";
  write("kept.mofcache", "");
  fs::resize_file(_file, std::uintmax_t{1} << 33U);
  EXPECT_EQ(open({_model}).passedOver, "it is not a cache");
}

TEST_F(MofCaching, ItsFolderIsMadeAndARefusedLoadIsNotKept) {
  _file = (_folder / "new/deep/kept.mofcache").string();
  const std::string bad = write("bad.mof", "class A : B { };");
  EXPECT_THROW(open({bad}), MofException);
  EXPECT_FALSE(fs::exists(_file));
  open({_model});
  EXPECT_TRUE(fs::exists(_file));
}

TEST_F(MofCaching, ShortTextsAreNotKept) {
  EmbeddedObjectManager manager;
  MofCache(_file, 1U << 20U).loadFiles(manager.sink(), "root/cimv2", {_model});
  EXPECT_FALSE(fs::exists(_file));
  EXPECT_EQ(manager.classNames("root/cimv2").size(), 3U);
}

TEST_F(MofCaching, WhatContradictsTheRepositoryIsToldByTheText) {
  open({_model});
  EmbeddedObjectManager manager;
  MofLoader(manager.sink()).loadText("class Part { };", "before.mof");
  try {
    MofCache(_file).loadFiles(manager.sink(), "root/cimv2", {_model});
    FAIL() << "not refused";
  } catch (const MofException& refusal) {
    EXPECT_NE(std::string(refusal.what()).find("class Part is declared already"), std::string::npos);
  }
}

}  // namespace
