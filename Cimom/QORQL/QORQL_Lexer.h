// The token stream over one query text, with look-ahead and re-visiting.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_LEXER_H
#define QORQL_LEXER_H

#include "Cimom/QORQL/QORQL_Scanner.h"
#include "Cimom/QORQL/QORQL_Token.h"
#include "cmpbase.h"

struct QORQL_CheckMessage;
struct QORQL_ParseMessage;

// Made for one query text, read to its end by one parse. Belongs to one thread.
class QORQL_Lexer {
 public:
  // The first token is current afterwards. BORROWS the characters of the text
  // (getBuffer); the flag has no effect.
  QORQL_Lexer(const QORString& queryString, bool flag);
  // With a file and path name for diagnostics.
  QORQL_Lexer(const QORString& queryString, const QORString& fileName, const QORString& pathName);
  QORQL_Lexer(const QORQL_Lexer&) = delete;
  QORQL_Lexer& operator=(const QORQL_Lexer&) = delete;
  ~QORQL_Lexer();

  // The current token, whichever it is: the reference stays good, and shows each token that becomes current.
  QORQL_Token& getCurrent() noexcept { return _currentToken; }
  // Advances; with `revisit` it takes the tokens put aside instead, then end of input.
  QORQL_Token& next(bool revisit);
  // The token n places after the current one, until the next step; 0 is the current one.
  QORQL_Token& lookAhead(int n);
  // The token before the current one, as getCurrent() shows that one.
  QORQL_Token& lookBack() noexcept { return _previousToken; }
  // Advances at least once, until the type or the end of input is current.
  QORQL_Token& skipUntilToken(QORQL_TokenType type);
  // Puts aside every token before the type. REQUIRES that the type follows.
  QORQL_Token& skipUntilTokenAndRevisit(QORQL_TokenType type);
  // THROWS QORQL_ParseException code 2 "Unexpected token '<text>' found" on another type; does not advance.
  void matchToken(int type);

  // Where the current token begins, as a byte of the text.
  QORuint32 getOffset() const noexcept { return _currentToken.getOffset(); }
  // The line, from 1, that the scanner has come to, and what the constructor was given.
  QORuint32 getCurrentLineNr() const noexcept { return _scanner.line(); }
  const QORString& getFileName() const noexcept { return _fileName; }
  const QORString& getPathName() const noexcept { return _pathname; }
  // BORROWS: the caller's characters.
  const char* getBuffer() const noexcept { return _buffer; }
  // Where the nodes of the statement are made, which may outlive this.
  QORSlabs& slabs() noexcept { return _slabs; }
  // Whether names without a class go into the projection map: a condition's are bound later, by the class that has
  // them.
  bool recordsBareNames() const noexcept { return _recordsBareNames; }
  // Whether an association condition has been read: most statements have none, and then need no plan of associations.
  void noteAssociation() noexcept { _hasAssociation = true; }
  bool hasAssociation() const noexcept { return _hasAssociation; }

 private:
  friend class QORQL_NestingGuard;
  friend class QORQL_ConditionScope;

  QORQL_Token _getNext();
  QORQL_Token& _nextRevisitedToken();

  QORString _text;  // shared with the caller's, which may change
  QORQL_Scanner _scanner;
  QORSlabs _slabs;
  QORQL_Token _currentToken;
  QORQL_Token _previousToken;
  // What was read ahead: the first token apart, since it is mostly the only one, then the others.
  QORQL_Token _followingToken;
  QORValSlist<QORQL_Token> _nextTokens;
  bool _hasFollowing = false;
  const char* _buffer;
  QORValSlist<QORQL_Token> _revisitTokens;
  QORString _fileName;
  QORString _pathname;
  QORuint32 _nesting = 0;
  bool _recordsBareNames = true;
  bool _hasAssociation = false;
};

// The text of a token as messages print it: nothing for the end of the input.
QORString QORQL_printedText(const QORQL_Token& token);

// Each THROWS the message, as QORQL_Messages.h says: about the current token, at the lexer's line.
[[noreturn]] void QORQL_raise(const QORQL_ParseMessage& message, const QORQL_Lexer& lexer,
                              const QORString& argument = QORString());
[[noreturn]] void QORQL_raise(const QORQL_CheckMessage& message, const QORQL_Lexer& lexer);
// The argument is the text of the current token.
[[noreturn]] void QORQL_raiseAtToken(const QORQL_ParseMessage& message, QORQL_Lexer& lexer);
// About a word that was read before.
[[noreturn]] void QORQL_raiseAt(QORuint32 offset, const QORQL_ParseMessage& message, const QORQL_Lexer& lexer,
                                const QORString& argument = QORString());

#endif
