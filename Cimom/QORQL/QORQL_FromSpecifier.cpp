// One class of a FROM clause: parsing, and the symbols that it introduces.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_FromSpecifier.h"

#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace {

QORString parseAlias(QORQL_Lexer& lexer, QORuint32& offset) {
  if (lexer.getCurrent().getType() != TokenAS) return QORString::emptyString();
  if (lexer.next(false).getType() != TokenID) QORQL_raise(QORQL_Messages::kFromAliasExpected, lexer);
  QORString alias = lexer.getCurrent().newText(lexer.slabs());
  offset = lexer.getOffset();
  alias.toUpper();
  lexer.next(false);
  return alias;
}

// An alias that is the class's own name needs no symbol of its own.
void enterSymbols(QORQL_SymbolTable& symbolTable, QORSlabs& slabs, const QORString& className, const QORString& alias,
                  bool isSelectAll) {
  QORSmrPtr<QORQL_ClassInfo> classInfo = QORQL_newClassInfo(slabs, className, isSelectAll);
  const auto symbol =
      QORSmrPtr<QORQL_Symbol>::MakeIn(slabs, QORQL_SYMBOLTYPE_TABLE_NAME, className, alias, classInfo, nullptr);
  symbolTable.insert(className, symbol, slabs);
  if (alias.isEmpty() || alias == className) return;
  symbolTable.insert(alias,
                     QORSmrPtr<QORQL_Symbol>::MakeIn<QORQL_DelegatorSymbol>(slabs, QORQL_SYMBOLTYPE_TABLE_NAME, alias,
                                                                            className, classInfo, symbol, nullptr),
                     slabs);
}

}  // namespace

QORQL_FromSpecifier::QORQL_FromSpecifier(const QORString& tableName, const QORSmrPtr<QORQL_Executable>& subQuery,
                                         const QORString& alias)
    : _tableName(tableName), _subQuery(subQuery), _alias(alias) {}

QORQL_FromSpecifier::~QORQL_FromSpecifier() = default;

QORSmrPtr<QORQL_FromSpecifier> QORQL_FromSpecifier::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                          bool isSelectAll) {
  const QORQL_TokenType type = lexer.getCurrent().getType();
  if (type == TokenOPENPAREN) QORQL_raise(QORQL_Messages::kNestedQuery, lexer);
  if (type != TokenID) QORQL_raiseAtToken(QORQL_Messages::kClassNameExpected, lexer);
  QORString className = lexer.getCurrent().newText(lexer.slabs());
  className.toUpper();
  const QORuint32 offset = lexer.getOffset();
  lexer.next(false);
  QORuint32 aliasOffset = 0;
  const QORString alias = parseAlias(lexer, aliasOffset);
  enterSymbols(symbolTable, lexer.slabs(), className, alias, isSelectAll);
  auto specifier = QORSmrPtr<QORQL_FromSpecifier>::MakeIn(lexer.slabs(), className, nullptr, alias);
  specifier->_offset = offset;
  specifier->_aliasOffset = aliasOffset;
  return specifier;
}
