// The one header for a program that runs queries and asks filters itself: it includes every public header of the engine
// that such a program needs.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_QORQL_H
#define QORQL_QORQL_H

// A statement from its text to columns and rows.
#include "Cimom/QORQL/Face/QORQL_Statement.h"
// What is wrong with a text or failed in a run, what was meant, and seeing and stopping a run.
#include "Cimom/QORQL/Face/QORQL_Hint.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_Fault.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
// Filters, one by one and by the thousand.
#include "Cimom/QORQL/CQLFilterSet.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
// What a statement will do.
#include "Cimom/QORQL/Explain/QORQL_Explanation.h"
// Which engine this is.
#include "Cimom/QORQL/QORQL_Version.h"
// The values and objects that results are made of.
#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"
#include "cimom/IQoriProperty.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

#endif
