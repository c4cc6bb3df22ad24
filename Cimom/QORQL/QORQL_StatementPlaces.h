// Where the names of a statement stand in its text, and so what an error is about.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_STATEMENTPLACES_H
#define QORQL_STATEMENTPLACES_H

#include "Cimom/QORQL/QORQL_Exception.h"
#include "cmpbase.h"

class QORQL_FromClause;
class QORQL_Query;
class QORQL_SelectList;

// Names ignore case. QORQL_Fault::kNowhere stands for no place.

// The first property of that name that the select list has without a class. REQUIRES that names are not yet resolved.
QORuint32 QORQL_findBareName(const QORQL_SelectList& list, const QORString& name);
// The first name before a dot in the select list that is this one.
QORuint32 QORQL_findQualifier(const QORQL_SelectList& list, const QORString& name);
// The first class of FROM with that name.
QORuint32 QORQL_findClass(const QORQL_FromClause& from, const QORString& className);
// The first property of that name that the statement asks of the class, named as the tree has it: of its clauses, the
// one that runs first.
QORuint32 QORQL_findProperty(const QORQL_Query& query, const QORString& className, const QORString& propertyName);

// Gives an error of the statement's execution its place, where it names what is at fault and has none yet. Where the
// memory does not suffice for that the error stays as it is.
void QORQL_placeFault(const QORQL_Query& query, QORQL_Exception& error) noexcept;

#endif
