// An association condition: joins source instances to the destinations that an
// association class ties to them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ASSOCIATION_H
#define QORQL_ASSOCIATION_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_JoinType.h"

class QORQL_Lexer;

// `Assoc = Source AND Assoc = Destination`; `*=` in the first comparison for a left outer join.
class QORQL_Association : public QORQL_Evaluatable {
 public:
  // What kind() says of it.
  static constexpr QORQL_NodeKind kKind = QORQL_NodeKind::Association;

  // By names as they are written; text and language of the statement travel with what it fetches.
  QORQL_Association(const QORString& source, const QORString& destination, const QORString& associationName,
                    QORQL_JoinType joinType, const QORString& queryString, const QORString& queryLanguage);
  ~QORQL_Association() override;

  // Parses an expression factor; when it is an association comparison, the whole
  // association; otherwise the factor is returned as it is.
  static QORSmrPtr<QORQL_Evaluatable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                            QORQL_ProjectionMap& projMap, const QORString& queryString,
                                            const QORString& queryLanguage);

  // Names as written: FROM names (class or alias), and the association class or an alias of it.
  const QORString& getSource() const noexcept { return _assocSource; }
  const QORString& getDestination() const noexcept { return _assocDestination; }
  const QORString& getAssociationName() const noexcept { return _associationName; }
  QORQL_JoinType getJoinType() const noexcept { return _joinType; }
  // Where the destination is named; getOffset() is where the association is, first.
  QORuint32 getDestinationOffset() const noexcept { return _destinationOffset; }

  void evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, const QORString& nameSpace) override;
  using QORQL_Evaluatable::evaluate;
  void accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) override;

 private:
  QORString _assocSource;
  QORString _assocDestination;
  QORString _associationName;
  QORQL_JoinType _joinType;
  QORuint32 _destinationOffset = 0;
  QORString _queryString;
  QORString _queryLanguage;
};

#endif
