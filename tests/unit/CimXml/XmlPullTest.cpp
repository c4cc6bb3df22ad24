// XML that is broken, nests too deep, is too large, or comes in pieces.
// SPDX-License-Identifier: Apache-2.0
#include "CimXmlFixture.h"

namespace {

using cimxmltest::instances;
using cimxmltest::Object;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class XmlPulling : public cimxmltest::CimXmlTest {};

TEST_F(XmlPulling, RefusesWhatIsNoXml) {
  EXPECT_EQ(faultOf(""), "the document ends too early at line 1, column 1");
  EXPECT_THAT(faultOf("no xml"), HasSubstr("the document is not well-formed XML: "));
  EXPECT_THAT(faultOf(instances("<INSTANCE CLASSNAME=\"\xFF\"/>")),
              HasSubstr("the document is not well-formed XML: not well-formed (invalid token) at line 3, column "));
  EXPECT_THAT(faultOf(instances("<INSTANCE CLASSNAME=\"C\"><A></B>")), HasSubstr("mismatched tag"));
  EXPECT_THAT(faultOf(instances("&evil;")), HasSubstr("undefined entity"));
}

TEST_F(XmlPulling, WhateverFollowsTheDocumentHasThePlaceOfItsEndInPiecesOfAnySize) {
  const std::string document = instances("");
  const std::string end =
      " at line 3, column " + std::to_string(document.find("</CIM>") - document.find("<MESSAGE") + 1);
  for (const char* more : {"<CIM/>", "x", "TYPE=\"real32", "</CIM>", "<!-- open", "\xFF"}) {
    for (const std::size_t piece : {std::size_t{1} << 14, std::size_t{1}, std::size_t{3}}) {
      EXPECT_EQ(faultOf(document + more, piece), "the document goes on after its end" + end) << more << piece;
    }
  }
  EXPECT_EQ(faultOf(document + " <!-- a comment --> \n"), "none");
}

TEST_F(XmlPulling, RefusesADoctype) {
  EXPECT_THAT(
      faultOf("<?xml version=\"1.0\"?>\n<!DOCTYPE CIM SYSTEM \"http://127.0.0.1/x\" [<!ENTITY a \"b\">]><CIM/>"),
      HasSubstr("a DOCTYPE is not accepted at line 2, column "));
  EXPECT_THAT(faultOf("<!DOCTYPE CIM><CIM/>"), HasSubstr("a DOCTYPE is not accepted at line 1, column "));
}

TEST_F(XmlPulling, RefusesATextWhereElementsBelong) {
  EXPECT_THAT(faultOf(instances("text")), HasSubstr("text is not allowed here at line 3, column "));
  EXPECT_THAT(faultOf(instances("<INSTANCE CLASSNAME=\"C\">x</INSTANCE>")), HasSubstr("text is not allowed here"));
  EXPECT_THAT(faultOf(instances("<INSTANCE CLASSNAME=\"C\"><CLASS/></INSTANCE>")),
              HasSubstr("CLASS is not allowed within INSTANCE"));
  EXPECT_THAT(faultOf(instances("<TABLE/>")), HasSubstr("TABLE is not allowed within IRETURNVALUE"));
}

// The text of a path doubles with each level, as a key that is a reference is quoted in it.
TEST_F(XmlPulling, BoundsTheNestingAndTheLengthOfKeys) {
  const auto nested = [](int levels, const std::string& text) {
    std::string path = "<INSTANCENAME CLASSNAME=\"C\"><KEYBINDING NAME=\"K\"><KEYVALUE>" + text +
                       "</KEYVALUE></KEYBINDING></INSTANCENAME>";
    for (int i = 0; i < levels; ++i) {
      path = "<INSTANCENAME CLASSNAME=\"C\"><KEYBINDING NAME=\"K\"><VALUE.REFERENCE>" + path +
             "</VALUE.REFERENCE></KEYBINDING></INSTANCENAME>";
    }
    return instances("<VALUE.NAMEDINSTANCE>" + path + "<INSTANCE CLASSNAME=\"C\"/></VALUE.NAMEDINSTANCE>");
  };
  EXPECT_EQ(faultOf(nested(8, "x")), "none");
  EXPECT_THAT(faultOf(nested(9, "x")), HasSubstr("references nest deeper than 8"));
  EXPECT_EQ(faultOf(nested(0, std::string(1 << 16, 'x'))), "none");
  EXPECT_THAT(faultOf(nested(0, std::string((1 << 16) + 1, 'x'))), HasSubstr("a key is longer than 65536 bytes"));
}

TEST_F(XmlPulling, BoundsTheDepth) {
  std::string skipped;
  for (int i = 0; i < 200; ++i) skipped += "<ODD>";
  EXPECT_THAT(faultOf(instances("<INSTANCE CLASSNAME=\"C\">" + skipped)), HasSubstr("elements nest deeper than 100"));
}

TEST_F(XmlPulling, BoundsTheNestingOfEmbeddedObjects) {
  std::string nested = "<INSTANCE CLASSNAME=\"C\"/>";
  for (int i = 0; i < 17; ++i) {
    std::string value;
    CimXmlWriter(value).writeText(nested);
    nested = "<INSTANCE CLASSNAME=\"C\"><PROPERTY NAME=\"P\" TYPE=\"string\" EmbeddedObject=\"instance\">" + value +
             "</PROPERTY></INSTANCE>";
  }
  EXPECT_THAT(faultOf(instances(nested)), HasSubstr("embedded objects nest deeper than 16"));
}

TEST_F(XmlPulling, BoundsATag) {
  const std::string tag = "<INSTANCE CLASSNAME=\"" + std::string(3 << 20, 'x') + "\"/>";
  EXPECT_THAT(faultOf(instances(tag)), HasSubstr("a tag is longer than 1048576 bytes"));
}

TEST_F(XmlPulling, ReadsTheSameInPiecesOfAnySize) {
  const std::string document = instances(
      "\n<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"C\"><KEYBINDING NAME=\"K\"><KEYVALUE>v&amp;w</KEYVALUE>"
      "</KEYBINDING></INSTANCENAME><INSTANCE CLASSNAME=\"C\"><PROPERTY NAME=\"K\" TYPE=\"string\"><VALUE>v&amp;w"
      "</VALUE></PROPERTY><PROPERTY.ARRAY NAME=\"A\" TYPE=\"uint8\"><VALUE.ARRAY><VALUE>1</VALUE><VALUE.NULL/>"
      "</VALUE.ARRAY></PROPERTY.ARRAY></INSTANCE></VALUE.NAMEDINSTANCE>\n");
  const std::string whole = mof(read(document).at(0));
  for (std::size_t piece = 1; piece < 70; ++piece) EXPECT_EQ(mof(read(document, piece).at(0)), whole) << piece;
}

TEST_F(XmlPulling, TellsTheSamePlaceInPiecesOfAnySize) {
  const std::string document =
      instances("\n\n<INSTANCE CLASSNAME=\"C\"><PROPERTY\n NAME=\"P\" TYPE=\"uint8\"><VALUE>x</VALUE></PROPERTY>");
  const std::string whole = faultOf(document);
  EXPECT_EQ(whole, "found \"x\" for P, expected a uint8 at line 6, column 31");
  for (std::size_t piece = 1; piece < 70; ++piece) EXPECT_EQ(faultOf(document, piece), whole) << piece;
}

TEST_F(XmlPulling, AMisplacedTextHasThePlaceOfItsFirstInkInPiecesOfAnySize) {
  for (const std::string text : {" x", "\n \n\t x", "&#32;&#10; x y", "\r\n x"}) {
    const std::string whole = faultOf(instances(text));
    EXPECT_THAT(whole, HasSubstr("text is not allowed here at line ")) << text;
    for (std::size_t piece = 1; piece < 9; ++piece) EXPECT_EQ(faultOf(instances(text), piece), whole) << text << piece;
  }
  const std::string start = instances("").substr(0, instances("").find("</IRETURNVALUE>"));
  const std::size_t column = start.size() - start.rfind('\n');
  EXPECT_THAT(faultOf(instances("  x")), EndsWith(" at line 3, column " + std::to_string(column + 2)));
  EXPECT_THAT(faultOf(instances("\n \n\t x")), EndsWith(" at line 5, column 3"));
}

}  // namespace
