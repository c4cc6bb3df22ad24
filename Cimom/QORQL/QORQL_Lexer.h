// The token stream over one query text, with look-ahead and re-visiting.
#ifndef QORQL_LEXER_H
#define QORQL_LEXER_H

#include <memory>
#include <sstream>
#include <string_view>

#include "Cimom/QORQL/QORQL_Token.h"
#include "cmpbase.h"

class FlexLexer;

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

  QORQL_Token& getCurrent() noexcept { return _currentToken; }
  // Advances; with `revisit` it takes the tokens put aside instead, then end of input.
  QORQL_Token& next(bool revisit);
  // The token n places after the current one; 0 is the current one.
  QORQL_Token& lookAhead(int n);
  QORQL_Token& lookBack() noexcept { return _previousToken; }
  // Advances at least once, until the type or the end of input is current.
  QORQL_Token& skipUntilToken(QORQL_TokenType type);
  // Puts aside every token before the type. REQUIRES that the type follows.
  QORQL_Token& skipUntilTokenAndRevisit(QORQL_TokenType type);
  // THROWS QORQL_ParseException code 2 "Unexpected token '<text>' found" on another type; does not advance.
  void matchToken(int type);

  QORuint32 getCurrentLineNr() const;
  const QORString& getFileName() const noexcept { return _fileName; }
  const QORString& getPathName() const noexcept { return _pathname; }
  // BORROWS: the caller's characters.
  const char* getBuffer() const noexcept { return _buffer; }

 private:
  friend class QORQL_NestingGuard;

  QORQL_Token _getNext();
  QORQL_Token& _nextRevisitedToken();

  QORQL_Token _currentToken;
  QORQL_Token _previousToken;
  const char* _buffer;
  QORValSlist<QORQL_Token> _nextTokens;
  QORValSlist<QORQL_Token> _revisitTokens;
  int _currentTokenIndex = 0;
  std::unique_ptr<std::istringstream> _istream;
  std::string_view _text;    // what the stream holds
  std::size_t _scanned = 0;  // the end of the token that was scanned last
  std::unique_ptr<FlexLexer> _flexLexer;
  QORString _fileName;
  QORString _pathname;
  QORuint32 _nesting = 0;
};

#endif
