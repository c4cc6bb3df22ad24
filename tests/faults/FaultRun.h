// A query or a match that runs among faults: faults strike the engine and the
// platform, never the test itself.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_FAULTRUN_H
#define QORQL_TESTS_FAULTRUN_H

#include <ostream>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/QORQL_DataTable.h"

// What came out. The error of an exception that is none of the platform's
// begins with "std: " or is "int".
struct FaultOutcome {
  std::string error;
  std::vector<std::string> rows;
  std::string stream;
  std::vector<std::string> log;  // the lines of severity error

  bool hasLogged(const std::string& text) const;
  friend bool operator==(const FaultOutcome&, const FaultOutcome&) = default;
};
void PrintTo(const FaultOutcome& outcome, std::ostream* out);

// Models with a property of every kind, associations, and indications.
class FaultWorld {
 public:
  FaultWorld();

  EmbeddedObjectManager& manager() { return _manager; }
  // Faults that are armed strike from the first token to the last row.
  FaultOutcome query(const std::string& text, QORQL_DataTable::ExecutionMode mode);
  // Validates, lists and matches the indication; the rows say what came of each.
  FaultOutcome match(const std::string& filter, const QORSmrPtr<IQoriObject>& indication);
  std::vector<QORSmrPtr<IQoriObject>> indications(const std::string& mof);

 private:
  EmbeddedObjectManager _manager;
  std::vector<std::string>* _log = nullptr;  // BORROWS: of the run that is going on
};

// Queries that between them use every part of the engine, and filters that do.
extern const std::vector<std::string> kFaultQueries;
extern const std::vector<std::string> kFaultFilters;
extern const char* const kFaultIndications;

#endif
