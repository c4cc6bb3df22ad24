// Runs statements by chance in both execution modes, with and without a stream:
// random_statements COUNT SEED MODELS. Both modes must leave the same.
// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <string>

#include "Judge.h"
#include "LibraryRun.h"
#include "RandomStatement.h"

namespace {

// Tells what the statements came to, so that one sees what they reach.
struct Tally {
  std::map<std::string, unsigned> outcomes;

  void add(const Failure& failure) {
    ++outcomes[failure.kind == FailureKind::None ? "result" : failure.toText() + ": " + failure.message.substr(0, 60)];
  }
  void print() const {
    for (const auto& [outcome, count] : outcomes) std::cout << count << "\t" << outcome << "\n";
  }
};

bool isAlike(LibraryRun& library, const Case& one, Tally& tally) {
  std::string faults;
  for (const bool isStreamed : {false, true}) {
    const Outcome plain = library.run(one, QORQL_DataTable::kExecutionPlain, isStreamed);
    const Outcome lazy = library.run(one, QORQL_DataTable::kExecutionLazy, isStreamed);
    faults += judgeModes(plain, lazy);
    tally.add(lazy.failure);
  }
  if (!faults.empty()) std::cout << one.query << "\n" << faults << "\n";
  return faults.empty();
}

int run(unsigned long count, std::uint32_t seed, const std::string& models) {
  Script script;
  script.models = {"disks.mof", "boxes.mof"};
  LibraryRun library(script, {models});
  RandomStatement statements(seed);
  Tally tally;
  unsigned long failed = 0;
  for (unsigned long i = 0; i < count && failed < 10; ++i) {
    Case one;
    one.nameSpace = script.nameSpace;
    one.query = statements.next();
    if (!isAlike(library, one, tally)) ++failed;
  }
  tally.print();
  std::cout << failed << " of " << count << " statements differ\n";
  return failed == 0 && tally.outcomes["result"] > count / 4 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) {
    std::cerr << "usage: random_statements COUNT SEED MODELS\n";
    return 2;
  }
  try {
    return run(std::strtoul(arguments[1], nullptr, 10),
               static_cast<std::uint32_t>(std::strtoul(arguments[2], nullptr, 10)), arguments[3]);
  } catch (const QoriBaseException& error) {
    std::cerr << error.getMessage() << "\n";
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
  }
  return 2;
}
