// What bounds and surrounds the parsing of an expression.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ParseContext.h"

#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

QORQL_NestingGuard::QORQL_NestingGuard(QORQL_Lexer& lexer) : _lexer(lexer) {
  if (lexer._nesting >= QORQL_kMaximumNesting) QORQL_raise(QORQL_Messages::kNestedTooDeeply, lexer);
  ++lexer._nesting;
}

QORQL_NestingGuard::~QORQL_NestingGuard() { --_lexer._nesting; }

QORQL_UpdatedFlagScope::QORQL_UpdatedFlagScope(QORQL_SymbolTable& symbolTable, QORboolean updated)
    : _symbolTable(symbolTable), _before(symbolTable.isSymbolTableUpdated()) {
  symbolTable.setSymbolTableUpdatedFlag(updated);
}

QORQL_UpdatedFlagScope::~QORQL_UpdatedFlagScope() { _symbolTable.setSymbolTableUpdatedFlag(_before); }

QORQL_ConditionScope::QORQL_ConditionScope(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer)
    : _symbolTable(symbolTable),
      _lexer(lexer),
      _flag(symbolTable, false),
      _projectionMap(QORQL_newProjectionMap(lexer.slabs())) {
  lexer._recordsBareNames = false;
}

QORQL_ConditionScope::~QORQL_ConditionScope() { _lexer._recordsBareNames = true; }

namespace {

void request(QORQL_ClassInfo& known, const QORQL_ClassInfo& named, QORSlabs& slabs) {
  QORValSlistIterator<QORString> properties(*named.getPropertyList());
  while (++properties) known.addPropertyOnce(properties.key(), slabs);
  if (named.needAllProperties()) known.setNeedAllProperties(true);
}

}  // namespace

void QORQL_ConditionScope::requestProperties() {
  QORValMapIterator<QORString, QORSmrPtr<QORQL_ClassInfo>> records(*_projectionMap);
  while (++records) {
    const QORQL_Symbol* const symbol = _symbolTable.findIgnoringCase(records.peekKey());
    if (symbol == nullptr) continue;
    const QORSmrPtr<QORQL_ClassInfo> known = symbol->getClassInfo();
    if (!known.IsNull()) request(*known, *records.peekValue(), _lexer.slabs());
  }
}
