// What bytes and names of the language are.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Text.h"

TEST(Text, LettersAreThoseOfAsciiAndTheUnderscore) {
  for (const char c : {'a', 'z', 'A', 'Z', '_'}) EXPECT_TRUE(QORQL_isLetter(c) && QORQL_isWordByte(c)) << c;
  for (const char c : {'@', '[', '`', '{', '0', ' ', '\xE4'}) EXPECT_FALSE(QORQL_isLetter(c)) << c;
}

TEST(Text, DigitsBelongToWordsAndAreNoLetters) {
  for (const char c : {'0', '9'}) EXPECT_TRUE(QORQL_isDigit(c) && QORQL_isWordByte(c) && !QORQL_isLetter(c)) << c;
  for (const char c : {'/', ':', 'a'}) EXPECT_FALSE(QORQL_isDigit(c)) << c;
}

TEST(Text, BlanksSeparateWords) {
  for (const char c : {' ', '\t', '\n', '\r'}) EXPECT_TRUE(QORQL_isBlank(c) && !QORQL_isWordByte(c));
  for (const char c : {'\0', '\v', 'x'}) EXPECT_FALSE(QORQL_isBlank(c));
}

TEST(Text, AFoldedNameEqualsEverySpelling) {
  EXPECT_EQ(QORQL_foldedName("Disk_1"), QORQL_foldedName("dISK_1"));
  EXPECT_NE(QORQL_foldedName("Disk_1"), QORQL_foldedName("Disk_2"));
  EXPECT_EQ(QORQL_foldedName(""), "");
}

TEST(Text, AMissingTextIsEmpty) {
  EXPECT_TRUE(QORQL_textOrEmpty({}).isEmpty());
  EXPECT_EQ(QORQL_textOrEmpty(QORSmrPtr<QORString>(new QORString("x"))), QORString("x"));
}

TEST(Text, KeysHashByTheirBytes) {
  EXPECT_EQ(QORQL_TextKeyHash()("Disk"), QORQL_TextKeyHash()(QORString("Disk")));
  EXPECT_NE(QORQL_TextKeyHash()("Disk"), QORQL_TextKeyHash()("DISK"));
}
