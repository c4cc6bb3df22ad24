// Each clause is looked at by itself; conditions and arithmetic by a visitor.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Explain/QORQL_Surprises.h"

#include <map>
#include <set>
#include <utility>

#include "Cimom/QORQL/Explain/QORQL_NodeSurprises.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_ExpressionText.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

class Surprises {
 public:
  Surprises(const QORQL_Query& query, const QORString& nameSpace, std::string_view text)
      : _list(dynamic_cast<const QORQL_SelectList&>(*query.getSelectList())),
        _from(dynamic_cast<const QORQL_FromClause&>(*query.getFromClause())),
        _where(dynamic_cast<const QORQL_WhereClause*>(query.getWhereClause().Get())),
        _orderBy(dynamic_cast<const QORQL_OrderByClause*>(query.getOrderByClause().Get())),
        _types(_from, nameSpace),
        _texts(_from, nameSpace),
        _nodes(new QORQL_NodeSurprises(_types, _texts, text)) {}

  std::vector<QORQL_Surprise> ofQuery() {
    addOr();
    visitNodes();
    _nodes->addConditions(_found);
    _nodes->addArithmetic(_found);
    _nodes->addReferences(_found);
    addEntries();
    addDoubleClass();
    addAliases();
    addJoins();
    return std::move(_found);
  }

  std::vector<QORQL_Surprise> ofFilter() {
    visitNodes();
    _nodes->addArithmetic(_found);
    return std::move(_found);
  }

 private:
  void add(const char* rule, QORuint32 offset, std::string text) { _found.push_back({rule, std::move(text), offset}); }

  void addOr() {
    const auto* const expression =
        _where == nullptr ? nullptr : QORQL_nodeAs<QORQL_Expression>(_where->getExpression());
    if (expression == nullptr || !QORQL_continues(*expression)) return;
    QORuint32 offset = 0;  // of the last OR, before the operand that decides
    for (const QORQL_Expression& link : QORQL_linksOf(*expression)) {
      if (QORQL_continues(link)) offset = link.getOffset();
    }
    add("WHERE-3", offset,
        "OR keeps what its last operand keeps: only \"" + _texts.of(QORQL_decidingOperand(expression)) +
            "\" decides. Run a query for each operand");
  }

  void visitNodes() {
    if (_where != nullptr) _where->getExpression()->accept(_visitor);
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*_list.getSelectedEntries());
    while (++entries) {
      if (!entries.key()->getExpression().IsNull()) entries.key()->getExpression()->accept(_visitor);
    }
    if (_orderBy != nullptr) _orderBy->getExpression()->accept(_visitor);
  }

  void addEntries() {
    QORuint32 aggregates = 0;
    const QORQL_SelectedEntry* average = nullptr;
    const QORQL_SelectedEntry* star = nullptr;
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*_list.getSelectedEntries());
    while (++entries) {
      aggregates += entries.key()->isEntryAggregate() ? 1 : 0;
      if (average == nullptr && entries.key()->GetFunctionID() == QORQL_FUNCTIONID_AVG) average = entries.key().Get();
      if (star == nullptr && entries.key()->isSelectAll()) star = entries.key().Get();
    }
    if (average != nullptr && aggregates > 1) {
      add("AGG-4", average->getOffset(),
          "AVG divides by the number of values of all aggregates in the list. Ask for it in a query of its own");
    }
    if (star != nullptr && !_list.isSelectAll()) {
      add("SEL-6", star->getOffset(),
          "A star that is not last shows only what other parts of the statement name. Write it last");
    }
  }

  void addDoubleClass() {
    bool isTold = false;
    QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*_from.getFromSpecifierList());
    while (++specifiers) {
      const QORString& name = specifiers.key()->getTableName();
      if (_classes.insert(name).second || isTold) continue;
      add("FROM-5", specifiers.key()->getOffset(),
          "A class twice in FROM is one column: every alias of " + _texts.nameOf(name) + " but the last reads null");
      isTold = true;
    }
  }

  void addAliases() {
    bool hasClash = false;
    bool hasProperty = false;
    std::map<QORString, QORString> classOf;  // by name, in upper case as FROM has them all
    QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*_from.getFromSpecifierList());
    while (++specifiers) {
      const QORString& className = specifiers.key()->getTableName();
      const QORString& alias = specifiers.key()->getAlias();
      const QORuint32 offset = specifiers.key()->getOffset();
      const QORuint32 aliasOffset = specifiers.key()->getAliasOffset();
      for (const auto& [name, place] : {std::pair(className, offset), std::pair(alias, aliasOffset)}) {
        if (name.isEmpty()) continue;
        const auto [known, isNew] = classOf.try_emplace(name, className);
        if (isNew || known->second == className || hasClash) continue;
        hasClash = true;
        add("FROM-10", place,
            "In FROM " + _texts.nameOf(name) + " names both " + _texts.nameOf(known->second) + " and " +
                _texts.nameOf(className) + ": only one of them can be asked. Give each a name of its own");
      }
      if (alias.isEmpty() || hasProperty) continue;
      hasProperty = addPropertyAlias(alias, aliasOffset);
    }
  }

  // Whether a class of FROM has a property of that name.
  bool addPropertyAlias(const QORString& alias, QORuint32 offset) {
    for (const QORString& className : _classes) {
      const QORSmrPtr<IQoriClass> model(_types.classOf(className));
      const IQoriProperty* const property = model.IsNull() ? nullptr : model->getProperty(alias, true);
      if (property == nullptr) continue;
      const std::string name(property->getName().view());
      const std::string owner = _texts.nameOf(className);
      add("NAME-7", offset,
          "The alias " + name + " is also a property of " + owner + ": alone it stands for the whole object. " +
              "Write " + owner + "." + name + ", or take another alias");
      return true;
    }
    return false;
  }

  void addJoins() {
    if (const QORQL_Comparison* const join = _nodes->leftJoin()) {
      add("JOIN-4", join->getOffset(),
          "\"" + _texts.of(join) +
              "\" gives extra rows: a left object that meets another before its partner gets one with nulls. "
              "Write a right join (=*)");
    }
    const QORQL_Comparison* const outer = _nodes->outerJoin();
    if (outer == nullptr || _classes.size() < 3) return;
    add("JOIN-2", outer->getOffset(),
        "The rows that \"" + _texts.of(outer) +
            "\" adds hold one object: every other column is null, those of third classes too");
  }

  const QORQL_SelectList& _list;
  const QORQL_FromClause& _from;
  const QORQL_WhereClause* _where;
  const QORQL_OrderByClause* _orderBy;
  const QORQL_DeclaredTypes _types;
  const QORQL_ExpressionText _texts;
  QORQL_NodeSurprises* const _nodes;
  QORSmrPtr<QORQL_ExpressionVisitor> _visitor{_nodes};  // OWNS it
  std::set<QORString> _classes;                         // of FROM
  std::vector<QORQL_Surprise> _found;
};

}  // namespace

std::vector<QORQL_Surprise> QORQL_findSurprises(const QORQL_Query& query, const QORString& nameSpace) {
  return Surprises(query, nameSpace, query.getQueryString().view()).ofQuery();
}

std::vector<QORQL_Surprise> QORQL_findFilterSurprises(const QORQL_Query& query, const QORString& nameSpace,
                                                      std::string_view text) {
  return Surprises(query, nameSpace, text).ofFilter();
}
