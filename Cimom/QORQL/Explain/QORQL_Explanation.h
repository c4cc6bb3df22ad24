// What an execution of a query will do, step by step, without doing it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EXPLANATION_H
#define QORQL_EXPLANATION_H

#include <string>
#include <vector>

#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_Query.h"

class QORQL_SymbolTable;

// One step; which of its parts are set the kind tells.
struct QORQL_ExplainedStep {
  enum Kind {
    kFetch,      // one enumeration of a class
    kAssociate,  // for each object of the source: one call for those that the association ties to it
    kCondition,  // rows are kept or dropped, or joined
    kCombine,    // what no condition has joined: every combination, made when it is read
    kSort,
    kSelect,
    kFirst,  // the number of rows that are shown
    kFail    // execution ends here with the error in `text`
  };

  Kind kind = kFetch;
  std::string text;  // the condition, the sort key with its direction, the columns, ...
  // kFetch and kAssociate.
  std::string className;                // as the class repository spells it
  std::string alias;                    // empty: none
  bool hasAllProperties = false;        // all are asked for, otherwise:
  std::vector<std::string> properties;  // each once, in the order in which the statement needs them
  std::string association;              // kAssociate
  std::string source;                   // kAssociate: the class of the objects that are asked for
  // kCondition.
  QORQL_ExecutionMonitor::Method method = QORQL_ExecutionMonitor::kMethodFilter;
  const QORQL_Comparison* comparison = nullptr;  // BORROWS from the query
  bool isDiscarded = false;                      // an operand of OR that is computed and decides nothing
  // kCondition: a join by keys falls back to a filtered product, or the other way
  // round, when the values are not of the types that the class declares.
  bool dependsOnValues = false;
};

// Explains the lazy execution over objects that are complete and of the types
// that their classes declare. Conditions apply while there are rows: an empty
// table skips the rest of them, but not their fetches.
class QORQL_Explanation {
 public:
  // REQUIRES a query as it was parsed with this symbol table. Asks the class
  // repository, never for instances. Linear in the size of the statement.
  QORQL_Explanation(const QORQL_Query& query, const QORQL_SymbolTable& symbolTable, const QORString& nameSpace);

  // In the order of execution.
  const std::vector<QORQL_ExplainedStep>& steps() const noexcept { return _steps; }
  // Whether every class of FROM declares that its provider filters at the source, and WHERE has no association: then
  // WHERE and ORDER BY are left to it.
  bool isPreFiltered() const noexcept { return _isPreFiltered; }

 private:
  class Simulation;

  std::vector<QORQL_ExplainedStep> _steps;
  bool _isPreFiltered = false;
};

#endif
