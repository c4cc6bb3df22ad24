// The names that a statement knows.
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace {

constexpr QORuint32 kBuckets = 150;

}  // namespace

QORQL_SymbolTable::QORQL_SymbolTable(QORQL_SymbolTable* parent)
    : _parentSymbolTable(parent), _hashDict(&hashKeyQORString, kBuckets) {}

void QORQL_SymbolTable::insert(const QORString& name, QORSmrPtr<QORQL_Symbol> symbol) {
  _hashDict.insert(name, symbol);
}

QORSmrPtr<QORQL_Symbol> QORQL_SymbolTable::deepLookup(const QORString& name, QORboolean flag) const {
  QORSmrPtr<QORQL_Symbol> symbol;
  if (!_hashDict.find(name, symbol) && _parentSymbolTable != nullptr) return _parentSymbolTable->deepLookup(name, flag);
  return symbol;
}

QORSmrPtr<QORQL_Symbol> QORQL_SymbolTable::lookup(const QORString& name) const {
  QORSmrPtr<QORQL_Symbol> symbol = deepLookup(name, false);
  // The second walk finds what the first one found; a flag that means nothing yet is the only difference.
  return symbol.IsNull() ? deepLookup(name, true) : symbol;
}

QORSmrPtr<QORQL_Symbol> QORQL_SymbolTable::lookupIgnoringCase(const QORString& name) const {
  return lookup(QORString::toUpperCase(name));
}

QORString QORQL_SymbolTable::classNameOf(const QORString& name) const {
  const QORSmrPtr<QORQL_Symbol> symbol = lookupIgnoringCase(name);
  return symbol.IsNull() ? name : symbol->getClassName();
}

void QORQL_SymbolTable::setRootParent(QORQL_SymbolTable* parent) {
  QORQL_SymbolTable* root = this;
  while (root->_parentSymbolTable != nullptr) root = root->_parentSymbolTable;
  root->_parentSymbolTable = parent;
}

QORboolean QORQL_SymbolTable::isParent(const QORQL_SymbolTable* table) const noexcept {
  for (const QORQL_SymbolTable* level = this; level != nullptr; level = level->_parentSymbolTable) {
    if (level == table) return true;
  }
  return false;
}
