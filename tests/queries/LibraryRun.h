// Runs statements through the library and records everything that shows.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_LIBRARYRUN_H
#define QORQL_TESTS_LIBRARYRUN_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Script.h"

// What a statement leaves behind.
struct Outcome {
  Failure failure;
  std::string rows;    // comma-separated, with a line of column names; empty when streamed
  std::string stream;  // the XML stream; empty when none was asked for
  std::string echo;    // what went to standard output
  std::vector<std::string> calls;
  std::vector<std::string> log;       // "severity who: message"
  std::vector<std::string> errorLog;  // "who: message" of severity error
};

// Loads a script's models once. One thread, one at a time.
class LibraryRun {
 public:
  // `folders` are where models are looked for. THROWS QoriBaseException when a model does not load.
  LibraryRun(const Script& script, const std::vector<std::string>& folders);
  LibraryRun(const LibraryRun&) = delete;
  LibraryRun& operator=(const LibraryRun&) = delete;
  ~LibraryRun();

  Outcome run(const Case& one, QORQL_DataTable::ExecutionMode mode, bool isStreamed);

 private:
  void runStatement(const Case& one, QORQL_DataTable::ExecutionMode mode, bool isStreamed, Outcome& outcome);

  EmbeddedObjectManager _manager;
  std::vector<std::string> _log;
  std::vector<std::string> _errorLog;
};

// The file in the first folder that has it. THROWS ScriptError.
std::string findModel(const std::string& name, const std::vector<std::string>& folders);

#endif
