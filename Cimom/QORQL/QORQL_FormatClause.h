// The FORMAT clause: the caller's choice of output, which the engine only records.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_FORMATCLAUSE_H
#define QORQL_FORMATCLAUSE_H

#include "cmpbase.h"

class QORQL_Lexer;
class QORQL_SymbolTable;

enum QORQL_FormatID { XML = 0, HTML = 1, CSV = 2, QORIOBJECT = 3 };

// The form that a statement asks its result to be shown in. The engine records it and streams XML whatever it says.
class QORQL_FormatClause {
 public:
  // What getFormatID() gives.
  explicit QORQL_FormatClause(QORQL_FormatID formatID) noexcept : _formatID(formatID) {}
  // Entered on FORMAT.
  static QORSmrPtr<QORQL_FormatClause> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer);
  QORQL_FormatID getFormatID() const noexcept { return _formatID; }

 private:
  QORQL_FormatID _formatID;
};

#endif
