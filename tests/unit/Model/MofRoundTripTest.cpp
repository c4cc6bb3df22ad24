// What objects write as MOF, the MOF reader reads back as equal objects.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "ModelTestSupport.h"

namespace {

using namespace model_test;

constexpr char kClasses[] = R"(
  Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
  Qualifier EmbeddedObject : boolean = false, Scope(property);
  Qualifier Association : boolean = false, Scope(association);
  class Inner { [Key] string Id; real32 Weight; };
  class Everything {
    [Key] string Name; uint64 Big; sint64 Small; real64 Real; boolean On; datetime Since; char16 Letter;
    string Texts[]; uint8 Bytes[]; [EmbeddedObject] string Inside; uint32 Unset;
  };
  [Association] class Link { [Key] Everything ref From; [Key] Inner ref To; };
)";

class MofRoundTrip : public ::testing::Test {
 protected:
  void SetUp() override { MofLoader(_manager.sink()).loadText(kClasses, "classes"); }

  // Writes the object, reads the text, and compares the two.
  void expectSame(const Object& written) {
    const Value value = embedded(written);
    const std::vector<Object> read = MofLoader(_manager.sink()).readInstances(value->toString().view(), "written text");
    ASSERT_EQ(read.size(), 1U);
    EXPECT_EQ(value->relate(QoriRelation::Equal, *embedded(read[0])), QoriTruth::True) << embedded(read[0])->toString();
    EXPECT_EQ(embedded(read[0])->toString(), value->toString());
  }

  EmbeddedObjectManager _manager;
};

Object everything(const Value& name, const Value& inside) {
  return object("Everything", {{"Name", name},
                               {"Big", uint64(UINT64_MAX)},
                               {"Small", sint64(INT64_MIN)},
                               {"Real", real64(1e300)},
                               {"On", boolean(true)},
                               {"Since", datetime("20240131120000.000000+060")},
                               {"Letter", char16(u'\'')},
                               {"Texts", array(CQoriType::string, {text("a\"b"), text("c\\d"), text("")})},
                               {"Bytes", array(CQoriType::uint8, {uint8(0), uint8(255)})},
                               {"Inside", inside},
                               {"Unset", make(1U, CQoriType::uint32)}});
}

TEST_F(MofRoundTrip, AllKindsOfValues) { expectSame(everything(text("plain"), Value())); }

TEST_F(MofRoundTrip, TextsWithEverySpecialByte) {
  expectSame(
      everything(text("\x01\b\t\n\f\r\x1F \"quoted\" 'single' back\\slash \x7F \xC3\xA4\xE2\x82\xAC x41"), Value()));
}

TEST_F(MofRoundTrip, EmbeddedObjects) {
  const Object inner = object("Inner", {{"Id", text("say \"hi\"\n")}, {"Weight", real32(0.1)}});
  expectSame(everything(text("outer"), embedded(inner)));
  expectSame(everything(text("outermost"), embedded(everything(text("outer"), embedded(inner)))));
}

TEST_F(MofRoundTrip, NullsStayNull) {
  expectSame(object("Inner", {{"Id", text("x")}, {"Weight", make(1.5, CQoriType::real32)}}));
  const Object read =
      MofLoader(_manager.sink()).readInstances("instance of Inner { Id = \"x\"; Weight = NULL; };", "text")[0];
  EXPECT_EQ(embedded(read)->toString(), "instance of Inner { Id = \"x\"; Weight = NULL; };");
  expectSame(read);
}

TEST_F(MofRoundTrip, References) {
  const Name from = name("root/cimv2", "Everything", {{"Name", text("a\"b\\c")}});
  const Name to = name("root/cimv2", "Inner", {{"Id", text("x")}});
  expectSame(object("Link", {{"From", reference(from)}, {"To", reference(to)}}));
}

}  // namespace
