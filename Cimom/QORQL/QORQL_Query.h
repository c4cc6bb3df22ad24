// A statement: parsed from text, resolved against the class repository, executed.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_QUERY_H
#define QORQL_QUERY_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Executable.h"
#include "Cimom/QORQL/QORQL_FormatClause.h"
#include "cmpbase.h"

class QORQL_Arithmetic;
class QORQL_Association;
class QORQL_Comparison;
class QORQL_Expression;
class QORQL_ExpressionFactor;
class QORQL_ExpressionTerm;
class QORQL_Factor;
class QORQL_Function;
class QORQL_Lexer;
class QORQL_OrderByClause;
class QORQL_SelectList;
class QORQL_SelectedEntry;
class QORQL_SymbolTable;
class QORQL_Term;
class QORQL_WhereClause;

// Immutable after parse, but for aggregate results that an execution leaves in
// the select list: executions of one query object follow one another.
class QORQL_Query : public QORQL_Executable {
 public:
  // By its clauses: the select list and FROM are never null. Text and language travel with what it fetches; empty
  // ones do not.
  QORQL_Query(QORSmrPtr<QORQL_Executable> select, QORSmrPtr<QORQL_Executable> from, QORSmrPtr<QORQL_Executable> where,
              QORSmrPtr<QORQL_FormatClause> format, QORboolean isNestedQuery, QORSmrPtr<QORQL_Executable> orderBy,
              const QORString& queryString, const QORString& queryLanguage);
  ~QORQL_Query() override;

  // Parses and resolves one statement. Fills `symbolTable`, which execute needs
  // again. THROWS QORQL_ParseException (with the line of the fault, 0 when it is
  // found after the text was read) and QORQL_Exception.
  static QORSmrPtr<QORQL_Executable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer, QORboolean isNestedQuery,
                                           const QORString& queryString, const QORString& queryLanguage,
                                           const QORString& nameSpace);

  // The QORQL_SelectList and the QORQL_FromClause.
  const QORSmrPtr<QORQL_Executable>& getSelectList() const noexcept { return _selectList; }
  const QORSmrPtr<QORQL_Executable>& getFromClause() const noexcept { return _fromClause; }
  // Null when the statement has none.
  const QORSmrPtr<QORQL_Executable>& getWhereClause() const noexcept { return _whereClause; }
  // Null where there is none; the QORQL_OrderByClause too.
  const QORSmrPtr<QORQL_FormatClause>& getFormatClause() const noexcept { return _formatClause; }
  const QORSmrPtr<QORQL_Executable>& getOrderByClause() const noexcept { return _orderbyClause; }
  // What the constructor was given.
  const QORString& getQueryString() const noexcept { return _queryString; }
  const QORString& getQueryLanguage() const noexcept { return _queryLanguage; }

  // Runs FROM, WHERE, ORDER BY and the select list on `table`, which is replaced
  // by the result. With a stream (BORROWED, may be null), writes the result as an
  // XML table. REQUIRES the symbol table that parse filled, and a fresh table.
  // THROWS QORQL_Exception, QORQL_ParseException (code 15, line 0: an aggregate
  // that cannot be streamed) and what providers and values throw; the table then
  // holds what the finished steps left in it. A QORQL_Exception about a name of the statement has its place. What fails
  // while result rows are built or written is logged instead, and ends the rows.
  void execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
               const QORString& nameSpace) override;

 private:
  struct FromClass;
  struct NameCache;
  struct UpdateContext {
    const QORString& nameSpace;
    QORQL_SymbolTable& symbolTable;
    const QORQL_SelectList& entries;
    const QORQL_SelectList* selectList;  // where sort keys look for column aliases; null elsewhere
    NameCache& cache;
    QORSlabs& slabs;
    bool needsWholeObjects = false;  // a whole object that is named is needed with all its properties
  };

  void _executeClauses(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
                       const QORString& nameSpace);
  // Whether WHERE and ORDER BY do not run because every provider has filtered already.
  bool _isLeftToProviders(const QORQL_DataTable& table) const noexcept;
  static QORSmrPtr<QORQL_Executable> _parseClauses(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                   QORboolean isNestedQuery, QORQL_ProjectionMap& projectionMap,
                                                   const QORString& queryString, const QORString& queryLanguage);
  void _resolve(QORQL_SymbolTable& symbolTable, QORQL_ProjectionMap& projectionMap, const QORString& nameSpace,
                QORSlabs& slabs);
  // What the association conditions decide of FROM, WHERE and the classes' properties.
  void _takeAssociations(const QORQL_SymbolTable& symbolTable);
  static QORQL_ClassInfo& _neededOf(FromClass& known, const UpdateContext& context);
  static void _findSelectClasses(QORQL_SelectList& selectList, QORQL_ProjectionMap& projectionMap,
                                 UpdateContext& context);
  static void _verifySymbolsAndUpdateSymbolTable(QORQL_ProjectionMap& projectionMap, UpdateContext& context);
  static void _findWhereClasses(QORQL_WhereClause& whereClause, UpdateContext& context);
  static void _findOrderByClasses(QORQL_OrderByClause& orderByClause, UpdateContext& context);
  // The one FROM class that has the property; the factor names it, or is null where an entry of the select list does.
  static FromClass& _findClass(const QORString& propertyName, const QORQL_Factor* factor, UpdateContext& context);
  // How many of the FROM classes have the property (no further than two), and the first of them.
  static QORuint32 _countClasses(const QORString& propertyName, UpdateContext& context, FromClass*& first);
  static bool _isFromName(const QORString& name, const UpdateContext& context);
  static void _bindBareNames(QORQL_ProjectionMap& projectionMap, UpdateContext& context);
  static void _requestEmbeddedRoots(QORQL_ProjectionMap& projectionMap, UpdateContext& context);
  static bool _namesOneProperty(const QORSmrPtr<QORQL_Evaluatable>& node);
  static void _resolveEntry(QORQL_SelectedEntry& entry, UpdateContext& context);
  static bool _resolveToEntryOrObject(QORQL_Factor& factor, UpdateContext& context);
  static FromClass* _tryFindClass(const QORQL_Factor& factor, UpdateContext& context);
  static void _updateExpression(QORQL_Factor& factor, UpdateContext& context);
  static void _updateExpression(const QORQL_Term& term, UpdateContext& context);
  static void _updateExpression(const QORQL_Arithmetic& arithmetic, UpdateContext& context);
  static void _updateExpression(const QORQL_Comparison& comparison, UpdateContext& context);
  static void _updateExpression(const QORQL_ExpressionFactor& factor, UpdateContext& context);
  static void _updateExpression(const QORQL_Association& association, UpdateContext& context);
  static void _updateExpression(const QORQL_ExpressionTerm& term, UpdateContext& context);
  static void _updateExpression(const QORQL_Expression& expression, UpdateContext& context);
  static void _updateExpression(const QORQL_Function& function, UpdateContext& context);

  QORSmrPtr<QORQL_Executable> _selectList;
  QORSmrPtr<QORQL_Executable> _fromClause;
  QORSmrPtr<QORQL_Executable> _whereClause;
  QORSmrPtr<QORQL_FormatClause> _formatClause;
  QORboolean _isNestedQuery;
  QORSmrPtr<QORQL_Executable> _orderbyClause;
  QORString _queryString;
  QORString _queryLanguage;
  bool _whereHasAssociation = false;  // then WHERE and ORDER BY run although every cell is pre-filtered
};

#endif
