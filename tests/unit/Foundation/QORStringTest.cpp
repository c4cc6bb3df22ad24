// The foundation's string.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <sstream>
#include <thread>
#include <vector>

#include "cmpbase/QORString.h"

namespace {

TEST(QORString, DefaultIsNullAndEqualToTheEmptyString) {
  const QORString none;
  EXPECT_TRUE(none.isNull());
  EXPECT_TRUE(none.isEmpty());
  EXPECT_EQ(none.length(), 0U);
  EXPECT_STREQ(none.c_str(), "");
  EXPECT_EQ(none, QORString(""));
}

TEST(QORString, NullPointerMakesANullString) {
  EXPECT_TRUE(QORString(nullptr).isNull());
  EXPECT_TRUE(QORString(static_cast<const char*>(nullptr), 3).isNull());
}

TEST(QORString, EmptyTextIsNotNull) {
  EXPECT_FALSE(QORString("").isNull());
  EXPECT_FALSE(QORString("abc", 0).isNull());
  EXPECT_FALSE(QORString::emptyString().isNull());
  EXPECT_TRUE(QORString::emptyString().isEmpty());
}

TEST(QORString, HoldsZeroBytesAndEndsWithOne) {
  const QORString text("a\0b", 3);
  EXPECT_EQ(text.length(), 3U);
  EXPECT_EQ(text[1], '\0');
  EXPECT_EQ(text.c_str()[3], '\0');
  EXPECT_FALSE(text == "a");
}

TEST(QORString, CopiesShareTheBuffer) {
  const QORString a("shared text");
  const QORString b(a);
  EXPECT_EQ(a.data(), b.data());
}

TEST(QORString, AppendingToACopyLeavesTheOriginal) {
  const QORString a("abc");
  QORString b(a);
  b += "def";
  EXPECT_EQ(a, "abc");
  EXPECT_EQ(b, "abcdef");
}

TEST(QORString, UpperCasingACopyLeavesTheOriginal) {
  const QORString a("abc");
  QORString b(a);
  b.toUpper();
  EXPECT_EQ(a, "abc");
  EXPECT_EQ(b, "ABC");
}

TEST(QORString, AssignmentToItselfKeepsTheText) {
  QORString a("text");
  const QORString& same = a;
  a = same;
  EXPECT_EQ(a, "text");
}

TEST(QORString, MovedFromStringStaysUsable) {
  QORString a("text");
  const QORString b(std::move(a));
  EXPECT_EQ(b, "text");
  a = QORString("again");
  EXPECT_EQ(a, "again");
}

TEST(QORString, ComparesByteByByte) {
  EXPECT_EQ(QORString("abc").compareTo("abc"), 0);
  EXPECT_LT(QORString("abc").compareTo("abd"), 0);
  EXPECT_GT(QORString("b").compareTo("abc"), 0);
  EXPECT_LT(QORString("ab").compareTo("abc"), 0);
  EXPECT_LT(QORString("B").compareTo("a"), 0);
  EXPECT_GT(QORString("\xC3\xA4").compareTo("z"), 0) << "bytes are unsigned";
}

TEST(QORString, ComparesWithoutCaseWhenTheFlagIsZero) {
  EXPECT_EQ(QORString("AbC").compareTo("aBc", 0), 0);
  EXPECT_GT(QORString("B").compareTo("a", 0), 0);
  EXPECT_LT(QORString("AB").compareTo("abc", 0), 0);
  EXPECT_GT(QORString("abc").compareTo("AB", 0), 0);
  EXPECT_NE(QORString("[").compareTo("{", 0), 0) << "only letters fold";
  EXPECT_NE(QORString("\xC3\x84").compareTo("\xC3\xA4", 0), 0) << "only ASCII folds";
}

TEST(QORString, EqualityIgnoringCase) {
  EXPECT_TRUE(QORString("Disk").isEqualCaseInsensitive("DISK"));
  EXPECT_FALSE(QORString("Disk").isEqualCaseInsensitive("DISKS"));
  EXPECT_FALSE(QORString("@").isEqualCaseInsensitive("`"));
  EXPECT_TRUE(QORString().isEqualCaseInsensitive(""));
}

TEST(QORString, EqualsCharPointerAndSingleChar) {
  EXPECT_TRUE(QORString("x") == "x");
  EXPECT_TRUE(QORString("x") == 'x');
  EXPECT_FALSE(QORString("xx") == 'x');
  EXPECT_FALSE(QORString() == 'x');
  EXPECT_TRUE(QORString() == static_cast<const char*>(nullptr));
}

TEST(QORString, BeginsWith) {
  EXPECT_TRUE(QORString("//host").beginsWith("//"));
  EXPECT_TRUE(QORString("a").beginsWith(""));
  EXPECT_FALSE(QORString("a").beginsWith("ab"));
}

TEST(QORString, ContainsAContiguousRun) {
  EXPECT_TRUE(QORString("abcdef").contains("cde"));
  EXPECT_FALSE(QORString("abcdef").contains("ce"));
  EXPECT_TRUE(QORString("abc").contains(""));
  EXPECT_TRUE(QORString().contains(""));
  EXPECT_FALSE(QORString("ABC").contains("b"));
  EXPECT_TRUE(QORString("ABC").contains("bc", false));
  EXPECT_TRUE(QORString("ABC").contains("", false));
  EXPECT_FALSE(QORString("").contains("a", false));
}

TEST(QORString, FindsFromAPosition) {
  const QORString text("a.b.c");
  EXPECT_EQ(text.find("."), 1U);
  EXPECT_EQ(text.find(".", 2), 3U);
  EXPECT_EQ(text.find(".", 4), QORString::npos);
  EXPECT_EQ(text.find(".", 99), QORString::npos);
  EXPECT_EQ(text.find("", 5), 5U);
}

TEST(QORString, FindsInHostileTextsInLinearTime) {
  const std::string text(1 << 20, 'a');
  const std::string wanted = std::string(1 << 19, 'a') + "b";
  EXPECT_EQ(QORString(text).find(QORString(wanted)), QORString::npos);
}

TEST(QORString, SubStringIsClippedToTheText) {
  const QORString text("abcdef");
  EXPECT_EQ(text.subStr(1, 3), "bcd");
  EXPECT_EQ(text.subStr(4, 99), "ef");
  EXPECT_EQ(text.subStr(2), "cdef");
  EXPECT_EQ(text.subStr(6), "");
  EXPECT_EQ(text.subStr(99), "");
  EXPECT_FALSE(text.subStr(99).isNull());
  EXPECT_EQ(text.subStr(0).data(), text.data()) << "the whole text is no copy";
}

TEST(QORString, TrimRemovesListedBytesAtBothEnds) {
  QORString text(" \t'it''s' ");
  EXPECT_EQ(text.trim(" \t"), "'it''s'");
  EXPECT_EQ(text.trim("'"), "it''s");
  EXPECT_EQ(text.trim(""), "it''s");
  QORString all("xxx");
  EXPECT_EQ(all.trim("x"), "");
  QORString empty("");
  EXPECT_EQ(empty.trim("x"), "");
}

TEST(QORString, UpperCaseTouchesAsciiLettersOnly) {
  EXPECT_EQ(QORString::toUpperCase("az_AZ09\xC3\xA4"), "AZ_AZ09\xC3\xA4");
  const QORString upper("ABC");
  EXPECT_EQ(QORString::toUpperCase(upper).data(), upper.data()) << "nothing to do, nothing copied";
}

TEST(QORString, IsNumericWantsSignAndDigitsAlone) {
  for (const char* text : {"0", "12", "-3", "+4", "00018446744073709551616"}) {
    EXPECT_TRUE(QORString(text).isNumeric()) << text;
  }
  for (const char* text : {"", "-", "+", "1.5", " 1", "1 ", "--1", "1e3", "0x1"}) {
    EXPECT_FALSE(QORString(text).isNumeric()) << text;
  }
}

TEST(QORString, UnsignedNumberSaturates) {
  EXPECT_EQ(QORString("0").atoui64(), 0U);
  EXPECT_EQ(QORString("18446744073709551615").atoui64(), UINT64_MAX);
  EXPECT_EQ(QORString("18446744073709551616").atoui64(), UINT64_MAX);
  EXPECT_EQ(QORString("99999999999999999999999").atoui64(), UINT64_MAX);
  EXPECT_EQ(QORString("18446744073709551614x").atoui64(), UINT64_MAX - 1);
  EXPECT_EQ(QORString("12abc3").atoui64(), 12U);
  EXPECT_EQ(QORString("abc").atoui64(), 0U);
  EXPECT_EQ(QORString("-5").atoui64(), 0U) << "no leading digits";
  EXPECT_EQ(QORString().atoui64(), 0U);
}

TEST(QORString, SignedNumberSaturatesAtBothEnds) {
  EXPECT_EQ(QORString("-12").atoi(), -12);
  EXPECT_EQ(QORString("+7x").atoi(), 7);
  EXPECT_EQ(QORString("2147483647").atoi(), INT32_MAX);
  EXPECT_EQ(QORString("2147483648").atoi(), INT32_MAX);
  EXPECT_EQ(QORString("-2147483648").atoi(), INT32_MIN);
  EXPECT_EQ(QORString("-99999999999999999999").atoi(), INT32_MIN);
  EXPECT_EQ(QORString("-").atoi(), 0);
  EXPECT_EQ(QORString("--5").atoi(), 0);
}

TEST(QORString, NumbersAsText) {
  EXPECT_EQ(QORString::number(UINT64_MAX), "18446744073709551615");
  EXPECT_EQ(QORString::number(INT64_MIN), "-9223372036854775808");
  EXPECT_EQ(QORString::number(QORuint64{0}), "0");
}

TEST(QORString, Concatenation) {
  EXPECT_EQ(QORString("a") + QORString("b") + "c", "abc");
  EXPECT_EQ("x" + QORString("y"), "xy");
  QORString text;
  text += 'a';
  text += static_cast<const char*>(nullptr);
  text += QORString();
  EXPECT_EQ(text, "a");
}

TEST(QORString, AppendsItself) {
  QORString text("ab");
  text += text;
  EXPECT_EQ(text, "abab");
  text.reserve(100);
  text += text;
  EXPECT_EQ(text, "abababab");
  text.append(text.view().substr(1, 2));
  EXPECT_EQ(text, "ababababba");
}

TEST(QORString, AppendingByteByByteCostsFewBuffers) {
  QORString text;
  int buffers = 0;
  const char* last = nullptr;
  for (int i = 0; i < 100000; ++i) {
    text += 'x';
    buffers += text.data() == last ? 0 : 1;
    last = text.data();
  }
  EXPECT_EQ(text.length(), 100000U);
  EXPECT_LT(buffers, 60);
}

TEST(QORString, ReserveKeepsTheText) {
  QORString text("abc");
  const QORString copy(text);
  text.reserve(1000);
  const char* const buffer = text.data();
  text += "def";
  EXPECT_EQ(text, "abcdef");
  EXPECT_EQ(text.data(), buffer);
  EXPECT_EQ(copy, "abc");
}

TEST(QORString, OrdersByBytes) {
  EXPECT_TRUE(QORString("a") < QORString("b"));
  EXPECT_FALSE(QORString("b") < QORString("a"));
  EXPECT_TRUE(QORString("") < QORString("a"));
}

TEST(QORString, StreamsAllBytes) {
  std::ostringstream out;
  out << QORString("a\0b", 3) << QORString();
  EXPECT_EQ(out.str(), std::string("a\0b", 3));
}

TEST(QORString, HashIsFnv1a) {
  EXPECT_EQ(hashKeyQORString(""), 2166136261U);
  EXPECT_EQ(hashKeyQORString("a"), 0xE40C292CU);
  EXPECT_EQ(hashKeyQORString("foobar"), 0xBF9CF968U);
  EXPECT_EQ(hashKeyBytes("bar", hashKeyBytes("foo")), 0xBF9CF968U);
}

TEST(QORString, FindsAlikeInShortAndLongTexts) {
  for (const std::size_t length : {10U, 127U, 128U, 129U, 1000U}) {
    std::string text(length, 'a');
    text.back() = 'b';
    const QORString whole(text.data(), text.size());
    EXPECT_EQ(whole.find("ab"), length - 2);
    EXPECT_EQ(whole.find("b"), length - 1);
    EXPECT_EQ(whole.find("aa", 3), 3U);
    EXPECT_EQ(whole.find("", length), length);
    EXPECT_EQ(whole.find("ba"), QORString::npos);
    EXPECT_EQ(whole.find("a", length + 1), QORString::npos);
  }
}

TEST(QORString, CopiesMayBeMadeAndDroppedOnSeveralThreads) {
  const QORString text("a text that several threads copy");
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([copy = text] {
      for (int i = 0; i < 20000; ++i) {
        QORString mine(copy);
        if (i % 100 == 0) mine += "!";
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(text, "a text that several threads copy");
}

}  // namespace
