// An association condition: its recognition among the conditions of WHERE.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Association.h"

#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"

namespace {

// What one of an association's two comparisons says.
struct Tie {
  QORQL_JoinType joinType = QORQL_JOIN_TYPE_INNER;
  QORString association;
  QORString end;
};

bool readTie(const QORSmrPtr<QORQL_Evaluatable>& condition, const QORQL_Lexer& lexer, Tie& tie) {
  const QORQL_ExpressionFactor* const factor = QORQL_nodeAs<QORQL_ExpressionFactor>(condition);
  if (factor == nullptr) QORQL_raise(QORQL_Messages::kAssociationNull, lexer);
  return factor->isComparisonAnAssociation(tie.joinType, tie.association, tie.end);
}

bool isRightOrFull(QORQL_JoinType joinType) {
  return joinType == QORQL_JOIN_TYPE_RIGHT_OUTER || joinType == QORQL_JOIN_TYPE_FULL_OUTER;
}

}  // namespace

QORQL_Association::QORQL_Association(const QORString& source, const QORString& destination,
                                     const QORString& associationName, QORQL_JoinType joinType,
                                     const QORString& queryString, const QORString& queryLanguage)
    : QORQL_Evaluatable(kKind),
      _assocSource(source),
      _assocDestination(destination),
      _associationName(associationName),
      _joinType(joinType),
      _queryString(queryString),
      _queryLanguage(queryLanguage) {}

QORQL_Association::~QORQL_Association() = default;

QORSmrPtr<QORQL_Evaluatable> QORQL_Association::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                      QORQL_ProjectionMap& projMap, const QORString& queryString,
                                                      const QORString& queryLanguage) {
  QORSmrPtr<QORQL_Evaluatable> first =
      QORQL_ExpressionFactor::parse(symbolTable, lexer, projMap, queryString, queryLanguage);
  Tie source;
  if (!readTie(first, lexer, source)) return first;
  if (lexer.getCurrent().getType() != TokenAND) QORQL_raise(QORQL_Messages::kAssociationAndExpected, lexer);
  lexer.next(false);
  const QORSmrPtr<QORQL_Evaluatable> second =
      QORQL_ExpressionFactor::parse(symbolTable, lexer, projMap, queryString, queryLanguage);
  Tie destination;
  if (!readTie(second, lexer, destination) || source.association.compareTo(destination.association, 0) != 0) {
    QORQL_raiseAt(QORQL_startOf(*second), QORQL_Messages::kAssociationInvalid, lexer);
  }
  if (isRightOrFull(source.joinType)) QORQL_raiseAt(first->getOffset(), QORQL_Messages::kAssociationJoin, lexer);
  lexer.noteAssociation();
  auto result = QORSmrPtr<QORQL_Evaluatable>::MakeIn<QORQL_Association>(
      lexer.slabs(), source.end, destination.end, source.association, source.joinType, queryString, queryLanguage);
  result->setOffset(QORQL_startOf(*first));
  static_cast<QORQL_Association&>(*result)._destinationOffset = QORQL_findFromName(*second, destination.end);
  return result;
}

void QORQL_Association::accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) { visitor->visitAssociation(*this); }
