// Each workload is checked, timed and printed before the next one begins.
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

// One line of a table: the peers' times on one workload.
class Line {
 public:
  Line(const Peers& peers, const Workload& workload, const TableOptions& options)
      : _workload(workload),
        _rows(requireSameAnswers(peers, workload).rows()),
        _hasNative(peers[kNative]->supports(workload)),
        _rounds(candidatesOf(peers, workload), options.rounds, options.leastSeconds) {
    const std::vector<double> execute = peers[kEngine]->takeExecuteSeconds();
    if (!execute.empty()) _execute = timeText(spreadOf(execute).median);
  }

  void print(std::ostream& out, std::uint64_t size) const {
    const double goal = size <= kSmall ? _workload.smallGoal : _workload.goal;
    const Spread toSqlite = _rounds.ratio(indexOf(kSqlite), indexOf(kEngine));
    out << "| " << _workload.title << " | " << _rows << " | " << timeOf(kNative) << " | " << timeOf(kSqlite) << " | "
        << timeOf(kEngine) << " | " << _execute << " | " << ratioText(toSqlite) << " | " << numberText(goal)
        << (toSqlite.median < goal ? ", missed" : ", met") << " | "
        << (_hasNative ? ratioText(_rounds.ratio(indexOf(kEngine), indexOf(kNative))) : "-") << " |\n";
    out.flush();
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
  std::string _execute = "-";
};

bool isWanted(const Workload& workload, const TableOptions& options, std::uint64_t size) {
  if (workload.isSmallOnly && size != kSmall) return false;
  return options.only.empty() || options.only.contains(workload.id);
}

void printTable(const TableOptions& options, std::uint64_t size, std::ostream& out) {
  World world(size);
  world.makeCurrent();
  const Peers peers = makePeers();
  for (const std::unique_ptr<Peer>& peer : peers) peer->attach();
  out << "\n### " << size << " instances\n\n"
      << "| workload | rows | C++ | SQLite | QORQL | execute alone | SQLite / QORQL | goal | QORQL / C++ |\n"
      << "|---|--:|--:|--:|--:|--:|--:|--:|--:|\n";
  for (const Workload& workload : workloads()) {
    if (isWanted(workload, options, size)) Line(peers, workload, options).print(out, size);
  }
}

}  // namespace

void printTables(const TableOptions& options, std::ostream& out) {
  for (const std::uint64_t size : options.sizes) printTable(options, size, out);
}

}  // namespace bench
