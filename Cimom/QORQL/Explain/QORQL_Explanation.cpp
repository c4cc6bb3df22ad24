// Walks the statement as execution does, on a table that has columns and no
// rows. Columns stand in sets, as the lazy rows have them: a condition filters
// the set that it reads, or makes one of several, as its plan says.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Explain/QORQL_Explanation.h"

#include <algorithm>
#include <numeric>
#include <set>

#include "Cimom/QORQL/Explain/QORQL_KeyKind.h"
#include "Cimom/QORQL/Lazy/QORQL_ConditionPlan.h"
#include "Cimom/QORQL/Lazy/QORQL_RowSets.h"
#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_ExpressionText.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "cimom/QoriProviderPluginManager.h"

namespace Messages = QORQL_ExecutionMessages;

namespace {

using Step = QORQL_ExplainedStep;

// Ends the simulation where execution would end: the last step says why.
struct Failed {};

// The simulated table.
struct SimulatedTable {
  QORQL_RowSets sets;
  bool isLazy = true;  // otherwise its rows exist, all in one set

  bool hasColumn(const QORString& name) const { return sets.columnOf(name) >= 0; }
  void addColumn(const QORString& className, const QORString& alias, bool staysLazy) {
    staysLazy = staysLazy && !hasColumn(className) && !hasColumn(alias);
    sets.blocks.push_back({static_cast<QORuint32>(sets.columns.size())});
    sets.columns.push_back(QORSmrPtr<QORQL_TableHeader>::Make(className, alias, QORString::emptyString()));
    if (!isLazy || !staysLazy) makeRows();
  }
  void makeRows() {
    isLazy = false;
    mergeAll();
  }
  void apply(const QORQL_ConditionPlan& plan) {
    if (plan.blocks.size() > 1) merge(plan.blocks);
    if (plan.isOuter()) mergeAll();
  }

 private:
  // Makes one set of those that are chosen; it comes last.
  void merge(const QORQL_BlockList& chosen) {
    decltype(sets.blocks) kept;
    QORQL_ColumnList merged;
    for (std::size_t i = 0; i < sets.blocks.size(); ++i) {
      const QORQL_ColumnList& block = sets.blocks[i];
      if (std::find(chosen.begin(), chosen.end(), i) == chosen.end()) {
        kept.push_back(block);
      } else {
        merged.append(block.begin(), block.end());
      }
    }
    std::sort(merged.begin(), merged.end());
    kept.push_back(std::move(merged));
    sets.blocks = std::move(kept);
  }
  void mergeAll() {
    QORQL_BlockList all;
    all.resize(sets.blocks.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    if (!all.empty()) merge(all);
  }
};

}  // namespace

class QORQL_Explanation::Simulation {
 public:
  Simulation(const QORQL_Query& query, const QORQL_SymbolTable& symbols, const QORString& nameSpace,
             std::vector<Step>& steps)
      : _list(dynamic_cast<const QORQL_SelectList&>(*query.getSelectList())),
        _from(dynamic_cast<const QORQL_FromClause&>(*query.getFromClause())),
        _where(dynamic_cast<const QORQL_WhereClause*>(query.getWhereClause().Get())),
        _orderBy(dynamic_cast<const QORQL_OrderByClause*>(query.getOrderByClause().Get())),
        _symbols(symbols),
        _nameSpace(nameSpace),
        _texts(_from, nameSpace),
        _repository(QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository()),
        _steps(steps) {}

  void run() {
    try {
      fetchFrom();
      if (_where != nullptr) applyExpression(_where->getExpression());
      fetchSelected();
      addCombination();
      addOutput();
    } catch (const Failed&) {
      return;
    }
  }

  bool isPreFiltered() const {
    if (_where != nullptr && QORQL_containsAssociation(*_where->getExpression())) return false;
    QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*_from.getFromSpecifierList());
    while (++specifiers) {
      const QORSmrPtr<IQoriClass> declared(classOf(specifiers.key()->getTableName()));
      if (declared.IsNull() || declared->getQualifier(Messages::kProviderFiltered, true) == nullptr) return false;
    }
    return true;
  }

 private:
  QORSmrPtr<IQoriClass> classOf(const QORString& className) const {
    return _repository.IsNull() ? QORSmrPtr<IQoriClass>() : _repository->getClass(_nameSpace, className);
  }

  [[noreturn]] void fail(const std::string& text) {
    Step step;
    step.kind = Step::kFail;
    step.text = text;
    _steps.push_back(step);
    throw Failed();
  }

  QORSmrPtr<QORQL_Symbol> symbolOf(const QORString& name) {
    QORSmrPtr<QORQL_Symbol> symbol(_symbols.lookupIgnoringCase(name));
    if (symbol.IsNull()) {
      fail(std::string(Messages::kFromSymbolUnknown) + std::string(name.view()) + "'");
    }
    return symbol;
  }

  // What is asked of the class, as the declarations spell it.
  Step requestOf(const QORQL_Symbol& symbol) const {
    Step step;
    step.className = _texts.nameOf(symbol.getClassName());
    step.alias = symbol.getAlias().view();
    const QORSmrPtr<QORQL_ClassInfo> info(symbol.getClassInfo());
    step.hasAllProperties = info.IsNull() || info->needAllProperties() || info->fetchAllProperties();
    if (step.hasAllProperties) return step;
    const QORSmrPtr<IQoriClass> declared(classOf(symbol.getClassName()));
    std::set<std::string> seen;
    QORValSlistIterator<QORString> names(*info->getPropertyList());
    while (++names) {
      if (!seen.insert(std::string(QORString::toUpperCase(names.key()).view())).second) continue;
      const IQoriProperty* const property = declared.IsNull() ? nullptr : declared->getProperty(names.key(), true);
      step.properties.emplace_back(property == nullptr ? names.key().view() : property->getName().view());
    }
    return step;
  }

  void fetch(const QORString& name, SimulatedTable& table, bool staysLazy) {
    const QORSmrPtr<QORQL_Symbol> symbol(symbolOf(name));
    const QORString className(symbol->getClassName());
    if (table.hasColumn(className)) return;
    _steps.push_back(requestOf(*symbol));
    if (classOf(className).IsNull()) {
      fail(Messages::kEnumerating + std::string(className.view()) + Messages::kReturnedNull);
    }
    table.addColumn(className, symbol->getAlias().isEmpty() ? className : symbol->getAlias(), staysLazy);
  }

  void fetchFrom() {
    QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*_from.getFromSpecifierList());
    while (++specifiers) {
      const QORString& name = specifiers.key()->getTableName();
      if (!_from.getSkippedClasses().contains(name)) fetch(name, _table, true);
    }
  }

  // The last operand of OR works on the table; the others, last to first, on copies of it as it came.
  void applyExpression(const QORSmrPtr<QORQL_Evaluatable>& condition) {
    std::vector<QORQL_Evaluatable*> discarded;
    const auto* const expression = QORQL_nodeAs<QORQL_Expression>(condition);
    if (expression == nullptr) return;
    for (const QORQL_Expression& link : QORQL_linksOf(*expression)) {
      if (QORQL_continues(link)) discarded.push_back(QORQL_operandOf(link).Get());
    }
    const SimulatedTable original = discarded.empty() ? SimulatedTable() : _table;
    applyTerm(QORQL_decidingOperand(expression), _table, false);
    for (; !discarded.empty(); discarded.pop_back()) {
      SimulatedTable copy = original;
      if (QORQL_containsOuterJoin(*discarded.back())) copy.makeRows();
      applyTerm(discarded.back(), copy, true);
    }
  }

  void applyTerm(const QORQL_Evaluatable* node, SimulatedTable& table, bool isDiscarded) {
    const auto* const term = QORQL_nodeAs<QORQL_ExpressionTerm>(node);
    if (term == nullptr) return;
    for (const QORQL_ExpressionTerm& link : QORQL_linksOf(*term)) {
      const QORSmrPtr<QORQL_Evaluatable>& operand = QORQL_operandOf(link);
      if (const auto* association = QORQL_nodeAs<QORQL_Association>(operand)) {
        applyAssociation(*association, table, isDiscarded);
      } else if (const auto* condition = QORQL_nodeAs<QORQL_ExpressionFactor>(operand)) {
        applyCondition(*condition, table, isDiscarded);
      }
    }
  }

  void applyAssociation(const QORQL_Association& association, SimulatedTable& table, bool isDiscarded) {
    fetch(association.getSource(), table, true);
    const QORSmrPtr<QORQL_Symbol> destination(symbolOf(association.getDestination()));
    Step step = requestOf(*destination);
    step.kind = Step::kAssociate;
    step.text = _texts.of(&association);
    step.association = _texts.nameOf(_symbols.classNameOf(association.getAssociationName()));
    step.source = _texts.nameOf(_symbols.classNameOf(association.getSource()));
    step.isDiscarded = isDiscarded;
    _steps.push_back(step);
    const QORString className(destination->getClassName());
    table.makeRows();
    if (table.hasColumn(className)) return;
    table.addColumn(className, destination->getAlias().isEmpty() ? className : destination->getAlias(), false);
  }

  void applyCondition(const QORQL_ExpressionFactor& factor, SimulatedTable& table, bool isDiscarded) {
    if (QORQL_nodeAs<QORQL_Comparison>(factor.getComparison()) == nullptr) return;
    const QORQL_Condition condition(factor);
    const bool isInner = condition.comparison->getJoinType() == QORQL_JOIN_TYPE_INNER;
    condition.forEachFetched([&](const QORString& name) { fetch(name, table, !isInner); });
    const QORQL_ConditionPlan plan = QORQL_planCondition(condition, table.sets);
    Step step;
    step.kind = Step::kCondition;
    step.text = _texts.of(&factor);
    step.comparison = plan.comparison;
    step.isDiscarded = isDiscarded;
    step.method = QORQL_ConditionPlan::methodOf(plan.way);
    if (plan.isJoin()) judgeKeys(plan, step);
    _steps.push_back(step);
    table.apply(plan);
  }

  // Whether a join finds comparable keys, by the types that the classes declare.
  void judgeKeys(const QORQL_ConditionPlan& plan, Step& step) const {
    const QORQL_Comparison& comparison = *plan.comparison;
    const auto left = QORQL_keyFactsOf(comparison.getLHSArithmeticExpression().Get(), _symbols, _nameSpace);
    const auto right = QORQL_keyFactsOf(comparison.getRHSArithmeticExpression().Get(), _symbols, _nameSpace);
    const bool isJoined = QORQL_joinsByKey(left, right, plan.way == QORQL_ConditionPlan::kHashJoin);
    if (!isJoined) step.method = QORQL_ConditionPlan::methodOf(plan.rowByRow);
    step.dependsOnValues = QORQL_keysDependOnValues(left, right);
  }

  // What the select list names and nothing has fetched before.
  void fetchSelected() {
    std::vector<QORString> missing;
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*_list.getSelectedEntries());
    while (++entries) {
      if (entries.key()->getClassNameList().IsNull()) continue;
      QORValSlistIterator<QORSmrPtr<QORString>> names(*entries.key()->getClassNameList());
      while (++names) {
        if (names.key()->isEmpty()) continue;
        const QORString className(_symbols.classNameOf(*names.key()));
        const bool isKnown = std::find(missing.begin(), missing.end(), className) != missing.end();
        if (!isKnown && !_table.hasColumn(className)) missing.push_back(className);
      }
    }
    for (const QORString& name : missing) fetch(name, _table, true);
  }

  void addCombination() {
    if (_table.sets.blocks.size() < 2) return;
    Step step;
    step.kind = Step::kCombine;
    for (const QORQL_ColumnList& block : _table.sets.blocks) {
      std::string names;
      for (const QORuint32 column : block) {
        names += (names.empty() ? "" : " with ") + _texts.nameOf(_table.sets.columns[column]->getName());
      }
      step.text += (step.text.empty() ? "" : ", ") + names;
    }
    _steps.push_back(step);
  }

  void addOutput() {
    Step step;
    if (_orderBy != nullptr) {
      step.kind = Step::kSort;
      step.text = _texts.of(_orderBy->getExpression().Get()) + (_orderBy->isSortAscending() ? " ASC" : " DESC");
      _steps.push_back(step);
    }
    step.kind = Step::kSelect;
    step.text.clear();
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*_list.getSelectedEntries());
    while (++entries) step.text += (step.text.empty() ? "" : ", ") + _texts.ofEntry(*entries.key());
    _steps.push_back(step);
    if (!_list.isFirstUsed()) return;
    step.kind = Step::kFirst;
    step.text = std::to_string(_list.getFirstCount());
    _steps.push_back(step);
  }

  const QORQL_SelectList& _list;
  const QORQL_FromClause& _from;
  const QORQL_WhereClause* _where;
  const QORQL_OrderByClause* _orderBy;
  const QORQL_SymbolTable& _symbols;
  const QORString& _nameSpace;
  QORQL_ExpressionText _texts;
  QORSmrPtr<IQoriRepository> _repository;
  std::vector<Step>& _steps;
  SimulatedTable _table;
};

QORQL_Explanation::QORQL_Explanation(const QORQL_Query& query, const QORQL_SymbolTable& symbolTable,
                                     const QORString& nameSpace) {
  Simulation simulation(query, symbolTable, nameSpace, _steps);
  simulation.run();
  _isPreFiltered = simulation.isPreFiltered();
}
