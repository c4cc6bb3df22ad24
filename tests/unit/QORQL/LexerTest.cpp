// The token stream: advancing, looking ahead and back, skipping and re-visiting.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_Messages.h"
#include "ParserSupport.h"

namespace {

using parsertest::plain;
using parsertest::thrownBy;

std::string current(QORQL_Lexer& lexer) { return plain(lexer.getCurrent().getValue()); }

TEST(Lexer, HasTheFirstTokenCurrentAndNoneBefore) {
  QORQL_Lexer lexer("SELECT x", true);
  EXPECT_EQ(lexer.getCurrent().getType(), TokenSELECT);
  EXPECT_EQ(lexer.lookBack().getType(), TokenINVALID);
  EXPECT_EQ(plain(lexer.lookBack().getValue()), "");
}

TEST(Lexer, AdvancesAndRemembersOneToken) {
  QORQL_Lexer lexer("a b c", false);
  EXPECT_EQ(plain(lexer.next(false).getValue()), "b");
  EXPECT_EQ(plain(lexer.lookBack().getValue()), "a");
  EXPECT_EQ(plain(lexer.next(false).getValue()), "c");
  EXPECT_EQ(plain(lexer.lookBack().getValue()), "b");
}

TEST(Lexer, AReferenceToTheCurrentTokenStaysTheCurrentToken) {
  QORQL_Lexer lexer("a b c d ; f g", false);
  QORQL_Token& token = lexer.getCurrent();
  QORQL_Token& before = lexer.lookBack();
  lexer.next(false);
  EXPECT_EQ(plain(token.getValue()), "b");
  lexer.lookAhead(2);
  EXPECT_EQ(plain(token.getValue()), "b");
  EXPECT_EQ(&lexer.next(false), &token);  // out of the queue
  EXPECT_EQ(plain(token.getValue()), "c");
  EXPECT_EQ(plain(before.getValue()), "b");
  lexer.next(false);
  lexer.skipUntilTokenAndRevisit(static_cast<QORQL_TokenType>(';'));
  EXPECT_EQ(plain(token.getValue()), ";");
  EXPECT_EQ(&lexer.lookAhead(0), &token);
  EXPECT_EQ(&lexer.next(true), &token);
  EXPECT_EQ(plain(token.getValue()), "d");
  EXPECT_EQ(&lexer.skipUntilToken(TokenEOF), &token);
  EXPECT_EQ(token.getType(), TokenEOF);
  EXPECT_EQ(plain(before.getValue()), "g");
}

TEST(Lexer, LooksAheadWithoutConsuming) {
  QORQL_Lexer lexer("x = 1 y", false);
  EXPECT_EQ(plain(lexer.lookAhead(2).getValue()), "1");
  EXPECT_EQ(lexer.lookAhead(2).getType(), TokenDECIMALLITERAL);
  EXPECT_EQ(lexer.lookAhead(1).getType(), TokenEQUALS);
  EXPECT_EQ(plain(lexer.lookAhead(0).getValue()), "x");
  EXPECT_EQ(plain(lexer.lookAhead(-1).getValue()), "x");
  EXPECT_EQ(current(lexer), "x");
  EXPECT_EQ(lexer.next(false).getType(), TokenEQUALS);
  EXPECT_EQ(plain(lexer.next(false).getValue()), "1");
  EXPECT_EQ(plain(lexer.next(false).getValue()), "y");
}

TEST(Lexer, QueuedTokensAreConsumedWithoutTheScanner) {
  QORQL_Lexer lexer("x\n=\n1\ny", false);
  lexer.lookAhead(2);
  EXPECT_EQ(lexer.getCurrentLineNr(), 3U);
  lexer.next(false);
  lexer.next(false);
  EXPECT_EQ(current(lexer), "1");
  EXPECT_EQ(lexer.getCurrentLineNr(), 3U);
  lexer.next(false);
  EXPECT_EQ(lexer.getCurrentLineNr(), 4U);
}

TEST(Lexer, LooksPastTheEnd) {
  QORQL_Lexer lexer("x", false);
  EXPECT_EQ(lexer.lookAhead(7).getType(), TokenEOF);
  EXPECT_EQ(current(lexer), "x");
}

TEST(Lexer, TheEndOfInputIsOneCharacterWithCodeZero) {
  QORQL_Lexer lexer("", false);
  EXPECT_EQ(lexer.getCurrent().getType(), TokenEOF);
  EXPECT_EQ(current(lexer), std::string("\0", 1));
}

TEST(Lexer, RemovesDoubleQuotesAtBothEnds) {
  QORQL_Lexer lexer("SELECT 'a\"b\"' '\"\"' '\"x' 'y'", false);
  EXPECT_EQ(plain(lexer.next(false).getValue()), "a\"b");
  EXPECT_EQ(lexer.getCurrent().getType(), TokenSTRINGLITERAL);
  EXPECT_EQ(plain(lexer.next(false).getValue()), "");
  EXPECT_EQ(plain(lexer.next(false).getValue()), "x");
  EXPECT_EQ(plain(lexer.next(false).getValue()), "y");
}

TEST(Lexer, ACharacterTokenHoldsItsCharacter) {
  QORQL_Lexer lexer("; \"", false);
  EXPECT_EQ(lexer.getCurrent().getType(), 59);
  EXPECT_EQ(current(lexer), ";");
  EXPECT_EQ(lexer.next(false).getType(), '"');
  EXPECT_EQ(current(lexer), "\"");
}

TEST(Lexer, NothingToRevisitIsTheEndOfInput) {
  QORQL_Lexer lexer("a b", false);
  EXPECT_EQ(lexer.next(true).getType(), TokenEOF);
  EXPECT_EQ(current(lexer), "");
  EXPECT_EQ(plain(lexer.lookBack().getValue()), "a");
  EXPECT_EQ(plain(lexer.next(false).getValue()), "b");
}

TEST(Lexer, SkipsToATokenButNeverTestsTheCurrentOne) {
  QORQL_Lexer lexer("a , b , c", false);
  EXPECT_EQ(lexer.skipUntilToken(TokenCOMMA).getType(), TokenCOMMA);
  EXPECT_EQ(plain(lexer.lookAhead(1).getValue()), "b");
  EXPECT_EQ(lexer.skipUntilToken(TokenCOMMA).getType(), TokenCOMMA);
  EXPECT_EQ(plain(lexer.lookAhead(1).getValue()), "c");
  EXPECT_EQ(lexer.skipUntilToken(TokenCOMMA).getType(), TokenEOF);
}

TEST(Lexer, RevisitsWhatItSkipped) {
  QORQL_Lexer lexer("a b FROM c", false);
  EXPECT_EQ(lexer.skipUntilTokenAndRevisit(TokenFROM).getType(), TokenFROM);
  EXPECT_EQ(plain(lexer.lookBack().getValue()), "b");
  EXPECT_EQ(lexer.skipUntilTokenAndRevisit(TokenFROM).getType(), TokenFROM);
  EXPECT_EQ(plain(lexer.next(true).getValue()), "a");
  EXPECT_EQ(plain(lexer.next(true).getValue()), "b");
  EXPECT_EQ(lexer.next(true).getType(), TokenEOF);
  EXPECT_EQ(plain(lexer.next(false).getValue()), "c");
}

TEST(Lexer, SkippingForRevisitBypassesTheLookAhead) {
  QORQL_Lexer lexer("a b c FROM d", false);
  lexer.lookAhead(1);
  lexer.skipUntilTokenAndRevisit(TokenFROM);
  EXPECT_EQ(plain(lexer.next(true).getValue()), "a");
  EXPECT_EQ(plain(lexer.next(true).getValue()), "c");
  EXPECT_EQ(plain(lexer.next(false).getValue()), "b");
}

TEST(Lexer, MatchesATokenWithoutAdvancing) {
  QORQL_Lexer lexer("SELECT\nx", false);
  EXPECT_EQ(thrownBy([&] { lexer.matchToken(TokenSELECT); }), "nothing");
  EXPECT_EQ(lexer.getCurrent().getType(), TokenSELECT);
  EXPECT_EQ(thrownBy([&] { lexer.matchToken(TokenFROM); }), "parse 2@1: Unexpected token 'SELECT' found");
  lexer.next(false);
  EXPECT_EQ(thrownBy([&] { lexer.matchToken(TokenFROM); }), "parse 2@2: Unexpected token 'x' found");
  lexer.next(false);
  EXPECT_EQ(thrownBy([&] { lexer.matchToken(TokenFROM); }), "parse 2@2: Unexpected token '' found");
}

TEST(Lexer, KeepsTheCallersCharactersAndNames) {
  const QORString text("SELECT");
  QORQL_Lexer lexer(text, false);
  EXPECT_EQ(lexer.getBuffer(), text.c_str());
  EXPECT_TRUE(lexer.getFileName().isEmpty());
  EXPECT_TRUE(lexer.getPathName().isEmpty());
  const QORQL_Lexer named(text, "file", "path");
  EXPECT_EQ(plain(named.getFileName()), "file");
  EXPECT_EQ(plain(named.getPathName()), "path");
}

TEST(Lexer, CopiesOfTokensOutliveItAndTheText) {
  QORQL_Token copy;
  QORQL_Token assigned;
  {
    const QORString text(std::string("SELECT LongName 'a literal'").c_str());
    QORQL_Lexer lexer(text, false);
    copy = lexer.next(false);
    const QORQL_Token literal(lexer.next(false));
    assigned = literal;
    EXPECT_EQ(literal, lexer.getCurrent());
  }
  EXPECT_EQ(plain(copy.getValue()), "LongName");
  EXPECT_EQ(copy.getType(), TokenID);
  EXPECT_EQ(copy.getOffset(), 7U);
  QORSlabs slabs;
  EXPECT_EQ(plain(assigned.newText(slabs)), "a literal");
  EXPECT_EQ(assigned.text(), "a literal");
  EXPECT_EQ(assigned.getOffset(), 16U);
}

TEST(Lexer, ReadsTheTextAsItWasWhenTheCallersChanges) {
  QORString text("SELECT a, b FROM c");
  QORQL_Lexer lexer(text, false);
  text = "something else that is longer";
  for (const char* expected : {"a", ",", "b", "FROM", "c"}) EXPECT_EQ(plain(lexer.next(false).getValue()), expected);
}

TEST(Lexer, ATokensTextStaysTheSameHoweverItIsAsked) {
  QORQL_Lexer lexer("name 'second'", false);
  QORSlabs& slabs = lexer.slabs();
  const QORQL_Token& token = lexer.getCurrent();
  EXPECT_EQ(token.text(), "name");
  EXPECT_EQ(plain(token.newText(slabs)), "name");
  EXPECT_EQ(plain(token.getValue()), "name");
  EXPECT_EQ(token.text(), "name");
  EXPECT_EQ(plain(token.newText(slabs)), "name");
  EXPECT_EQ(lexer.getCurrent(), QORQL_Token("name", TokenID));
}

TEST(Lexer, LooksFarAheadAndTakesWhatItSaw) {
  QORQL_Lexer lexer("a b c d e", false);
  EXPECT_EQ(plain(lexer.lookAhead(1).getValue()), "b");
  EXPECT_EQ(plain(lexer.lookAhead(4).getValue()), "e");
  EXPECT_EQ(plain(lexer.lookAhead(2).getValue()), "c");
  for (const char* expected : {"b", "c", "d", "e", ""}) {
    EXPECT_EQ(plain(QORQL_printedText(lexer.next(false))), expected);
  }
  EXPECT_EQ(plain(lexer.lookBack().getValue()), "e");
  EXPECT_EQ(lexer.lookAhead(3).getType(), TokenEOF);
}

}  // namespace
