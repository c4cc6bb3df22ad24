// A text cut into words, numbers, literals and signs.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/Face/QORQL_TextPieces.h"

namespace {

using Kind = QORQL_TextPieces::Kind;

std::string cut(std::string_view text) {
  const QORQL_TextPieces pieces(text);
  std::string shown;
  for (const QORQL_TextPieces::Piece& piece : pieces.all()) {
    shown += "WNLS"[static_cast<int>(piece.kind)];
    shown += "(" + std::string(piece.text) + ")";
  }
  return shown;
}

TEST(TextPieces, AreWordsNumbersLiteralsAndSigns) {
  EXPECT_EQ(cut("SELECT a_1 FROM B"), "W(SELECT)W(a_1)W(FROM)W(B)");
  EXPECT_EQ(cut("12.5e3"), "N(12)S(.)N(5)W(e3)");
  EXPECT_EQ(cut("'it is'='x"), "L('it is')S(=)L('x)");
  EXPECT_EQ(cut("'open\nnext"), "L('open)W(next)");
  EXPECT_EQ(cut("a::b<>c<=d>=e!=f==g"), "W(a)S(::)W(b)S(<>)W(c)S(<=)W(d)S(>=)W(e)S(!=)W(f)S(=)S(=)W(g)");
  EXPECT_EQ(cut(" \t\r\n"), "");
}

TEST(TextPieces, AreFoundByTheirPlace) {
  const QORQL_TextPieces pieces("ab  cd");
  EXPECT_EQ(pieces.at(0), 0U);
  EXPECT_EQ(pieces.at(4), 1U);
  EXPECT_EQ(pieces.at(1), QORQL_TextPieces::kNowhere);
  EXPECT_EQ(pieces.at(6), QORQL_TextPieces::kNowhere);
  EXPECT_EQ(pieces.from(1), 1U);
  EXPECT_EQ(pieces.from(5), 2U);
}

TEST(TextPieces, AreComparedWithoutRegardToCase) {
  const QORQL_TextPieces pieces("From x==y");
  EXPECT_TRUE(pieces.is(0, "FROM"));
  EXPECT_FALSE(pieces.is(1, "FROM"));
  EXPECT_FALSE(pieces.is(99, "FROM"));
  EXPECT_TRUE(pieces.isWord(1));
  EXPECT_FALSE(pieces.isWord(2));
  EXPECT_FALSE(pieces.isJoined(1));
  EXPECT_TRUE(pieces.isJoined(3));
}

}  // namespace
