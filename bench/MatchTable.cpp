// A turn goes through all instances, so that no branch predictor learns one of them by heart.
// SPDX-License-Identifier: Apache-2.0
#include "bench/MatchTable.h"

#include <array>
#include <iomanip>
#include <ostream>
#include <stdexcept>

#include "bench/MatchPeers.h"
#include "bench/PairedRounds.h"
#include "bench/World.h"

namespace bench {

namespace {

constexpr std::uint64_t kDisks = 20000;
constexpr std::size_t kInstances = 64;
constexpr double kSqliteGoal = 5;
constexpr double kNativeGoal = 3;

const char* verdict(bool isMet) { return isMet ? ", met" : ", missed"; }

void printRatio(const Spread& ratio, double goal, bool isMet, std::ostream& out) {
  out << std::setprecision(2) << ratio.median << " [" << ratio.low << "-" << ratio.high << "] | "
      << std::setprecision(0) << goal << verdict(isMet);
}

void printMatch(Conditions conditions, const char* outcome, const Instances& instances, const TableOptions& options,
                std::ostream& out) {
  const std::array<std::unique_ptr<Matcher>, 3> peers = {makeNativeMatcher(conditions), makeSqliteMatcher(conditions),
                                                         makeEngineMatcher(conditions)};
  std::vector<std::function<void()>> candidates;
  const std::uint64_t expected = peers.front()->run(instances);
  for (const auto& peer : peers) {
    if (peer->run(instances) != expected) throw std::runtime_error("match: the answers differ");
    candidates.push_back([&peer, &instances] { peer->run(instances); });
  }
  const PairedRounds rounds(candidates, options.rounds, options.leastSeconds);
  const auto nanoseconds = [&](std::size_t peer) {
    return rounds.seconds(peer).median * 1e9 / static_cast<double>(instances.size());
  };
  out << "| " << static_cast<int>(conditions) << " | " << outcome << " | " << std::fixed << std::setprecision(1)
      << nanoseconds(0) << " | " << nanoseconds(1) << " | " << nanoseconds(2) << " | ";
  const Spread toSqlite = rounds.ratio(1, 2);
  const Spread toNative = rounds.ratio(2, 0);
  printRatio(toSqlite, kSqliteGoal, toSqlite.median >= kSqliteGoal, out);
  out << " | ";
  printRatio(toNative, kNativeGoal, toNative.median <= kNativeGoal, out);
  out << " |\n";
  out.flush();
}

void printManyFilters(std::size_t filters, const Instances& instances, const TableOptions& options, std::ostream& out) {
  const std::unique_ptr<Matcher> matcher = makeManyFilters(filters);
  const std::uint64_t matches = matcher->run(instances);
  const PairedRounds rounds({[&] { matcher->run(instances); }}, options.rounds, options.leastSeconds);
  const double seconds = rounds.seconds(0).median / static_cast<double>(instances.size());
  out << "| " << filters << " | " << std::setprecision(0) << 1 / seconds << " | " << std::setprecision(1)
      << seconds * 1e9 / static_cast<double>(filters) << " | "
      << static_cast<double>(matches) / static_cast<double>(instances.size()) << " |\n";
  out.flush();
}

}  // namespace

void printMatchTables(const TableOptions& options, std::ostream& out) {
  DiskWorld world(kDisks);
  world.makeCurrent();
  const Instances matching = matchingDisks(kInstances);
  const Instances missing = missingDisks(kInstances);
  if (matching.size() < kInstances || missing.size() < kInstances) throw std::runtime_error("match: too few disks");
  out << "\n### Matching one instance, nanoseconds\n\n"
      << "| conditions | outcome | C++ | SQLite | QORQL | SQLite / QORQL | goal | QORQL / C++ | goal |\n"
      << "|--:|---|--:|--:|--:|--:|--:|--:|--:|\n";
  for (const Conditions conditions : {Conditions::One, Conditions::Two, Conditions::Five}) {
    printMatch(conditions, "all hold", matching, options, out);
    printMatch(conditions, "the first fails", missing, options, out);
  }
  out << "\n### Indications against many filters of two conditions\n\n"
      << "| filters | indications per second | ns per filter | filters that match |\n|--:|--:|--:|--:|\n";
  Instances mixed = matching;
  mixed.insert(mixed.end(), missing.begin(), missing.end());
  for (const std::size_t filters : {1, 100, 10000}) printManyFilters(filters, mixed, options, out);
}

}  // namespace bench
