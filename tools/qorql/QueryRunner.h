// Runs one statement after the other and prints each result in the form asked for.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_QUERYRUNNER_H
#define QORQL_TOOL_QUERYRUNNER_H

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Cimom/QORQL/Face/QORQL_Hint.h"
#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "OutputOptions.h"
#include "ResultWriter.h"
#include "Session.h"
#include "SessionOptions.h"
#include "Statements.h"
#include "Warning.h"

// BORROWS everything it is made from.
class QueryRunner {
 public:
  QueryRunner(const SessionOptions& options, const OutputOptions& output, Session& session, std::ostream& out)
      : _options(options), _output(output), _session(session), _out(out) {}

  // THROWS what the engine and the providers throw; Interrupted, or
  // QORQL_StoppedException, after an Interrupt.
  void run(const Statement& statement);
  // For --strict: parses a statement and reports its warnings as errors, after the text `place`. THROWS
  // what parsing throws.
  bool isFreeOfWarnings(const Statement& statement, const std::string& place = "");
  // What may have been meant by a statement that failed; empty when nothing is known, and when quiet. A single word may
  // stand for one of the commands. REQUIRES to be called inside a catch clause.
  QORQL_Hint hint(const Statement& statement, const std::vector<std::string>& commands) const;
  // After the last statement: completes the output.
  void finish();

 private:
  struct Execution;

  void runWatched(Execution& execution);
  void parse(Execution& execution);
  void tellOfPassedOver(const Execution& execution) const;
  bool isWarning() const;
  std::vector<Warning> warningsOf(Execution& execution) const;
  void execute(Execution& execution);
  void print(Execution& execution);
  void printStatistics(const Execution& execution);
  void printRemoteCalls();
  OutputForm formOf(const Execution& execution) const;
  std::vector<std::string> keysOf(const QORString& className);
  std::vector<QORString> declaredProperties(const QORString& className) const;
  std::optional<CimPropertyDeclaration> declarationOf(const QORString& nameSpace, const QORString& className,
                                                      const QORString& property) const;
  // For a form that tells types: each column gets the one that its values have in all rows.
  void settleTypes(Execution& execution, ResultHeading& heading,
                   const std::vector<QORQL_ResultReader::Column>& columns) const;
  bool isDeclaredPercentage(const QORQL_ResultReader::Column& column) const;
  // Columns of real numbers, by their names or by the units that their class declares.
  void markPercentages(ResultHeading& heading, const std::vector<QORQL_ResultReader::Column>& columns) const;
  // The writer of a form; a writer of another form is finished first.
  ResultWriter& writerOf(OutputForm form);

  const SessionOptions& _options;
  const OutputOptions& _output;
  Session& _session;
  std::ostream& _out;
  std::unique_ptr<ResultWriter> _writer;
  OutputForm _writerForm = OutputForm::Table;
};

// Reports the exception that is handled, which a statement threw. Returns the exit status.
using FailureReport = std::function<int(const Statement& statement)>;

// For --strict: looks at all statements before the first of them is run or explained, so that a script is taken as a
// whole or not at all. Returns the exit status.
int checkStrictly(const std::vector<Statement>& statements, QueryRunner& runner, const FailureReport& report);

#endif
