// What an expression of a filter refers to.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLREFERENCES_H
#define QORQL_CQLREFERENCES_H

#include <vector>

#include "Cimom/QORQL/QORQL_Evaluatable.h"

class QORQL_Comparison;

// One reference, its names as written or resolved.
struct CQLReference {
  QORString className;     // the first name, or the class that the property is of
  QORString propertyName;  // the last name; empty for a whole object, "*" for all properties
  QORString chain;         // with a path through objects: all names before the last, joined by dots

  bool isPath() const { return chain.find(".") != QORString::npos; }
};

// In the order of the text. What stands for an object itself, such as the
// argument of OBJECTPATH, refers to none of its properties and is left out. A
// null expression has none.
std::vector<CQLReference> CQLReferencesOf(const QORSmrPtr<QORQL_Evaluatable>& expression);

// The tests of a class in an expression, those in parentheses among them. BORROWS from it.
std::vector<const QORQL_Comparison*> CQLIsaTestsOf(const QORSmrPtr<QORQL_Evaluatable>& expression);

// Whether a side has the same value, which may be none, for every instance.
bool CQLIsConstant(const QORSmrPtr<QORQL_Evaluatable>& side);

// The first step of a path: "i.SourceInstance" gives i.
QORString CQLFirstStep(const QORString& path);
// The others; empty when there is only one.
QORString CQLBehindFirstStep(const QORString& path);

#endif
