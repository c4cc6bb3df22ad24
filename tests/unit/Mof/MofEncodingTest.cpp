// Texts in UTF-16: read as they would be in UTF-8, with the same places.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofEncoding.h"
#include "MofFixture.h"

namespace {

using moftest::MofTest;
using ::testing::ElementsAre;

// The text in UTF-16, with its byte order mark.
std::string wide(const std::u16string& text, bool isBigEndian) {
  std::string bytes;
  for (const char16_t unit : u'\xFEFF' + text) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    bytes += isBigEndian ? high : low;
    bytes += isBigEndian ? low : high;
  }
  return bytes;
}

class MofWideText : public MofTest {
 protected:
  std::vector<std::string> placesOf(const std::string& text) {
    std::vector<std::string> places;
    for (const MofDiagnostic& fault : faultsOf(text)) places.push_back(place(fault));
    return places;
  }
};

TEST_F(MofWideText, IsReadInBothOrdersOfBytes) {
  for (const bool isBigEndian : {false, true}) {
    EmbeddedObjectManager fresh;
    fresh.makeCurrent();
    MofLoader(fresh.sink())
        .loadText(
            wide(u"class T { [Key] string K; };\r\ninstance of T { K = \"\xE4\x20AC\xD83D\xDE00\"; };", isBigEndian),
            "wide.mof");
    EXPECT_EQ(textOf(instancesOf("T").at(0), "K"), "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80") << isBigEndian;
    _manager.makeCurrent();
  }
}

TEST_F(MofWideText, FaultsHaveThePlaceThatAnEditorShows) {
  EXPECT_THAT(placesOf(wide(u"class A { };\r\n/* \xE4\x20AC\xD83D\xDE00 */ class B : Nothing { };", true)),
              ElementsAre("2:21: superclass Nothing of class B is not declared in namespace root/cimv2"));
}

TEST_F(MofWideText, HalfACharacterIsAFaultAtItsPlace) {
  const std::string fault = "the text is UTF-16 with half of a character here";
  for (const bool isBigEndian : {false, true}) {
    EXPECT_THAT(placesOf(wide(u"class A { };", isBigEndian) + "x"), ElementsAre("1:13: " + fault));
    EXPECT_THAT(placesOf(wide(u"class A { };\n\xD800 x", isBigEndian)), ElementsAre("2:1: " + fault));
    EXPECT_THAT(placesOf(wide(u"class A { };\n\xD800\xD800", isBigEndian)), ElementsAre("2:1: " + fault));
    EXPECT_THAT(placesOf(wide(u"class A { };\n \xDC00\xD800", isBigEndian)), ElementsAre("2:2: " + fault));
    EXPECT_THAT(placesOf(wide(u"class A { };\n\xD800", isBigEndian)), ElementsAre("2:1: " + fault));
  }
}

TEST_F(MofWideText, ZeroCharactersAreNoText) {
  EXPECT_THAT(placesOf(wide(std::u16string(u"class A \0{ };", 13), false)),
              ElementsAre("0:0: this is not text: it contains zero bytes"));
  EXPECT_THAT(placesOf(std::string("c\0l\0a\0", 6)), ElementsAre("0:0: this is not text: it contains zero bytes"));
}

TEST_F(MofWideText, AMarkAloneIsAnEmptyText) {
  EXPECT_NO_THROW(load("\xFF\xFE"));
  EXPECT_NO_THROW(load("\xFE\xFF"));
  std::string text = "\xFE\xFFx";
  EXPECT_FALSE(decodeMofText(text));
  EXPECT_EQ(text, "");
  text = "\xEF\xBB\xBFx";
  EXPECT_TRUE(decodeMofText(text));
  EXPECT_EQ(text, "\xEF\xBB\xBFx");
}

}  // namespace
