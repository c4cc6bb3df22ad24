// A statement from its text to the tree that the engine runs.
// SPDX-License-Identifier: Apache-2.0
#include "ParsedQuery.h"

#include "Cimom/QORQL/QORQL_Lexer.h"
#include "ScannerOutput.h"

void ParsedQuery::parseText(const QORString& nameSpace) {
  QORQL_Lexer lexer(_text, false);
  _query = QORQL_Query::parse(_symbols, lexer, false, _text, _language, nameSpace).StaticCast<QORQL_Query>();
}

void ParsedQuery::parse(const std::string& nameSpace) {
  const ScannerOutput scanner;
  try {
    parseText(QORString(nameSpace));
  } catch (...) {
    _passedOver = scanner.passedOver(_statement);
    throw;
  }
  _passedOver = scanner.passedOver(_statement);
}
