// SQLite over the live objects: statements prepared beforehand, stepped through to the last cell.
// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <stdexcept>
#include <string>

#include "bench/CellReading.h"
#include "bench/Peer.h"
#include "bench/VirtualTable.h"
#include "bench/World.h"
#include "bench/XmlTable.h"

namespace bench {

namespace {

// A connection in memory, without locks, that sorts in memory.
class Database {
 public:
  explicit Database(const World& world) {
    check(sqlite3_open_v2(":memory:", &_handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                          nullptr));
    check(registerVirtualTables(_handle));
    run("PRAGMA temp_store=MEMORY");
    for (const char* const name : world.classes()) {
      run(std::string("CREATE VIRTUAL TABLE ") + name + " USING cim(" + name + ")");
    }
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() { sqlite3_close(_handle); }

  void check(int status) const {
    if (status == SQLITE_OK || status == SQLITE_DONE) return;
    throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(_handle));
  }
  sqlite3_stmt* prepare(const std::string& sql) const {
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(_handle, sql.c_str(), static_cast<int>(sql.size()) + 1, &statement, nullptr));
    return statement;
  }

 private:
  void run(const std::string& sql) const { check(sqlite3_exec(_handle, sql.c_str(), nullptr, nullptr, nullptr)); }

  sqlite3* _handle = nullptr;  // OWNS
};

std::string_view textCell(sqlite3_stmt* statement, int column) {
  const char* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

std::uint64_t numberCell(sqlite3_stmt* statement, int column) {
  return static_cast<std::uint64_t>(sqlite3_column_int64(statement, column));
}

void readCell(sqlite3_stmt* statement, int column, const Workload& workload, Answer& answer) {
  switch (workload.columns[column]) {
    case 't':
      return answer.text(textCell(statement, column));
    case 'r':
      return answer.real(sqlite3_column_double(statement, column));
    case 'o':
      if (sqlite3_column_type(statement, column) == SQLITE_NULL) return answer.null();
      return answer.text(textCell(statement, column));
    case 'd':
      return readTimestamp(textCell(statement, column), column == workload.sortColumn, answer);
    default:
      answer.number(numberCell(statement, column));
      if (column == workload.sortColumn) answer.sortKey(numberCell(statement, column));
  }
}

class SqlitePeer final : public Peer {
 public:
  ~SqlitePeer() override { finalizeAll(); }
  const char* name() const override { return "SQLite"; }
  bool supports(const Workload& workload) const override { return workload.hasSql(); }

  void attach(const World& world) override {
    finalizeAll();
    _database = std::make_unique<Database>(world);
  }

  Answer run(const Workload& workload, bool isThorough) override {
    if (workload.isParse()) return parse(workload);
    sqlite3_stmt*& statement = _statements[static_cast<std::size_t>(workload.task)];
    if (statement == nullptr) statement = _database->prepare(workload.sql);
    if (workload.isXml()) {
      return answerOfXml(workload, isThorough, [&](std::ostream& out) { writeXml(statement, out); });
    }
    Answer answer(isThorough);
    readRows(statement, workload, answer);
    return answer;
  }

 private:
  void finalizeAll() {
    for (sqlite3_stmt*& statement : _statements) sqlite3_finalize(std::exchange(statement, nullptr));
  }

  Answer parse(const Workload& workload) const {
    sqlite3_stmt* const statement = _database->prepare(workload.sql);
    Answer answer;
    answer.number(static_cast<std::uint64_t>(sqlite3_column_count(statement)));
    answer.endRow();
    sqlite3_finalize(statement);
    return answer;
  }

  void readRows(sqlite3_stmt* statement, const Workload& workload, Answer& answer) const {
    const int columns = sqlite3_column_count(statement);
    int status = sqlite3_step(statement);
    for (; status == SQLITE_ROW; status = sqlite3_step(statement)) {
      for (int i = 0; i < columns; ++i) readCell(statement, i, workload, answer);
      answer.endRow();
    }
    _database->check(status);
    sqlite3_reset(statement);
  }

  void writeXml(sqlite3_stmt* statement, std::ostream& out) const {
    XmlTable table(out);
    int status = sqlite3_step(statement);
    for (; status == SQLITE_ROW; status = sqlite3_step(statement)) {
      table.beginRow();
      table.text(textCell(statement, 0));
      table.text(textCell(statement, 1));
      table.number(numberCell(statement, 2));
      table.endRow();
    }
    _database->check(status);
    table.end();
    sqlite3_reset(statement);
  }

  std::unique_ptr<Database> _database;
  std::array<sqlite3_stmt*, static_cast<std::size_t>(Task::Count)> _statements{};  // OWNS
};

}  // namespace

std::unique_ptr<Peer> makeSqlitePeer() { return std::make_unique<SqlitePeer>(); }

}  // namespace bench
