// Which FROM classes are not enumerated: walks the association conditions in
// the order in which they are evaluated.
#include "Cimom/QORQL/QORQL_AssociationPlan.h"

#include <set>
#include <vector>

#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

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

void walk(const QORSmrPtr<QORQL_Evaluatable>& node, NameCollector*& collector, const QORQL_SymbolTable& symbolTable,
          QORSmrPtr<QORQL_ExpressionVisitor>& visitor) {
  if (visitor.IsNull()) {
    collector = new NameCollector(symbolTable);
    visitor = collector;
  }
  if (!node.IsNull()) node->accept(visitor);
}

// The associations that decide which rows stay: those of the last operand of OR.
Associations decidingAssociations(const QORSmrPtr<QORQL_Evaluatable>& condition) {
  const auto* expression = dynamic_cast<const QORQL_Expression*>(condition.Get());
  while (expression != nullptr && expression->getOperator() == QORQL_OperatorOR) {
    expression = dynamic_cast<const QORQL_Expression*>(expression->getExpression().Get());
  }
  Associations result;
  const auto* term = expression == nullptr
                         ? nullptr
                         : dynamic_cast<const QORQL_ExpressionTerm*>(expression->getExpressionTerm().Get());
  while (term != nullptr) {
    const auto* association = dynamic_cast<const QORQL_Association*>(term->getExpressionFactor().Get());
    if (association != nullptr) result.push_back(association);
    term = dynamic_cast<const QORQL_ExpressionTerm*>(term->getExpressionTerm().Get());
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

// An association class that is a column is judged by its references, which nothing else may name: whichever operand
// of OR reads it, and whether it is enumerated or an end of another association.
void fetchWhole(const Associations& associations, const QORQL_SymbolTable& symbolTable) {
  for (const QORQL_Association* association : associations) {
    const QORSmrPtr<QORQL_Symbol> symbol(symbolTable.lookupIgnoringCase(association->getAssociationName()));
    if (!symbol.IsNull() && !symbol->getClassInfo().IsNull()) symbol->getClassInfo()->setFetchAllProperties(true);
  }
}

bool selectsStar(const QORQL_SelectList& list) {
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list.getSelectedEntries());
  while (++entries) {
    if (entries.key()->isSelectAll()) return true;
  }
  return false;
}

}  // namespace

void QORQL_AssociationPlan::apply(QORQL_Query& query, QORQL_SymbolTable& symbolTable) {
  const auto* where = dynamic_cast<const QORQL_WhereClause*>(query._whereClause.Get());
  const auto* list = dynamic_cast<const QORQL_SelectList*>(query._selectList.Get());
  auto* from = dynamic_cast<QORQL_FromClause*>(query._fromClause.Get());
  if (where == nullptr || list == nullptr || from == nullptr) return;

  NameCollector* names = nullptr;
  QORSmrPtr<QORQL_ExpressionVisitor> visitor;
  walk(where->getExpression(), names, symbolTable, visitor);
  if (names->associations.empty()) return;
  query._whereHasAssociation = true;
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list->getSelectedEntries());
  while (++entries) {
    names->add(entries.key()->getClassName());
    walk(entries.key()->getExpression(), names, symbolTable, visitor);
  }
  const auto* orderBy = dynamic_cast<const QORQL_OrderByClause*>(query._orderbyClause.Get());
  if (orderBy != nullptr) walk(orderBy->getExpression(), names, symbolTable, visitor);

  fetchWhole(names->associations, symbolTable);
  const Roles roles(rolesOf(decidingAssociations(where->getExpression()), symbolTable));
  const bool isStar = selectsStar(*list);
  QORValSlist<QORString> skipped;
  for (const QORString& destination : roles.destinations) skipped.append(destination);
  for (const QORString& association : roles.associations) {
    if (roles.sources.contains(association) || roles.destinations.contains(association)) continue;
    if (!isStar && !names->classes.contains(association)) skipped.append(association);
  }
  from->setSkippedClasses(skipped);
}
