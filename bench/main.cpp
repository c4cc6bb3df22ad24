// qorql_bench: Google Benchmark's options and output, or with --table the peers
// in interleaved rounds as a table of medians and ratios.
// SPDX-License-Identifier: Apache-2.0
#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <exception>
#include <iostream>
#include <map>
#include <memory>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "bench/CodecTable.h"
#include "bench/FilterSetTable.h"
#include "bench/MatchTable.h"
#include "bench/MemoryTable.h"
#include "bench/Peer.h"
#include "bench/Table.h"
#include "bench/World.h"

namespace {

constexpr const char* kUsage =
    "usage: qorql_bench --table [--sizes=1000,100000,1000000] [--only=scan,sort,...] [--rounds=9] [--turn=0.03]\n"
    "       qorql_bench [Google Benchmark's options]\n";

// What --only takes besides the ids of the workloads.
constexpr const char* kMatch = "match";
constexpr const char* kSets = "sets";
constexpr const char* kMemory = "memory";
constexpr const char* kCodec = "codec";
constexpr const char* kMixed = "mixed";  // all workloads of that field

// Worlds and peers by field and size, made when a benchmark first needs them.
class Stage {
 public:
  struct Set {
    std::unique_ptr<bench::World> world;
    std::vector<std::unique_ptr<bench::Peer>> peers;
    std::map<bench::Task, std::uint64_t> checked;  // rows of the workloads on which the peers agree
  };

  Set& enter(bench::Field field, std::uint64_t size) {
    Set& set = _sets[{field, size}];
    const bool isNew = set.world == nullptr;
    if (isNew) set.world = bench::makeWorld(field, size);
    set.world->makeCurrent();
    if (isNew) {
      set.peers = bench::makePeers();
      for (const auto& peer : set.peers) peer->attach(*set.world);
    }
    return set;
  }

 private:
  std::map<std::pair<bench::Field, std::uint64_t>, Set> _sets;
};

// THROWS std::runtime_error when the peers disagree on the workload.
void runBenchmark(benchmark::State& state, Stage& stage, bench::PeerIndex peer, const bench::Workload& workload,
                  std::uint64_t size) {
  Stage::Set& set = stage.enter(workload.field, size);
  if (!set.checked.contains(workload.task)) {
    set.checked[workload.task] = bench::requireSameAnswers(set.peers, workload).rows();
  }
  for (auto _ : state) benchmark::DoNotOptimize(set.peers[peer]->run(workload, false).checksum());
  state.counters["rows"] = static_cast<double>(set.checked[workload.task]);
}

void registerBenchmarks(Stage& stage) {
  const std::vector<std::unique_ptr<bench::Peer>> peers = bench::makePeers();
  for (const bench::Workload& workload : bench::workloads()) {
    const bool isMixed = workload.field == bench::Field::Mixed;
    const std::vector<std::uint64_t> large =
        isMixed ? std::vector{bench::kGreatestMixedWorld} : std::vector<std::uint64_t>{100000, 1000000};
    std::vector<std::uint64_t> sizes = {1000};
    if (!workload.isSmallOnly) sizes.insert(sizes.end(), large.begin(), large.end());
    for (const std::uint64_t size : sizes) {
      for (const bench::PeerIndex peer : {bench::kNative, bench::kSqlite, bench::kEngine}) {
        if (!peers[peer]->supports(workload)) continue;
        const std::string name = std::string(workload.id) + "/" + peers[peer]->name() + "/" + std::to_string(size);
        benchmark::RegisterBenchmark(name.c_str(), [&stage, peer, &workload, size](benchmark::State& state) {
          runBenchmark(state, stage, peer, workload, size);
        })->Unit(benchmark::kMicrosecond);
      }
    }
  }
}

std::vector<std::string_view> splitAtCommas(std::string_view text) {
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t comma = text.find(',');
    parts.push_back(text.substr(0, comma));
    if (comma == std::string_view::npos) return parts;
    text.remove_prefix(comma + 1);
  }
}

// Reads a number above zero; false when the text is none.
template <class Number>
bool readPositive(std::string_view text, Number& out) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
  return error == std::errc() && end == text.data() + text.size() && out > 0;
}

bool isFurtherTable(std::string_view id) { return id == kMatch || id == kSets || id == kMemory || id == kCodec; }

void addMixed(bench::TableOptions& options) {
  for (const bench::Workload& workload : bench::workloads()) {
    if (workload.field == bench::Field::Mixed) options.only.insert(workload.id);
  }
}

bool readOnly(std::string_view text, bench::TableOptions& options) {
  for (const std::string_view id : splitAtCommas(text)) {
    if (id == kMixed) {
      addMixed(options);
      continue;
    }
    bool isKnown = isFurtherTable(id);
    for (const bench::Workload& workload : bench::workloads()) isKnown = isKnown || id == workload.id;
    if (!isKnown) return false;
    options.only.insert(std::string(id));
  }
  return true;
}

bool readSizes(std::string_view text, bench::TableOptions& options) {
  options.sizes.clear();
  for (const std::string_view part : splitAtCommas(text)) {
    if (!readPositive(part, options.sizes.emplace_back())) return false;
  }
  return true;
}

bool readTableOption(std::string_view argument, bench::TableOptions& options) {
  const std::size_t equals = argument.find('=');
  if (equals == std::string_view::npos) return false;
  const std::string_view name = argument.substr(0, equals);
  const std::string_view value = argument.substr(equals + 1);
  if (name == "--sizes") return readSizes(value, options);
  if (name == "--only") return readOnly(value, options);
  if (name == "--rounds") return readPositive(value, options.rounds);
  if (name == "--turn") return readPositive(value, options.leastSeconds);
  return false;
}

int runTable(int argc, char** argv) {
  bench::TableOptions options;
  for (int i = 2; i < argc; ++i) {
    if (readTableOption(argv[i], options)) continue;
    std::cerr << "qorql_bench: " << argv[i] << "\n" << kUsage;
    return 2;
  }
  const auto isWanted = [&](const char* id) { return options.only.empty() || options.only.contains(id); };
  const bool hasWorkloads = !std::all_of(options.only.begin(), options.only.end(), isFurtherTable);
  if (options.only.empty() || hasWorkloads) bench::printTables(options, std::cout);
  if (isWanted(kMatch)) bench::printMatchTables(options, std::cout);
  if (isWanted(kSets)) bench::printFilterSetTable(options, std::cout);
  if (isWanted(kCodec)) bench::printCodecTable(options, std::cout);
  if (isWanted(kMemory)) bench::printMemoryTable(options.sizes.back(), std::cout);
  return 0;
}

int runGoogleBenchmark(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    std::cerr << kUsage;
    return 2;
  }
  Stage stage;
  registerBenchmarks(stage);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    // A process that has had a second thread counts references atomically, as a server does.
    std::thread([] {}).join();
    const bool isTable = argc > 1 && std::strcmp(argv[1], "--table") == 0;
    return isTable ? runTable(argc, argv) : runGoogleBenchmark(argc, argv);
  } catch (const QoriBaseException& error) {
    std::cerr << "qorql_bench: " << error.getMessage() << "\n";
  } catch (const std::exception& error) {
    std::cerr << "qorql_bench: " << error.what() << "\n";
  }
  return 1;
}
