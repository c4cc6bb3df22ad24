// What an error of the engine says is wrong with a filter.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/CQLQueryFault.h"

#include "Cimom/QORQL/QORQL_Fault.h"

static_assert(CQLQueryFault::kNoOffset == QORQL_Fault::kNowhere);

namespace {

CQLQueryFault::Kind kindOf(QORQL_Fault::Kind kind) {
  switch (kind) {
    case QORQL_Fault::kSyntax:
    case QORQL_Fault::kHalfAssociation:
    case QORQL_Fault::kParenthesisOpen:
    case QORQL_Fault::kDirectionMissing:
    case QORQL_Fault::kColumnUnnamed:
    case QORQL_Fault::kColumnBesideAggregate:
    case QORQL_Fault::kNameExpected:
    case QORQL_Fault::kFormatUnknown:
    case QORQL_Fault::kFunctionUnknown:
      return CQLQueryFault::kSyntax;
    case QORQL_Fault::kPropertyUnknown:
    case QORQL_Fault::kPropertyMissing:
      return CQLQueryFault::kProperty;
    case QORQL_Fault::kPropertyAmbiguous:
      return CQLQueryFault::kAmbiguous;
    case QORQL_Fault::kFromNameUnknown:
      return CQLQueryFault::kQualifier;
    case QORQL_Fault::kClassUnknown:
      return CQLQueryFault::kClass;
    case QORQL_Fault::kValueMissing:
    case QORQL_Fault::kElementMissing:
    case QORQL_Fault::kValuesIncomparable:
    case QORQL_Fault::kNumberExpected:
    case QORQL_Fault::kPathUnread:
    case QORQL_Fault::kOther:
      break;
  }
  return CQLQueryFault::kOther;
}

}  // namespace

CQLQueryFault CQLQueryFaultOf(const QoriBaseException& error) {
  CQLQueryFault result;
  result.kind = CQLQueryFault::kOther;
  const QORQL_Fault* const fault = QORQL_faultOf(error);
  if (fault == nullptr) return result;
  result.kind = kindOf(fault->kind);
  result.cause = fault->kind;
  result.name = fault->name;
  result.className = fault->className;
  result.offset = fault->offset;
  return result;
}
