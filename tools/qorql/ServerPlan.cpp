// Only comparisons of a property with a literal that are tied by AND are of use here.
// SPDX-License-Identifier: Apache-2.0
#include "ServerPlan.h"

#include <algorithm>

#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "FromNames.h"

namespace {

bool isOuterJoin(QORQL_Operator op) {
  return op == QORQL_OperatorLEFTJOIN || op == QORQL_OperatorRIGHTJOIN || op == QORQL_OperatorFULLOUTERJOIN;
}

class OuterJoinFinder final : public QORQL_ExpressionVisitor {
 public:
  void visitComparison(const QORQL_Comparison& node) override {
    _isFound = _isFound || isOuterJoin(node.getOperator());
  }
  void visitAssociation(const QORQL_Association& node) override {
    _isFound = _isFound || node.getJoinType() != QORQL_JOIN_TYPE_INNER;
  }
  bool isFound() const noexcept { return _isFound; }

 private:
  bool _isFound = false;
};

bool hasOuterJoin(const QORSmrPtr<QORQL_Evaluatable>& condition) {
  OuterJoinFinder* const finder = new OuterJoinFinder;
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  condition->accept(visitor);
  return finder->isFound();
}

// A property of a row's own object, as it is.
bool isPlainProperty(const QORQL_Factor& factor) {
  return factor.isPropertyReference() && !factor.getPropertyName().IsNull() && !factor.getClassName().IsNull() &&
         !QORQL_hasPath(factor) && factor.getPropertyScope().IsNull() &&
         factor.getArrayIndexList() == QORQL_Factor::kNoArray && factor.getOperator() == QORQL_OperatorNONE;
}

bool isPlainLiteral(const QORQL_Factor& factor) {
  return !factor.getLiteral().IsNull() && factor.getOperator() == QORQL_OperatorNONE && !factor.getLiteral()->isArray();
}

// The operator with its sides exchanged; empty for one that servers need not know.
const char* operatorText(QORQL_Operator op, bool isExchanged) {
  switch (op) {
    case QORQL_OperatorEQUAL:
      return "=";
    case QORQL_OperatorNOTEQUAL:
      return "<>";
    case QORQL_OperatorLESS:
      return isExchanged ? ">" : "<";
    case QORQL_OperatorGREATER:
      return isExchanged ? "<" : ">";
    case QORQL_OperatorLESSEQUAL:
      return isExchanged ? ">=" : "<=";
    case QORQL_OperatorGREATEREQUAL:
      return isExchanged ? "<=" : ">=";
    default:
      return "";
  }
}

// Texts are pushed where they are to be equal: languages order them in different ways, and some ignore case, which
// gives more than is wanted but nothing less. Those with signs that languages escape in different ways are left out.
std::string literalText(const IQoriValue& literal, QORQL_Operator op) {
  const QoriScalar scalar = literal.scalar();
  const std::string text(literal.toString().view());
  if (scalar.isNumber()) return text;
  const bool isPlain = text.find_first_of("'\"\\\n\r") == std::string::npos;
  return scalar.kind == QoriScalarKind::Text && isPlain && op == QORQL_OperatorEQUAL ? "'" + text + "'" : "";
}

bool isNumberType(CQoriType::Code code) { return code <= CQoriType::Code::Real64; }

// Texts are compared as such by servers: "TRUE" with a boolean, or an instant with the same one of another offset,
// would leave out instances that are wanted.
bool isComparedAlike(const CimPropertyDeclaration& property, const IQoriValue& literal) {
  if (property.type->isArray()) return false;
  const CQoriType::Code code = CQoriType::codeOf(*property.type);
  return literal.scalar().kind == QoriScalarKind::Text ? code == CQoriType::Code::String : isNumberType(code);
}

class Reader {
 public:
  Reader(const FromNames& from, const EmbeddedObjectManager& manager, const std::string& nameSpace, ServerPlan& plan)
      : _from(from), _manager(manager), _nameSpace(nameSpace), _plan(plan) {}

  void read(const QORQL_Evaluatable* node) {
    node = QORQL_peel(node);
    if (const auto* const comparison = QORQL_nodeAs<QORQL_Comparison>(node)) return readComparison(*comparison);
    const auto* const term = QORQL_nodeAs<QORQL_ExpressionTerm>(node);
    if (term == nullptr) return;
    for (const QORQL_ExpressionTerm& link : QORQL_linksOf(*term)) read(QORQL_operandOf(link).Get());
  }

 private:
  void readComparison(const QORQL_Comparison& comparison) {
    if (comparison.isArrayComp()) return;
    const QORQL_Factor* const left = QORQL_soleLeaf(comparison.getLHSArithmeticExpression());
    const QORQL_Factor* const right = QORQL_soleLeaf(comparison.getRHSArithmeticExpression());
    if (left == nullptr || right == nullptr) return;
    if (isPlainProperty(*left) && isPlainLiteral(*right)) return note(*left, comparison.getOperator(), *right, false);
    if (isPlainLiteral(*left) && isPlainProperty(*right)) note(*right, comparison.getOperator(), *left, true);
  }

  void note(const QORQL_Factor& property, QORQL_Operator op, const QORQL_Factor& literal, bool isExchanged) {
    const std::string className = onceNamed(property.getClassName()->view());
    const std::string sign = operatorText(op, isExchanged);
    const std::string text = literalText(*literal.getLiteral(), op);
    if (className.empty() || sign.empty() || text.empty()) return;
    const QORString& name = *property.getPropertyName();
    if (name.isEqualCaseInsensitive(kRemoteServerProperty)) {
      if (op == QORQL_OperatorEQUAL) restrict(className, std::string(literal.getLiteral()->toString().view()));
      return;
    }
    if (!isUnderstood(className, name, *literal.getLiteral())) return;
    std::string& conditions = _plan.conditions[className];
    conditions += (conditions.empty() ? "" : " AND ") + std::string(name.view()) + ' ' + sign + ' ' + text;
  }

  bool isUnderstood(const std::string& className, const QORString& name, const IQoriValue& literal) {
    auto known = _properties.find(className);
    if (known == _properties.end()) {
      known = _properties.emplace(className, _manager.allProperties(QORString(_nameSpace), QORString(className))).first;
    }
    return std::any_of(known->second.begin(), known->second.end(), [&](const CimPropertyDeclaration& property) {
      return property.name.isEqualCaseInsensitive(name) && isComparedAlike(property, literal);
    });
  }

  // The class of a FROM name; empty where FROM has the class more than once.
  std::string onceNamed(std::string_view fromName) const {
    const std::string className =
        fromName.empty() && _from.sources().size() == 1 ? _from.sources().front().className : _from.classOf(fromName);
    const auto isIt = [&](const FromNames::Source& one) {
      return QORString::equalIgnoringCase(one.className, className);
    };
    return std::count_if(_from.sources().begin(), _from.sources().end(), isIt) == 1 ? className : "";
  }

  // Two different names contradict each other: then there is nobody to ask.
  void restrict(const std::string& className, const std::string& server) {
    const auto known = _plan.servers.find(className);
    if (known == _plan.servers.end()) {
      _plan.servers[className] = {server};
    } else if (!known->second.contains(server)) {
      known->second.clear();
    }
  }

  const FromNames& _from;
  const EmbeddedObjectManager& _manager;
  const std::string& _nameSpace;
  ServerPlan& _plan;
  std::map<std::string, std::vector<CimPropertyDeclaration>> _properties;  // by class
};

}  // namespace

ServerPlan::ServerPlan(const QORQL_Query& query, const std::string& text, const EmbeddedObjectManager& manager,
                       const std::string& nameSpace) {
  if (query.getWhereClause().IsNull()) return;
  const auto& where = dynamic_cast<const QORQL_WhereClause&>(*query.getWhereClause());
  if (where.getExpression().IsNull() || hasOuterJoin(where.getExpression())) return;
  const FromNames from(query, text);
  Reader(from, manager, nameSpace, *this).read(where.getExpression().Get());
}

void ServerPlan::applyTo(RemoteServers& source, bool pushesDown) const {
  for (const auto& [className, names] : servers) source.askOnly(QORString(className), names);
  if (!pushesDown) return;
  for (const auto& [className, condition] : conditions) source.askWith(QORString(className), condition);
}
