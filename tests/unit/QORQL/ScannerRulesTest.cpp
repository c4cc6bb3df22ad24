// The scanner beside the lexical rules as flex reads them: the same tokens, lines and output for any text.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/QORQL_Scanner.h"
#include "ScannerJudge.h"

namespace {

ScannedText scanByEngine(std::string_view text) {
  testing::internal::CaptureStdout();
  QORQL_Scanner scanner(text);
  ScannedText scanned;
  QORQL_Token token;
  do {
    scanner.read(token);
    scanned.tokens.push_back({token.getType(), std::string(token.text()), scanner.line()});
  } while (token.getType() != TokenEOF);
  std::cout.flush();
  std::fflush(stdout);
  scanned.echo = testing::internal::GetCapturedStdout();
  return scanned;
}

void expectSame(const std::string& text) {
  const ScannedText expected = scanByRules(text);
  const ScannedText scanned = scanByEngine(text);
  EXPECT_EQ(scanned.tokens, expected.tokens) << text;
  // The order of characters and reports depends on how the two streams are flushed.
  EXPECT_EQ(std::multiset<char>(scanned.echo.begin(), scanned.echo.end()),
            std::multiset<char>(expected.echo.begin(), expected.echo.end()))
      << text;
}

TEST(ScannerRules, HoldForEveryPairAndTripleOfSigns) {
  const std::string signs = "*=!<>:.-+~/,()[]\"#&;{}'\n eE1x_$";
  std::string all;
  for (const char a : signs) {
    for (const char b : signs) {
      for (const char c : signs) (((all += a) += b) += c) += '\n';
    }
  }
  expectSame(all);
}

TEST(ScannerRules, HoldForEveryByteAlone) {
  for (int byte = 0; byte < 256; ++byte) expectSame(std::string("a") + static_cast<char>(byte) + "b");
}

TEST(ScannerRules, HoldForWordsLikeKeywords) {
  std::string all;
  for (const char* word : {"select",
                           "from",
                           "where",
                           "and",
                           "or",
                           "not",
                           "local",
                           "global",
                           "format",
                           "as",
                           "xml",
                           "html",
                           "csv",
                           "true",
                           "false",
                           "like",
                           "is",
                           "null",
                           "isa",
                           "any",
                           "every",
                           "in",
                           "satisfies",
                           "first",
                           "asc",
                           "desc",
                           "by",
                           "order",
                           "distinct",
                           "classqualifier",
                           "propertyqualifier"}) {
    const std::string keyword(word);
    std::string upper;
    for (const char c : keyword) upper += static_cast<char>(c - 'a' + 'A');
    for (const std::string& like : {keyword, upper, keyword + "x", "x" + keyword, keyword + "_", keyword + "1",
                                    keyword.substr(1), keyword.substr(0, keyword.size() - 1), keyword + keyword,
                                    upper.substr(0, 1) + keyword.substr(1), "_" + keyword.substr(1)}) {
      all += like + ' ';
    }
  }
  expectSame(all);
}

TEST(ScannerRules, HoldForTextsByChance) {
  const std::vector<std::string> pieces{"select",
                                        "Size",
                                        "'a'",
                                        "'",
                                        "\n",
                                        "''",
                                        "\"q\"",
                                        "'\"q\"'",
                                        "1",
                                        "23.5",
                                        "1.5e-",
                                        "1.5e3",
                                        "1.e",
                                        "e+2",
                                        " ",
                                        "\t",
                                        "\r\n",
                                        "*=*",
                                        "*=",
                                        "=*",
                                        "!=",
                                        "<>",
                                        "<=",
                                        "::",
                                        ":",
                                        "$",
                                        "\xC3",
                                        "_",
                                        "isa",
                                        ".",
                                        "'x\n",
                                        "'end'",
                                        "--",
                                        "(",
                                        ")",
                                        "9e9",
                                        std::string(1, '\0'),
                                        "E",
                                        "-",
                                        "0.0E-0"};
  std::mt19937 random(11);
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (std::size_t count = random() % 12; count > 0; --count) text += pieces[random() % pieces.size()];
    expectSame(text);
    if (HasFailure()) return;
  }
}

}  // namespace
