// Which FROM classes are not enumerated: walks the association conditions in
// the order in which they are evaluated.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_AssociationPlan.h"

#include <set>
#include <vector>

#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace {

using Associations = std::vector<const QORQL_Association*>;

// Collects the classes that a tree names outside association conditions, and
// the associations themselves.
class NameCollector : public QORQL_ExpressionVisitor {
 public:
  explicit NameCollector(const QORQL_SymbolTable& symbolTable) : _symbolTable(symbolTable) {}
  void visitFactor(const QORQL_Factor& factor) override {
    if (!factor.getClassName().IsNull()) add(*factor.getClassName());
  }
  void visitAssociation(const QORQL_Association& association) override { associations.push_back(&association); }
  void add(const QORString& name) {
    if (!name.isEmpty()) classes.insert(_symbolTable.classNameOf(name));
  }

  std::set<QORString> classes;
  Associations associations;

 private:
  const QORQL_SymbolTable& _symbolTable;
};

// The associations that decide which rows stay: those of the last operand of OR.
Associations decidingAssociations(const QORSmrPtr<QORQL_Evaluatable>& condition) {
  Associations result;
  const auto* const term = QORQL_nodeAs<QORQL_ExpressionTerm>(QORQL_decidingOperand(condition.Get()));
  if (term == nullptr) return result;
  for (const QORQL_ExpressionTerm& link : QORQL_linksOf(*term)) {
    const auto* const association = QORQL_nodeAs<QORQL_Association>(QORQL_operandOf(link));
    if (association != nullptr) result.push_back(association);
  }
  return result;
}

// Classes by how the associations first name them.
struct Roles {
  std::set<QORString> sources;
  std::set<QORString> destinations;
  std::set<QORString> associations;
};

Roles rolesOf(const Associations& associations, const QORQL_SymbolTable& symbolTable) {
  Roles roles;
  for (const QORQL_Association* association : associations) {
    const QORString source(symbolTable.classNameOf(association->getSource()));
    const QORString destination(symbolTable.classNameOf(association->getDestination()));
    roles.sources.insert(source);
    if (!roles.sources.contains(destination)) roles.destinations.insert(destination);
    roles.associations.insert(symbolTable.classNameOf(association->getAssociationName()));
  }
  return roles;
}

// The classes that the parts of a statement name outside association conditions, and those conditions.
class StatementNames {
 public:
  explicit StatementNames(const QORQL_SymbolTable& symbolTable)
      : _names(new NameCollector(symbolTable)), _visitor(_names) {}
  void walk(const QORSmrPtr<QORQL_Evaluatable>& node) {
    if (!node.IsNull()) node->accept(_visitor);
  }
  void walkEntries(const QORQL_SelectList& list) {
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list.getSelectedEntries());
    while (++entries) {
      _names->add(entries.key()->getClassName());
      walk(entries.key()->getExpression());
    }
  }
  bool names(const QORString& className) const { return _names->classes.contains(className); }
  const Associations& associations() const noexcept { return _names->associations; }

 private:
  NameCollector* const _names;
  QORSmrPtr<QORQL_ExpressionVisitor> _visitor;
};

bool selectsStar(const QORQL_SelectList& list) {
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list.getSelectedEntries());
  while (++entries) {
    if (entries.key()->isSelectAll()) return true;
  }
  return false;
}

}  // namespace

QORQL_AssociationPlan QORQL_planAssociations(const QORSmrPtr<QORQL_Evaluatable>& condition,
                                             const QORQL_SelectList& selectList,
                                             const QORSmrPtr<QORQL_Evaluatable>& sortKey,
                                             const QORQL_SymbolTable& symbolTable) {
  QORQL_AssociationPlan plan;
  StatementNames statement(symbolTable);
  statement.walk(condition);
  plan.hasAssociation = !statement.associations().empty();
  if (!plan.hasAssociation) return plan;
  statement.walkEntries(selectList);
  statement.walk(sortKey);
  // An association class that is a column is evaluated by its references, which need not be named anywhere: it comes
  // whole whichever operand of OR reads it, and whether it is enumerated or an end of another association.
  for (const QORQL_Association* const each : statement.associations()) {
    plan.wholeClasses.push_back(each->getAssociationName());
  }
  const Roles roles(rolesOf(decidingAssociations(condition), symbolTable));
  const bool isStar = selectsStar(selectList);
  for (const QORString& destination : roles.destinations) plan.skippedClasses.append(destination);
  for (const QORString& association : roles.associations) {
    if (roles.sources.contains(association) || roles.destinations.contains(association)) continue;
    if (!isStar && !statement.names(association)) plan.skippedClasses.append(association);
  }
  return plan;
}
