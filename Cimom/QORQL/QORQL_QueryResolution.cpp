// Name resolution: binds each name that was written without a class to the one
// FROM class that has the property, and records what is needed of each class.
//
// A factor's class name is shared with the class-name list of its select entry,
// so the walk over the factors writes through that string and entry, list and
// factor agree. Names keep their spelling; classes found are in upper case.
#include <map>
#include <typeinfo>
#include <utility>
#include <vector>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "cimom/QoriProviderPluginManager.h"

// What one resolution has looked up: a condition may use a name many thousand times.
struct QORQL_Query::NameCache {
  bool hasClasses = false;
  std::vector<std::pair<QORString, QORSmrPtr<IQoriClass>>> classes;  // of FROM, those that the repository knows
  std::map<QORString, QORString> classOfProperty;                    // by the property in upper case
  std::map<QORString, QORSmrPtr<QORQL_SelectedEntry>> entryOfAlias;

  void loadClasses(const QORString& nameSpace, const std::set<QORString>& names) {
    if (std::exchange(hasClasses, true)) return;
    const QORSmrPtr<IQoriRepository> repository =
        QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository();
    if (repository.IsNull()) return;
    for (const QORString& name : names) {
      const QORSmrPtr<IQoriClass> found = repository->getClass(nameSpace, name);
      if (!found.IsNull()) classes.emplace_back(name, found);
    }
  }
};

namespace {

// The record of what is needed of a FROM name's class; null for a name that is unknown.
QORSmrPtr<QORQL_ClassInfo> neededOf(const QORSmrPtr<QORQL_Symbol>& symbol) {
  if (symbol.IsNull()) return nullptr;
  if (symbol->getClassInfo().IsNull()) {
    auto fresh = QORSmrPtr<QORQL_ClassInfo>::Make(symbol->getClassName(), nullptr, false);
    symbol->setClassInfo(fresh);
  }
  return symbol->getClassInfo();
}

void needAll(QORQL_SymbolTable& symbolTable, const QORString& name) {
  const QORSmrPtr<QORQL_ClassInfo> needed = neededOf(symbolTable.lookupIgnoringCase(name));
  if (!needed.IsNull()) needed->setNeedAllProperties(true);
}

// Comparing two objects takes all their properties; telling null or a class does not.
bool comparesValues(QORQL_Operator op) { return op >= QORQL_OperatorEQUAL && op <= QORQL_OperatorGREATEREQUAL; }

}  // namespace

void QORQL_Query::_resolve(QORQL_SymbolTable& symbolTable, QORQL_ProjectionMap& projectionMap,
                           const QORString& nameSpace) {
  std::set<QORString> classes;
  std::set<QORString> aliases;
  _getClassesAndAliases(symbolTable, classes, aliases);
  NameCache cache;
  UpdateContext context{nameSpace, classes, aliases, symbolTable, nullptr, cache};
  QORQL_SelectList& selectList = dynamic_cast<QORQL_SelectList&>(*_selectList);
  _findSelectClasses(selectList, projectionMap, context);
  _verifySymbolsAndUpdateSymbolTable(symbolTable, projectionMap);
  if (!_whereClause.IsNull()) _findWhereClasses(dynamic_cast<QORQL_WhereClause&>(*_whereClause), context);
  if (!_orderbyClause.IsNull()) {
    context.selectList = _selectList.StaticCast<QORQL_SelectList>();
    _findOrderByClasses(dynamic_cast<QORQL_OrderByClause&>(*_orderbyClause), context);
  }
}

void QORQL_Query::_getClassesAndAliases(QORQL_SymbolTable& symbolTable, std::set<QORString>& classes,
                                        std::set<QORString>& aliases) {
  QORValMapIterator<QORString, QORSmrPtr<QORQL_Symbol>> symbols(symbolTable.getSymbolHashMap());
  while (++symbols) {
    const QORSmrPtr<QORQL_Symbol> symbol = symbols.value();
    if (symbol->getType() != QORQL_SYMBOLTYPE_TABLE_NAME) continue;
    (symbol->isAlias() ? aliases : classes).insert(symbols.key());
  }
}

bool QORQL_Query::_isFromName(const QORString& name, const UpdateContext& context) {
  const QORString folded = QORString::toUpperCase(name);
  return context.classes.count(folded) != 0 || context.aliases.count(folded) != 0;
}

// --- which class has a property ------------------------------------------------

QORuint32 QORQL_Query::_countClasses(const QORString& propertyName, UpdateContext& context, QORString& first) {
  context.cache.loadClasses(context.nameSpace, context.classes);
  QORuint32 count = 0;
  for (const auto& [name, description] : context.cache.classes) {
    if (description->getProperty(propertyName, true) == nullptr) continue;
    if (++count == 2) break;
    first = name;
  }
  return count;
}

QORString QORQL_Query::_findClass(const QORString& propertyName, UpdateContext& context) {
  const QORString folded = QORString::toUpperCase(propertyName);
  const auto known = context.cache.classOfProperty.find(folded);
  if (known != context.cache.classOfProperty.end()) return known->second;
  QORString found;
  const QORuint32 count = _countClasses(propertyName, context, found);
  if (count > 1) QORQL_raise(QORQL_Messages::kPropertyAmbiguous, propertyName);
  if (count == 0) QORQL_raise(QORQL_Messages::kPropertyUnknown, propertyName);
  context.cache.classOfProperty.emplace(folded, found);
  return found;
}

// A sort key that cannot be bound is no error here: it fails when the rows are sorted.
bool QORQL_Query::_tryFindClass(const QORString& propertyName, UpdateContext& context, QORString& found) {
  if (!context.selectList.IsNull()) return _countClasses(propertyName, context, found) == 1;
  found = _findClass(propertyName, context);
  return true;
}

// --- factors --------------------------------------------------------------------

// A bare name may be a select alias (in a sort key) or stand for a whole object.
bool QORQL_Query::_resolveToEntryOrObject(QORQL_Factor& factor, UpdateContext& context) {
  const QORString name = *factor.getPropertyName();
  if (!context.selectList.IsNull() && factor.isBareIdentifier()) {
    const auto entry = context.cache.entryOfAlias.find(QORString::toUpperCase(name));
    if (entry != context.cache.entryOfAlias.end()) {
      factor.setSelectedEntry(entry->second);
      return true;
    }
  }
  if (!_isFromName(name, context)) return false;
  *factor.getClassName() = name;
  factor.setPropertyName(nullptr);
  factor.setKnownFromName(true);
  if (context.needsWholeObjects) needAll(context.symbolTable, name);
  return true;
}

void QORQL_Query::_updateExpression(QORQL_Factor& factor, UpdateContext& context) {
  QORQL_Evaluatable* const nested = factor.getEvaluatable().Get();
  if (nested != nullptr) {
    if (auto* function = dynamic_cast<QORQL_Function*>(nested)) return _updateExpression(*function, context);
    if (auto* inner = dynamic_cast<QORQL_Factor*>(nested)) return _updateExpression(*inner, context);
    if (auto* comparison = dynamic_cast<QORQL_Comparison*>(nested)) return _updateExpression(*comparison, context);
    return;
  }
  if (factor.getPropertyName().IsNull()) return;
  const QORString property = *factor.getPropertyName();
  const bool hasEmptyChain = !factor.getChain().IsNull() && factor.getChain()->isEmpty();
  const bool hasEmptyClass = !factor.getClassName().IsNull() && factor.getClassName()->isEmpty();
  if (!hasEmptyChain && !hasEmptyClass) return;
  if (!hasEmptyChain && _resolveToEntryOrObject(factor, context)) return;
  QORString found;
  if (!_tryFindClass(property, context, found)) return;
  if (hasEmptyChain) *factor.getChain() = found;
  if (hasEmptyClass) *factor.getClassName() = found;
  if (!context.symbolTable.isSymbolTableUpdated()) return;
  const QORSmrPtr<QORQL_ClassInfo> needed = neededOf(context.symbolTable.lookup(found));
  if (!needed.IsNull()) needed->addPropertyOnce(property);
}

// --- the levels above: chains are walked with a loop ------------------------------

void QORQL_Query::_updateExpression(const QORQL_Term& term, UpdateContext& context) {
  for (const QORQL_Term* node = &term; node != nullptr; node = dynamic_cast<QORQL_Term*>(node->getTerm().Get())) {
    if (QORQL_Factor* const factor = node->getFactorCasted()) _updateExpression(*factor, context);
  }
}

void QORQL_Query::_updateExpression(const QORQL_Arithmetic& arithmetic, UpdateContext& context) {
  for (const QORQL_Arithmetic* node = &arithmetic; node != nullptr;
       node = dynamic_cast<QORQL_Arithmetic*>(node->getArithmetic().Get())) {
    if (const QORQL_Term* const term = node->getTermCasted()) _updateExpression(*term, context);
  }
}

void QORQL_Query::_updateExpression(const QORQL_Comparison& comparison, UpdateContext& context) {
  const bool before = context.needsWholeObjects;
  context.needsWholeObjects = before || comparesValues(comparison.getOperator());
  for (const auto& side : {comparison.getLHSArithmeticExpression(), comparison.getRHSArithmeticExpression()}) {
    if (const auto* arithmetic = dynamic_cast<QORQL_Arithmetic*>(side.Get())) _updateExpression(*arithmetic, context);
  }
  context.needsWholeObjects = before;
}

void QORQL_Query::_updateExpression(const QORQL_ExpressionFactor& factor, UpdateContext& context) {
  if (const auto* comparison = dynamic_cast<QORQL_Comparison*>(factor.getComparison().Get())) {
    _updateExpression(*comparison, context);
  }
}

// Its names are FROM names and an association class: nothing to bind.
void QORQL_Query::_updateExpression(const QORQL_Association&, UpdateContext&) {}

void QORQL_Query::_updateExpression(const QORQL_ExpressionTerm& term, UpdateContext& context) {
  for (const QORQL_ExpressionTerm* node = &term; node != nullptr;
       node = dynamic_cast<QORQL_ExpressionTerm*>(node->getExpressionTerm().Get())) {
    QORQL_Evaluatable* const left = node->getExpressionFactor().Get();
    if (const auto* factor = dynamic_cast<QORQL_ExpressionFactor*>(left)) {
      _updateExpression(*factor, context);
    } else if (const auto* association = dynamic_cast<QORQL_Association*>(left)) {
      _updateExpression(*association, context);
    }
  }
}

void QORQL_Query::_updateExpression(const QORQL_Expression& expression, UpdateContext& context) {
  for (const QORQL_Expression* node = &expression; node != nullptr;
       node = dynamic_cast<QORQL_Expression*>(node->getExpression().Get())) {
    if (const auto* term = dynamic_cast<QORQL_ExpressionTerm*>(node->getExpressionTerm().Get())) {
      _updateExpression(*term, context);
    }
  }
}

void QORQL_Query::_updateExpression(const QORQL_Function& function, UpdateContext& context) {
  QORValSlistIterator<QORSmrPtr<QORQL_Evaluatable>> parameters(*function.getParameters());
  while (++parameters) {
    if (const auto* expression = dynamic_cast<QORQL_Expression*>(parameters.key().Get())) {
      _updateExpression(*expression, context);
    }
  }
}

// --- clauses ----------------------------------------------------------------------

// The record "" holds the names that the select list wrote without a class.
void QORQL_Query::_bindBareNames(QORQL_ProjectionMap& projectionMap, UpdateContext& context) {
  QORSmrPtr<QORQL_ClassInfo> bare;
  if (!projectionMap->find(QORString::emptyString(), bare)) return;
  QORValSlistIterator<QORString> names(*bare->getPropertyList());
  while (++names) {
    if (_isFromName(names.key(), context)) continue;
    QORQL_recordOf(projectionMap, _findClass(names.key(), context))->addPropertyOnce(names.key());
  }
  projectionMap->remove(QORString::emptyString());
}

// A qualifier that is no FROM name but a property of exactly one FROM class
// holds an embedded object (`SourceInstance.Cls::x`): it is what to ask for.
void QORQL_Query::_requestEmbeddedRoots(QORQL_ProjectionMap& projectionMap, UpdateContext& context) {
  std::vector<std::pair<QORString, QORString>> roots;
  QORValMapIterator<QORString, QORSmrPtr<QORQL_ClassInfo>> records(*projectionMap);
  while (++records) {
    QORString holder;
    const QORString qualifier = records.key();
    if (!context.symbolTable.lookupIgnoringCase(qualifier).IsNull()) continue;
    if (_countClasses(qualifier, context, holder) == 1) roots.emplace_back(qualifier, holder);
  }
  for (const auto& [root, holder] : roots) {
    projectionMap->remove(root);
    QORQL_recordOf(projectionMap, holder)->addPropertyOnce(root);
  }
}

void QORQL_Query::_resolveEntry(QORQL_SelectedEntry& entry, UpdateContext& context) {
  const QORSmrPtr<QORQL_Evaluatable> expression = entry.getExpression();
  context.needsWholeObjects = entry.GetFunctionID() == QORQL_FUNCTIONID_UNKNOWN;
  try {
    _updateExpression(dynamic_cast<const QORQL_Comparison&>(*expression), context);
  } catch (const std::bad_cast& failure) {
    QORQL_raise(QORQL_Messages::kSelectCastFailed, failure.what());
  }
  context.needsWholeObjects = false;
  if (!entry.getClassName().isEmpty() || entry.getPropertyName().isEmpty()) return;
  entry.setClassName(*entry.getClassNameList()->first());
  auto visitor = QORSmrPtr<QORQL_ExpressionVisitor>::Make<QORQL_IdentifierFinder>();
  const auto* const finder = static_cast<const QORQL_IdentifierFinder*>(visitor.Get());
  expression->accept(visitor);
  if (!finder->isPropertyReference()) entry.setPropertyName(QORString::emptyString());
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

void QORQL_Query::_verifySymbolsAndUpdateSymbolTable(QORQL_SymbolTable& symbolTable,
                                                     QORQL_ProjectionMap& projectionMap) {
  if (projectionMap.IsNull()) return;
  QORValMapIterator<QORString, QORSmrPtr<QORQL_ClassInfo>> records(*projectionMap);
  while (++records) {
    const QORSmrPtr<QORQL_ClassInfo> named = records.value();
    const QORSmrPtr<QORQL_Symbol> symbol = symbolTable.lookupIgnoringCase(named->getClassName());
    if (symbol.IsNull()) QORQL_raise(QORQL_Messages::kSymbolInvalid, named->getClassName());
    const QORSmrPtr<QORQL_ClassInfo> needed = neededOf(symbol);
    // The merge takes over the flag that comes in; a class that needed all before still does.
    const QORboolean all = needed->needAllProperties() || named->needAllProperties();
    auto added = QORSmrPtr<QORQL_ClassInfo>::Make(symbol->getClassName(), nullptr, all);
    QORValSlistIterator<QORString> properties(*named->getPropertyList());
    while (++properties) {
      if (!needed->listsProperty(properties.key())) added->addProperty(properties.key());
    }
    symbol->setClassInfo(added);
  }
}

void QORQL_Query::_findWhereClasses(QORQL_WhereClause& whereClause, UpdateContext& context) {
  try {
    _updateExpression(dynamic_cast<const QORQL_Expression&>(*whereClause.getExpression()), context);
  } catch (const std::bad_cast& failure) {
    QORQL_raise(QORQL_Messages::kWhereCastFailed, failure.what());
  }
}

void QORQL_Query::_findOrderByClasses(QORQL_OrderByClause& orderByClause, UpdateContext& context) {
  const QORQL_SelectList::EntryList entryList = context.selectList->getSelectedEntries();
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*entryList);
  while (++entries) {
    const QORString& alias = entries.key()->getAlias();
    if (!alias.isEmpty()) context.cache.entryOfAlias.emplace(alias, entries.key());
  }
  if (const auto* key = dynamic_cast<QORQL_Arithmetic*>(orderByClause.getExpression().Get())) {
    _updateExpression(*key, context);
  }
}
