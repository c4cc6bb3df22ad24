// Fetching instances and putting them into the result table.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_HELPER_H
#define QORQL_HELPER_H

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Operator.h"
#include "cimom/CIMApi.h"
#include "cmpbase.h"

class QORQL_SymbolTable;

// Static operations; the only place that asks the object manager for extents.
class QORQL_Helper {
 public:
  using ObjectList = QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>>;
  using NameList = QORSmrPtr<QORValSlist<QORString>>;

  // Fetches a FROM class into the table as a new column, unless the table has
  // one; the rows become their cross product with its instances. THROWS
  // QORQL_Exception for an unknown name (QORQL_UNIDENTIFIED_IDENTIFIER) and
  // when the object manager knows no such class (QORQL_INTERNAL_ERROR).
  static void updateTable(const QORString& name, QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                          const QORString& nameSpace, const QORString& queryString, const QORString& queryLanguage);
  // The same, keeping only the rows that satisfy the comparison (all of them for an outer join).
  static void updateTable(const QORString& name, QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                          const QORString& nameSpace, const QORSmrPtr<QORQL_Evaluatable>& comparison, QORQL_Operator op,
                          const QORString& queryString, const QORString& queryLanguage);

  // The instances of a class with the named properties, all of them for a null list. Null when the object manager
  // knows no such class. THROWS what its providers throw.
  static ObjectList enumerateInstance(const QORString& className, const NameList& properties,
                                      const QORString& nameSpace, const QORString& queryString,
                                      const QORString& queryLanguage);

  // A column of these objects: the rows become their cross product with it; with a comparison, those of it that
  // satisfy it. THROWS QORQL_Exception (QORQL_INTERNAL_ERROR, logged) for a null table or list, and what evaluation
  // throws.
  static void addObjectToTable(QORSmrPtr<QORQL_DataTable>& table, const ObjectList& objects, const QORString& className,
                               const QORString& alias);
  static void addObjectToTable(QORSmrPtr<QORQL_DataTable>& table, const ObjectList& objects, const QORString& className,
                               const QORString& alias, const QORSmrPtr<QORQL_Evaluatable>& comparison,
                               QORQL_Operator op, QORQL_SymbolTable& symbolTable);

  // The objects of the result class that the association ties to the source, by one call of the client. Null as the
  // client's answer may be. THROWS what providers throw.
  static ObjectList asssociator(const QORSmrPtr<IQoriInstanceName>& source, const QORString& associationClass,
                                const QORString& resultClass, const QORSmrPtr<CIMApi>& client,
                                const NameList& properties, const QORString& nameSpace);

  // One of the ten numeric CIM type names, ignoring case.
  static bool isNumeric(const QORString& typeName) noexcept;
};

// Records whether the provider of the object's class filters at the source.
void updatePreFilter(QORSmrPtr<QORQL_DataTable>& table, const QORSmrPtr<IQoriObject>& object);

#endif
