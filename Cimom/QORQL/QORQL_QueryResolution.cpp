// Name resolution: binds each name that was written without a class to the one
// FROM class that has the property, and records what is needed of each class.
//
// A factor's class name is shared with the class-name list of its select entry,
// so the walk over the factors writes through that string and entry, list and
// factor agree. Names keep their spelling; classes found are in upper case.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <memory_resource>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_StatementPlaces.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "cimom/QoriProviderPluginManager.h"

// A class of FROM that the repository knows.
struct QORQL_Query::FromClass {
  QORString name;
  QORQL_Symbol* symbol;  // BORROWS
  QORSmrPtr<IQoriClass> description;
  QORQL_ClassInfo* needed = nullptr;  // BORROWS: the symbol's record, when it has been asked for
};

// The look-ups of one resolution, remembered: a condition may use a name many thousand times.
struct QORQL_Query::NameCache {
  // Enough memory for most statements.
  std::array<std::byte, 512> room;
  std::pmr::monotonic_buffer_resource memory{room.data(), room.size()};
  bool hasClasses = false;
  std::pmr::vector<FromClass> classes{&memory};  // in ascending order of their names
  // Statements use few names, which a linear search finds sooner; those beyond kFew are kept in upper case. The few are
  // the texts of factors, or of the record of bare names, which is held to keep them.
  QORSmrPtr<QORQL_ClassInfo> bareNames;
  static constexpr std::size_t kFew = 16;
  std::pmr::vector<std::pair<std::string_view, FromClass*>> classOfFew{&memory};
  std::map<QORString, FromClass*> classOfMore;
  std::map<QORString, QORSmrPtr<QORQL_SelectedEntry>> entryOfAlias;

  void loadClasses(const UpdateContext& context) {
    if (std::exchange(hasClasses, true)) return;
    const QORSmrPtr<IQoriRepository> repository =
        QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository();
    if (repository.IsNull()) return;
    listClasses(context.symbolTable);
    for (FromClass& known : classes) known.description = repository->getClass(context.nameSpace, known.name);
    std::erase_if(classes, [](const FromClass& known) { return known.description.IsNull(); });
  }

  FromClass* classOf(const QORString& property) const {
    for (const auto& [name, known] : classOfFew) {
      if (QORString::equalIgnoringCase(name, property.view())) return known;
    }
    if (classOfMore.empty()) return nullptr;
    const auto found = classOfMore.find(QORString::toUpperCase(property));
    return found == classOfMore.end() ? nullptr : found->second;
  }

  void keepClassOf(const QORString& property, FromClass& known) {
    if (classOfFew.empty()) classOfFew.reserve(kFew);
    if (classOfFew.size() < kFew) {
      classOfFew.emplace_back(property.view(), &known);
    } else {
      classOfMore.emplace(QORString::toUpperCase(property), &known);
    }
  }

 private:
  void listClasses(const QORQL_SymbolTable& symbolTable) {
    classes.reserve(symbolTable.getSymbolHashMap().entries());
    QORValMapIterator<QORString, QORSmrPtr<QORQL_Symbol>> symbols(symbolTable.getSymbolHashMap());
    while (++symbols) {
      QORQL_Symbol& symbol = *symbols.peekValue();
      if (symbol.getType() != QORQL_SYMBOLTYPE_TABLE_NAME || symbol.isAlias()) continue;
      classes.push_back({symbols.peekKey(), &symbol, nullptr, nullptr});
    }
    std::sort(classes.begin(), classes.end(), [](const FromClass& a, const FromClass& b) { return a.name < b.name; });
  }
};

namespace {

// BORROWS: the record of what is needed of a FROM name's class.
QORQL_ClassInfo& neededOf(QORQL_Symbol& symbol, QORSlabs& slabs) {
  QORSmrPtr<QORQL_ClassInfo> needed = symbol.getClassInfo();
  if (needed.IsNull()) {
    needed = QORQL_newClassInfo(slabs, symbol.getClassName(), false);
    symbol.setClassInfo(needed);
    needed = symbol.getClassInfo();
  }
  return *needed;
}

// Comparing two objects needs all their properties; IS NULL and ISA do not.
bool comparesValues(QORQL_Operator op) {
  return (op >= QORQL_OperatorEQUAL && op <= QORQL_OperatorGREATEREQUAL) ||
         (op >= QORQL_OperatorLEFTJOIN && op <= QORQL_OperatorFULLOUTERJOIN);
}

}  // namespace

void QORQL_Query::_resolve(QORQL_SymbolTable& symbolTable, QORQL_ProjectionMap& projectionMap,
                           const QORString& nameSpace, QORSlabs& slabs) {
  NameCache cache;
  QORQL_SelectList& selectList = static_cast<QORQL_SelectList&>(*_selectList);  // as parse() made it, and what follows
  UpdateContext context{nameSpace, symbolTable, selectList, nullptr, cache, slabs};
  _findSelectClasses(selectList, projectionMap, context);
  _verifySymbolsAndUpdateSymbolTable(projectionMap, context);
  if (!_whereClause.IsNull()) _findWhereClasses(static_cast<QORQL_WhereClause&>(*_whereClause), context);
  if (!_orderbyClause.IsNull()) {
    context.selectList = &selectList;
    _findOrderByClasses(static_cast<QORQL_OrderByClause&>(*_orderbyClause), context);
  }
}

bool QORQL_Query::_isFromName(const QORString& name, const UpdateContext& context) {
  const QORQL_Symbol* const symbol = context.symbolTable.findHere(name);
  return symbol != nullptr && symbol->getType() == QORQL_SYMBOLTYPE_TABLE_NAME;
}

// --- which class has a property ------------------------------------------------

QORuint32 QORQL_Query::_countClasses(const QORString& propertyName, UpdateContext& context, FromClass*& first) {
  context.cache.loadClasses(context);
  QORuint32 count = 0;
  for (FromClass& known : context.cache.classes) {
    if (known.description->getProperty(propertyName, true) == nullptr) continue;
    if (++count == 2) break;
    first = &known;
  }
  return count;
}

QORQL_Query::FromClass& QORQL_Query::_findClass(const QORString& propertyName, const QORQL_Factor* factor,
                                                UpdateContext& context) {
  FromClass* found = context.cache.classOf(propertyName);
  if (found != nullptr) return *found;
  const QORuint32 count = _countClasses(propertyName, context, found);
  if (count != 1) {
    const QORuint32 place =
        factor == nullptr ? QORQL_findBareName(context.entries, propertyName) : factor->getPropertyOffset();
    QORQL_raise(count == 0 ? QORQL_Messages::kPropertyUnknown : QORQL_Messages::kPropertyAmbiguous, 0, place,
                propertyName);
  }
  context.cache.keepClassOf(propertyName, *found);
  return *found;
}

// A sort key that cannot be bound is no error here: it fails when the rows are sorted.
QORQL_Query::FromClass* QORQL_Query::_tryFindClass(const QORQL_Factor& factor, UpdateContext& context) {
  const QORString& propertyName = *factor.getPropertyName();
  if (context.selectList == nullptr) return &_findClass(propertyName, &factor, context);
  FromClass* found = nullptr;
  return _countClasses(propertyName, context, found) == 1 ? found : nullptr;
}

QORQL_ClassInfo& QORQL_Query::_neededOf(FromClass& known, const UpdateContext& context) {
  if (known.needed == nullptr) known.needed = &neededOf(*known.symbol, context.slabs);
  return *known.needed;
}

// --- factors --------------------------------------------------------------------

// A bare name may be a select alias (in a sort key) or stand for a whole object.
bool QORQL_Query::_resolveToEntryOrObject(QORQL_Factor& factor, UpdateContext& context) {
  if (context.selectList != nullptr && factor.isBareIdentifier()) {
    const auto entry = context.cache.entryOfAlias.find(QORString::toUpperCase(*factor.getPropertyName()));
    if (entry != context.cache.entryOfAlias.end()) {
      factor.setSelectedEntry(entry->second);
      return true;
    }
  }
  if (!_isFromName(*factor.getPropertyName(), context)) return false;
  const QORString name = *factor.getPropertyName();
  *factor.getClassName() = name;
  factor.setPropertyName(nullptr);
  factor.setKnownFromName(true);
  if (context.needsWholeObjects) {
    neededOf(*context.symbolTable.findIgnoringCase(name), context.slabs).setNeedAllProperties(true);
  }
  return true;
}

void QORQL_Query::_updateExpression(QORQL_Factor& factor, UpdateContext& context) {
  const QORSmrPtr<QORQL_Evaluatable>& nested = factor.getEvaluatable();
  if (!nested.IsNull()) {
    if (auto* function = QORQL_nodeAs<QORQL_Function>(nested)) return _updateExpression(*function, context);
    if (auto* inner = QORQL_nodeAs<QORQL_Factor>(nested)) return _updateExpression(*inner, context);
    if (auto* comparison = QORQL_nodeAs<QORQL_Comparison>(nested)) return _updateExpression(*comparison, context);
    return;
  }
  if (factor.getPropertyName().IsNull()) return;
  const bool hasEmptyChain = !factor.getChain().IsNull() && factor.getChain()->isEmpty();
  const bool hasEmptyClass = !factor.getClassName().IsNull() && factor.getClassName()->isEmpty();
  if (!hasEmptyChain && !hasEmptyClass) return;
  if (!hasEmptyChain && _resolveToEntryOrObject(factor, context)) return;
  const QORString& property = *factor.getPropertyName();
  FromClass* const found = _tryFindClass(factor, context);
  if (found == nullptr) return;
  if (hasEmptyChain) *factor.getChain() = found->name;
  if (hasEmptyClass) *factor.getClassName() = found->name;
  if (!context.symbolTable.isSymbolTableUpdated()) return;
  _neededOf(*found, context).addPropertyOnce(property, context.slabs);
}

// --- the levels above: chains are walked with a loop ------------------------------

void QORQL_Query::_updateExpression(const QORQL_Term& term, UpdateContext& context) {
  for (const QORQL_Term& link : QORQL_linksOf(term)) {
    if (auto* factor = QORQL_nodeAs<QORQL_Factor>(QORQL_operandOf(link))) _updateExpression(*factor, context);
  }
}

void QORQL_Query::_updateExpression(const QORQL_Arithmetic& arithmetic, UpdateContext& context) {
  for (const QORQL_Arithmetic& link : QORQL_linksOf(arithmetic)) {
    if (const auto* term = QORQL_nodeAs<QORQL_Term>(QORQL_operandOf(link))) _updateExpression(*term, context);
  }
}

void QORQL_Query::_updateExpression(const QORQL_Comparison& comparison, UpdateContext& context) {
  const bool before = context.needsWholeObjects;
  context.needsWholeObjects = before || comparesValues(comparison.getOperator());
  for (const auto* side : {&comparison.getLHSArithmeticExpression(), &comparison.getRHSArithmeticExpression()}) {
    if (const auto* arithmetic = QORQL_nodeAs<QORQL_Arithmetic>(*side)) _updateExpression(*arithmetic, context);
  }
  context.needsWholeObjects = before;
}

void QORQL_Query::_updateExpression(const QORQL_ExpressionFactor& factor, UpdateContext& context) {
  if (const auto* comparison = QORQL_nodeAs<QORQL_Comparison>(factor.getComparison())) {
    _updateExpression(*comparison, context);
  }
}

// Its names are FROM names and an association class: there is nothing to bind.
void QORQL_Query::_updateExpression(const QORQL_Association&, UpdateContext&) {}

void QORQL_Query::_updateExpression(const QORQL_ExpressionTerm& term, UpdateContext& context) {
  for (const QORQL_ExpressionTerm& link : QORQL_linksOf(term)) {
    const QORSmrPtr<QORQL_Evaluatable>& left = QORQL_operandOf(link);
    if (const auto* factor = QORQL_nodeAs<QORQL_ExpressionFactor>(left)) {
      _updateExpression(*factor, context);
    } else if (const auto* association = QORQL_nodeAs<QORQL_Association>(left)) {
      _updateExpression(*association, context);
    }
  }
}

void QORQL_Query::_updateExpression(const QORQL_Expression& expression, UpdateContext& context) {
  for (const QORQL_Expression& link : QORQL_linksOf(expression)) {
    if (const auto* term = QORQL_nodeAs<QORQL_ExpressionTerm>(QORQL_operandOf(link))) {
      _updateExpression(*term, context);
    }
  }
}

void QORQL_Query::_updateExpression(const QORQL_Function& function, UpdateContext& context) {
  QORValSlistIterator<QORSmrPtr<QORQL_Evaluatable>> parameters(*function.getParameters());
  while (++parameters) {
    if (const auto* expression = QORQL_nodeAs<QORQL_Expression>(parameters.key())) {
      _updateExpression(*expression, context);
    }
  }
}

// --- clauses ----------------------------------------------------------------------

// The record "" holds the names that the select list wrote without a class, of
// which some stand in no factor (`OBJECTPATH(Q)`). They follow those that it wrote
// with one; when there are none, they need no record on the way to what is needed
// of their classes.
void QORQL_Query::_bindBareNames(QORQL_ProjectionMap& projectionMap, UpdateContext& context) {
  const QORSmrPtr<QORQL_ClassInfo>* const bare = projectionMap->peek(QORString::emptyString());
  if (bare == nullptr) return;
  const bool isAlone = projectionMap->entries() == 1;
  QORValSlistIterator<QORString> names(*(*bare)->getPropertyList());
  while (++names) {
    if (_isFromName(names.key(), context)) continue;
    FromClass& holder = _findClass(names.key(), nullptr, context);
    QORQL_ClassInfo& record =
        isAlone ? _neededOf(holder, context) : *QORQL_recordOf(projectionMap, holder.name, context.slabs);
    record.addPropertyOnce(names.key(), context.slabs);
  }
  context.cache.bareNames = *bare;
  projectionMap->remove(QORString::emptyString());
}

// A qualifier that is no FROM name but a property of exactly one FROM class
// holds an embedded object (`SourceInstance.Cls::x`): it is what to ask for.
void QORQL_Query::_requestEmbeddedRoots(QORQL_ProjectionMap& projectionMap, UpdateContext& context) {
  std::vector<std::pair<QORString, FromClass*>> roots;
  QORValMapIterator<QORString, QORSmrPtr<QORQL_ClassInfo>> records(*projectionMap);
  while (++records) {
    FromClass* holder = nullptr;
    const QORString& qualifier = records.peekKey();
    if (context.symbolTable.findIgnoringCase(qualifier) != nullptr) continue;
    if (_countClasses(qualifier, context, holder) == 1) roots.emplace_back(qualifier, holder);
  }
  for (const auto& [root, holder] : roots) {
    projectionMap->remove(root);
    QORQL_recordOf(projectionMap, holder->name, context.slabs)->addPropertyOnce(root, context.slabs);
  }
}

// Whether an expression consists of one property, perhaps in parentheses or negated, and not of a whole object.
bool QORQL_Query::_namesOneProperty(const QORSmrPtr<QORQL_Evaluatable>& node) {
  const QORQL_Factor* const lone = QORQL_loneFactor(node);
  if (lone != nullptr && lone->getEvaluatable().IsNull()) return lone->isPropertyReference();
  auto visitor = QORSmrPtr<QORQL_ExpressionVisitor>::Make<QORQL_IdentifierFinder>();
  const auto* const finder = static_cast<const QORQL_IdentifierFinder*>(visitor.Get());
  node->accept(visitor);
  return finder->isPropertyReference();
}

void QORQL_Query::_resolveEntry(QORQL_SelectedEntry& entry, UpdateContext& context) {
  const auto* const expression = QORQL_nodeAs<QORQL_Comparison>(entry.getExpression());
  if (expression == nullptr) {
    QORQL_raise(QORQL_Messages::kSelectCastFailed, entry.getOffset(), std::bad_cast().what());
  }
  context.needsWholeObjects = entry.GetFunctionID() == QORQL_FUNCTIONID_UNKNOWN;
  _updateExpression(*expression, context);
  context.needsWholeObjects = false;
  if (!entry.getClassName().isEmpty() || entry.getPropertyName().isEmpty()) return;
  entry.setClassName(*entry.getClassNameList()->first());
  if (!_namesOneProperty(entry.getExpression())) entry.setPropertyName(QORString::emptyString());
}

void QORQL_Query::_findSelectClasses(QORQL_SelectList& selectList, QORQL_ProjectionMap& projectionMap,
                                     UpdateContext& context) {
  _bindBareNames(projectionMap, context);
  _requestEmbeddedRoots(projectionMap, context);
  const QORQL_SelectList::EntryList entryList = selectList.getSelectedEntries();
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*entryList);
  while (++entries) {
    if (!entries.key()->getExpression().IsNull()) _resolveEntry(*entries.key(), context);
  }
}

void QORQL_Query::_verifySymbolsAndUpdateSymbolTable(QORQL_ProjectionMap& projectionMap, UpdateContext& context) {
  if (projectionMap.IsNull()) return;
  QORValMapIterator<QORString, QORSmrPtr<QORQL_ClassInfo>> records(*projectionMap);
  while (++records) {
    const QORQL_ClassInfo& named = *records.peekValue();
    QORQL_Symbol* const symbol = context.symbolTable.findIgnoringCase(named.getClassName());
    if (symbol == nullptr) {
      const QORuint32 place = QORQL_findQualifier(context.entries, named.getClassName());
      QORQL_raise(QORQL_Messages::kSymbolInvalid, place, named.getClassName());
    }
    QORQL_ClassInfo& needed = neededOf(*symbol, context.slabs);
    QORValSlistIterator<QORString> properties(*named.getPropertyList());
    while (++properties) needed.addPropertyOnce(properties.key(), context.slabs);
    if (named.needAllProperties()) needed.setNeedAllProperties(true);
  }
}

void QORQL_Query::_findWhereClasses(QORQL_WhereClause& whereClause, UpdateContext& context) {
  const auto* const expression = QORQL_nodeAs<QORQL_Expression>(whereClause.getExpression());
  if (expression == nullptr) {
    QORQL_raise(QORQL_Messages::kWhereCastFailed, QORQL_Fault::kNowhere, std::bad_cast().what());
  }
  _updateExpression(*expression, context);
}

void QORQL_Query::_findOrderByClasses(QORQL_OrderByClause& orderByClause, UpdateContext& context) {
  const QORQL_SelectList::EntryList entryList = context.selectList->getSelectedEntries();
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*entryList);
  while (++entries) {
    const QORString& alias = entries.key()->getAlias();
    if (!alias.isEmpty()) context.cache.entryOfAlias.emplace(alias, entries.key());
  }
  if (const auto* key = QORQL_nodeAs<QORQL_Arithmetic>(orderByClause.getExpression())) {
    _updateExpression(*key, context);
  }
}
