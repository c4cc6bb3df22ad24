// The lexical rules: what is a token, how long it is, and what is no token.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "ParserSupport.h"

extern "C" {
int yywrap();
extern char* yylval;
extern int lineno;
}

namespace {

using parsertest::plain;
using testing::ElementsAre;
using Tokens = std::vector<std::pair<int, std::string>>;

Tokens scan(const QORString& text) {
  Tokens tokens;
  QORQL_Lexer lexer(text, false);
  for (; lexer.getCurrent().getType() != TokenEOF; lexer.next(false)) {
    tokens.emplace_back(lexer.getCurrent().getType(), plain(lexer.getCurrent().getValue()));
  }
  return tokens;
}

std::vector<int> types(const QORString& text) {
  std::vector<int> found;
  for (const auto& token : scan(text)) found.push_back(token.first);
  return found;
}

// What scanning a text writes to standard output.
std::string echoOf(const QORString& text) {
  testing::internal::CaptureStdout();
  scan(text);
  std::cout.flush();
  return testing::internal::GetCapturedStdout();
}

struct Spelling {
  const char* text;
  int type;
};

class OneToken : public testing::TestWithParam<Spelling> {};

TEST_P(OneToken, HasItsTypeAndItsText) {
  const Spelling& spelling = GetParam();
  EXPECT_EQ(scan(spelling.text), (Tokens{{spelling.type, spelling.text}}));
}

INSTANTIATE_TEST_SUITE_P(Operators, OneToken,
                         testing::Values(Spelling{"*", 260}, Spelling{"=", 261}, Spelling{"!=", 262},
                                         Spelling{"<>", 262}, Spelling{"<", 263}, Spelling{"<=", 264},
                                         Spelling{">", 265}, Spelling{">=", 266}, Spelling{"~", 267},
                                         Spelling{"+", 268}, Spelling{"-", 269}, Spelling{"/", 270}, Spelling{",", 274},
                                         Spelling{"(", 275}, Spelling{")", 276}, Spelling{".", 290},
                                         Spelling{"*=", 292}, Spelling{"=*", 293}, Spelling{"*=*", 294},
                                         Spelling{"::", 298}, Spelling{"[", 299}, Spelling{"]", 300}));

INSTANTIATE_TEST_SUITE_P(SingleCharacters, OneToken,
                         testing::Values(Spelling{"!", '!'}, Spelling{"\"", '"'}, Spelling{"#", '#'},
                                         Spelling{"&", '&'}, Spelling{";", 59}, Spelling{"{", '{'}, Spelling{"}", '}'},
                                         Spelling{":", 58}));

INSTANTIATE_TEST_SUITE_P(LiteralsAndNames, OneToken,
                         testing::Values(Spelling{"x", 277}, Spelling{"_x9", 277}, Spelling{"ISNULL", 277},
                                         Spelling{"SELECTED", 277}, Spelling{"QUERYFUNCTION", 277}, Spelling{"0", 279},
                                         Spelling{"007", 279}, Spelling{"1.5", 280}, Spelling{"12.5E10", 280},
                                         Spelling{"1.5E-3", 280}, Spelling{"1.5e7", 280}));

class Keyword : public testing::TestWithParam<Spelling> {};

TEST_P(Keyword, IsFoundInAnyCaseAndKeepsItsSpelling) {
  const Spelling& keyword = GetParam();
  std::string lower = keyword.text;
  for (char& letter : lower) letter = static_cast<char>(letter | 0x20);
  std::string mixed = lower;
  mixed[0] = keyword.text[0];
  for (const std::string& spelling : {std::string(keyword.text), lower, mixed}) {
    EXPECT_EQ(scan(spelling.c_str()), (Tokens{{keyword.type, spelling}}));
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, Keyword,
    testing::Values(Spelling{"SELECT", 257}, Spelling{"FROM", 258}, Spelling{"WHERE", 259}, Spelling{"AND", 271},
                    Spelling{"OR", 272}, Spelling{"NOT", 273}, Spelling{"TRUE", 281}, Spelling{"FALSE", 281},
                    Spelling{"LOCAL", 282}, Spelling{"GLOBAL", 283}, Spelling{"FORMAT", 284}, Spelling{"AS", 285},
                    Spelling{"XML", 286}, Spelling{"HTML", 287}, Spelling{"CSV", 288}, Spelling{"LIKE", 291},
                    Spelling{"IS", 295}, Spelling{"NULL", 296}, Spelling{"ISA", 297}, Spelling{"ANY", 301},
                    Spelling{"EVERY", 302}, Spelling{"IN", 303}, Spelling{"SATISFIES", 304}, Spelling{"FIRST", 305},
                    Spelling{"ASC", 306}, Spelling{"DESC", 307}, Spelling{"BY", 308}, Spelling{"ORDER", 309},
                    Spelling{"DISTINCT", 310}, Spelling{"CLASSQUALIFIER", 311}, Spelling{"PROPERTYQUALIFIER", 312}),
    [](const auto& info) { return info.param.text; });

struct Cut {
  const char* name;
  const char* text;
  Tokens tokens;
};

class LongestMatch : public testing::TestWithParam<Cut> {};

TEST_P(LongestMatch, CutsTheText) { EXPECT_EQ(scan(GetParam().text), GetParam().tokens); }

INSTANTIATE_TEST_SUITE_P(
    Cuts, LongestMatch,
    testing::Values(
        Cut{"Statement", "SeLeCt * FrOm x", {{257, "SeLeCt"}, {260, "*"}, {258, "FrOm"}, {277, "x"}}},
        Cut{"FullJoin", "a*=*b", {{277, "a"}, {294, "*=*"}, {277, "b"}}},
        Cut{"RightJoinThenAsterisk", "a=**b", {{277, "a"}, {293, "=*"}, {260, "*"}, {277, "b"}}},
        Cut{"TwoEquals", "a==b", {{277, "a"}, {261, "="}, {261, "="}, {277, "b"}}},
        Cut{"OneColon", "x:y", {{277, "x"}, {58, ":"}, {277, "y"}}},
        Cut{"Scope", "x::y", {{277, "x"}, {298, "::"}, {277, "y"}}},
        Cut{"ThreeColons", ":::", {{298, "::"}, {58, ":"}}},
        Cut{"NoPlusInExponent", "1.5e+3", {{280, "1.5"}, {277, "e"}, {268, "+"}, {279, "3"}}},
        Cut{"ExponentWithoutDigits", "1.5e", {{280, "1.5"}, {277, "e"}}},
        Cut{"MinusWithoutDigits", "1.5e-", {{280, "1.5"}, {277, "e"}, {269, "-"}}},
        Cut{"TrailingDot", "1.", {{279, "1"}, {290, "."}}}, Cut{"LeadingDot", ".5", {{290, "."}, {279, "5"}}},
        Cut{"ExponentOfInteger", "1e5", {{279, "1"}, {277, "e5"}}},
        Cut{"NumberThenName", "12ab", {{279, "12"}, {277, "ab"}}},
        Cut{"SignsAreTokens", "-5", {{269, "-"}, {279, "5"}}}, Cut{"LessThenGreater", "< >", {{263, "<"}, {265, ">"}}},
        Cut{"BangAlone", "! =", {{'!', "!"}, {261, "="}}},
        Cut{"KeywordAtDot", "from.select", {{258, "from"}, {290, "."}, {257, "select"}}},
        Cut{"Blanks", "a\t \tb\nc", {{277, "a"}, {277, "b"}, {277, "c"}}},
        Cut{"TwoStrings", "'it''s'", {{278, "it"}, {278, "s"}}}, Cut{"EmptyString", "''", {{278, ""}}},
        Cut{"StringKeepsCase", "'SeLeCt'", {{278, "SeLeCt"}}}, Cut{"StringHoldsBlanks", "' a\tb '", {{278, " a\tb "}}}),
    [](const auto& info) { return info.param.name; });

TEST(Scanner, ANameMayHoldNoOtherLettersThanAscii) {
  EXPECT_EQ(echoOf("a\xc3\xa4z"), "\xc3\xa4");
  testing::internal::CaptureStdout();
  EXPECT_EQ(scan("a\xc3\xa4z"), (Tokens{{277, "a"}, {277, "z"}}));
  testing::internal::GetCapturedStdout();
}

TEST(Scanner, OtherCharactersGoToStandardOutputAndAreSkipped) {
  EXPECT_EQ(echoOf("a$b%c@d?e|f^g\\h`"), "$%@?|^\\`");
  EXPECT_EQ(echoOf("a\r\nb\r\n"), "\r\r");
}

TEST(Scanner, AQuoteAtTheEndGoesToStandardOutputAndScanningContinuesAfterIt) {
  EXPECT_EQ(echoOf("x '"), "'");
  testing::internal::CaptureStdout();
  EXPECT_EQ(scan("x 'ab c"), (Tokens{{277, "x"}, {277, "ab"}, {277, "c"}}));
  testing::internal::GetCapturedStdout();
}

TEST(Scanner, AnUnterminatedStringIsReportedAndSkipped) {
  EXPECT_EQ(echoOf("a 'bc\nd"), "unterminated string in line 1 ((null)).\n");
  EXPECT_EQ(echoOf("a\n\n'b\n'c\n"),
            "unterminated string in line 1 ((null)).\nunterminated string in line 1 ((null)).\n");
  testing::internal::CaptureStdout();
  EXPECT_EQ(scan("a 'bc\nd"), (Tokens{{277, "a"}, {277, "d"}}));
  testing::internal::GetCapturedStdout();
}

QORuint32 lineAtEnd(const QORString& text) {
  testing::internal::CaptureStdout();
  QORQL_Lexer lexer(text, false);
  lexer.skipUntilToken(TokenEOF);
  testing::internal::GetCapturedStdout();
  return lexer.getCurrentLineNr();
}

TEST(Scanner, CountsLinesFromOne) {
  EXPECT_EQ(lineAtEnd(""), 1U);
  EXPECT_EQ(lineAtEnd("a b"), 1U);
  EXPECT_EQ(lineAtEnd("a\nb"), 2U);
  EXPECT_EQ(lineAtEnd("\n\na\n\n"), 5U);
  EXPECT_EQ(lineAtEnd("a\r\nb"), 2U);
}

TEST(Scanner, CountsTheNewlineOfAnUnterminatedStringTwice) {
  EXPECT_EQ(lineAtEnd("'a\n"), 3U);
  EXPECT_EQ(lineAtEnd("'a\n'b\nc"), 5U);
}

TEST(Scanner, ZeroBytesAreCharactersLikeOthers) {
  EXPECT_EQ(echoOf(QORString("a\0b", 3)), std::string("\0", 1));
  testing::internal::CaptureStdout();
  EXPECT_EQ(types(QORString("a\0b \0 c", 7)), (std::vector<int>{277, 277, 277}));
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(scan(QORString("'a\0b' c", 7)), (Tokens{{278, std::string("a\0b", 3)}, {277, "c"}}));
}

TEST(Scanner, ReturnsTheEndOfInputAgainAndAgain) {
  QORQL_Lexer lexer("x", false);
  for (int call = 0; call < 5; ++call) EXPECT_EQ(lexer.next(false).getType(), TokenEOF);
}

TEST(Scanner, TakesTokensOfAnyLength) {
  const std::string name(3'000'000, 'n');
  EXPECT_EQ(scan((name + " '" + name + "' ").c_str()), (Tokens{{277, name}, {278, name}}));
}

TEST(Scanner, ReadsTextsLongerThanItsBuffer) {
  std::string text;
  for (int i = 0; i < 20'000; ++i) text += "ab = 'cd' ";
  const std::vector<int> found = types(text.c_str());
  ASSERT_EQ(found.size(), 60'000U);
  for (std::size_t i = 0; i < found.size(); i += 3) {
    ASSERT_THAT(std::vector<int>(found.begin() + static_cast<long>(i), found.begin() + static_cast<long>(i) + 3),
                ElementsAre(277, 261, 278));
  }
}

TEST(Scanner, ExportsItsPlainNames) {
  EXPECT_EQ(yywrap(), 1);
  EXPECT_EQ(lineno, 1);
  EXPECT_EQ(yylval, nullptr);
}

// Where the token stands: the text there begins as the token does.
void expectPlaces(const std::string& text) {
  const QORString query(text.data(), text.size());
  testing::internal::CaptureStdout();
  QORQL_Lexer lexer(query, false);
  for (; lexer.getCurrent().getType() != TokenEOF; lexer.next(false)) {
    const QORQL_Token& token = lexer.getCurrent();
    std::string written(token.getValue().view());
    if (token.getType() == TokenSTRINGLITERAL) written = "'" + written + "'";
    EXPECT_EQ(text.substr(token.getOffset(), written.size()), written) << text << " at " << token.getOffset();
  }
  EXPECT_EQ(lexer.getCurrent().getOffset(), text.size()) << text;
  std::cout.flush();
  testing::internal::GetCapturedStdout();
}

TEST(Scanner, TokensKnowWhereTheyStand) {
  expectPlaces("SELECT  a.b,\n  'text' FROM C WHERE x<>-1.5e3 AND y!=*=*z");
  expectPlaces("$ a | b\r\n'left open\nc 'whole' d \x80 e");
  expectPlaces("a 'open at the end");
  expectPlaces("'' '' a");
  expectPlaces("");
  expectPlaces(std::string("a \0 b '\0' c", 12));
}

TEST(Scanner, TokensOfRandomTextsKnowWhereTheyStand) {
  constexpr char kPieces[] = "aZ_09 \n\t'.*=<>!:|$#&;{}~+-/,()[]\x80";
  std::mt19937 random(7);
  std::uniform_int_distribution<std::size_t> piece(0, sizeof kPieces - 2);
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    for (int i = 0; i < 30; ++i) text += kPieces[piece(random)];
    expectPlaces(text);
  }
}

}  // namespace
