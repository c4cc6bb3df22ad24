// What a server keeps beyond its process: changed instances, and indications that wait for listeners.
// Tested by tests/unit/Server/StoredInstanceWriterTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVERSTORE_H
#define QORQL_SERVER_SERVERSTORE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Cimom/Server/StoreFile.h"

// Threads may share one. All operations THROW CimStatusException, status 1, when
// the file fails; then nothing of the change has happened.
class ServerStore {
 public:
  // An instance as a client left it.
  struct Instance {
    std::string nameSpace;
    std::string path;
    std::string document;  // the element of CIM-XML; for one that is gone, as it was
    bool isGone = false;   // a client deleted what is declared elsewhere
  };
  // Where a listener's sequence is.
  struct Listener {
    std::int64_t id = 0;
    std::string context;
    std::int64_t next = 0;     // the number of the next indication
    std::int64_t dropped = 0;  // how many were never put into the queue, or taken out of it unsent
    std::int64_t queued = 0;
  };
  struct Queued {
    std::int64_t number = 0;
    std::string subscription;
    std::string document;  // the element of CIM-XML
  };

  // As StoreFile's.
  explicit ServerStore(const std::string& path) : _file(path) {}

  // In the order in which they came into the store.
  std::vector<Instance> instances();
  // The listener of that path; one that is not known yet begins with that context.
  Listener listener(const std::string& path, const std::string& context);
  // All that are known, by path, with their numbers.
  std::vector<std::pair<std::string, std::int64_t>> listeners();
  // The indications that wait longest.
  std::vector<Queued> queued(std::int64_t listener, std::size_t most);
  // Takes one out of the queue; false when it is not there any more.
  bool remove(std::int64_t listener, std::int64_t number, bool isDropped);

  // Changes that are kept together, and survive a power failure once they are committed.
  class Change {
   public:
    // Other threads wait until it ends.
    explicit Change(ServerStore& store) : _file(store._file), _transaction(_file, StoreTransaction::Lasting::Machine) {}

    // Keeps an instance that a client created.
    void create(const Instance& instance);
    // Keeps what became of an instance, whoever created it.
    void modify(const Instance& instance);
    // Keeps that an instance is gone, or nothing of one that a client had created.
    void remove(const Instance& instance);
    // Takes those of a subscription out of the queue of its listener and says how many they were.
    int removeOf(std::int64_t listener, const std::string& subscription);
    // Forgets a listener with its queue.
    void forget(std::int64_t listener);
    void queue(std::int64_t listener, const Queued& queued);
    // Sets what comes next, and adds to what was dropped.
    void count(std::int64_t listener, std::int64_t next, std::int64_t dropped);
    void commit() { _transaction.commit(); }

   private:
    void put(const Instance& instance, bool isOver);

    StoreFile& _file;
    StoreTransaction _transaction;
  };

 private:
  StoreFile _file;
};

#endif
