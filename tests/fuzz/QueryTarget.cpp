// Fuzz target: a whole query over a fixed model, with and without a stream. The
// lazy algorithm leaves what the plain one leaves: rows, columns, stream bytes,
// error, log lines and client calls.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "ClientInterposer.h"
#include "FuzzQueries.h"

namespace {

struct Run {
  QueryOutcome outcome;
  std::vector<std::string> calls;
};

Run runIn(QueryRun& world, const std::string& query, QORQL_DataTable::ExecutionMode mode, bool isStreamed) {
  ClientInterposer::takeCalls();
  Run run{world.runIn(query, mode, isStreamed), {}};
  run.calls = ClientInterposer::takeCalls();
  requireStatedError(run.outcome, query);
  return run;
}

void print(const char* title, const Run& run) {
  std::cerr << "--- " << title << "\n";
  PrintTo(run.outcome, &std::cerr);
  std::cerr << "calls:\n";
  for (const std::string& call : run.calls) std::cerr << "  " << call << "\n";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static QueryRun world(fuzzModel());
  ClientInterposer::setRecording(true);
  const std::string query = fuzzText(data, size);
  if (!isSmallQuery(query)) return 0;
  for (const bool isStreamed : {true, false}) {
    const Run plain = runIn(world, query, QORQL_DataTable::kExecutionPlain, isStreamed);
    const Run lazy = runIn(world, query, QORQL_DataTable::kExecutionLazy, isStreamed);
    if (plain.outcome == lazy.outcome && plain.calls == lazy.calls) continue;
    print("plain", plain);
    print("lazy", lazy);
    fuzzRequire(false, std::string("the modes agree") + (isStreamed ? " with a stream" : " without a stream"));
  }
  return 0;
}
