// Which properties of a class a filter's select list and WHERE clause use.
#include <algorithm>
#include <set>
#include <string>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/Filter/CQLIsa.h"
#include "Cimom/QORQL/Filter/CQLReferences.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

using Names = QORSmrPtr<QORValSlist<QORString>>;

// A list without duplicates, ignoring case; null once every property is needed.
class NameList {
 public:
  NameList() : _names(new QORValSlist<QORString>()) {}
  void add(const QORString& name) {
    const QORString folded(QORString::toUpperCase(name));
    if (!_names.IsNull() && _seen.insert(std::string(folded.view())).second) _names->append(name);
  }
  void addAll() { _names = Names(); }
  const Names& names() const { return _names; }

 private:
  Names _names;
  std::set<std::string> _seen;
};

// The words that stand for an association's ends; a class may have properties of these names.
bool isAssociationEnd(const QORString& property) { return property == "firstref" || property == "secondref"; }

void addProperty(const QORString& property, NameList& names) {
  if (property.isEmpty() || property == '*') {
    names.addAll();
  } else {
    names.add(property);
  }
}

}  // namespace

bool CQLQueryStatement::hasProperty(const QORString& className, const QORString& property) const {
  return CQLQueryValidator::findProperty(nameSpaceInUse(), className, property, true);
}

bool CQLQueryStatement::isPropertyOfFrom(const QORString& property) const {
  return std::any_of(_fromNames.begin(), _fromNames.end(),
                     [&](const auto& name) { return hasProperty(name.second, property); });
}

// What a reference asks of a class: its property, or for a path through an
// embedded object the property that holds that object.
void CQLQueryStatement::addReference(const QORString& className, const CQLReference& reference, Clause clause,
                                     const AddName& add) const {
  const auto isOf = [&](const QORString& owner) {
    return CQLQueryValidator::isSubClass(nameSpaceInUse(), className, owner);
  };
  const QORString owner(fromClassOf(CQLFirstStep(reference.className)));
  if (!owner.isEmpty() && !reference.isPath()) {
    const QORString& property = reference.propertyName;
    const bool isKnown = hasProperty(className, property);
    const bool isAsked = isOf(owner) ? isKnown || !isAssociationEnd(property) : isKnown && clause == Clause::Where;
    if (isAsked) add(property);
    return;
  }
  QORString path(reference.chain.isEmpty() ? reference.className : reference.chain);
  const QORString head(fromClassOf(CQLFirstStep(path)));
  if (!head.isEmpty()) {
    if (clause == Clause::Select && !isOf(head)) return;
    path = CQLBehindFirstStep(path);
  }
  addRoot(className, CQLFirstStep(path), clause, add);
}

// What no FROM class has may be a property of a subclass, whose instances are
// matched too, but asked for by the FROM class's list.
void CQLQueryStatement::addRoot(const QORString& className, const QORString& root, Clause clause,
                                const AddName& add) const {
  if (hasProperty(className, root) || (clause == Clause::Where && !isPropertyOfFrom(root))) add(root);
}

// What tests of a class read: a property that a text may name, and for the path
// of an alert the format that announces it.
void CQLQueryStatement::addIsaNames(const QORString& className, const AddName& add) const {
  const auto* where =
      dynamic_cast<const QORQL_WhereClause*>(dynamic_cast<const QORQL_Query&>(*_query).getWhereClause().Get());
  if (where == nullptr) return;
  for (const QORQL_Comparison* test : CQLIsaTestsOf(where->getExpression())) {
    const QORString property(CQLIsa::propertyOf(*this, *test));
    if (property.isEmpty()) continue;
    addRoot(className, property, Clause::Where, add);
    if (property.isEqualCaseInsensitive(CQLIsa::kAlertingElement)) {
      addRoot(className, CQLIsa::kAlertingFormat, Clause::Where, add);
    }
  }
}

CQLQueryExceptionCode CQLQueryStatement::buildSelectPropertyList(const QORString& className,
                                                                 PropertyNames& list) const {
  try {
    NameList names;
    const auto add = [&names](const QORString& property) { addProperty(property, names); };
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*selectList().getSelectedEntries());
    while (++entries) {
      if (entries.key()->isSelectAll()) names.addAll();
      for (const CQLReference& reference : CQLReferencesOf(entries.key()->getExpression())) {
        addReference(className, reference, Clause::Select, add);
      }
    }
    list = names.names();
    return CQL_QUERY_SUCCESS;
  } catch (...) {
    return CQL_QUERY_INTERNAL_ERROR;
  }
}

CQLQueryExceptionCode CQLQueryStatement::buildWherePropertyList(const QORString& className, PropertyNames& list) const {
  try {
    NameList names;
    const auto add = [&names](const QORString& property) { addProperty(property, names); };
    const auto* where =
        dynamic_cast<const QORQL_WhereClause*>(dynamic_cast<const QORQL_Query&>(*_query).getWhereClause().Get());
    if (where != nullptr) {
      for (const CQLReference& reference : CQLReferencesOf(where->getExpression())) {
        addReference(className, reference, Clause::Where, add);
      }
    }
    addIsaNames(className, add);
    list = names.names();
    return CQL_QUERY_SUCCESS;
  } catch (...) {
    return CQL_QUERY_INTERNAL_ERROR;
  }
}

QORString CQLQueryStatement::requestedClass(const char* where, const QORSmrPtr<IQoriInstanceName>& className) const {
  requireValidated(where);
  if (className.IsNull()) CQLQueryException::raise(where, CQL_QUERY_INVALID_OR_NULL_PARM_ERROR);
  const QORString& name = className->getClassName();
  const QORString fromClass(fromClassOf(name));
  if (!fromClass.isEmpty() || name.isEmpty()) return fromClass;
  const bool isSubClass = std::any_of(_fromNames.begin(), _fromNames.end(), [&](const auto& from) {
    return CQLQueryValidator::isSubClass(nameSpaceInUse(), name, from.second);
  });
  return isSubClass ? name : QORString();
}

IQueryStatement::PropertyNames CQLQueryStatement::getSelectPropertyList(
    const QORSmrPtr<IQoriInstanceName>& className) const {
  constexpr char kWhere[] = "CQLQUERYSTATEMENT::getSelectPropertyList";
  const QORString requested(requestedClass(kWhere, className));
  PropertyNames list(new QORValSlist<QORString>());
  if (requested.isEmpty()) return list;
  const CQLQueryExceptionCode code = buildSelectPropertyList(requested, list);
  if (code != CQL_QUERY_SUCCESS) CQLQueryException::raise(kWhere, code);
  return list;
}

IQueryStatement::PropertyNames CQLQueryStatement::getWherePropertyList(
    const QORSmrPtr<IQoriInstanceName>& className) const {
  constexpr char kWhere[] = "CQLQUERYSTATEMENT::getWherePropertyList";
  const QORString requested(requestedClass(kWhere, className));
  PropertyNames list(new QORValSlist<QORString>());
  if (requested.isEmpty()) return list;
  const CQLQueryExceptionCode code = buildWherePropertyList(requested, list);
  if (code != CQL_QUERY_SUCCESS) CQLQueryException::raise(kWhere, code);
  return list;
}

// The union of both; null when either needs every property.
IQueryStatement::PropertyNames CQLQueryStatement::getPropertyList(const QORSmrPtr<IQoriInstanceName>& className) const {
  constexpr char kWhere[] = "CQLQUERYSTATEMENT::getPropertyList";
  const QORString requested(requestedClass(kWhere, className));
  if (requested.isEmpty()) return PropertyNames(new QORValSlist<QORString>());
  NameList names;
  for (const auto build : {&CQLQueryStatement::buildSelectPropertyList, &CQLQueryStatement::buildWherePropertyList}) {
    PropertyNames list;
    const CQLQueryExceptionCode code = (this->*build)(requested, list);
    if (code != CQL_QUERY_SUCCESS) CQLQueryException::raise(kWhere, code);
    if (list.IsNull()) return list;
    QORValSlistIterator<QORString> iterator(*list);
    while (++iterator) names.add(iterator.key());
  }
  return names.names();
}
