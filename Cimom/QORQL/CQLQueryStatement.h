// The filter of an indication subscription: validated once, then asked for each
// instance whether it matches.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLQUERYSTATEMENT_H
#define QORQL_CQLQUERYSTATEMENT_H

#include <memory>
#include <string>

#include "Cimom/QORQL/CQLPrecisionCode.h"
#include "Cimom/QORQL/CQLQueryException.h"
#include "Cimom/QORQL/CQLQueryFault.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Operator.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "cimom/IQueryStatement.h"
#include "cmpbase.h"

class CQLMatcher;
class CQLScope;
class QORQL_Factor;
class QORQL_FromClause;
class QORQL_Lexer;
class QORQL_SelectList;
class QORQL_SelectedEntry;
class QORQL_SymbolTable;

// validate() belongs to one thread; after it the statement does not change, and
// the other operations may be called from many threads at once.
class CQLQueryStatement final : public IQueryStatement {
 public:
  using Value = QORSmrPtr<IQoriValue>;
  using Node = QORSmrPtr<QORQL_Evaluatable>;
  using Instance = QORSmrPtr<IQoriObject>;
  using ClassList = QORSmrPtr<QORValSlist<QORSmrPtr<IQoriInstanceName>>>;

  // Languages "CQL", "DMTF:CQL" and "WQL" are supported. The source namespace,
  // when not empty, is the one whose schema and instances the filter is about.
  CQLQueryStatement(const QORString& queryLanguage, const QORString& query, const QORString& indicationNamespace,
                    const QORString& sourceNamespace);
  CQLQueryStatement(const CQLQueryStatement&) = delete;
  CQLQueryStatement& operator=(const CQLQueryStatement&) = delete;
  ~CQLQueryStatement() override;

  // As they were given.
  QORString getQueryLanguage() const override { return _queryLang; }
  QORString getQuery() const override { return _queryString; }
  // Parses the text and checks it against the schema, once: a second call returns what
  // the first one found. Never THROWS; a refusal is logged, and getFault() tells it.
  QUERY_VALIDATE validate() override;
  // THROW CQLQueryException: "query is not validated " before validate() (code
  // 2) or after it failed (code 1); the message of a building step's code.
  PropertyNames getPropertyList(const QORSmrPtr<IQoriInstanceName>& className) const override;
  PropertyNames getSelectPropertyList(const QORSmrPtr<IQoriInstanceName>& className) const override;
  PropertyNames getWherePropertyList(const QORSmrPtr<IQoriInstanceName>& className) const override;
  ClassList getClassList() const override;
  // THROWS as above, and for a null instance (code 3). Common conditions
  // allocate nothing: property against literal or property, ISA.
  bool isMatch(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace) const override;

  // The namespace whose instances the filter is about: the source's, or the
  // indications' when that is empty.
  const QORString& getNameSpace() const noexcept {
    return _sourceNamespace.isEmpty() ? _indicationNamespace : _sourceNamespace;
  }
  // The prepared conditions, for a set of filters; BORROWS. THROWS as isMatch.
  const CQLMatcher& getMatcher() const;

  // Why validate() refused; of the kind kNone when it did not.
  const CQLQueryFault& getFault() const noexcept { return _fault; }
  // Why a valid statement matches no instance at all: OR, NOT and the like never
  // do. Empty when it may match one. THROWS as isMatch.
  QORString neverMatchesBecause() const;
  // Where in the text that is, as a byte of it; CQLQueryFault::kNoOffset when the statement may match. THROWS as
  // isMatch.
  QORuint32 neverMatchesOffset() const;
  // The statement's clauses; BORROWS. THROWS as isMatch.
  const QORQL_Query& getParsedQuery() const;
  // isMatch, and if it is false the reason as text: another namespace or class,
  // or the first condition that failed with the values that it compared. THROWS
  // as isMatch.
  bool explainMatch(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace, std::string& why) const;

  // The steps of matching, for callers that ask for one. Each answers false, or a
  // null value, when anything about the node or the instance is not as it should be;
  // isMatchFromClause and getPropertyValueFromEmbeddedObject alone THROW. Before validate() no FROM name is known.
  // `result` says whether the instance matches; the code tells more: success when it does,
  // CQL_QUERY_ISMATCH_FAILURE when it does not, CQL_QUERY_INTERNAL_ERROR for a null
  // namespace and for what failed on the way.
  CQLQueryExceptionCode doMatch(bool& result, const Instance& instance, const QORString& nameSpace) const;
  // Whether the instance is of a FROM class or of a subclass of one. THROWS as
  // getClassList, and what the class repository throws.
  bool isMatchFromClause(const Instance& instance) const;
  // Whether the instance satisfies the WHERE clause; without one every instance does.
  // The other four ask this of a node of the clause: the whole condition, which OR makes
  // false (QORQL_Expression); an operand of OR (QORQL_ExpressionTerm); an operand of AND,
  // which NOT makes false (QORQL_ExpressionFactor); what NOT stands before, a comparison.
  bool isMatchWhereClause(const Instance& instance) const;
  bool isMatchExpression(const Node& node, const Instance& instance) const;
  bool isMatchExpressionTerm(const Node& node, const Instance& instance) const;
  bool isMatchExpressionFactor(const Node& node, const Instance& instance) const;
  bool isMatchComparison(const Node& node, const Instance& instance) const;
  // The values of a side of a comparison, of a product in it, and of a factor.
  Value doMatchArithmetic(const Node& node, const Instance& instance) const;
  Value doMatchTerm(const Node& node, const Instance& instance) const;
  Value doMatchFactor(const Node& node, const Instance& instance) const;
  // The property that the factor names, read through properties that hold embedded
  // objects. THROWS what the instance throws.
  Value getPropertyValueFromEmbeddedObject(const IQoriObject& instance, const QORQL_Factor& factor) const;

  // Whether a relation holds between two values. The answer is null in three cases: a
  // value is missing; an array is compared without ANY and EVERY, unless it is with an
  // array of its type or both are of numbers, for equality; ANY or EVERY is asked of what is
  // no array. Between other values that do not compare no relation holds. The first answers
  // with a bool, false for null. They THROW what the values throw, to matching no match.
  static bool doComparisonOperation(const Value& lhs, const Value& rhs, QORQL_Operator op);
  static Value doComparisonOpEqualsNotEquals(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                             QORQL_Comparison::QORQL_ARRAY_COMP arrayComp);
  static Value doComparisonOpGreaterLess(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                         QORQL_Comparison::QORQL_ARRAY_COMP arrayComp);
  static Value doArrayComparisonOperations(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                           QORQL_Comparison::QORQL_ARRAY_COMP arrayComp);
  static Value doAnyEveryArrayComparisonOps(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                            QORQL_Comparison::QORQL_ARRAY_COMP arrayComp);
  // Two values of one type, and numbers with a real one among them. REQUIRE that neither is null.
  static bool compare(const Value& lhs, const Value& rhs, QORQL_Operator op);
  static bool compareRealValues(const Value& lhs, const Value& rhs, QORQL_Operator op);
  // Whether both name a type of numbers.
  static bool isNumericalData(const QORString& lhsType, const QORString& rhsType) noexcept;
  // What to convert before numbers of two types are compared. THROWS a bare int 0 for a
  // pair of types that the table does not hold.
  static CQLPrecisionCode findPrecisionType(const QORString& lhsType, const QORString& rhsType);
  // The value as one of `toType`, a type of integers; null for any other type.
  static Value convertToHighPrecision(const QORString& fromType, const QORString& toType, const Value& value);

 private:
  void requireValidated(const char* where) const;
  // isMatch for what the quick way leaves undecided.
  [[gnu::noinline]] bool matchThoroughly(const Instance& instance, const QORString& nameSpace) const;
  void parseQuery(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer);
  void checkQuery();
  // Logs the message, which is also the fault's when nothing better is known.
  void refuse(const char* who, const QORString& message);
  void refuseForCurrentException() noexcept;
  const QORQL_Query& parsedQuery() const;
  const QORQL_SelectList& selectList() const;
  const QORQL_FromClause& fromClause() const;
  CQLQueryExceptionCode buildClassList(ClassList& list) const;
  CQLQueryExceptionCode buildSelectPropertyList(const QORString& className, PropertyNames& list) const;
  CQLQueryExceptionCode buildWherePropertyList(const QORString& className, PropertyNames& list) const;
  CQLQueryExceptionCode validateSchema();
  void noteUnknownClass();
  CQLQueryExceptionCode validateEntry(const QORQL_SelectedEntry& entry, const ClassList& classes);
  void noteFromNames();
  // The FROM class, or subclass of one, that a list operation asks for; empty when it is none. THROWS as those.
  QORString requestedClass(const char* where, const QORSmrPtr<IQoriInstanceName>& className) const;

  const QORString _queryLang;
  const QORString _queryString;
  const QORString _indicationNamespace;
  const QORString _sourceNamespace;
  QORSmrPtr<QORQL_Executable> _query;
  QUERY_VALIDATE queryValidateStatus = QUERY_INVALID_QUERY;
  bool queryParsed = false;
  CQLQueryFault _fault;
  std::unique_ptr<CQLScope> _scope;            // has the FROM names once the text is parsed
  std::unique_ptr<const CQLMatcher> _matcher;  // made by a validation that succeeded
};

#endif
