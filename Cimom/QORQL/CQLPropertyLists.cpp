// Which properties of a class a filter's select list and WHERE clause use.
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

using Names = QORSmrPtr<QORValSlist<QORString>>;

// One reference to a property: the first steps of its path as written.
struct Reference {
  QORString className;
  QORString propertyName;
  QORString chain;
};

class ReferenceCollector : public QORQL_ExpressionVisitor {
 public:
  void visitFactor(const QORQL_Factor& factor) override {
    if (factor.getClassName().IsNull()) return;
    Reference reference;
    reference.className = *factor.getClassName();
    if (!factor.getPropertyName().IsNull()) reference.propertyName = *factor.getPropertyName();
    if (!factor.getChain().IsNull()) reference.chain = *factor.getChain();
    references.push_back(reference);
  }
  std::vector<Reference> references;
};

std::vector<Reference> referencesOf(const QORSmrPtr<QORQL_Evaluatable>& node) {
  ReferenceCollector* const collector = new ReferenceCollector();
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(collector);
  if (!node.IsNull()) node->accept(visitor);
  return collector->references;
}

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

// The first step of a path: "i.SourceInstance" gives i.
QORString firstStep(const QORString& path) { return path.subStr(0, path.find(".")); }

QORString behindFirstStep(const QORString& path) {
  const std::size_t dot = path.find(".");
  return dot == QORString::npos ? QORString() : path.subStr(dot + 1);
}

void addProperty(const QORString& property, NameList& names) {
  if (property.isEmpty() || property == '*') {
    names.addAll();
  } else {
    names.add(property);
  }
}

}  // namespace

// What a reference asks of a class: its property, or for a path through an
// embedded object the property that holds that object.
void CQLQueryStatement::addReference(const QORString& className, const QORString& qualifier, const QORString& chain,
                                     const QORString& property,
                                     const std::function<void(const QORString&)>& add) const {
  const QORString owner(fromClassOf(firstStep(qualifier)));
  const bool isPath = owner.isEmpty() || chain.find(".") != QORString::npos;
  if (!isPath) {
    if (owner.isEqualCaseInsensitive(className)) add(property);
    return;
  }
  QORString path(chain.isEmpty() ? qualifier : chain);
  const QORString head(fromClassOf(firstStep(path)));
  if (!head.isEmpty()) {
    if (!head.isEqualCaseInsensitive(className)) return;
    path = behindFirstStep(path);
  }
  const QORString root(firstStep(path));
  if (CQLQueryValidator::findProperty(nameSpaceInUse(), className, root, true)) add(root);
}

CQLQueryExceptionCode CQLQueryStatement::buildSelectPropertyList(const QORString& className,
                                                                 PropertyNames& list) const {
  try {
    NameList names;
    const auto add = [&names](const QORString& property) { addProperty(property, names); };
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*selectList().getSelectedEntries());
    while (++entries) {
      if (entries.key()->isSelectAll()) names.addAll();
      for (const Reference& reference : referencesOf(entries.key()->getExpression())) {
        addReference(className, reference.className, reference.chain, reference.propertyName, add);
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
      for (const Reference& reference : referencesOf(where->getExpression())) {
        addReference(className, reference.className, reference.chain, reference.propertyName, add);
      }
    }
    list = names.names();
    return CQL_QUERY_SUCCESS;
  } catch (...) {
    return CQL_QUERY_INTERNAL_ERROR;
  }
}

QORString CQLQueryStatement::requestedClass(const char* where, const QORSmrPtr<IQoriInstanceName>& className) const {
  requireValidated(where);
  if (className.IsNull()) CQLQueryException::raise(where, CQL_QUERY_INVALID_OR_NULL_PARM_ERROR);
  return fromClassOf(className->getClassName());
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
