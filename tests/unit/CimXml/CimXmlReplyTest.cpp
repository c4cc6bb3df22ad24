// Replies as servers send them: sound ones, irregular ones, and those that must be refused.
// SPDX-License-Identifier: Apache-2.0
#include "CimXmlFixture.h"

namespace {

using cimxmltest::instances;
using cimxmltest::Object;
using cimxmltest::replyTo;
using ::testing::HasSubstr;

class CimXmlReplies : public cimxmltest::CimXmlTest {
 protected:
  Object readProperty(const std::string& property) {
    return readOne("<INSTANCE CLASSNAME=\"C\">" + property + "</INSTANCE>");
  }
  // What a scalar property of the type reads as, or the fault.
  std::string readAs(const std::string& type, const std::string& text) {
    const std::string property = "<PROPERTY NAME=\"P\" TYPE=\"" + type + "\"><VALUE>" + text + "</VALUE></PROPERTY>";
    const std::string document = instances("<INSTANCE CLASSNAME=\"C\">" + property + "</INSTANCE>");
    const std::string fault = faultOf(document);
    return fault == "none" ? textOf(read(document).at(0), "P") : fault.substr(0, fault.find(" at line"));
  }
};

TEST_F(CimXmlReplies, TakesAnEmptyReply) {
  EXPECT_TRUE(read(replyTo("EnumerateInstances", "")).empty());
  EXPECT_TRUE(read(replyTo("EnumerateInstances", "<IRETURNVALUE/>")).empty());
}

TEST_F(CimXmlReplies, KeepsTheNameOfANamedInstance) {
  const Object object = readOne(
      "<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"C\"><KEYBINDING NAME=\"Id\"><KEYVALUE VALUETYPE=\"numeric\" "
      "TYPE=\"uint8\">7</KEYVALUE></KEYBINDING></INSTANCENAME><INSTANCE CLASSNAME=\"C\"><PROPERTY NAME=\"Id\" "
      "TYPE=\"uint8\"><VALUE>7</VALUE></PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE>");
  EXPECT_EQ(pathOf(object), "root/cimv2:C.Id=7");
  EXPECT_EQ(typeOf(object, "Id"), "uint8");
}

TEST_F(CimXmlReplies, ReadsIntegersInEveryFormThatMeansOneThing) {
  EXPECT_EQ(readAs("uint8", " 7 "), "7");
  EXPECT_EQ(readAs("uint8", "\n007\n"), "7");
  EXPECT_EQ(readAs("uint8", "+7"), "7");
  EXPECT_EQ(readAs("uint16", "0xFFff"), "65535");
  EXPECT_EQ(readAs("sint16", "-0x10"), "-16");
  EXPECT_EQ(readAs("uint64", "18446744073709551615"), "18446744073709551615");
  EXPECT_EQ(readAs("sint64", "-9223372036854775808"), "-9223372036854775808");
  EXPECT_EQ(readAs("uint8", "-0"), "0");
}

TEST_F(CimXmlReplies, RefusesIntegersOutOfTheirRange) {
  EXPECT_EQ(readAs("uint8", "256"), "found \"256\" for P, expected a uint8");
  EXPECT_EQ(readAs("sint8", "-129"), "found \"-129\" for P, expected a sint8");
  EXPECT_EQ(readAs("sint8", "128"), "found \"128\" for P, expected a sint8");
  EXPECT_EQ(readAs("uint32", "-1"), "found \"-1\" for P, expected a uint32");
  EXPECT_EQ(readAs("uint64", "18446744073709551616"), "found \"18446744073709551616\" for P, expected a uint64");
  EXPECT_EQ(readAs("sint64", "9223372036854775808"), "found \"9223372036854775808\" for P, expected a sint64");
  EXPECT_EQ(readAs("uint8", ""), "found \"\" for P, expected a uint8");
  EXPECT_EQ(readAs("uint8", "1.0"), "found \"1.0\" for P, expected a uint8");
  EXPECT_EQ(readAs("uint8", "0x"), "found \"0x\" for P, expected a uint8");
  EXPECT_EQ(readAs("uint8", "+-1"), "found \"+-1\" for P, expected a uint8");
}

TEST_F(CimXmlReplies, ReadsReals) {
  EXPECT_EQ(readAs("real64", "1.5E3"), "1500");
  EXPECT_EQ(readAs("real64", " -2.5 "), "-2.5");
  EXPECT_EQ(readAs("real32", "+0.5"), "0.5");
  EXPECT_EQ(readAs("real64", "NaN"), "nan");
  EXPECT_EQ(readAs("real64", "INF"), "inf");
  EXPECT_EQ(readAs("real64", "-INF"), "-inf");
  EXPECT_EQ(readAs("real64", "1e"), "found \"1e\" for P, expected a real64");
  EXPECT_EQ(readAs("real32", "3.4028235E+38"), "3.4028235e+38");
  EXPECT_EQ(readAs("real32", "-1E39"), "found \"-1E39\" for P, expected a real32");
  EXPECT_EQ(readAs("real32", "-INF"), "-inf");
}

TEST_F(CimXmlReplies, ReadsBooleansCharactersAndDatetimes) {
  EXPECT_EQ(readAs("boolean", " True "), "TRUE");
  EXPECT_EQ(readAs("boolean", "fALSE"), "FALSE");
  EXPECT_EQ(readAs("boolean", "1"), "found \"1\" for P, expected a boolean");
  EXPECT_EQ(readAs("char16", "\xC3\xA4"), "\xC3\xA4");
  EXPECT_EQ(readAs("char16", "ab"), "found \"ab\" for P, expected a char16");
  EXPECT_EQ(readAs("datetime", "20261122120000.000000+060"), "20261122120000.000000+060");
  EXPECT_EQ(readAs("datetime", "yesterday"), "found \"yesterday\" for P, expected a datetime");
}

TEST_F(CimXmlReplies, ReadsStringsAsTheyAre) {
  EXPECT_EQ(readAs("string", "  a&lt;b&amp;&apos;c  "), "  a<b&'c  ");
  EXPECT_EQ(readAs("string", "<![CDATA[a<b]]>&#65;"), "a<bA");
  EXPECT_EQ(readAs("string", ""), "");
}

TEST_F(CimXmlReplies, TellsNullFromEmpty) {
  EXPECT_EQ(textOf(readProperty("<PROPERTY NAME=\"P\" TYPE=\"string\"/>"), "P"), "NULL");
  EXPECT_EQ(textOf(readProperty("<PROPERTY NAME=\"P\" TYPE=\"string\"><VALUE/></PROPERTY>"), "P"), "");
  EXPECT_EQ(textOf(readProperty("<PROPERTY.ARRAY NAME=\"P\" TYPE=\"string\"/>"), "P"), "NULL");
  EXPECT_EQ(typeOf(readProperty("<PROPERTY.ARRAY NAME=\"P\" TYPE=\"string\"/>"), "P"), "string[]");
  EXPECT_EQ(textOf(readProperty("<PROPERTY.ARRAY NAME=\"P\" TYPE=\"string\"><VALUE.ARRAY/></PROPERTY.ARRAY>"), "P"),
            "");
}

TEST_F(CimXmlReplies, ReadsArraysWithNullElements) {
  const Object object = readProperty(
      "<PROPERTY.ARRAY NAME=\"P\" TYPE=\"uint16\"><VALUE.ARRAY>\n <VALUE>2</VALUE>\n <VALUE.NULL/> "
      "<VALUE>3</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>");
  EXPECT_EQ(typeOf(object, "P"), "uint16[]");
  EXPECT_THAT(mof(object), HasSubstr("P = {2, NULL, 3};"));
}

TEST_F(CimXmlReplies, ReadsReferencesInTheirSixForms) {
  const std::string name =
      "<INSTANCENAME CLASSNAME=\"D\"><KEYBINDING NAME=\"K\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">v"
      "</KEYVALUE></KEYBINDING></INSTANCENAME>";
  const std::string local =
      "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"x\"/></LOCALNAMESPACEPATH>";
  const std::string full = "<NAMESPACEPATH><HOST>h:5988</HOST>" + local + "</NAMESPACEPATH>";
  const auto read = [this](const std::string& path) {
    const Object object = readProperty("<PROPERTY.REFERENCE NAME=\"P\" REFERENCECLASS=\"D\"><VALUE.REFERENCE>" + path +
                                       "</VALUE.REFERENCE></PROPERTY.REFERENCE>");
    EXPECT_EQ(typeOf(object, "P"), "reference");
    const QORSmrPtr<IQoriInstanceName> reference = object->getProperty("P", true)->getValue()->getReference();
    return std::string(reference->getNameSpacePath()->getHost().view()) + "|" + textOf(object, "P");
  };
  EXPECT_EQ(read(name), "|root/cimv2:D.K=\"v\"");
  EXPECT_EQ(read("<LOCALINSTANCEPATH>" + local + name + "</LOCALINSTANCEPATH>"), "|root/x:D.K=\"v\"");
  EXPECT_EQ(read("<INSTANCEPATH>" + full + name + "</INSTANCEPATH>"), "h:5988|root/x:D.K=\"v\"");
  EXPECT_EQ(read("<CLASSNAME NAME=\"D\"/>"), "|root/cimv2:D");
  EXPECT_EQ(read("<LOCALCLASSPATH>" + local + "<CLASSNAME NAME=\"D\"/></LOCALCLASSPATH>"), "|root/x:D");
  EXPECT_EQ(read("<CLASSPATH>" + full + "<CLASSNAME NAME=\"D\"/></CLASSPATH>"), "h:5988|root/x:D");
}

TEST_F(CimXmlReplies, ReadsANamespaceThatStandsInOneElementAndAPathWithoutHost) {
  const Object object = readProperty(
      "<PROPERTY.REFERENCE NAME=\"P\"><VALUE.REFERENCE><INSTANCEPATH><NAMESPACEPATH><LOCALNAMESPACEPATH>"
      "<NAMESPACE NAME=\"root/x\"/></LOCALNAMESPACEPATH></NAMESPACEPATH><INSTANCENAME CLASSNAME=\"D\"/>"
      "</INSTANCEPATH></VALUE.REFERENCE></PROPERTY.REFERENCE>");
  EXPECT_EQ(textOf(object, "P"), "root/x:D");
}

TEST_F(CimXmlReplies, GuessesTheTypeOfAKeyThatHasNone) {
  const auto key = [this](const std::string& valueType, const std::string& text) {
    const std::string attribute = valueType.empty() ? "" : " VALUETYPE=\"" + valueType + '"';
    return textOf(readProperty("<PROPERTY.REFERENCE NAME=\"P\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"D\">"
                               "<KEYBINDING NAME=\"K\"><KEYVALUE" +
                               attribute + ">" + text +
                               "</KEYVALUE></KEYBINDING></INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>"),
                  "P");
  };
  EXPECT_EQ(key("numeric", "0x10"), "root/cimv2:D.K=16");
  EXPECT_EQ(key("numeric", "-1"), "root/cimv2:D.K=-1");
  EXPECT_EQ(key("numeric", "many"), "root/cimv2:D.K=\"many\"");
  EXPECT_EQ(key("boolean", "true"), "root/cimv2:D.K=TRUE");
  EXPECT_EQ(key("boolean", "2"), "root/cimv2:D.K=\"2\"");
  EXPECT_EQ(key("string", "7"), "root/cimv2:D.K=\"7\"");
  EXPECT_EQ(key("", "7"), "root/cimv2:D.K=\"7\"");
}

TEST_F(CimXmlReplies, ReadsAKeyThatIsAReference) {
  const Object object = readProperty(
      "<PROPERTY.REFERENCE NAME=\"P\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"L\"><KEYBINDING NAME=\"A\">"
      "<VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"D\"><KEYBINDING NAME=\"K\"><KEYVALUE>v</KEYVALUE></KEYBINDING>"
      "</INSTANCENAME></VALUE.REFERENCE></KEYBINDING></INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>");
  EXPECT_EQ(textOf(object, "P"), "root/cimv2:L.A=\"root/cimv2:D.K=\\\"v\\\"\"");
}

TEST_F(CimXmlReplies, TakesTheFirstOfAPropertyThatComesTwice) {
  const Object object = readProperty(
      "<PROPERTY NAME=\"P\" TYPE=\"uint8\"><VALUE>1</VALUE></PROPERTY><PROPERTY NAME=\"Q\" TYPE=\"uint8\"/>"
      "<PROPERTY NAME=\"p\" TYPE=\"uint8\"><VALUE>2</VALUE></PROPERTY>");
  EXPECT_EQ(textOf(object, "P"), "1");
  EXPECT_EQ(object->getPropertyCount(), 2U);
}

TEST_F(CimXmlReplies, TakesEveryPropertyOfAnInstanceAfterOneWithARepetition) {
  const auto one = [](const std::string& last) {
    return "<INSTANCE CLASSNAME=\"C\"><PROPERTY NAME=\"P\" TYPE=\"uint8\"/><PROPERTY NAME=\"Q\" TYPE=\"uint8\"/>"
           "<PROPERTY NAME=\"" +
           last + "\" TYPE=\"uint8\"><VALUE>2</VALUE></PROPERTY></INSTANCE>";
  };
  const std::vector<Object> objects = read(instances(one("p") + one("R") + one("q")));
  EXPECT_EQ(objects.at(0)->getPropertyCount(), 2U);
  EXPECT_EQ(textOf(objects.at(1), "R"), "2");
  EXPECT_EQ(textOf(objects.at(2), "Q"), "NULL");
}

TEST_F(CimXmlReplies, GivesEachInstanceTheNamespaceOfItsName) {
  const auto one = [](const std::string& nameSpace) {
    return "<VALUE.OBJECTWITHPATH><INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME=\"" +
           nameSpace +
           "\"/></LOCALNAMESPACEPATH></NAMESPACEPATH><INSTANCENAME CLASSNAME=\"C\"/></INSTANCEPATH>"
           "<INSTANCE CLASSNAME=\"C\"/></VALUE.OBJECTWITHPATH>";
  };
  const std::vector<Object> objects = read(instances(one("a") + one("b") + "<INSTANCE CLASSNAME=\"C\"/>"));
  EXPECT_EQ(objects.at(0)->getNameSpace(), "a");
  EXPECT_EQ(objects.at(1)->getNameSpace(), "b");
  EXPECT_EQ(objects.at(2)->getNameSpace(), "root/cimv2");
}

TEST_F(CimXmlReplies, TakesAPropertyWithoutTypeAsText) {
  EXPECT_EQ(typeOf(readProperty("<PROPERTY NAME=\"P\"><VALUE>7</VALUE></PROPERTY>"), "P"), "string");
}

TEST_F(CimXmlReplies, PassesOverQualifiersAndUnknownElements) {
  const Object object = readProperty(
      "<QUALIFIER NAME=\"Q\" TYPE=\"string\"><VALUE>x</VALUE></QUALIFIER><ODD a=\"1\">text<MORE/></ODD>"
      "<PROPERTY NAME=\"P\" TYPE=\"uint8\"><QUALIFIER NAME=\"Q\" TYPE=\"string\"/><VALUE>1</VALUE></PROPERTY>");
  EXPECT_EQ(textOf(object, "P"), "1");
}

TEST_F(CimXmlReplies, ReadsEmbeddedObjectsInBothSpellings) {
  const std::string inner =
      "&lt;INSTANCE CLASSNAME=&quot;I&quot;&gt;&lt;PROPERTY NAME=&quot;X&quot; TYPE=&quot;uint8&quot;&gt;"
      "&lt;VALUE&gt;5&lt;/VALUE&gt;&lt;/PROPERTY&gt;&lt;/INSTANCE&gt;";
  for (const char* attribute : {"EmbeddedObject", "EMBEDDEDOBJECT"}) {
    const Object object = readProperty(std::string("<PROPERTY NAME=\"P\" TYPE=\"string\" ") + attribute +
                                       "=\"instance\"><VALUE>" + inner + "</VALUE></PROPERTY>");
    EXPECT_EQ(typeOf(object, "P"), "object");
    EXPECT_EQ(textOf(object, "P"), "instance of I { X = 5; };");
  }
  const Object array =
      readProperty("<PROPERTY.ARRAY NAME=\"P\" TYPE=\"string\" EmbeddedObject=\"object\"><VALUE.ARRAY><VALUE>" + inner +
                   "</VALUE><VALUE.NULL/></VALUE.ARRAY></PROPERTY.ARRAY>");
  EXPECT_EQ(typeOf(array, "P"), "object[]");
}

TEST_F(CimXmlReplies, ReadsAnEmbeddedClass) {
  const Object object = readProperty(
      "<PROPERTY NAME=\"P\" TYPE=\"string\" EmbeddedObject=\"object\"><VALUE>&lt;CLASS NAME=&quot;N&quot;&gt;"
      "&lt;PROPERTY NAME=&quot;X&quot; TYPE=&quot;uint8&quot;&gt;&lt;VALUE&gt;3&lt;/VALUE&gt;&lt;/PROPERTY&gt;"
      "&lt;/CLASS&gt;</VALUE></PROPERTY>");
  EXPECT_THAT(textOf(object, "P"), HasSubstr("class N"));
  EXPECT_THAT(textOf(object, "P"), HasSubstr("X = 3"));
}

TEST_F(CimXmlReplies, TellsTheFaultOfAnEmbeddedObjectAtThePlaceOfItsText) {
  EXPECT_EQ(faultOf(instances("\n<INSTANCE CLASSNAME=\"C\">\n<PROPERTY NAME=\"P\" TYPE=\"string\" "
                              "EmbeddedObject=\"instance\"><VALUE>&lt;INSTANCE&gt;</VALUE></PROPERTY></INSTANCE>")),
            "the object in P cannot be read: an INSTANCE has no CLASSNAME at line 5, column 67");
}

TEST_F(CimXmlReplies, GivesTheStatusThatAServerAnswers) {
  const std::string document = replyTo("EnumerateInstances", "<ERROR CODE=\"2\" DESCRIPTION=\"no &lt;rights&gt;\"/>");
  try {
    read(document);
    ADD_FAILURE() << "no exception";
  } catch (const CimStatusException& status) {
    EXPECT_EQ(status.getCode(), 2U);
    EXPECT_EQ(status.getDescription(), "no <rights>");
    EXPECT_EQ(status.getMessage(), "CIM_ERR_ACCESS_DENIED (2): no <rights>");
  }
  EXPECT_EQ(faultOf(replyTo("EnumerateInstances", "<ERROR CODE=\"x\"/>")),
            "found \"x\" as the CODE of an ERROR, expected a CIM status at line 3, column 93");
  EXPECT_THAT(faultOf(document.substr(0, document.size() - 20)), HasSubstr("the document ends too early"));
}

TEST_F(CimXmlReplies, NamesTheStatuses) {
  EXPECT_EQ(cimxml::statusText(1), "CIM_ERR_FAILED (1)");
  EXPECT_EQ(cimxml::statusText(28), "CIM_ERR_SERVER_IS_SHUTTING_DOWN (28)");
  EXPECT_EQ(cimxml::statusText(18), "CIM status 18");
  EXPECT_EQ(cimxml::statusText(29), "CIM status 29");
  EXPECT_EQ(cimxml::statusText(0), "CIM status 0");
}

TEST_F(CimXmlReplies, GivesOutputsAfterTheValues) {
  const std::string document = replyTo(
      "OpenEnumerateInstances",
      "<IRETURNVALUE><VALUE.INSTANCEWITHPATH><INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST><LOCALNAMESPACEPATH>"
      "<NAMESPACE NAME=\"root\"/></LOCALNAMESPACEPATH></NAMESPACEPATH><INSTANCENAME CLASSNAME=\"C\"/></INSTANCEPATH>"
      "<INSTANCE CLASSNAME=\"C\"/></VALUE.INSTANCEWITHPATH></IRETURNVALUE>"
      "<PARAMVALUE NAME=\"EndOfSequence\" PARAMTYPE=\"boolean\"><VALUE>FALSE</VALUE></PARAMVALUE>"
      "<PARAMVALUE NAME=\"EnumerationContext\"><VALUE>a1</VALUE></PARAMVALUE>");
  CimXmlReply reply(cimxmltest::inPieces(document, 100), "OpenEnumerateInstances", "1", "root/cimv2");
  using Item = CimXmlReply::Item;
  EXPECT_EQ(reply.next(), Item::Instance);
  EXPECT_EQ(reply.instance().name->toString(), "root:C");
  EXPECT_EQ(reply.next(), Item::Output);
  EXPECT_EQ(reply.outputName() + '=' + reply.outputText(), "EndOfSequence=FALSE");
  EXPECT_EQ(reply.next(), Item::Output);
  EXPECT_EQ(reply.outputName() + '=' + reply.outputText(), "EnumerationContext=a1");
  EXPECT_EQ(reply.next(), Item::End);
  EXPECT_EQ(reply.next(), Item::End);
}

TEST_F(CimXmlReplies, GivesClassNames) {
  CimXmlReply reply(
      cimxmltest::inPieces(
          replyTo("EnumerateClassNames", "<IRETURNVALUE><CLASSNAME NAME=\"A\"/><CLASSNAME NAME=\"B\"/></IRETURNVALUE>"),
          100),
      "EnumerateClassNames", "1", "root/cimv2");
  std::string names;
  while (reply.next() == CimXmlReply::Item::Name) names += reply.name()->getClassName().view();
  EXPECT_EQ(names, "AB");
}

TEST_F(CimXmlReplies, RefusesAReplyToSomethingElse) {
  const std::string other = replyTo("GetClass", "");
  EXPECT_EQ(faultOf(other), "the reply is to GetClass, expected EnumerateInstances at line 3, column 50");
  std::string wrongId = replyTo("EnumerateInstances", "");
  wrongId.replace(wrongId.find("ID=\"1\""), 6, "ID=\"2\"");
  EXPECT_EQ(faultOf(wrongId), "the reply is to message \"2\", expected \"1\" at line 3, column 1");
  EXPECT_EQ(faultOf("<html><body/></html>"), "found html, expected CIM at line 1, column 1");
  EXPECT_EQ(faultOf("<CIM CIMVERSION=\"1.0\"/>"), "CIMVERSION is \"1.0\", expected 2.x at line 1, column 1");
}

TEST_F(CimXmlReplies, TakesTheOperationInAnotherCase) {
  EXPECT_TRUE(read(replyTo("enumerateinstances", "<IRETURNVALUE/>")).empty());
}

TEST_F(CimXmlReplies, RefusesAPropertyOfATypeThatIsNone) {
  EXPECT_EQ(readAs("uint7", "1"), "property P has the unknown type \"uint7\"");
  EXPECT_EQ(readAs("reference", "x"), "property P has the unknown type \"reference\"");
  EXPECT_EQ(readAs("object", "x"), "property P has the unknown type \"object\"");
}

TEST_F(CimXmlReplies, TakesAGreatText) {
  const std::string text(10 << 20, 'y');
  EXPECT_EQ(readAs("string", text), text);
}

TEST_F(CimXmlReplies, TheNamesOfANamespaceAreJoinedByOneSlashEach) {
  const auto named = [](const std::string& nameSpaces) {
    return instances("<VALUE.OBJECTWITHPATH><INSTANCEPATH><NAMESPACEPATH><LOCALNAMESPACEPATH>" + nameSpaces +
                     "</LOCALNAMESPACEPATH></NAMESPACEPATH><INSTANCENAME CLASSNAME=\"C\"/></INSTANCEPATH>"
                     "<INSTANCE CLASSNAME=\"C\"/></VALUE.OBJECTWITHPATH>");
  };
  const auto nameSpaceOf = [&](const std::string& nameSpaces) {
    return std::string(read(named(nameSpaces)).at(0)->getInstanceName()->getNameSpacePath()->getNameSpace().view());
  };
  EXPECT_EQ(nameSpaceOf("<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"x\"/>"), "root/x");
  EXPECT_EQ(nameSpaceOf("<NAMESPACE NAME=\"root/x\"/>"), "root/x");
  EXPECT_EQ(nameSpaceOf("<NAMESPACE NAME=\"/root//\"/><NAMESPACE NAME=\"x/\"/>"), "root/x");
  for (const char* nameless : {"<NAMESPACE/>", "<NAMESPACE NAME=\"\"/>", "<NAMESPACE NAME=\"//\"/>"}) {
    EXPECT_THAT(faultOf(named(std::string("<NAMESPACE NAME=\"root\"/>") + nameless)),
                HasSubstr("a NAMESPACE has no NAME at line "));
  }
}

TEST_F(CimXmlReplies, HandsOutAnInstanceBeforeTheNextOneArrived) {
  const std::string one =
      "<INSTANCE CLASSNAME=\"C\"><PROPERTY NAME=\"P\" TYPE=\"uint8\"><VALUE>1</VALUE></PROPERTY>"
      "</INSTANCE>";
  const std::string document = instances(one + one);
  const std::size_t half = document.find(one) + one.size();
  bool isSecondAsked = false;
  std::size_t at = 0;
  CimXmlReply reply(
      [&](char* buffer, std::size_t) {
        isSecondAsked = at == half;
        const std::size_t end = at < half ? half : document.size();
        const std::size_t count = end - at;
        std::copy_n(document.data() + at, count, buffer);
        at = end;
        return count;
      },
      "EnumerateInstances", "1", "root/cimv2");
  EXPECT_EQ(reply.next(), CimXmlReply::Item::Instance);
  EXPECT_FALSE(isSecondAsked);
  EXPECT_EQ(reply.next(), CimXmlReply::Item::Instance);
  EXPECT_EQ(reply.next(), CimXmlReply::Item::End);
}

TEST_F(CimXmlReplies, LetsTheSourcesFailurePass) {
  CimXmlReply reply([](char*, std::size_t) -> std::size_t { throw std::runtime_error("the line is dead"); },
                    "EnumerateInstances", "1", "root/cimv2");
  EXPECT_THROW(reply.next(), std::runtime_error);
}

TEST_F(CimXmlReplies, MakesObjectsOfAKnownClass) {
  load(
      "class T { [Key] string Id; uint32 Size; datetime At; uint8 Codes[]; string Rest; };\n"
      "instance of T { Id = \"x\"; };");
  const QORSmrPtr<ModelLayout> layout(new ModelLayout({{"Id", CQoriType::string},
                                                       {"Size", CQoriType::uint32},
                                                       {"At", CQoriType::datetime},
                                                       {"Codes", CQoriType::arrayOf(CQoriType::uint8)},
                                                       {"Rest", CQoriType::string}}));
  const QORSmrPtr<ModelShape> shape(new ModelShape("root/cimv2", "T", layout, {0}));
  const auto make = [&](const std::string& properties) {
    CimXmlReply reply(cimxmltest::inPieces(instances("<INSTANCE CLASSNAME=\"t\">" + properties + "</INSTANCE>"), 999),
                      "EnumerateInstances", "1", "root/cimv2");
    EXPECT_EQ(reply.next(), CimXmlReply::Item::Instance);
    return CimXmlObjects::make(reply.instance(), shape, 7);
  };
  const Object object = make(
      "<PROPERTY NAME=\"SIZE\"><VALUE>12</VALUE></PROPERTY><PROPERTY NAME=\"Other\" TYPE=\"uint8\"/>"
      "<PROPERTY NAME=\"id\" TYPE=\"string\"><VALUE>k</VALUE></PROPERTY>"
      "<PROPERTY.ARRAY NAME=\"Codes\"><VALUE.ARRAY><VALUE>1</VALUE><VALUE.NULL/></VALUE.ARRAY></PROPERTY.ARRAY>");
  EXPECT_EQ(pathOf(object), "root/cimv2:T.Id=\"k\"");
  EXPECT_EQ(typeOf(object, "Size") + textOf(object, "Size"), "uint3212");
  EXPECT_EQ(textOf(object, "At"), "NULL");
  EXPECT_THAT(mof(object), HasSubstr("Codes = {1, NULL};"));
  EXPECT_EQ(object->getIdentity(), 7U);
  EXPECT_EQ(textOf(object, "Other"), "absent");
  try {
    make("<PROPERTY NAME=\"Size\"><VALUE>much</VALUE></PROPERTY>");
    ADD_FAILURE() << "no exception";
  } catch (const QoriBaseException& fault) {
    EXPECT_EQ(fault.getMessage(), "found \"much\" for property Size of class t, expected a uint32");
  }
  // Of another type than the declared one, but a number that it holds; and one that it does not.
  const auto sizeAs = [&](const std::string& type, const std::string& text) {
    return make("<PROPERTY NAME=\"Size\" TYPE=\"" + type + "\"><VALUE>" + text + "</VALUE></PROPERTY>");
  };
  EXPECT_EQ(textOf(sizeAs("uint64", "12"), "Size"), "12");
  EXPECT_EQ(textOf(sizeAs("real64", "12.0"), "Size"), "12");
  EXPECT_THROW(sizeAs("uint64", "4294967301"), QoriBaseException);
  EXPECT_THROW(sizeAs("sint32", "-1"), QoriBaseException);
  EXPECT_THROW(sizeAs("real64", "2.5"), QoriBaseException);
  EXPECT_THROW(make("<PROPERTY.ARRAY NAME=\"Codes\" TYPE=\"uint16\"><VALUE.ARRAY><VALUE>1</VALUE><VALUE>256</VALUE>"
                    "</VALUE.ARRAY></PROPERTY.ARRAY>"),
               QoriBaseException);
}

}  // namespace
