// Messages, escaping and instance paths in XML.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <sstream>

#include "ModelTestSupport.h"
#include "cimom/CIMUtil.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/QoriTransactionInfo.h"

namespace {

using namespace model_test;

std::string encoded(const QORString& value) { return std::string(CIMUtil::xmlEncode(value).view()); }

TEST(CIMUtil, ErrorMessageNamesTheStatus) {
  EXPECT_EQ(CIMUtil::CreateCIMErrorMsg(16, "bad query"), "CIM status 16: bad query");
  EXPECT_EQ(CIMUtil::CreateCIMErrorMsg(1, ""), "CIM status 1: ");
}

TEST(CIMUtil, SpecialCharactersAreEscaped) {
  EXPECT_EQ(encoded("a<b> & \"c\" 'd'"), "a&lt;b&gt; &amp; &quot;c&quot; &apos;d&apos;");
  EXPECT_EQ(encoded("&amp;"), "&amp;amp;");
  EXPECT_EQ(encoded(""), "");
}

TEST(CIMUtil, TextThatNeedsNoChangeIsNoCopy) {
  const QORString plain("tab\t line\n return\r \xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(CIMUtil::xmlEncode(plain).data(), plain.data());
}

TEST(CIMUtil, ForbiddenCharactersAreReplaced) {
  const std::string r = "\xEF\xBF\xBD";
  EXPECT_EQ(encoded(QORString("a\0b", 3)), "a" + r + "b");
  EXPECT_EQ(encoded("\x01\x0B\x1F"), r + r + r);
  EXPECT_EQ(encoded("\xEF\xBF\xBEx\xEF\xBF\xBF"), r + "x" + r) << "U+FFFE and U+FFFF";
  EXPECT_EQ(encoded("\x7F"), "\x7F");
  EXPECT_EQ(encoded("\xEF\xBF\xBD"), r);
}

TEST(CIMUtil, BytesThatAreNotUtf8AreReplaced) {
  const std::string r = "\xEF\xBF\xBD";
  EXPECT_EQ(encoded("\xFF"), r);
  EXPECT_EQ(encoded("\x80"), r);
  EXPECT_EQ(encoded("\xC3"), r) << "cut short";
  EXPECT_EQ(encoded("\xC3<"), r + "&lt;");
  EXPECT_EQ(encoded("\xC0\xAF"), r + r) << "overlong";
  EXPECT_EQ(encoded("\xE0\x80\xAF"), r + r + r) << "overlong";
  EXPECT_EQ(encoded("\xED\xA0\x80"), r + r + r) << "a surrogate";
  EXPECT_EQ(encoded("\xF4\x90\x80\x80"), r + r + r + r) << "beyond U+10FFFF";
  EXPECT_EQ(encoded("\xF0\x80\x80\x80"), r + r + r + r) << "overlong";
  EXPECT_EQ(encoded("\xE2\x82"), r + r);
}

std::string streamed(const Name& value, const char* host, const char* port, bool withHost, bool localOnly) {
  std::ostringstream out;
  CIMUtil::StreamInstancePath(out, *value, host, port, withHost, localOnly);
  return out.str();
}

TEST(CIMUtil, InstancePathWithHost) {
  const Name value = name("root/cimv2", "CIM_X", {{"Name", text("a<b")}, {"No", uint32(2)}, {"On", boolean(true)}});
  EXPECT_EQ(streamed(value, "server", "5988", true, false),
            "<INSTANCEPATH><NAMESPACEPATH><HOST>server:5988</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
            "<NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH></NAMESPACEPATH><INSTANCENAME CLASSNAME=\"CIM_X\">"
            "<KEYBINDING NAME=\"Name\"><KEYVALUE VALUETYPE=\"string\">a&lt;b</KEYVALUE></KEYBINDING>"
            "<KEYBINDING NAME=\"No\"><KEYVALUE VALUETYPE=\"numeric\">2</KEYVALUE></KEYBINDING>"
            "<KEYBINDING NAME=\"On\"><KEYVALUE VALUETYPE=\"boolean\">TRUE</KEYVALUE></KEYBINDING>"
            "</INSTANCENAME></INSTANCEPATH>");
}

TEST(CIMUtil, PortIsLeftOutWhenEmpty) {
  EXPECT_EQ(streamed(name("n", "C", {}), "server", "", true, false),
            "<INSTANCEPATH><NAMESPACEPATH><HOST>server</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME=\"n\"/>"
            "</LOCALNAMESPACEPATH></NAMESPACEPATH><INSTANCENAME CLASSNAME=\"C\"></INSTANCENAME></INSTANCEPATH>");
}

TEST(CIMUtil, WithoutHostTheNamesOwnIsWritten) {
  const CQoriInstanceName value("C", {}, QORSmrPtr<IQoriNameSpacePath>(new CQoriNameSpacePath("own", "n")));
  std::ostringstream out;
  CIMUtil::StreamInstancePath(out, value, "server", "1", false, false);
  EXPECT_NE(out.str().find("<HOST>own</HOST>"), std::string::npos);
}

TEST(CIMUtil, LocalPathHasNoHost) {
  EXPECT_EQ(streamed(name("n", "C", {}), "server", "1", true, true),
            "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"n\"/></LOCALNAMESPACEPATH>"
            "<INSTANCENAME CLASSNAME=\"C\"></INSTANCENAME></LOCALINSTANCEPATH>");
}

TEST(CIMUtil, ReferenceKeysAreValueReferences) {
  const Name inner = name("n", "D", {{"K", sint32(-1)}});
  EXPECT_EQ(streamed(name("n", "A", {{"R", reference(inner)}}), "h", "", true, true),
            "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"n\"/></LOCALNAMESPACEPATH>"
            "<INSTANCENAME CLASSNAME=\"A\"><KEYBINDING NAME=\"R\"><VALUE.REFERENCE>"
            "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"n\"/></LOCALNAMESPACEPATH>"
            "<INSTANCENAME CLASSNAME=\"D\"><KEYBINDING NAME=\"K\"><KEYVALUE VALUETYPE=\"numeric\">-1</KEYVALUE>"
            "</KEYBINDING></INSTANCENAME></LOCALINSTANCEPATH></VALUE.REFERENCE></KEYBINDING></INSTANCENAME>"
            "</LOCALINSTANCEPATH>");
}

TEST(CIMUtil, AttributesAreEscapedAndEmptySegmentsLeftOut) {
  EXPECT_EQ(streamed(name("/a//b\"c/", "C&D", {}), "h", "", true, true),
            "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"a\"/><NAMESPACE NAME=\"b&quot;c\"/>"
            "</LOCALNAMESPACEPATH><INSTANCENAME CLASSNAME=\"C&amp;D\"></INSTANCENAME></LOCALINSTANCEPATH>");
}

TEST(CIMUtil, KeyWithoutValueIsAnEmptyString) {
  EXPECT_NE(streamed(name("n", "C", {{"K", Value()}}), "h", "", true, false)
                .find("<KEYVALUE VALUETYPE=\"string\"></KEYVALUE>"),
            std::string::npos);
}

TEST(CIMUtil, PathsHaveNoLineFeedsOfTheirOwn) {
  const std::string all = streamed(name("n", "C", {{"K", text("a")}}), "h", "1", true, false);
  EXPECT_EQ(all.find('\n'), std::string::npos);
}

TEST(CIMUtil, ReferencesNestedTooDeeplyAreRefused) {
  Name nested = name("n", "C", {{"K", uint8(1)}});
  for (int i = 0; i < 10; ++i) nested = name("n", "C", {{"K", reference(nested)}});
  EXPECT_EQ(valueError([&] { streamed(nested, "h", "", true, false); }), "no error");
}

TEST(QoriTransactionInfo, CarriesQueryAndLanguage) {
  const QoriTransactionInfo info({}, "", "", -1, "", "", "", "SELECT * FROM C", "CQL");
  EXPECT_TRUE(info.getAuthorization().IsNull());
  EXPECT_EQ(info.getTimeout(), -1);
  EXPECT_EQ(info.getQueryString(), "SELECT * FROM C");
  EXPECT_EQ(info.getQueryLanguage(), "CQL");
}

TEST(CQoriProviderException, CarriesTheProvidersStatus) {
  try {
    throw CQoriProviderException("Linux_Disk", "cannot read", 1);
  } catch (const QoriBaseException& error) {
    EXPECT_EQ(error.getType(), "provider");
    EXPECT_EQ(error.getWho(), "Linux_Disk");
    EXPECT_EQ(error.getMessage(), "cannot read");
    EXPECT_EQ(error.getCode(), 1U);
  }
}

}  // namespace
