// One look at the parsed tree for each kind of surprise.
#include "Cimom/QORQL/QORQL_Surprises.h"

#include <set>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionText.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

bool isOrder(QORQL_Operator op) { return op >= QORQL_OperatorLESS && op <= QORQL_OperatorGREATEREQUAL; }

// The first of each kind of node that surprises.
class SurpriseFinder : public QORQL_ExpressionVisitor {
 public:
  void visitComparison(const QORQL_Comparison& node) override {
    const bool isLeft = node.getArrayComp() == QORQL_Comparison::ArrayCompAnyLeft ||
                        node.getArrayComp() == QORQL_Comparison::ArrayCompEveryLeft;
    if (node.getOperator() == QORQL_OperatorLIKE) note(like, node);
    if (isLeft && isOrder(node.getOperator())) note(turned, node);
    if (node.isArrayComp() && node.getOperator() == QORQL_OperatorNOTEQUAL) note(unequal, node);
    const bool keepsLeft =
        node.getJoinType() == QORQL_JOIN_TYPE_LEFT_OUTER || node.getJoinType() == QORQL_JOIN_TYPE_FULL_OUTER;
    if (keepsLeft) note(leftJoin, node);
  }
  void visitArithmetic(const QORQL_Arithmetic& node) override {
    const auto* const rest = dynamic_cast<const QORQL_Arithmetic*>(node.getArithmetic().Get());
    const bool isChain = rest != nullptr && rest->getOperator() != QORQL_OperatorNONE;
    if (isChain && node.getOperator() == QORQL_OperatorMINUS) note(grouped, node);
  }
  void visitTerm(const QORQL_Term& node) override {
    const auto* const rest = dynamic_cast<const QORQL_Term*>(node.getTerm().Get());
    const bool isChain = rest != nullptr && rest->getOperator() != QORQL_OperatorNONE;
    if (isChain && node.getOperator() == QORQL_OperatorDIV) note(grouped, node);
  }

  const QORQL_Comparison* like = nullptr;
  const QORQL_Comparison* turned = nullptr;
  const QORQL_Comparison* unequal = nullptr;
  const QORQL_Comparison* leftJoin = nullptr;
  const QORQL_Evaluatable* grouped = nullptr;

 private:
  template <class Kept, class Node>
  static void note(const Kept*& first, const Node& node) {
    if (first == nullptr) first = &node;
  }
};

class Surprises {
 public:
  Surprises(const QORQL_Query& query, const QORString& nameSpace)
      : _list(dynamic_cast<const QORQL_SelectList&>(*query.getSelectList())),
        _from(dynamic_cast<const QORQL_FromClause&>(*query.getFromClause())),
        _where(dynamic_cast<const QORQL_WhereClause*>(query.getWhereClause().Get())),
        _orderBy(dynamic_cast<const QORQL_OrderByClause*>(query.getOrderByClause().Get())),
        _texts(_from, nameSpace) {}

  std::vector<QORQL_Surprise> find() {
    addOr();
    addNodes();
    addEntries();
    addDoubleClass();
    addLeftJoin();
    return std::move(_found);
  }

 private:
  void add(const char* rule, std::string text) { _found.push_back({rule, std::move(text)}); }

  void addOr() {
    const auto* expression =
        _where == nullptr ? nullptr : dynamic_cast<const QORQL_Expression*>(_where->getExpression().Get());
    if (expression == nullptr || expression->getOperator() != QORQL_OperatorOR) return;
    while (expression->getOperator() == QORQL_OperatorOR) {
      expression = dynamic_cast<const QORQL_Expression*>(expression->getExpression().Get());
      if (expression == nullptr) return;
    }
    add("WHERE-3", "OR keeps what its last operand keeps: only \"" + _texts.of(expression->getExpressionTerm().Get()) +
                       "\" decides. Run a query for each operand");
  }

  void addNodes() {
    if (_where != nullptr) _where->getExpression()->accept(_visitor);
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*_list.getSelectedEntries());
    while (++entries) {
      if (!entries.key()->getExpression().IsNull()) entries.key()->getExpression()->accept(_visitor);
    }
    if (_orderBy != nullptr) _orderBy->getExpression()->accept(_visitor);
    if (_finder->like != nullptr) {
      add("LIKE-1", "LIKE searches for a plain text anywhere, with regard to case, and knows no wildcards: \"" +
                        _texts.of(_finder->like) + "\"");
    }
    if (_finder->turned != nullptr) {
      add("ARR-4", "ANY and EVERY on the left turn a comparison around: \"" + _texts.of(_finder->turned) +
                       "\" compares the right side with each element. Write the array on the right");
    }
    if (_finder->unequal != nullptr) {
      add("ARR-6", "\"" + _texts.of(_finder->unequal) + "\" also keeps the rows for which it is false");
    }
    if (_finder->grouped != nullptr) {
      add("ARITH-2", "Operators of one level group to the right: this is \"" + _texts.of(_finder->grouped) + "\"");
    }
  }

  void addEntries() {
    QORuint32 aggregates = 0;
    bool hasAverage = false;
    bool hasStar = false;
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*_list.getSelectedEntries());
    while (++entries) {
      aggregates += entries.key()->isEntryAggregate() ? 1 : 0;
      hasAverage = hasAverage || entries.key()->GetFunctionID() == QORQL_FUNCTIONID_AVG;
      hasStar = hasStar || entries.key()->isSelectAll();
    }
    if (hasAverage && aggregates > 1) {
      add("AGG-4",
          "AVG divides by the number of values of all aggregates in the list. Ask for it in a query of its own");
    }
    if (hasStar && !_list.isSelectAll()) {
      add("SEL-6", "A star that is not last shows only what other parts of the statement name. Write it last");
    }
  }

  void addDoubleClass() {
    std::set<QORString> seen;
    QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*_from.getFromSpecifierList());
    while (++specifiers) {
      const QORString& name = specifiers.key()->getTableName();
      if (seen.insert(name).second) continue;
      add("FROM-5",
          "A class twice in FROM is one column: every alias of " + _texts.nameOf(name) + " but the last reads null");
      return;
    }
  }

  void addLeftJoin() {
    if (_finder->leftJoin == nullptr) return;
    add("JOIN-4",
        "\"" + _texts.of(_finder->leftJoin) +
            "\" gives rows too many: a left object that meets another before its partner gets one with nulls. "
            "Write a right join (=*)");
  }

  const QORQL_SelectList& _list;
  const QORQL_FromClause& _from;
  const QORQL_WhereClause* _where;
  const QORQL_OrderByClause* _orderBy;
  QORQL_ExpressionText _texts;
  SurpriseFinder* const _finder = new SurpriseFinder();
  QORSmrPtr<QORQL_ExpressionVisitor> _visitor{_finder};  // OWNS it
  std::vector<QORQL_Surprise> _found;
};

}  // namespace

std::vector<QORQL_Surprise> QORQL_findSurprises(const QORQL_Query& query, const QORString& nameSpace) {
  return Surprises(query, nameSpace).find();
}
