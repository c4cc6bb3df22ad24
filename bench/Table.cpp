// Each workload is checked, timed and printed before the next one begins.
// SPDX-License-Identifier: Apache-2.0
#include "bench/Table.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <optional>
#include <ostream>
#include <sstream>

#include "bench/PairedRounds.h"
#include "bench/Peer.h"
#include "bench/World.h"

namespace bench {

namespace {

using Peers = std::vector<std::unique_ptr<Peer>>;

constexpr std::uint64_t kSmall = 1000;

// How often the C++ written by hand may fit into the engine's time.
double nativeGoal(Field field, std::uint64_t size) {
  if (field == Field::Mixed) return 3;
  return size <= kSmall ? 2.5 : 1.3;
}

// How often ORDER BY a number may fit into ORDER BY a datetime.
constexpr double kDateTimeGoal = 2;

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

std::string verdict(double goal, bool isMet) { return numberText(goal) + (isMet ? ", met" : ", missed"); }

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
        _places(placesOf(peers, workload)),
        _rounds(candidatesOf(peers, workload), options.rounds, options.leastSeconds) {
    const std::vector<double> execute = peers[kEngine]->takeExecuteSeconds();
    if (!execute.empty()) _execute = spreadOf(execute).median;
  }

  void print(std::ostream& out, std::uint64_t size) const {
    out << "| " << _workload.title << " | " << _rows << " | " << timeOf(kNative) << " | " << timeOf(kSqlite) << " | "
        << timeOf(kEngine) << " | " << (_execute == 0 ? "-" : timeText(_execute)) << " | ";
    printSqlite(out, size <= kSmall ? _workload.smallGoal : _workload.goal);
    printNative(out, nativeGoal(_workload.field, size));
    out << " |\n";
    out.flush();
  }
  Result result(std::uint64_t size) const {
    return {&_workload, size, _rounds.seconds(*_places[kEngine]).median, _execute};
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
  // Where each peer that takes part stands among the candidates.
  using Places = std::array<std::optional<std::size_t>, kEngine + 1>;
  static Places placesOf(const Peers& peers, const Workload& workload) {
    Places places;
    std::size_t next = 0;
    for (std::size_t peer = 0; peer < places.size(); ++peer) {
      if (peers[peer]->supports(workload)) places[peer] = next++;
    }
    return places;
  }
  std::string timeOf(PeerIndex peer) const {
    return _places[peer] ? timeText(_rounds.seconds(*_places[peer]).median) : "-";
  }

  void printSqlite(std::ostream& out, double goal) const {
    if (!_places[kSqlite]) {
      out << "- | - | - | ";
      return;
    }
    const Spread toSqlite = _rounds.ratio(*_places[kSqlite], *_places[kEngine]);
    const double sqlite = _rounds.seconds(*_places[kSqlite]).median;
    // Up to the finished table, where there is one: the goals are about the engine, not about its reader.
    const double reached = _execute == 0 ? toSqlite.median : sqlite / _execute;
    out << ratioText(toSqlite) << " | " << (_execute == 0 ? "-" : growthText(_execute, sqlite)) << " | "
        << (goal == 0 ? "-" : verdict(goal, reached >= goal)) << " | ";
  }
  void printNative(std::ostream& out, double goal) const {
    if (!_places[kNative]) {
      out << "- | -";
      return;
    }
    const Spread toNative = _rounds.ratio(*_places[kEngine], *_places[kNative]);
    // Writing XML is the stream's work on either side: its goal is about SQLite.
    out << ratioText(toNative) << " | " << (_workload.isXml() ? "-" : verdict(goal, toNative.median <= goal));
  }

  const Workload& _workload;
  const std::uint64_t _rows;
  const Places _places;
  const PairedRounds _rounds;
  double _execute = 0;
};

bool isWanted(const Workload& workload, const TableOptions& options, std::uint64_t size) {
  if (workload.isSmallOnly && size != kSmall) return false;
  return options.only.empty() || options.only.contains(workload.id);
}

// Whether a table of that field would have a line.
bool isWanted(Field field, const TableOptions& options, std::uint64_t size) {
  return std::any_of(workloads().begin(), workloads().end(), [&](const Workload& workload) {
    return workload.field == field && isWanted(workload, options, size);
  });
}

const Workload& workloadOf(Task task) {
  return *std::find_if(workloads().begin(), workloads().end(),
                       [task](const Workload& workload) { return workload.task == task; });
}

// The engine's two sorts in rounds of their own: their lines in the table were measured at different times.
void printDateTimeOrder(Peer& engine, std::uint64_t size, const TableOptions& options, std::ostream& out) {
  const Workload& byNumber = workloadOf(Task::NumberOrder);
  const Workload& byDateTime = workloadOf(Task::DateTimeOrder);
  if (!isWanted(byNumber, options, size) || !isWanted(byDateTime, options, size)) return;
  const std::vector<std::function<void()>> candidates = {[&] { engine.run(byNumber, false); },
                                                         [&] { engine.run(byDateTime, false); }};
  const Spread ratio = PairedRounds(candidates, options.rounds, options.leastSeconds).ratio(1, 0);
  engine.takeExecuteSeconds();
  out << "\nORDER BY a datetime / ORDER BY a number: " << ratioText(ratio) << ", goal "
      << verdict(kDateTimeGoal, ratio.median <= kDateTimeGoal) << "\n";
}

void printTable(const TableOptions& options, Field field, std::uint64_t size, std::vector<Result>& results,
                std::ostream& out) {
  if (!isWanted(field, options, size)) return;
  const std::unique_ptr<World> world = makeWorld(field, size);
  world->makeCurrent();
  const Peers peers = makePeers();
  for (const std::unique_ptr<Peer>& peer : peers) peer->attach(*world);
  out << "\n### " << size << (field == Field::Mixed ? " instances of a class and its subclass" : " instances") << "\n\n"
      << "| workload | rows | C++ | SQLite | QORQL | execute alone | SQLite / QORQL | SQLite / execute | goal | "
         "QORQL / C++ | goal |\n"
      << "|---|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|\n";
  for (const Workload& workload : workloads()) {
    if (workload.field != field || !isWanted(workload, options, size)) continue;
    const Line line(peers, workload, options);
    line.print(out, size);
    results.push_back(line.result(size));
  }
  if (field == Field::Mixed) printDateTimeOrder(*peers[kEngine], size, options, out);
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
  for (const std::uint64_t size : options.sizes) printTable(options, Field::Disks, size, results, out);
  std::set<std::uint64_t> mixedSizes;
  for (const std::uint64_t size : options.sizes) mixedSizes.insert(std::min(size, kGreatestMixedWorld));
  for (const std::uint64_t size : mixedSizes) printTable(options, Field::Mixed, size, results, out);
  if (options.sizes.size() > 1) printGrowth(results, out);
}

}  // namespace bench
