// The filter of an indication subscription: validated once, then asked for each
// instance whether it matches.
#ifndef QORQL_CQLQUERYSTATEMENT_H
#define QORQL_CQLQUERYSTATEMENT_H

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include "Cimom/QORQL/CQLQueryException.h"
#include "Cimom/QORQL/CQLQueryFault.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Operator.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "cimom/IQueryStatement.h"
#include "cmpbase.h"

class CQLMatcher;
class QORQL_FromClause;
class QORQL_Lexer;
class QORQL_SelectList;
class QORQL_SelectedEntry;
class QORQL_SymbolTable;
struct CQLReference;

// How two numeric types are brought together for a comparison.
enum CQLPrecisionCode {
  CQL_LHS_EQUAL_RHS = 0,
  CQL_LHS_LOWER = 1,
  CQL_RHS_LOWER = 2,
  CQL_LHS_AND_RHS_CONVERT_TO_SINT16 = 3,
  CQL_LHS_AND_RHS_CONVERT_TO_SINT32 = 4,
  CQL_LHS_AND_RHS_CONVERT_TO_SINT64 = 5
};

// validate() belongs to one thread; after it the statement does not change, and
// the other operations may be called from many threads at once.
class CQLQueryStatement : public IQueryStatement {
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

  QORString getQueryLanguage() const override { return _queryLang; }
  QORString getQuery() const override { return _queryString; }
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
  const QORString& getNameSpace() const noexcept { return nameSpaceInUse(); }
  // The prepared conditions, for a set of filters; BORROWS. THROWS as isMatch.
  const CQLMatcher& getMatcher() const;

  // Why validate() refused; of the kind kNone when it did not.
  const CQLQueryFault& getFault() const noexcept { return _fault; }
  // Why a valid statement matches no instance at all: OR, NOT and the like never
  // do. Empty when it may match one. THROWS as isMatch.
  QORString neverMatchesBecause() const;
  // The statement's clauses; BORROWS. THROWS as isMatch.
  const QORQL_Query& getParsedQuery() const;
  // isMatch, and if it is false the reason as text: another namespace or class,
  // or the first condition that failed with the values that it compared. THROWS
  // as isMatch.
  bool explainMatch(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace, std::string& why) const;

  // The steps of matching. Each returns false, or a null value, when anything
  // about the node or the instance is not as it should be.
  CQLQueryExceptionCode doMatch(bool& result, const Instance& instance, const QORString& nameSpace) const;
  bool isMatchFromClause(const Instance& instance) const;
  bool isMatchWhereClause(const Instance& instance) const;
  bool isMatchExpression(const Node& node, const Instance& instance) const;
  bool isMatchExpressionTerm(const Node& node, const Instance& instance) const;
  bool isMatchExpressionFactor(const Node& node, const Instance& instance) const;
  bool isMatchComparison(const Node& node, const Instance& instance) const;
  Value doMatchArithmetic(const Node& node, const Instance& instance) const;
  Value doMatchTerm(const Node& node, const Instance& instance) const;
  Value doMatchFactor(const Node& node, const Instance& instance) const;
  // What isMatchComparison says, or Null where it could not be decided: by LIKE,
  // IS NULL or a join operator, or without one of the values.
  QoriTruth decide(const Node& comparison, const Instance& instance) const;

  // Comparisons of two values, null where a value is missing, where an array is
  // asked without ANY and EVERY (but for the equality of two) or with them where
  // there is none. For other values that do not compare nothing holds. THROW what the values throw; the matcher takes
  // that as no match.
  static QoriTruth decideComparison(const Value& lhs, const Value& rhs, QORQL_Operator op);
  static bool doComparisonOperation(const Value& lhs, const Value& rhs, QORQL_Operator op);
  static Value doComparisonOpEqualsNotEquals(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                             QORQL_Comparison::QORQL_ARRAY_COMP arrayComp);
  static Value doComparisonOpGreaterLess(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                         QORQL_Comparison::QORQL_ARRAY_COMP arrayComp);
  static Value doArrayComparisonOperations(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                           QORQL_Comparison::QORQL_ARRAY_COMP arrayComp);
  static Value doAnyEveryArrayComparisonOps(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                            QORQL_Comparison::QORQL_ARRAY_COMP arrayComp);
  static bool compare(const Value& lhs, const Value& rhs, QORQL_Operator op);
  // Of one element type, or both of numbers.
  static bool areComparableArrays(const IQoriValue& lhs, const IQoriValue& rhs);
  static bool compareRealValues(const Value& lhs, const Value& rhs, QORQL_Operator op);
  static bool isNumericalData(const QORString& lhsType, const QORString& rhsType) noexcept;
  // THROWS a bare int 0 for a pair that the table does not hold.
  static CQLPrecisionCode findPrecisionType(const QORString& lhsType, const QORString& rhsType);
  static Value convertToHighPrecision(const QORString& fromType, const QORString& toType, const Value& value);

  // The comparison in the parentheses that a comparison consists of; null when there is none.
  static const Node* parenthesised(const Node& comparison);

 private:
  friend class CQLMatcher;
  friend class CQLPropertyPath;
  friend class CQLIsa;

  void requireValidated(const char* where) const;
  const QORString& nameSpaceInUse() const noexcept {
    return _sourceNamespace.isEmpty() ? _indicationNamespace : _sourceNamespace;
  }
  void parseQuery(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer);
  void noteParseFault(const QoriBaseException& error, QORuint32 offset);
  void checkQuery();
  // Logs the message, which is also the fault's when nothing better is known.
  void refuse(const char* who, const QORString& message);
  void refuseForCurrentException() noexcept;
  const QORQL_SelectList& selectList() const;
  const QORQL_FromClause& fromClause() const;
  CQLQueryExceptionCode buildClassList(ClassList& list) const;
  CQLQueryExceptionCode buildSelectPropertyList(const QORString& className, PropertyNames& list) const;
  CQLQueryExceptionCode buildWherePropertyList(const QORString& className, PropertyNames& list) const;
  CQLQueryExceptionCode validateSchema();
  void noteUnknownClass();
  CQLQueryExceptionCode validateEntry(const QORQL_SelectedEntry& entry, const ClassList& classes);
  void noteFromNames();
  // The class that a FROM name in any case stands for; empty when it is none.
  QORString fromClassOf(const QORString& name) const;

  // The FROM class, or subclass of one, that a list operation asks for; empty when it is none. THROWS as those.
  QORString requestedClass(const char* where, const QORSmrPtr<IQoriInstanceName>& className) const;
  // What a class needs for a reference. Matching reads a property off the instance
  // whichever FROM name stands before it.
  enum class Clause { Select, Where };
  using AddName = std::function<void(const QORString&)>;
  void addReference(const QORString& className, const CQLReference& reference, Clause clause, const AddName& add) const;
  void addRoot(const QORString& className, const QORString& root, Clause clause, const AddName& add) const;
  void addIsaNames(const QORString& className, const AddName& add) const;
  bool hasProperty(const QORString& className, const QORString& property) const;
  bool isPropertyOfFrom(const QORString& property) const;

  // As doMatchFactor, but THROWS what the instance and its values throw.
  Value factorValue(const Node& node, const Instance& instance) const;
  // As decide, but THROW what the instance and its values throw.
  QoriTruth decideOperator(const QORQL_Comparison& comparison, const Instance& instance) const;
  QoriTruth decideIsa(const QORQL_Comparison& comparison, const Instance& instance) const;
  // Reads a property through properties that hold embedded objects.
  Value getPropertyValueFromEmbeddedObject(const IQoriObject& instance, const class QORQL_Factor& factor) const;

  const QORString _queryLang;
  const QORString _queryString;
  const QORString _indicationNamespace;
  const QORString _sourceNamespace;
  QORSmrPtr<QORQL_Executable> _query;
  QUERY_VALIDATE queryValidateStatus = QUERY_INVALID_QUERY;
  bool queryParsed = false;
  CQLQueryFault _fault;
  std::unordered_map<std::string, QORString> _fromNames;  // classes by their names and aliases, in upper case
  std::unique_ptr<const CQLMatcher> _matcher;             // made by a validation that succeeded
};

#endif
