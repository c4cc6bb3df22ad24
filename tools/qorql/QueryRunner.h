// Runs one statement after the other and prints each result in the form asked for.
#ifndef QORQL_TOOL_QUERYRUNNER_H
#define QORQL_TOOL_QUERYRUNNER_H

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OutputOptions.h"
#include "ResultWriter.h"
#include "Session.h"
#include "SessionOptions.h"
#include "Statements.h"

// BORROWS everything it is made from.
class QueryRunner {
 public:
  QueryRunner(const SessionOptions& options, const OutputOptions& output, Session& session, std::ostream& out)
      : _options(options), _output(output), _session(session), _out(out) {}

  // THROWS what the engine and the providers throw; Interrupted, or
  // QORQL_StoppedException, after an Interrupt.
  void run(const Statement& statement);
  // Where in the text of the last statement parsing failed; empty for other faults.
  std::optional<std::size_t> faultOffset() const { return _faultOffset; }
  // What may have been meant by a statement that failed, where warnings are
  // wanted; empty when nothing is known. A single word may stand for one of the
  // commands. REQUIRES to be called inside a catch clause.
  std::string hint(const Statement& statement, const std::vector<std::string>& commands) const;
  // After the last statement: completes the output.
  void finish();

 private:
  struct Execution;

  void parse(Execution& execution);
  bool isWarning() const;
  void warn(Execution& execution) const;
  void execute(Execution& execution);
  void print(Execution& execution);
  void printStatistics(const Execution& execution);
  OutputForm formOf(const Execution& execution) const;
  // The writer of a form; a writer of another form is finished first.
  ResultWriter& writerOf(OutputForm form);

  const SessionOptions& _options;
  const OutputOptions& _output;
  Session& _session;
  std::ostream& _out;
  std::optional<std::size_t> _faultOffset;
  std::unique_ptr<ResultWriter> _writer;
  OutputForm _writerForm = OutputForm::Table;
};

#endif
