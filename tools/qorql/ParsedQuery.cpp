// A statement from its text to the tree that the engine runs.
#include "ParsedQuery.h"

#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "ScannerOutput.h"

// A fault that is found after the text was read has line 0, and no token is at fault.
void ParsedQuery::parseText(const QORString& nameSpace) {
  QORQL_Lexer lexer(_text, false);
  try {
    _query = QORQL_Query::parse(_symbols, lexer, false, _text, _language, nameSpace).StaticCast<QORQL_Query>();
  } catch (const QORQL_ParseException& error) {
    if (error.getLineNr() != 0) _faultOffset = lexer.getCurrent().getOffset();
    throw;
  } catch (const QORQL_Exception&) {
    if (lexer.getCurrent().getType() != TokenEOF) _faultOffset = lexer.getCurrent().getOffset();
    throw;
  }
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
