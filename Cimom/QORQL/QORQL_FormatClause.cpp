// The FORMAT clause: parsing.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_FormatClause.h"

#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"

namespace {

// QORIOBJECT has no keyword: only callers that make a clause themselves choose it.
QORQL_FormatID parseFormatName(QORQL_Lexer& lexer) {
  switch (lexer.getCurrent().getType()) {
    case TokenXML:
      return XML;
    case TokenHTML:
      return HTML;
    case TokenCSV:
      return CSV;
    default:
      QORQL_raise(QORQL_Messages::kFormatNameExpected, lexer);
  }
}

}  // namespace

QORSmrPtr<QORQL_FormatClause> QORQL_FormatClause::parse(QORQL_SymbolTable&, QORQL_Lexer& lexer) {
  if (lexer.getCurrent().getType() != TokenFORMAT) QORQL_raise(QORQL_Messages::kFormatExpected, lexer);
  if (lexer.next(false).getType() != TokenAS) QORQL_raise(QORQL_Messages::kFormatAsExpected, lexer);
  lexer.next(false);
  const QORQL_FormatID format = parseFormatName(lexer);
  lexer.next(false);
  return new QORQL_FormatClause(format);
}
