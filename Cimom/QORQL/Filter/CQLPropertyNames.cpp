// Collecting the properties that a filter's select list and WHERE clause use.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLPropertyNames.h"

#include "Cimom/QORQL/Filter/CQLIsa.h"
#include "Cimom/QORQL/Filter/CQLTreeMatch.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

CQLPropertyNames::CQLPropertyNames(const CQLScope& scope, const QORString& className)
    : _scope(scope), _className(className), _names(new QORValSlist<QORString>()) {}

void CQLPropertyNames::add(const QORString& property) {
  if (property.isEmpty() || property == '*') {
    _names = Names();
    return;
  }
  const QORString folded(QORString::toUpperCase(property));
  if (!_names.IsNull() && _seen.insert(std::string(folded.view())).second) _names->append(property);
}

void CQLPropertyNames::addSelectList(const QORQL_SelectList& list) {
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list.getSelectedEntries());
  while (++entries) {
    if (entries.key()->isSelectAll()) add("*");
    for (const CQLReference& reference : CQLReferencesOf(entries.key()->getExpression())) {
      addReference(reference, Clause::Select);
    }
  }
}

void CQLPropertyNames::addWhereClause(const QORQL_WhereClause& clause) {
  for (const CQLReference& reference : CQLReferencesOf(clause.getExpression())) addReference(reference, Clause::Where);
  addIsaNames(clause);
}

// What a reference asks of the class: its property, or for a path through an
// embedded object the property that holds that object.
void CQLPropertyNames::addReference(const CQLReference& reference, Clause clause) {
  const QORString owner(_scope.fromClassOf(CQLFirstStep(reference.className)));
  if (!owner.isEmpty() && !reference.isPath()) {
    addProperty(owner, reference.propertyName, clause);
    return;
  }
  QORString path(reference.chain.isEmpty() ? reference.className : reference.chain);
  const QORString head(_scope.fromClassOf(CQLFirstStep(path)));
  if (!head.isEmpty()) {
    if (clause == Clause::Select && !_scope.isSubClass(_className, head)) return;
    path = CQLBehindFirstStep(path);
  }
  addRoot(CQLFirstStep(path), clause);
}

void CQLPropertyNames::addProperty(const QORString& owner, const QORString& property, Clause clause) {
  const bool isKnown = _scope.hasProperty(_className, property);
  // A class may have properties that are named like the ends of an association.
  const bool isAsked = _scope.isSubClass(_className, owner) ? isKnown || !QORQL_isAssociationEnd(property)
                                                            : isKnown && clause == Clause::Where;
  if (isAsked) add(property);
}

// What no FROM class has may be a property of a subclass, whose instances are
// matched too, but asked for by the FROM class's list.
void CQLPropertyNames::addRoot(const QORString& root, Clause clause) {
  if (_scope.hasProperty(_className, root) || (clause == Clause::Where && !_scope.isPropertyOfFrom(root))) add(root);
}

// What tests of a class read: a property that a text may name, and for the path
// of an alert the format that announces it.
void CQLPropertyNames::addIsaNames(const QORQL_WhereClause& clause) {
  for (const QORQL_Comparison* test : CQLIsaTestsOf(clause.getExpression())) {
    const QORString property(CQLTreeMatch::isaProperty(_scope, *test));
    if (property.isEmpty()) continue;
    addRoot(property, Clause::Where);
    if (property.isEqualCaseInsensitive(CQLIsa::kAlertingElement)) addRoot(CQLIsa::kAlertingFormat, Clause::Where);
  }
}
