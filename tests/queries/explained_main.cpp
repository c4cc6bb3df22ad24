// Explains statements by chance, runs them, and compares: explained_statements
// COUNT SEED MODELS. The classes that are fetched, with their properties, the
// association calls, and how conditions are applied must be what was explained.
// What cannot be judged, and what fails while it runs, is counted, and too many of
// either fail the run.
// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <set>
#include <string>

#include "Cimom/QORQL/Explain/QORQL_Explanation.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "ClientInterposer.h"
#include "LibraryRun.h"
#include "RandomStatement.h"

namespace {

using Step = QORQL_ExplainedStep;
using Lines = std::vector<std::string>;

constexpr char kNotParsed[] = "statements that do not parse";
constexpr char kNotFinished[] = "statements that fail while they run";
constexpr const char* kMethods[] = {"filter", "hash join", "key join", "filtered product"};

std::string upper(const std::string& text) { return std::string(QORString::toUpperCase(text.c_str()).view()); }

// As the interposer writes a request.
std::string requestOf(const Step& step) {
  std::map<std::string, std::string> sorted;
  for (const std::string& name : step.properties) sorted.emplace(upper(name), upper(name));
  std::string text;
  for (const auto& [folded, name] : sorted) text += (text.empty() ? "" : ", ") + name;
  return upper(step.className) + " (" + (step.hasAllProperties ? "ALL" : text) + ")";
}

class Recorder : public QORQL_ExecutionMonitor {
 public:
  void conditionApplied(const QORQL_Comparison& comparison, Method method) noexcept override {
    applied.emplace_back(&comparison, method);
  }
  std::vector<std::pair<const QORQL_Comparison*, Method>> applied;
};

// What one statement said and did.
struct Trial {
  std::vector<Step> steps;
  Lines calls;
  Recorder recorder;
  std::string faults;  // of explaining
  bool isParsed = false;
  bool isFinished = false;
};

QORSmrPtr<QORQL_Query> parse(const QORString& text, QORQL_SymbolTable& symbols, const QORString& nameSpace) {
  try {
    QORQL_Lexer lexer(text, false);
    return QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", nameSpace).StaticCast<QORQL_Query>();
  } catch (const QoriBaseException&) {
    return {};
  }
}

// Whatever was parsed is explained without an error and without asking for an instance.
void explain(const QORQL_Query& parsed, const QORQL_SymbolTable& symbols, const QORString& nameSpace, Trial& trial) {
  try {
    trial.steps = QORQL_Explanation(parsed, symbols, nameSpace).steps();
  } catch (const std::exception& error) {
    trial.faults += std::string("  the explanation throws: ") + error.what() + "\n";
  }
  for (const std::string& call : ClientInterposer::takeCalls()) {
    trial.faults += "  the explanation asks: " + call + "\n";
  }
}

Trial tryOut(const std::string& query, const QORString& nameSpace) {
  Trial trial;
  const QORString text(query.data(), query.size());
  QORQL_SymbolTable symbols(nullptr);
  const QORSmrPtr<QORQL_Query> parsed = parse(text, symbols, nameSpace);
  trial.isParsed = !parsed.IsNull();
  if (!trial.isParsed) return trial;
  ClientInterposer::takeCalls();
  ClientInterposer::setRecording(true);
  explain(*parsed, symbols, nameSpace, trial);
  try {
    const QORQL_MonitorScope scope(trial.recorder);
    QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
    parsed->execute(symbols, table, nullptr, nameSpace);
    trial.isFinished = true;
  } catch (const QoriBaseException&) {
    // What was done until then is judged all the same.
  }
  ClientInterposer::setRecording(false);
  trial.calls = ClientInterposer::takeCalls();
  return trial;
}

class Judgement {
 public:
  explicit Judgement(const Trial& trial) : _trial(trial), _faults(trial.faults) {}

  std::string faults() {
    judgeFetches();
    judgeAssociations();
    judgeConditions();
    return _faults;
  }
  std::map<std::string, unsigned> tally;

 private:
  void judgeFetches() {
    Lines expected;
    for (const Step& step : _trial.steps) {
      if (step.kind == Step::kFetch) expected.push_back("enumerate " + requestOf(step));
    }
    Lines made;
    for (const std::string& call : _trial.calls) {
      if (call.starts_with("enumerate ")) made.push_back("enumerate " + upper(call.substr(10)));
    }
    if (!_trial.isFinished && made.size() < expected.size()) expected.resize(made.size());
    if (made == expected) {
      tally["fetches"] += static_cast<unsigned>(made.size());
      return;
    }
    for (const std::string& line : expected) _faults += "  explained: " + line + "\n";
    for (const std::string& line : made) _faults += "  done:      " + line + "\n";
  }

  void judgeAssociations() {
    std::set<std::string> expected;
    for (const Step& step : _trial.steps) {
      if (step.kind == Step::kAssociate) expected.insert(upper(step.association) + " " + requestOf(step));
    }
    for (const std::string& call : _trial.calls) {
      if (!call.starts_with("associators ")) continue;
      bool isFound = false;
      for (const std::string& one : expected) isFound = isFound || upper(call).ends_with(" " + one);
      if (!isFound) _faults += "  not explained: " + call + "\n";
      ++tally["association calls"];
    }
  }

  // Conditions come in the order explained; an empty table skips some.
  void judgeConditions() {
    std::size_t next = 0;
    for (const auto& [comparison, method] : _trial.recorder.applied) {
      while (next < _trial.steps.size() && _trial.steps[next].comparison != comparison) ++next;
      if (next == _trial.steps.size()) {
        _faults += "  a condition that was not explained, or not there\n";
        return;
      }
      const Step& step = _trial.steps[next++];
      ++tally[step.dependsOnValues ? "conditions by their values" : kMethods[method]];
      if (step.method == method || step.dependsOnValues) continue;
      _faults += "  explained: " + std::string(kMethods[step.method]) + ", done: " + kMethods[method] + ": " +
                 step.text + "\n";
    }
  }

  const Trial& _trial;
  std::string _faults;
};

// What the statements must have reached, in so many of a thousand at least, and
// what may have been passed over, in so many at most.
bool isTelling(const std::map<std::string, unsigned>& tally, unsigned long count) {
  constexpr std::pair<const char*, unsigned> kAtLeast[] = {
      {"hash join", 40}, {"key join", 15}, {"filtered product", 40}, {"filter", 250}, {"association calls", 150}};
  constexpr std::pair<const char*, unsigned> kAtMost[] = {{kNotParsed, 60}, {kNotFinished, 550}};
  const auto numberOf = [&tally](const char* what) {
    const auto found = tally.find(what);
    return found == tally.end() ? 0UL : found->second * 1000UL;
  };
  bool isGood = true;
  for (const auto& [what, least] : kAtLeast) {
    if (numberOf(what) >= least * count) continue;
    std::cout << "too few: " << what << ", fewer than " << least << " in a thousand statements\n";
    isGood = false;
  }
  for (const auto& [what, most] : kAtMost) {
    if (numberOf(what) <= most * count) continue;
    std::cout << "too many: " << what << ", more than " << most << " in a thousand statements\n";
    isGood = false;
  }
  return isGood;
}

int run(unsigned long count, std::uint32_t seed, const std::string& models) {
  Script script;
  script.models = {"disks.mof", "boxes.mof"};
  const LibraryRun library(script, {models});
  const QORString nameSpace(script.nameSpace.c_str());
  RandomStatement statements(seed);
  std::map<std::string, unsigned> tally;
  unsigned long failed = 0;
  for (unsigned long i = 0; i < count && failed < 10; ++i) {
    const std::string query = statements.next();
    const Trial trial = tryOut(query, nameSpace);
    if (!trial.isParsed) {
      ++tally[kNotParsed];
      continue;
    }
    if (!trial.isFinished) ++tally[kNotFinished];
    Judgement judgement(trial);
    const std::string faults = judgement.faults();
    for (const auto& [what, number] : judgement.tally) tally[what] += number;
    if (faults.empty()) continue;
    ++failed;
    std::cout << query << "\n" << faults << "\n";
  }
  for (const auto& [what, number] : tally) std::cout << number << "\t" << what << "\n";
  std::cout << failed << " of " << count << " statements do something else than explained\n";
  return isTelling(tally, count) && failed == 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) {
    std::cerr << "usage: explained_statements COUNT SEED MODELS\n";
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
