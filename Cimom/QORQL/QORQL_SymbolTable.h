// The names that a statement knows: the classes and aliases of its FROM clause.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SYMBOLTABLE_H
#define QORQL_SYMBOLTABLE_H

#include "Cimom/QORQL/QORQL_Symbol.h"
#include "cmpbase.h"

// Compares names exactly; FROM enters them in upper case. Filled by the parser,
// then handed to execution. Belongs to one thread at a time.
class QORQL_SymbolTable {
 public:
  using SymbolMap = QORValMap<QORString, QORSmrPtr<QORQL_Symbol>>;

  // BORROWS the enclosing statement's table (null at the outermost level), which must outlive this one.
  explicit QORQL_SymbolTable(QORQL_SymbolTable* parent);

  QORQL_SymbolTable(const QORQL_SymbolTable&) = delete;
  QORQL_SymbolTable& operator=(const QORQL_SymbolTable&) = delete;
  ~QORQL_SymbolTable();

  // Replaces an entry of the same name.
  void insert(const QORString& name, QORSmrPtr<QORQL_Symbol> symbol);
  // The same with memory of the slabs, which need not live longer than this call.
  void insert(const QORString& name, const QORSmrPtr<QORQL_Symbol>& symbol, QORSlabs& slabs) {
    _hashDict.insert(name, symbol, slabs);
  }
  // The symbol here or in an enclosing table; null when unknown.
  QORSmrPtr<QORQL_Symbol> lookup(const QORString& name) const;
  // The flag is passed on to enclosing tables and has no other effect.
  QORSmrPtr<QORQL_Symbol> deepLookup(const QORString& name, QORboolean flag) const;
  // lookup() of the name in upper case.
  QORSmrPtr<QORQL_Symbol> lookupIgnoringCase(const QORString& name) const;
  // BORROWS: the same symbol, not counted; null when unknown.
  QORQL_Symbol* findIgnoringCase(const QORString& name) const noexcept;
  // The same in this table alone.
  QORQL_Symbol* findHere(const QORString& name) const noexcept;
  // The class that a FROM name in any case stands for; the name itself when unknown.
  QORString classNameOf(const QORString& name) const;

  // The enclosing table, null at the outermost level. BORROWS: it outlives this one, or is reset before it goes.
  void setParent(QORQL_SymbolTable* parent) noexcept { _parentSymbolTable = parent; }
  QORQL_SymbolTable* getParent() const noexcept { return _parentSymbolTable; }
  void resetParent() noexcept { _parentSymbolTable = nullptr; }
  // Sets the parent of the outermost table of this chain.
  void setRootParent(QORQL_SymbolTable* parent);
  // True when the argument is this table or encloses it.
  QORboolean isParent(const QORQL_SymbolTable* table) const noexcept;

  // The symbols of this table alone, by their names in upper case, to be walked or changed.
  SymbolMap& getSymbolHashMap() noexcept { return _hashDict; }
  const SymbolMap& getSymbolHashMap() const noexcept { return _hashDict; }
  // Whether the parser has passed FROM, after which names can be looked up; for the parser only.
  void setSymbolTableUpdatedFlag(QORboolean updated) noexcept { _symbolsUpdated = updated; }
  QORboolean isSymbolTableUpdated() const noexcept { return _symbolsUpdated; }

 private:
  const QORSmrPtr<QORQL_Symbol>* _peekHere(const QORString& name) const noexcept;
  const QORSmrPtr<QORQL_Symbol>* _peek(const QORString& name) const noexcept;

  QORQL_SymbolTable* _parentSymbolTable;
  SymbolMap _hashDict;
  QORboolean _symbolsUpdated = false;
};

#endif
