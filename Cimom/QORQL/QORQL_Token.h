// One token of a query text.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOKEN_H
#define QORQL_TOKEN_H

#include <string_view>

#include "cmpbase.h"

// Values 1 to 127 outside the enumeration are single characters of no grammar rule.
enum QORQL_TokenType {
  TokenEOF = 0,
  TokenINVALID = 256,
  TokenSELECT = 257,
  TokenFROM = 258,
  TokenWHERE = 259,
  TokenASTERISK = 260,
  TokenEQUALS = 261,
  TokenNOTEQUALS = 262,
  TokenLESS = 263,
  TokenLESSEQUAL = 264,
  TokenGREATER = 265,
  TokenGREATEREQUAL = 266,
  TokenTILDA = 267,
  TokenPLUS = 268,
  TokenMINUS = 269,
  TokenDIV = 270,
  TokenAND = 271,
  TokenOR = 272,
  TokenNOT = 273,
  TokenCOMMA = 274,
  TokenOPENPAREN = 275,
  TokenCLOSEPAREN = 276,
  TokenID = 277,
  TokenSTRINGLITERAL = 278,
  TokenDECIMALLITERAL = 279,
  TokenREALLITERAL = 280,
  TokenBOOLEANLITERAL = 281,
  TokenLOCAL = 282,
  TokenGLOBAL = 283,
  TokenFORMAT = 284,
  TokenAS = 285,
  TokenXML = 286,
  TokenHTML = 287,
  TokenCSV = 288,
  TokenQUERYFUNCTION = 289,
  TokenDOT = 290,
  TokenLIKE = 291,
  TokenLEFTJOIN = 292,
  TokenRIGHTJOIN = 293,
  TokenFULLOUTERJOIN = 294,
  TokenIS = 295,
  TokenNULL = 296,
  TokenISA = 297,
  TokenSCOPE = 298,
  TokenOPENSQUAREBRACK = 299,
  TokenCLOSESQUAREBRACK = 300,
  TokenANY = 301,
  TokenEVERY = 302,
  TokenIN = 303,
  TokenSATISFIES = 304,
  TokenFIRST = 305,
  TokenASC = 306,
  TokenDESC = 307,
  TokenBY = 308,
  TokenORDER = 309,
  TokenDISTINCT = 310,
  TokenCLASSQUALIFIER = 311,
  TokenPROPERTYQUALIFIER = 312
};

// Tokens that come from a scanner borrow its text until somebody asks for a
// string; copies own theirs.
class QORQL_Token {
 public:
  // Empty text, TokenINVALID.
  QORQL_Token() noexcept : _tokenValue(QORString::emptyString()) {}
  QORQL_Token(const QORString& value, QORQL_TokenType type, QORuint32 offset = 0)
      : _tokenValue(value), _tokenType(type), _offset(offset) {}
  // Becomes another token. BORROWS the text, for as long as the token is used and not copied.
  void borrow(std::string_view text, QORQL_TokenType type, QORuint32 offset) noexcept {
    if (!_tokenValue.isNull()) _tokenValue = QORString();
    _borrowed = text;
    _tokenType = type;
    _offset = offset;
  }
  QORQL_Token(const QORQL_Token& other) : QORQL_Token(other.getValue(), other._tokenType, other._offset) {}
  QORQL_Token(QORQL_Token&& other) noexcept = default;
  QORQL_Token& operator=(const QORQL_Token& other) { return *this = QORQL_Token(other); }
  QORQL_Token& operator=(QORQL_Token&& other) noexcept = default;
  ~QORQL_Token() = default;

  // The text of the token; made at the first call.
  const QORString& getValue() const {
    if (_borrowed.data() != nullptr) {
      _tokenValue = QORString(_borrowed);
      _borrowed = std::string_view();
    }
    return _tokenValue;
  }
  // The same as a view, which lives as long as the token, and as a string of its own in the slabs.
  std::string_view text() const noexcept { return _borrowed.data() != nullptr ? _borrowed : _tokenValue.view(); }
  QORString newText(QORSlabs& slabs) const { return {text(), slabs}; }
  QORQL_TokenType getType() const noexcept { return _tokenType; }
  // The byte of the query text at which it begins; for the end of the input, its length.
  QORuint32 getOffset() const noexcept { return _offset; }

  // Offsets are not compared.
  friend bool operator==(const QORQL_Token& a, const QORQL_Token& b) noexcept {
    return a._tokenType == b._tokenType && a.text() == b.text();
  }

 private:
  mutable QORString _tokenValue;
  mutable std::string_view _borrowed;  // without data when the string holds the text
  QORQL_TokenType _tokenType = TokenINVALID;
  QORuint32 _offset = 0;
};

#endif
