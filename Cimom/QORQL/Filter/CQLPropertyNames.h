// Which properties of a class the clauses of a filter use.
// Tested by tests/unit/Filters/CQLPropertyListsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLPROPERTYNAMES_H
#define QORQL_CQLPROPERTYNAMES_H

#include <set>
#include <string>

#include "Cimom/QORQL/Filter/CQLReferences.h"
#include "Cimom/QORQL/Filter/CQLScope.h"
#include "cmpbase.h"

class QORQL_SelectList;
class QORQL_WhereClause;

// Collects names without duplicates, ignoring case. The operations THROW what the
// class repository throws.
class CQLPropertyNames {
 public:
  using Names = QORSmrPtr<QORValSlist<QORString>>;

  // BORROWS the scope. The class is of FROM, or a subclass of one that is.
  CQLPropertyNames(const CQLScope& scope, const QORString& className);

  void addSelectList(const QORQL_SelectList& list);
  void addWhereClause(const QORQL_WhereClause& clause);
  // Empty or "*": every property.
  void add(const QORString& property);

  // In the order in which they were added; null once every property is needed.
  const Names& names() const noexcept { return _names; }

 private:
  // Matching reads a property off the instance whichever FROM name stands before it.
  enum class Clause { Select, Where };
  void addReference(const CQLReference& reference, Clause clause);
  void addProperty(const QORString& owner, const QORString& property, Clause clause);
  void addRoot(const QORString& root, Clause clause);
  void addIsaNames(const QORQL_WhereClause& clause);

  const CQLScope& _scope;
  const QORString _className;
  Names _names;
  std::set<std::string> _seen;
};

#endif
