// The batches of one enumeration: what bounds them besides time.
// Tested by tests/unit/Remote/RemoteBatchesTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTEBATCHES_H
#define QORQL_REMOTE_REMOTEBATCHES_H

#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>

#include "cimom/IQoriInstanceName.h"

// A server sends batches and does not come to an end.
class RemoteEndlessBatches : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// One enumeration, one thread.
class RemoteBatches {
 public:
  // `mostBytes`: of all replies together, uncompressed.
  explicit RemoteBatches(std::uint64_t mostBytes) : _mostBytes(mostBytes) {}

  // Of a batch that is not the last one. THROWS RemoteEndlessBatches for the thousandth one after the other that is
  // empty, the tenth that has been there before, and when all have too many bytes.
  void note(std::uint64_t bytes);
  // An instance of the batch that note() is told of next; null: it has no name, which makes the batch a new one.
  void addInstance(const QORSmrPtr<IQoriInstanceName>& name) {
    if (_instances++ == 0) _first = name;
    _last = name;
  }

 private:
  std::string takeMark();

  const std::uint64_t _mostBytes;
  std::uint64_t _bytes = 0;
  std::uint64_t _instances = 0;         // of the batch
  QORSmrPtr<IQoriInstanceName> _first;  // of the batch
  QORSmrPtr<IQoriInstanceName> _last;   // of the batch
  std::set<std::string> _marks;         // of the batches so far
  int _empty = 0;                       // one after the other
  int _repeated = 0;                    // one after the other
};

#endif
