// Runs a query script: query_scripts lazy|plain|tool SCRIPT FOLDER... [--program TOOL [--server URL]]
//
// lazy: through the library as everybody uses it. plain: through the library's
// row-by-row algorithms, whose outcome must also be the lazy one to the last
// log line, with and without a stream. tool: through the program, which asks a
// server of the script's models when one is named.
// SPDX-License-Identifier: Apache-2.0
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "Judge.h"
#include "LibraryRun.h"
#include "Script.h"
#include "ToolRun.h"

namespace {

struct Options {
  std::string mode;
  std::string script;
  std::string program;
  std::string server;
  std::vector<std::string> folders;
};

bool readOptions(int count, char** arguments, Options& options) {
  for (int i = 1; i < count; ++i) {
    const std::string argument = arguments[i];
    if (argument == "--program" && i + 1 < count) {
      options.program = arguments[++i];
    } else if (argument == "--server" && i + 1 < count) {
      options.server = arguments[++i];
    } else if (options.mode.empty()) {
      options.mode = argument;
    } else if (options.script.empty()) {
      options.script = argument;
    } else {
      options.folders.push_back(argument);
    }
  }
  const bool isKnown = options.mode == "lazy" || options.mode == "plain" || options.mode == "tool";
  return isKnown && !options.script.empty() && (options.mode != "tool" || !options.program.empty());
}

class ScriptRun {
 public:
  explicit ScriptRun(const Options& options) : _options(options), _script(readScript(options.script)) {
    if (options.mode == "tool") {
      _tool = std::make_unique<ToolRun>(options.program, _script, options.folders, options.server);
    } else {
      _library = std::make_unique<LibraryRun>(_script, options.folders);
    }
  }

  // Whether every case passed.
  bool run() {
    std::size_t passed = 0;
    for (const Case& one : _script.cases) passed += runCase(one) ? 1 : 0;
    std::cout << passed << " of " << _script.cases.size() << " cases passed (" << _options.mode << ", "
              << _options.script << ")\n";
    return passed == _script.cases.size();
  }

 private:
  bool runCase(const Case& one) {
    const std::string faults = faultsOf(one);
    if (faults.empty()) return true;
    std::cout << _options.script << ":" << one.line << ": " << one.name << "\n  " << one.query << "\n"
              << faults << "\n";
    return false;
  }

  std::string faultsOf(const Case& one) {
    if (_tool != nullptr) return judgeTool(one, _tool->run(one));
    const bool isStreamed = one.expected != Case::Expected::Csv;
    if (_options.mode == "lazy") {
      return judgeLibrary(one, _library->run(one, QORQL_DataTable::kExecutionLazy, isStreamed));
    }
    const Outcome plain = _library->run(one, QORQL_DataTable::kExecutionPlain, isStreamed);
    return judgeLibrary(one, plain) + compareModes(one, plain, isStreamed);
  }

  std::string compareModes(const Case& one, const Outcome& plain, bool isStreamed) {
    const Outcome lazy = _library->run(one, QORQL_DataTable::kExecutionLazy, isStreamed);
    const Outcome otherPlain = _library->run(one, QORQL_DataTable::kExecutionPlain, !isStreamed);
    const Outcome otherLazy = _library->run(one, QORQL_DataTable::kExecutionLazy, !isStreamed);
    return judgeModes(plain, lazy) + judgeModes(otherPlain, otherLazy);
  }

  const Options& _options;
  Script _script;
  std::unique_ptr<LibraryRun> _library;
  std::unique_ptr<ToolRun> _tool;
};

}  // namespace

int main(int count, char** arguments) {
  Options options;
  if (!readOptions(count, arguments, options)) {
    std::cerr << "usage: query_scripts lazy|plain|tool SCRIPT FOLDER... [--program TOOL [--server URL]]\n";
    return 2;
  }
  try {
    return ScriptRun(options).run() ? 0 : 1;
  } catch (const QoriBaseException& error) {
    std::cerr << error.getMessage() << "\n";
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
  }
  return 2;
}
