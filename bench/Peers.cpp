// All peers, and the check that they agree.
// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "bench/Peer.h"

namespace bench {

namespace {

std::string describe(const Peer& peer, const Answer& answer) {
  return std::string(peer.name()) + " " + std::to_string(answer.rows()) + " rows, checksum " +
         std::to_string(answer.checksum());
}

void requireEqual(const Workload& workload, const Peer& a, const Answer& first, const Peer& b, const Answer& second) {
  if (first == second) return;
  throw std::runtime_error(std::string(workload.id) + ": the answers differ: " + describe(a, first) + "; " +
                           describe(b, second));
}

}  // namespace

std::vector<std::unique_ptr<Peer>> makePeers() {
  std::vector<std::unique_ptr<Peer>> peers;
  peers.push_back(makeNativePeer());
  peers.push_back(makeSqlitePeer());
  peers.push_back(makeEnginePeer());
  return peers;
}

Answer requireSameAnswers(const std::vector<std::unique_ptr<Peer>>& peers, const Workload& workload) {
  std::vector<Peer*> able;
  for (const std::unique_ptr<Peer>& peer : peers) {
    if (peer->supports(workload)) able.push_back(peer.get());
  }
  const Answer quick = able.front()->run(workload, false);
  const Answer thorough = able.front()->run(workload, true);
  for (Peer* const peer : able) {
    requireEqual(workload, *able.front(), thorough, *peer, peer->run(workload, true));
    requireEqual(workload, *able.front(), quick, *peer, peer->run(workload, false));
  }
  return thorough;
}

}  // namespace bench
