// Those that are measured against each other, by one interface.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_PEER_H
#define QORQL_BENCH_PEER_H

#include <memory>
#include <vector>

#include "bench/Answer.h"
#include "bench/Workloads.h"

namespace bench {

class World;

class Peer {
 public:
  virtual ~Peer() = default;
  virtual const char* name() const = 0;
  // Gets ready for a world, which is the current one; not timed. Called before run.
  virtual void attach(const World& world) = 0;
  virtual bool supports(const Workload&) const { return true; }
  // One run of what was prepared before, down to the last cell.
  virtual Answer run(const Workload& workload, bool isThorough) = 0;
  // Of each run since the last call, the seconds that went by before the first
  // cell was read; empty when the peer does not tell.
  virtual std::vector<double> takeExecuteSeconds() { return {}; }
};

std::unique_ptr<Peer> makeNativePeer();
std::unique_ptr<Peer> makeSqlitePeer();
std::unique_ptr<Peer> makeEnginePeer();

// The three in this order.
enum PeerIndex : std::size_t { kNative, kSqlite, kEngine };
std::vector<std::unique_ptr<Peer>> makePeers();

// Runs the workload twice on each peer. THROWS std::runtime_error with both
// answers when two peers differ; returns the answer that they share.
Answer requireSameAnswers(const std::vector<std::unique_ptr<Peer>>& peers, const Workload& workload);

}  // namespace bench

#endif
