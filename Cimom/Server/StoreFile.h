// A SQLite database with a format of its own, and statements and transactions on it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_STOREFILE_H
#define QORQL_SERVER_STOREFILE_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "cmpbase.h"

struct sqlite3;
struct sqlite3_stmt;

// What goes wrong while it is used THROWS CimStatusException, status 1, naming
// the file. Everything but the constructor REQUIRES a StoreTransaction of the calling thread.
class StoreFile {
 public:
  // Opens a store, or makes one where there is no file or an empty one; an empty
  // path keeps it in memory. Nobody else can use the file then. THROWS
  // QoriBaseException (type "CIM_Store") for a file that is no store, is one of a
  // format that is not known, is damaged, in use, or cannot be written; such a file stays as it is.
  explicit StoreFile(const std::string& path);
  StoreFile(const StoreFile&) = delete;
  StoreFile& operator=(const StoreFile&) = delete;
  ~StoreFile();

  // One run of a statement, whose values are bound in the order of its question marks.
  class Run {
   public:
    Run(StoreFile& file, sqlite3_stmt* statement) : _file(file), _statement(statement) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run();

    Run& bind(std::int64_t value);
    Run& bind(std::string_view value);
    // Steps to the next row; false when there is none.
    bool next();
    // Runs a statement without rows and says how many rows it changed.
    int finish();
    std::int64_t number(int column) const;
    std::string text(int column) const;

   private:
    StoreFile& _file;
    sqlite3_stmt* _statement;  // BORROWS
    int _bound = 0;
  };

  // `sql` must be a literal: its statement is kept. One run of each at a time.
  Run run(const char* sql);

 private:
  friend class StoreTransaction;
  friend class Run;

  void open();
  void requireStore() const;
  void setUp();
  std::int64_t format();
  std::string damage();
  bool tryToExecute(const char* sql) noexcept;
  void execute(const char* sql);
  [[noreturn]] void fail() const;
  [[noreturn]] void refuse(const std::string& reason) const;

  struct Close {
    void operator()(sqlite3* database) const noexcept;
  };
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const noexcept;
  };

  const std::string _path;
  std::recursive_mutex _mutex;
  std::unique_ptr<sqlite3, Close> _database;
  std::unordered_map<const char*, std::unique_ptr<sqlite3_stmt, Finalize>> _statements;
};

// Changes that come about together or not at all. Holds the file: other threads
// wait. What is not committed is forgotten.
class StoreTransaction {
 public:
  enum class Lasting {
    Process,  // survives the process, however it ends
    Machine   // survives a power failure too
  };

  StoreTransaction(StoreFile& file, Lasting lasting);
  StoreTransaction(const StoreTransaction&) = delete;
  StoreTransaction& operator=(const StoreTransaction&) = delete;
  ~StoreTransaction();

  void commit();

 private:
  StoreFile& _file;
  std::unique_lock<std::recursive_mutex> _lock;
  bool _isOpen = false;
};

#endif
