// A statement from its text to the tree that the engine runs.
#include "ParsedQuery.h"

#include <ostream>

#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseException.h"

namespace {

class UnbufferedOutput {
 public:
  explicit UnbufferedOutput(std::ostream& out) : _out(out) { _out << std::unitbuf << std::flush; }
  UnbufferedOutput(const UnbufferedOutput&) = delete;
  UnbufferedOutput& operator=(const UnbufferedOutput&) = delete;
  ~UnbufferedOutput() { _out << std::nounitbuf; }

 private:
  std::ostream& _out;
};

}  // namespace

// A fault that is found after the text was read has line 0, and no token is at fault.
void ParsedQuery::parse(const std::string& nameSpace, std::ostream& out) {
  const UnbufferedOutput unbuffered(out);
  QORQL_Lexer lexer(_text, false);
  try {
    _query =
        QORQL_Query::parse(_symbols, lexer, false, _text, _language, QORString(nameSpace)).StaticCast<QORQL_Query>();
  } catch (const QORQL_ParseException& error) {
    if (error.getLineNr() != 0) _faultOffset = lexer.getCurrent().getOffset();
    throw;
  } catch (const QORQL_Exception&) {
    if (lexer.getCurrent().getType() != TokenEOF) _faultOffset = lexer.getCurrent().getOffset();
    throw;
  }
}
