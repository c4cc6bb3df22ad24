// The names that a statement knows.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_SymbolTable.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "Cimom/QORQL/QORQL_MapBuckets.h"

namespace {

constexpr QORuint32 kFewNames = 8;

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

QORuint32 upperHash(std::string_view name) {
  QORuint32 hash = hashKeyBytes("");
  for (const char byte : name) {
    const char c = upper(byte);
    hash = hashKeyBytes({&c, 1}, hash);
  }
  return hash;
}

bool isUpperCaseOf(std::string_view key, std::string_view name) {
  return std::equal(key.begin(), key.end(), name.begin(), name.end(),
                    [](char inKey, char inName) { return inKey == upper(inName); });
}

}  // namespace

QORQL_SymbolTable::QORQL_SymbolTable(QORQL_SymbolTable* parent)
    : _parentSymbolTable(parent), _hashDict(&hashKeyQORString, QORQL_kMapBuckets) {}

QORQL_SymbolTable::~QORQL_SymbolTable() {
  const QORSlabs::Returning together;
  _hashDict.clear();
}

void QORQL_SymbolTable::insert(const QORString& name, QORSmrPtr<QORQL_Symbol> symbol) {
  _hashDict.insert(name, std::move(symbol));
}

QORSmrPtr<QORQL_Symbol> QORQL_SymbolTable::deepLookup(const QORString& name, QORboolean flag) const {
  QORSmrPtr<QORQL_Symbol> symbol;
  if (!_hashDict.find(name, symbol) && _parentSymbolTable != nullptr) return _parentSymbolTable->deepLookup(name, flag);
  return symbol;
}

QORSmrPtr<QORQL_Symbol> QORQL_SymbolTable::lookup(const QORString& name) const {
  QORSmrPtr<QORQL_Symbol> symbol = deepLookup(name, false);
  // The flag has no effect yet, so both look-ups give the same symbol.
  return symbol.IsNull() ? deepLookup(name, true) : symbol;
}

// Names are kept in upper case. A few are compared one by one; among many, the
// name's hash in upper case finds it.
const QORSmrPtr<QORQL_Symbol>* QORQL_SymbolTable::_peekHere(const QORString& name) const noexcept {
  if (_hashDict.entries() > kFewNames) {
    return _hashDict.peekHashed(upperHash(name.view()),
                                [&name](const QORString& key) { return isUpperCaseOf(key.view(), name.view()); });
  }
  QORValMapIterator<QORString, QORSmrPtr<QORQL_Symbol>> symbols(_hashDict);
  while (++symbols) {
    if (isUpperCaseOf(symbols.peekKey().view(), name.view())) return &symbols.peekValue();
  }
  return nullptr;
}

const QORSmrPtr<QORQL_Symbol>* QORQL_SymbolTable::_peek(const QORString& name) const noexcept {
  for (const QORQL_SymbolTable* table = this; table != nullptr; table = table->_parentSymbolTable) {
    if (const QORSmrPtr<QORQL_Symbol>* const symbol = table->_peekHere(name)) return symbol;
  }
  return nullptr;
}

QORSmrPtr<QORQL_Symbol> QORQL_SymbolTable::lookupIgnoringCase(const QORString& name) const {
  const QORSmrPtr<QORQL_Symbol>* const symbol = _peek(name);
  return symbol == nullptr ? QORSmrPtr<QORQL_Symbol>() : *symbol;
}

QORQL_Symbol* QORQL_SymbolTable::findIgnoringCase(const QORString& name) const noexcept {
  const QORSmrPtr<QORQL_Symbol>* const symbol = _peek(name);
  return symbol == nullptr ? nullptr : symbol->Get();
}

QORQL_Symbol* QORQL_SymbolTable::findHere(const QORString& name) const noexcept {
  const QORSmrPtr<QORQL_Symbol>* const symbol = _peekHere(name);
  return symbol == nullptr ? nullptr : symbol->Get();
}

QORString QORQL_SymbolTable::classNameOf(const QORString& name) const {
  const QORQL_Symbol* const symbol = findIgnoringCase(name);
  return symbol == nullptr ? name : symbol->getClassName();
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
