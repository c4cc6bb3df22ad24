// The FROM clause: fetches its classes into the table.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_FROMCLAUSE_H
#define QORQL_FROMCLAUSE_H

#include "Cimom/QORQL/QORQL_Executable.h"
#include "Cimom/QORQL/QORQL_FromSpecifier.h"

class QORQL_Lexer;
class QORQL_SelectList;

// The classes of a statement. Immutable after name resolution.
class QORQL_FromClause : public QORQL_Executable {
 public:
  using SpecifierList = QORSmrPtr<QORValSlist<QORSmrPtr<QORQL_FromSpecifier>>>;

  // Shares the list, which is never null. Text and language of the statement travel with what it fetches.
  QORQL_FromClause(SpecifierList fromSpecifierList, bool isSelectAll, const QORString& queryString,
                   const QORString& queryLanguage);
  ~QORQL_FromClause() override;

  // Entered on FROM; leaves the first token after the classes current, and enters their names into the symbol table.
  // THROWS QORQL_ParseException and QORQL_Exception.
  static QORSmrPtr<QORQL_Executable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                           QORSmrPtr<QORQL_SelectList>& selectList, const QORString& queryString,
                                           const QORString& queryLanguage);

  // What the constructor was given.
  const SpecifierList& getFromSpecifierList() const noexcept { return _fromSpecifierList; }
  bool isSelectAll() const noexcept { return _isSelectAll; }

  // Classes (upper case) that an association condition brings into the table
  // instead, so that they are not enumerated. Set once, after parsing.
  void setSkippedClasses(const QORValSlist<QORString>& classNames) { _skippedClasses = classNames; }
  const QORValSlist<QORString>& getSkippedClasses() const noexcept { return _skippedClasses; }

  // Brings each class into the table as a column, all its instances with all others. THROWS QORQL_Exception, and what
  // providers throw.
  void execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
               const QORString& nameSpace) override;

 private:
  SpecifierList _fromSpecifierList;
  bool _isSelectAll;
  QORString _queryString;
  QORString _queryLanguage;
  QORValSlist<QORString> _skippedClasses;
};

#endif
