// Walks the statement as execution does, on a table that has columns and no
// rows. Columns stand in sets, as the lazy rows have them: a condition filters
// the set that it reads, or makes one of several.
#include "Cimom/QORQL/Explain/QORQL_Explanation.h"

#include <algorithm>
#include <set>

#include "Cimom/QORQL/Explain/QORQL_KeyKind.h"
#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_ExpressionText.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "cimom/QoriProviderPluginManager.h"

namespace {

using Monitor = QORQL_ExecutionMonitor;
using Step = QORQL_ExplainedStep;

constexpr char kProviderFiltered[] = "YRK_TRBS_ProviderFiltered";

// Ends the simulation where execution would end: the last step says why.
struct Failed {};

struct Column {
  QORString className;
  QORString alias;
};

// The table on its way: its columns, and which of them lie in one set of rows.
struct SimulatedTable {
  std::vector<Column> columns;
  std::vector<std::set<QORsint32>> blocks;
  bool isLazy = true;

  QORsint32 columnOf(const QORString& name) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const Column& column = columns[i];
      if (column.className.isEqualCaseInsensitive(name) || column.alias.isEqualCaseInsensitive(name)) {
        return static_cast<QORsint32>(i);
      }
    }
    return -1;
  }
  void addColumn(const QORString& className, const QORString& alias, bool staysLazy) {
    isLazy = isLazy && staysLazy && columnOf(className) < 0 && columnOf(alias) < 0;
    blocks.push_back({static_cast<QORsint32>(columns.size())});
    columns.push_back({className, alias});
    if (!isLazy) merge([](std::size_t) { return true; });
  }
  std::size_t blockOf(QORsint32 column) const {
    std::size_t number = 0;
    while (number < blocks.size() && blocks[number].count(column) == 0) ++number;
    return number;
  }
  // Makes one set of all that are chosen.
  template <class Choice>
  void merge(Choice isChosen) {
    std::vector<std::set<QORsint32>> kept;
    std::set<QORsint32> merged;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      if (isChosen(i)) {
        merged.insert(blocks[i].begin(), blocks[i].end());
      } else {
        kept.push_back(blocks[i]);
      }
    }
    if (!merged.empty()) kept.push_back(std::move(merged));
    blocks = std::move(kept);
  }
};

class InstanceOfFinder : public QORQL_ExpressionVisitor {
 public:
  void visitFunction(const QORQL_Function& function) override {
    isFound = isFound || function.getFunctionID() == QORQL_FUNCTIONID_INSTANCEOF;
  }
  bool isFound = false;
};

class AssociationFinder : public QORQL_ExpressionVisitor {
 public:
  void visitAssociation(const QORQL_Association& /*association*/) override { isFound = true; }
  bool isFound = false;
};

class OuterJoinFinder : public QORQL_ExpressionVisitor {
 public:
  void visitComparison(const QORQL_Comparison& comparison) override {
    isFound = isFound || comparison.getJoinType() != QORQL_JOIN_TYPE_INNER;
  }
  bool isFound = false;
};

template <class Finder>
bool finds(QORQL_Evaluatable& node) {
  Finder* const finder = new Finder();
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  node.accept(visitor);
  return finder->isFound;
}

std::vector<QORString> classNamesOf(const QORSmrPtr<QORQL_Evaluatable>& side) {
  std::vector<QORString> names;
  if (side.IsNull()) return names;
  QORQL_IdentifierFinder* const finder = new QORQL_IdentifierFinder();
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  side->accept(visitor);
  QORValSlistIterator<QORSmrPtr<QORString>> iterator(*finder->getClassNameList());
  while (++iterator) {
    if (!iterator.key()->isEmpty()) names.push_back(*iterator.key());
  }
  return names;
}

std::vector<QORsint32> columnsRead(const SimulatedTable& table, const QORSmrPtr<QORQL_Evaluatable>& side) {
  std::vector<QORsint32> columns;
  for (const QORString& name : classNamesOf(side)) {
    if (table.columnOf(name) >= 0) columns.push_back(table.columnOf(name));
  }
  return columns;
}

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
    if (_where != nullptr && finds<AssociationFinder>(*_where->getExpression())) return false;
    QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*_from.getFromSpecifierList());
    while (++specifiers) {
      const QORSmrPtr<IQoriClass> declared(classOf(specifiers.key()->getTableName()));
      if (declared.IsNull() || declared->getQualifier(kProviderFiltered, true) == nullptr) return false;
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
      fail(std::string(QORQL_ExecutionMessages::kFromSymbolUnknown) + std::string(name.view()) + "'");
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
    if (table.columnOf(className) >= 0) return;
    _steps.push_back(requestOf(*symbol));
    if (classOf(className).IsNull()) {
      fail("Enumerateinstance call for '" + std::string(className.view()) + "' returned NULL");
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
    const auto* expression = dynamic_cast<const QORQL_Expression*>(condition.Get());
    while (expression != nullptr && expression->getOperator() == QORQL_OperatorOR) {
      discarded.push_back(expression->getExpressionTerm().Get());
      expression = dynamic_cast<const QORQL_Expression*>(expression->getExpression().Get());
    }
    if (expression == nullptr) return;
    const SimulatedTable original = discarded.empty() ? SimulatedTable() : _table;
    applyTerm(expression->getExpressionTerm().Get(), _table, false);
    for (; !discarded.empty(); discarded.pop_back()) {
      SimulatedTable copy = original;
      copy.isLazy = copy.isLazy && !finds<OuterJoinFinder>(*discarded.back());
      applyTerm(discarded.back(), copy, true);
    }
  }

  void applyTerm(const QORQL_Evaluatable* node, SimulatedTable& table, bool isDiscarded) {
    const auto* term = dynamic_cast<const QORQL_ExpressionTerm*>(node);
    while (term != nullptr) {
      const QORQL_Evaluatable* const factor = term->getExpressionFactor().Get();
      if (const auto* association = dynamic_cast<const QORQL_Association*>(factor)) {
        applyAssociation(*association, table, isDiscarded);
      } else if (const auto* condition = dynamic_cast<const QORQL_ExpressionFactor*>(factor)) {
        applyCondition(*condition, table, isDiscarded);
      }
      term = term->getOperator() == QORQL_OperatorAND
                 ? dynamic_cast<const QORQL_ExpressionTerm*>(term->getExpressionTerm().Get())
                 : nullptr;
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
    table.isLazy = false;
    if (table.columnOf(className) < 0) {
      table.addColumn(className, destination->getAlias().isEmpty() ? className : destination->getAlias(), false);
    }
    table.merge([](std::size_t) { return true; });
  }

  void applyCondition(const QORQL_ExpressionFactor& factor, SimulatedTable& table, bool isDiscarded) {
    const auto* comparison = dynamic_cast<const QORQL_Comparison*>(factor.getComparison().Get());
    if (comparison == nullptr) return;
    const bool isInner = comparison->getJoinType() == QORQL_JOIN_TYPE_INNER;
    const bool hasRight = comparison->getOperator() != QORQL_OperatorISA;
    for (const QORString& name : classNamesOf(comparison->getLHSArithmeticExpression())) fetch(name, table, !isInner);
    if (hasRight) {
      for (const QORString& name : classNamesOf(comparison->getRHSArithmeticExpression())) fetch(name, table, !isInner);
    }
    Step step;
    step.kind = Step::kCondition;
    step.text = _texts.of(&factor);
    step.comparison = comparison;
    step.isDiscarded = isDiscarded;
    if (table.isLazy && !table.columns.empty()) chooseMethod(factor, *comparison, table, step);
    _steps.push_back(step);
  }

  // As the filter of lazy rows chooses.
  void chooseMethod(const QORQL_ExpressionFactor& factor, const QORQL_Comparison& comparison, SimulatedTable& table,
                    Step& step) const {
    const auto left = columnsRead(table, comparison.getLHSArithmeticExpression());
    const auto right = columnsRead(table, comparison.getRHSArithmeticExpression());
    const std::set<std::size_t> touched = touchedBlocks(factor, comparison, table, left, right);
    const bool isOuter = comparison.getJoinType() != QORQL_JOIN_TYPE_INNER;
    if (touched.size() > 1) {
      step.method = Monitor::kMethodFilteredProduct;
      if (touched.size() == 2 && mayJoin(factor, comparison, table, left, right)) chooseJoin(comparison, step);
      table.merge([&](std::size_t block) { return touched.count(block) != 0; });
    }
    if (isOuter) table.merge([](std::size_t) { return true; });
  }

  static std::set<std::size_t> touchedBlocks(const QORQL_ExpressionFactor& factor, const QORQL_Comparison& comparison,
                                             const SimulatedTable& table, const std::vector<QORsint32>& left,
                                             const std::vector<QORsint32>& right) {
    std::set<std::size_t> touched;
    if (finds<InstanceOfFinder>(*factor.getComparison())) {
      for (std::size_t block = 0; block < table.blocks.size(); ++block) touched.insert(block);
      return touched;
    }
    for (const QORsint32 column : left) touched.insert(table.blockOf(column));
    for (const QORsint32 column : right) touched.insert(table.blockOf(column));
    const bool isOuter = comparison.getJoinType() != QORQL_JOIN_TYPE_INNER;
    if (isOuter && !hasOneClassEach(comparison)) touched.insert(table.blockOf(0));  // both sides fall back to it
    return touched;
  }

  static bool hasOneClassEach(const QORQL_Comparison& comparison) {
    const auto count = [](const QORSmrPtr<QORQL_Evaluatable>& side) {
      QORQL_IdentifierFinder* const finder = new QORQL_IdentifierFinder();
      QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
      if (!side.IsNull()) side->accept(visitor);
      return finder->getClassNameList()->entries();
    };
    return count(comparison.getLHSArithmeticExpression()) == 1 && count(comparison.getRHSArithmeticExpression()) == 1;
  }

  bool mayJoin(const QORQL_ExpressionFactor& factor, const QORQL_Comparison& comparison, const SimulatedTable& table,
               const std::vector<QORsint32>& left, const std::vector<QORsint32>& right) const {
    const bool isRelation = QORQL_isRelational(comparison.getOperator()) && !comparison.isArrayComp() &&
                            factor.getOperator() != QORQL_OperatorNOT;
    if (!isRelation || left.empty() || right.empty()) return false;
    const std::size_t leftBlock = table.blockOf(left.front());
    const std::size_t rightBlock = table.blockOf(right.front());
    const auto isAllIn = [&](const std::vector<QORsint32>& columns, std::size_t block) {
      return std::all_of(columns.begin(), columns.end(),
                         [&](QORsint32 column) { return table.blockOf(column) == block; });
    };
    if (leftBlock == rightBlock || !isAllIn(left, leftBlock) || !isAllIn(right, rightBlock)) return false;
    if (comparison.getJoinType() == QORQL_JOIN_TYPE_INNER) return true;
    return hasOneClassEach(comparison) && table.blocks[leftBlock].size() == 1 && table.blocks[rightBlock].size() == 1;
  }

  void chooseJoin(const QORQL_Comparison& comparison, Step& step) const {
    const auto left = QORQL_keyFactsOf(comparison.getLHSArithmeticExpression().Get(), _symbols, _nameSpace);
    const auto right = QORQL_keyFactsOf(comparison.getRHSArithmeticExpression().Get(), _symbols, _nameSpace);
    const bool isEquality = QORQL_relationOf(comparison.getOperator()) == QoriRelation::Equal;
    if (QORQL_joinsByKey(left, right, isEquality)) {
      step.method = isEquality ? Monitor::kMethodHashJoin : Monitor::kMethodKeyJoin;
    }
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
        if (!isKnown && _table.columnOf(className) < 0) missing.push_back(className);
      }
    }
    for (const QORString& name : missing) fetch(name, _table, true);
  }

  void addCombination() {
    if (_table.blocks.size() < 2) return;
    Step step;
    step.kind = Step::kCombine;
    for (const std::set<QORsint32>& block : _table.blocks) {
      std::string names;
      for (const QORsint32 column : block) {
        names +=
            (names.empty() ? "" : " with ") + _texts.nameOf(_table.columns[static_cast<std::size_t>(column)].className);
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
