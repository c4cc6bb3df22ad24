// Each workload is checked, timed and printed before the next one begins.
// SPDX-License-Identifier: Apache-2.0
#include "bench/Table.h"

#include <iomanip>
#include <ostream>
#include <sstream>

#include "bench/PairedRounds.h"
#include "bench/Peer.h"
#include "bench/World.h"

namespace bench {

namespace {

using Peers = std::vector<std::unique_ptr<Peer>>;

constexpr std::uint64_t kSmall = 1000;

std::string timeText(double seconds) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(2);
  if (seconds < 1e-3) {
    text << seconds * 1e6 << " us";
  } else if (seconds < 1) {
    text << seconds * 1e3 << " ms";
  } else {
    text << seconds << " s";
  }
  return text.str();
}

std::string ratioText(const Spread& ratio) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(2) << ratio.median << " [" << ratio.low << "-" << ratio.high << "]";
  return text.str();
}

std::string numberText(double number) {
  std::ostringstream text;
  text << number;
  return text.str();
}

std::string growthText(double before, double after) {
  if (before == 0 || after == 0) return "-";
  std::ostringstream text;
  text << std::fixed << std::setprecision(2) << after / before;
  return text.str();
}

// What became of one workload at one size, in seconds.
struct Result {
  const Workload* workload = nullptr;
  std::uint64_t size = 0;
  double read = 0;     // the engine, to the last cell
  double execute = 0;  // the engine, to the finished table; 0 where there is none
};

// One line of a table: the peers' times on one workload.
class Line {
 public:
  Line(const Peers& peers, const Workload& workload, const TableOptions& options)
      : _workload(workload),
        _rows(requireSameAnswers(peers, workload).rows()),
        _hasNative(peers[kNative]->supports(workload)),
        _rounds(candidatesOf(peers, workload), options.rounds, options.leastSeconds) {
    const std::vector<double> execute = peers[kEngine]->takeExecuteSeconds();
    if (!execute.empty()) _execute = spreadOf(execute).median;
  }

  void print(std::ostream& out, std::uint64_t size) const {
    const double goal = size <= kSmall ? _workload.smallGoal : _workload.goal;
    const Spread toSqlite = _rounds.ratio(indexOf(kSqlite), indexOf(kEngine));
    const double sqlite = _rounds.seconds(indexOf(kSqlite)).median;
    // Up to the finished table, where there is one: the goals are about the engine, not about its reader.
    const double reached = _execute == 0 ? toSqlite.median : sqlite / _execute;
    out << "| " << _workload.title << " | " << _rows << " | " << timeOf(kNative) << " | " << timeOf(kSqlite) << " | "
        << timeOf(kEngine) << " | " << (_execute == 0 ? "-" : timeText(_execute)) << " | " << ratioText(toSqlite)
        << " | " << (_execute == 0 ? "-" : growthText(_execute, sqlite)) << " | " << numberText(goal)
        << (reached < goal ? ", missed" : ", met") << " | "
        << (_hasNative ? ratioText(_rounds.ratio(indexOf(kEngine), indexOf(kNative))) : "-") << " |\n";
    out.flush();
  }
  Result result(std::uint64_t size) const {
    return {&_workload, size, _rounds.seconds(indexOf(kEngine)).median, _execute};
  }

 private:
  static std::vector<std::function<void()>> candidatesOf(const Peers& peers, const Workload& workload) {
    std::vector<std::function<void()>> candidates;
    for (const std::unique_ptr<Peer>& peer : peers) {
      if (peer->supports(workload)) candidates.push_back([&peer, &workload] { peer->run(workload, false); });
    }
    peers[kEngine]->takeExecuteSeconds();
    return candidates;
  }
  std::size_t indexOf(PeerIndex peer) const noexcept { return _hasNative ? peer : peer - 1; }
  std::string timeOf(PeerIndex peer) const {
    if (peer == kNative && !_hasNative) return "-";
    return timeText(_rounds.seconds(indexOf(peer)).median);
  }

  const Workload& _workload;
  const std::uint64_t _rows;
  const bool _hasNative;
  const PairedRounds _rounds;
  double _execute = 0;
};

bool isWanted(const Workload& workload, const TableOptions& options, std::uint64_t size) {
  if (workload.isSmallOnly && size != kSmall) return false;
  return options.only.empty() || options.only.contains(workload.id);
}

void printTable(const TableOptions& options, std::uint64_t size, std::vector<Result>& results, std::ostream& out) {
  World world(size);
  world.makeCurrent();
  const Peers peers = makePeers();
  for (const std::unique_ptr<Peer>& peer : peers) peer->attach();
  out << "\n### " << size << " instances\n\n"
      << "| workload | rows | C++ | SQLite | QORQL | execute alone | SQLite / QORQL | SQLite / execute | goal | "
         "QORQL / C++ |\n"
      << "|---|--:|--:|--:|--:|--:|--:|--:|--:|--:|\n";
  for (const Workload& workload : workloads()) {
    if (!isWanted(workload, options, size)) continue;
    const Line line(peers, workload, options);
    line.print(out, size);
    results.push_back(line.result(size));
  }
}

// From each size to the next, of the time that a row takes.
void printGrowth(const std::vector<Result>& results, std::ostream& out) {
  out << "\n### Growth of the engine's time per row\n\n"
      << "| workload | from | to | read to the last cell | execute alone |\n|---|--:|--:|--:|--:|\n";
  for (const Workload& workload : workloads()) {
    const Result* before = nullptr;
    for (const Result& result : results) {
      if (result.workload != &workload) continue;
      if (before != nullptr) {
        const double rows = static_cast<double>(result.size) / static_cast<double>(before->size);
        out << "| " << workload.title << " | " << before->size << " | " << result.size << " | "
            << growthText(before->read * rows, result.read) << " | "
            << growthText(before->execute * rows, result.execute) << " |\n";
      }
      before = &result;
    }
  }
}

}  // namespace

void printTables(const TableOptions& options, std::ostream& out) {
  std::vector<Result> results;
  for (const std::uint64_t size : options.sizes) printTable(options, size, results, out);
  if (options.sizes.size() > 1) printGrowth(results, out);
}

}  // namespace bench
