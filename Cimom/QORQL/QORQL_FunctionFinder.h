// The visitor that finds the outermost function of an expression.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_FUNCTIONFINDER_H
#define QORQL_FUNCTIONFINDER_H

#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_FunctionID.h"
#include "cmpbase.h"

// Made for one walk over an expression.
class QORQL_FunctionFinder : public QORQL_ExpressionVisitor {
 public:
  void visitFunction(const QORQL_Function& function) override;
  // The last function visited, QORQL_FUNCTIONID_UNKNOWN when there is none.
  QORuint32 getFunctionID() const noexcept { return _fid; }

 private:
  QORuint32 _fid = QORQL_FUNCTIONID_UNKNOWN;
};

#endif
