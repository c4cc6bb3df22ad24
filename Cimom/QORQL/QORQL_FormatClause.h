// The FORMAT clause: the caller's choice of output, which the engine only records.
#ifndef QORQL_FORMATCLAUSE_H
#define QORQL_FORMATCLAUSE_H

#include "cmpbase.h"

class QORQL_Lexer;
class QORQL_SymbolTable;

enum QORQL_FormatID { XML = 0, HTML = 1, CSV = 2, QORIOBJECT = 3 };

class QORQL_FormatClause {
 public:
  explicit QORQL_FormatClause(QORQL_FormatID formatID) noexcept : _formatID(formatID) {}
  // Entered on FORMAT.
  static QORSmrPtr<QORQL_FormatClause> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer);
  QORQL_FormatID getFormatID() const noexcept { return _formatID; }

 private:
  QORQL_FormatID _formatID;
};

#endif
