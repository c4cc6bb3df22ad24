// A property entry keeps its property, a computed entry the properties that its references
// name, and an entry of a class that needs all properties keeps them all.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Run/QORQL_ProjectionPlan.h"

#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace {

class ReferenceFinder : public QORQL_ExpressionVisitor {
 public:
  struct Reference {
    QORString className;
    QORString propertyName;
    bool namesObjectOnly;
  };
  void visitFactor(const QORQL_Factor& factor) override {
    if (!factor.getSelectedEntry().IsNull()) {
      entries.push_back(factor.getSelectedEntry().Get());
      return;
    }
    if (factor.getClassName().IsNull() || factor.getClassName()->isEmpty()) return;
    const QORString propertyName(QORQL_ownProperty(factor));
    references.push_back(
        {*factor.getClassName(), propertyName == "*" ? QORString::emptyString() : propertyName, false});
  }
  // A function comes right after its argument.
  void visitFunction(const QORQL_Function& function) override {
    if (function.getFunctionID() != QORQL_FUNCTIONID_OBJECTPATH || references.empty()) return;
    references.back().namesObjectOnly = references.back().propertyName == QORQL_ExecutionMessages::kNoProperty;
  }
  std::vector<Reference> references;
  std::vector<const QORQL_SelectedEntry*> entries;  // columns that a sort key stands for
};

}  // namespace

QORQL_ProjectionPlan::QORQL_ProjectionPlan(const QORQL_SelectList& list, const QORQL_SymbolTable& symbols,
                                           const QORQL_DataTable& table)
    : _symbols(symbols) {
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list.getSelectedEntries());
  while (++entries) {
    if (entries.key()->isSelectAll()) {
      addColumns(table);
    } else {
      addEntry(*entries.key());
    }
  }
  if (table.isProjected()) return;
  _isForSort = true;
  addExpression(list.getOrderByKey());
}

void QORQL_ProjectionPlan::addColumns(const QORQL_DataTable& table) {
  QORValSlistIterator<QORSmrPtr<QORQL_TableHeader>> headers(*table.getColumnHeaderList());
  for (QORsint32 column = 0; ++headers; ++column) {
    if (column == table.getFunctionColumn()) continue;
    const QORString name(headers.key()->getName());
    _items.push_back({_symbols.classNameOf(name), name, QORString::emptyString(), false, _isForSort});
  }
}

void QORQL_ProjectionPlan::addEntry(const QORQL_SelectedEntry& entry) {
  if (entry.GetFunctionID() != QORQL_FUNCTIONID_UNKNOWN) {
    _hasFunctions = true;
  } else if (entry.isPlainProperty() || entry.isClassAll()) {
    add(entry.getClassName(), entry.isClassAll() ? QORString::emptyString() : entry.getPropertyName());
  } else {
    addExpression(entry.getExpression());
  }
}

void QORQL_ProjectionPlan::addExpression(const QORSmrPtr<QORQL_Evaluatable>& expression) {
  if (expression.IsNull()) return;
  ReferenceFinder* const finder = new ReferenceFinder();
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  expression->accept(visitor);
  for (const ReferenceFinder::Reference& reference : finder->references) {
    if (reference.namesObjectOnly) {
      _items.push_back(
          {_symbols.classNameOf(reference.className), reference.className, QORString::emptyString(), true, _isForSort});
    } else {
      add(reference.className, reference.propertyName);
    }
  }
  for (const QORQL_SelectedEntry* entry : finder->entries) addEntry(*entry);
}

void QORQL_ProjectionPlan::add(const QORString& className, const QORString& propertyName) {
  const QORSmrPtr<QORQL_Symbol> symbol(_symbols.lookupIgnoringCase(className));
  const QORSmrPtr<QORQL_ClassInfo> info(symbol.IsNull() ? QORSmrPtr<QORQL_ClassInfo>() : symbol->getClassInfo());
  const bool needsAll = !info.IsNull() && info->needAllProperties();
  _items.push_back({_symbols.classNameOf(className), className, needsAll ? QORString::emptyString() : propertyName,
                    false, _isForSort});
}
