// A name that a FROM clause introduces: a class, or an alias that stands for one.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SYMBOL_H
#define QORQL_SYMBOL_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "cmpbase.h"

class QORQL_SymbolTable;

enum QORQL_SYMBOLTYPE {
  QORQL_SYMBOLTYPE_FUNCTION_NAME = 0,
  QORQL_SYMBOLTYPE_TABLE_NAME = 1,
  QORQL_SYMBOLTYPE_SUBQUERY_NAME = 2,
  QORQL_SYMBOLTYPE_ERROR = 3
};

// A name that a statement knows: a class of FROM. Belongs to one thread at a time.
class QORQL_Symbol {
 public:
  // A name of its own; with a nested query its table, which may be null.
  QORQL_Symbol(QORQL_SYMBOLTYPE type, const QORString& name, QORboolean isNestedQuery,
               QORSmrPtr<QORQL_SymbolTable> symbolTable);
  // A class with its alias and with what is needed of it, which is shared and may be null.
  QORQL_Symbol(QORQL_SYMBOLTYPE type, const QORString& name, const QORString& alias,
               QORSmrPtr<QORQL_ClassInfo>& classInfo, QORSmrPtr<QORQL_SymbolTable> symbolTable);
  QORQL_Symbol(const QORQL_Symbol&) = delete;
  QORQL_Symbol& operator=(const QORQL_Symbol&) = delete;

  virtual ~QORQL_Symbol();
  // The alias given in FROM; empty when none.
  virtual QORString getAlias() const;
  virtual QORboolean isAlias() const;
  // Merges: appends the incoming properties and takes over the incoming need-all flag.
  virtual void setClassInfo(QORSmrPtr<QORQL_ClassInfo>& classInfo);
  // May be null.
  virtual QORSmrPtr<QORQL_ClassInfo> getClassInfo() const;
  virtual QORString getClassName() const;

  // What the constructor was given, or a later type: setValue() says that the name stands for something else.
  QORString getName() const { return _name; }
  QORQL_SYMBOLTYPE getType() const noexcept { return _type; }
  QORboolean isNestedQuery() const noexcept { return _isNestedQuery; }
  void setValue(QORQL_SYMBOLTYPE type) noexcept { _type = type; }
  // BORROWS: the nested query's table, or null.
  QORQL_SymbolTable* getSymbolTable() const noexcept { return _symbolTable.Get(); }

 private:
  QORQL_SYMBOLTYPE _type;
  QORString _name;
  QORString _alias;
  QORboolean _isNestedQuery;
  QORSmrPtr<QORQL_ClassInfo> _classInfo;
  QORSmrPtr<QORQL_SymbolTable> _symbolTable;
};

// An alias. Class-info calls THROW QORNullPointerException when it stands for nothing.
class QORQL_DelegatorSymbol : public QORQL_Symbol {
 public:
  // The delegatee is the symbol of the class, which answers all questions of the class; it may be set later.
  QORQL_DelegatorSymbol(QORQL_SYMBOLTYPE type, const QORString& name, const QORString& alias,
                        QORSmrPtr<QORQL_ClassInfo>& classInfo, QORSmrPtr<QORQL_Symbol> delegatee,
                        QORSmrPtr<QORQL_SymbolTable> symbolTable);
  ~QORQL_DelegatorSymbol() override;

  // Null makes it stand for nothing.
  void setDelegatee(QORSmrPtr<QORQL_Symbol>& delegatee) { _delegatee = delegatee; }
  QORString getAlias() const override;
  QORboolean isAlias() const override;
  void setClassInfo(QORSmrPtr<QORQL_ClassInfo>& classInfo) override;
  QORSmrPtr<QORQL_ClassInfo> getClassInfo() const override;
  QORString getClassName() const override;

 private:
  QORSmrPtr<QORQL_Symbol> _delegatee;
};

#endif
