// The engine: statements parsed beforehand, executed and read to the last cell.
// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <utility>

#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "bench/CellReading.h"
#include "bench/PairedRounds.h"
#include "bench/Peer.h"
#include "bench/Statement.h"
#include "bench/XmlTable.h"

namespace bench {

namespace {

// References are read as their paths, embedded objects like instances.
void readComplex(const IQoriValue& value, Answer& answer) {
  const QORSmrPtr<IQoriObject> object = value.getObject();
  object.IsNull() ? answer.text(value.toString().view()) : readInstance(*object, answer);
}

void readCell(const QoriScalar& cell, bool isSortKey, Answer& answer) {
  if (cell.isNull()) return answer.null();
  if (cell.kind == QoriScalarKind::Text) return answer.text(cell.text->view());
  if (cell.kind == QoriScalarKind::Real) return answer.real(cell.r);
  if (cell.kind == QoriScalarKind::DateTime) return readTimestamp(cell.text->view(), isSortKey, answer);
  if (cell.kind == QoriScalarKind::Complex) return readComplex(*cell.value, answer);
  answer.number(cell.u);
  if (isSortKey) answer.sortKey(cell.u);
}

void readRows(QORQL_ResultReader& reader, int sortColumn, Answer& answer) {
  const std::size_t columns = reader.columns().size();
  while (reader.next()) {
    for (std::size_t i = 0; i < columns; ++i) readCell(reader.view(i), static_cast<int>(i) == sortColumn, answer);
    answer.endRow();
  }
}

class EnginePeer final : public Peer {
 public:
  const char* name() const override { return "QORQL"; }

  void attach(const World& /*world*/) override {
    for (std::unique_ptr<Statement>& statement : _statements) statement.reset();
  }

  Answer run(const Workload& workload, bool isThorough) override {
    if (workload.isParse()) return parse(workload);
    Statement& statement = prepared(workload);
    if (workload.isXml()) {
      return answerOfXml(workload, isThorough, [&](std::ostream& out) { execute(statement, &out); });
    }
    Answer answer(isThorough);
    QORSmrPtr<QORQL_DataTable> table = execute(statement, nullptr);
    QORQL_ResultReader reader(*statement.parsed, statement.symbols, table);
    readRows(reader, workload.sortColumn, answer);
    return answer;
  }

  std::vector<double> takeExecuteSeconds() override {
    _runsUntimed = 0;
    return std::exchange(_executeSeconds, {});
  }

 private:
  static Answer parse(const Workload& workload) {
    const Statement statement(workload.query);
    Answer answer;
    answer.number(
        dynamic_cast<const QORQL_SelectList&>(*statement.parsed->getSelectList()).getSelectedEntries()->entries());
    answer.endRow();
    return answer;
  }

  Statement& prepared(const Workload& workload) {
    std::unique_ptr<Statement>& statement = _statements[static_cast<std::size_t>(workload.task)];
    if (statement == nullptr) statement = std::make_unique<Statement>(workload.query);
    return *statement;
  }

  QORSmrPtr<QORQL_DataTable> execute(Statement& statement, std::ostream* out) {
    const bool isTimed = _runsUntimed == 0;
    const double start = isTimed ? cpuSeconds() : 0;
    QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
    statement.parsed->execute(statement.symbols, table, out, statement.nameSpace);
    if (isTimed)
      noteExecution(cpuSeconds() - start);
    else
      --_runsUntimed;
    return table;
  }

  // The clock of the processor's time is a call of the system, which would be a tenth of the shortest runs: of those
  // only some are timed.
  void noteExecution(double seconds) {
    constexpr double kShort = 1e-3;
    constexpr int kUntimed = 15;
    _executeSeconds.push_back(seconds);
    _runsUntimed = seconds < kShort ? kUntimed : 0;
  }

  std::array<std::unique_ptr<Statement>, static_cast<std::size_t>(Task::Count)> _statements;
  std::vector<double> _executeSeconds;
  int _runsUntimed = 0;  // to come before one is timed again
};

}  // namespace

std::unique_ptr<Peer> makeEnginePeer() { return std::make_unique<EnginePeer>(); }

}  // namespace bench
