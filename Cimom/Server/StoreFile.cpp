// Opens the database with care, and runs statements.
//
// A store is told by numbers in the header of the file. They are read before SQLite
// sees the file, so that nothing is written into one that is something else; the
// first transaction puts them there, before the write-ahead log is in use.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/StoreFile.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "Cimom/CimXml/CimXmlException.h"

namespace {

constexpr std::size_t kHeaderSize = 100;
constexpr std::string_view kMagic{"SQLite format 3\0", 16};
constexpr std::size_t kFormatAt = 60;
constexpr std::size_t kApplicationAt = 68;
constexpr std::uint32_t kApplication = 0x514F5251;  // "QORQ"
constexpr std::uint32_t kFormat = 1;
constexpr mode_t kOwnerOnly = 0600;
constexpr int kPrimaryCode = 0xFF;  // of SQLite's codes

// The numbers are those above.
constexpr const char* kMake =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE instance(place INTEGER PRIMARY KEY AUTOINCREMENT, path TEXT UNIQUE NOT NULL,"
    " namespace TEXT NOT NULL, document TEXT NOT NULL, over INTEGER NOT NULL, gone INTEGER NOT NULL);"
    "CREATE TABLE listener(id INTEGER PRIMARY KEY AUTOINCREMENT, path TEXT UNIQUE NOT NULL, context TEXT NOT NULL,"
    " next INTEGER NOT NULL, dropped INTEGER NOT NULL);"
    "CREATE TABLE queued(listener INTEGER NOT NULL, number INTEGER NOT NULL, subscription TEXT NOT NULL,"
    " document TEXT NOT NULL, PRIMARY KEY(listener, number)) WITHOUT ROWID;"
    "PRAGMA application_id = 1364152913;"
    "PRAGMA user_version = 1;"
    "COMMIT;";

std::uint32_t numberAt(const std::array<unsigned char, kHeaderSize>& header, std::size_t at) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < sizeof number; ++i) number = number << 8U | header[at + i];
  return number;
}

}  // namespace

void StoreFile::Close::operator()(sqlite3* database) const noexcept { sqlite3_close_v2(database); }
void StoreFile::Finalize::operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }

StoreFile::StoreFile(const std::string& path) : _path(path) {
  if (!_path.empty()) requireStore();
  open();
  setUp();
}

StoreFile::~StoreFile() = default;

// Makes the file where there is none, for its owner alone: it holds passwords of listeners.
void StoreFile::requireStore() const {
  const int file = ::open(_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly);
  if (file < 0) refuse(errno == ELOOP ? "it is a symbolic link" : std::strerror(errno));
  std::array<unsigned char, kHeaderSize> header{};
  const ssize_t count = ::pread(file, header.data(), header.size(), 0);
  const int error = errno;
  ::close(file);
  if (count < 0) refuse(std::strerror(error));
  if (count == 0) return static_cast<void>(::chmod(_path.c_str(), kOwnerOnly));
  const bool isDatabase = count == static_cast<ssize_t>(kHeaderSize) &&
                          std::memcmp(header.data(), kMagic.data(), kMagic.size()) == 0 &&
                          numberAt(header, kApplicationAt) == kApplication;
  if (!isDatabase) refuse("it is not a store of this program");
  const std::uint32_t format = numberAt(header, kFormatAt);
  if (format != kFormat) {
    refuse("it has format " + std::to_string(format) + ", and this version knows format " + std::to_string(kFormat));
  }
}

void StoreFile::open() {
  sqlite3* database = nullptr;
  const int code = sqlite3_open_v2(_path.empty() ? ":memory:" : _path.c_str(), &database,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_FULLMUTEX | SQLITE_OPEN_NOFOLLOW, nullptr);
  _database.reset(database);
  if (code != SQLITE_OK) refuse(sqlite3_errstr(code));
  sqlite3_extended_result_codes(database, 1);
}

// The first lock is kept until the end, so that a second server finds the file in use.
void StoreFile::setUp() {
  static_cast<void>(tryToExecute("PRAGMA locking_mode = EXCLUSIVE"));
  if (!tryToExecute("BEGIN IMMEDIATE; COMMIT")) {
    const bool isBusy = (sqlite3_errcode(_database.get()) & kPrimaryCode) == SQLITE_BUSY;
    refuse(isBusy ? "another server uses it" : sqlite3_errmsg(_database.get()));
  }
  try {
    if (format() == 0) execute(kMake);
    const std::string found = damage();
    if (found != "ok") refuse("it is damaged: " + found);
    execute("PRAGMA journal_mode = WAL");
  } catch (const CimStatusException& failure) {
    refuse(failure.getDescription().c_str());
  }
}

std::int64_t StoreFile::format() {
  Run version = run("PRAGMA user_version");
  return version.next() ? version.number(0) : 0;
}

std::string StoreFile::damage() {
  Run check = run("PRAGMA quick_check(1)");
  return check.next() ? check.text(0) : "nothing";
}

bool StoreFile::tryToExecute(const char* sql) noexcept {
  return sqlite3_exec(_database.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

void StoreFile::execute(const char* sql) {
  if (!tryToExecute(sql)) fail();
}

void StoreFile::fail() const {
  throw CimStatusException(1, "the store " + _path + " cannot be used: " + sqlite3_errmsg(_database.get()));
}

void StoreFile::refuse(const std::string& reason) const {
  throw QoriBaseException("CIM_Store", "StoreFile", "open",
                          QORString("the store " + _path + " cannot be opened: " + reason), 1);
}

StoreFile::Run StoreFile::run(const char* sql) {
  auto& kept = _statements[sql];
  if (kept == nullptr) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(_database.get(), sql, -1, &statement, nullptr) != SQLITE_OK) fail();
    kept.reset(statement);
  }
  return {*this, kept.get()};
}

StoreFile::Run::~Run() {
  sqlite3_reset(_statement);
  sqlite3_clear_bindings(_statement);
}

StoreFile::Run& StoreFile::Run::bind(std::int64_t value) {
  if (sqlite3_bind_int64(_statement, ++_bound, value) != SQLITE_OK) _file.fail();
  return *this;
}

StoreFile::Run& StoreFile::Run::bind(std::string_view value) {
  const sqlite3_uint64 size = value.size();
  if (sqlite3_bind_text64(_statement, ++_bound, value.data(), size, SQLITE_TRANSIENT, SQLITE_UTF8) != SQLITE_OK) {
    _file.fail();
  }
  return *this;
}

bool StoreFile::Run::next() {
  const int code = sqlite3_step(_statement);
  if (code != SQLITE_ROW && code != SQLITE_DONE) _file.fail();
  return code == SQLITE_ROW;
}

int StoreFile::Run::finish() {
  while (next()) continue;
  return sqlite3_changes(_file._database.get());
}

std::int64_t StoreFile::Run::number(int column) const { return sqlite3_column_int64(_statement, column); }

std::string StoreFile::Run::text(int column) const {
  const unsigned char* const bytes = sqlite3_column_text(_statement, column);
  const int count = sqlite3_column_bytes(_statement, column);
  return bytes == nullptr ? std::string()
                          : std::string(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
}

StoreTransaction::StoreTransaction(StoreFile& file, Lasting lasting) : _file(file), _lock(file._mutex) {
  _file.execute(lasting == Lasting::Machine ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
  _file.execute("BEGIN IMMEDIATE");
  _isOpen = true;
}

StoreTransaction::~StoreTransaction() {
  if (_isOpen) static_cast<void>(_file.tryToExecute("ROLLBACK"));
}

void StoreTransaction::commit() {
  _file.execute("COMMIT");
  _isOpen = false;
}
