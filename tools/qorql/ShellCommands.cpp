// The dot commands of the shell.
// SPDX-License-Identifier: Apache-2.0
#include "ShellCommands.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <optional>

#include "Cimom/QORQL/Face/QORQL_Suggestion.h"
#include "ClassesCommand.h"
#include "DescribeCommand.h"
#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExplainCommand.h"
#include "Interrupt.h"
#include "ModelContents.h"
#include "Pager.h"
#include "ParsedQuery.h"
#include "QueryHint.h"
#include "StatementCompletion.h"
#include "SurpriseReport.h"

namespace {

using Argument = const std::string&;

void complain(const std::string& message) { std::cerr << "qorql: error: " << message << '\n'; }

struct ShellCommand {
  const char* name;
  const char* argument;  // as the help shows it
  const char* description;
  void (*run)(Argument argument, ShellState& state);
};

void printHelp(Argument argument, ShellState& state);

void listClasses(Argument pattern, ShellState& state) {
  const std::vector<QORString> names = matchingClasses(state.session.manager(), state.options.nameSpace, pattern);
  const Pager pager(!state.options.hasNoPager);
  for (const QORString& name : names) std::cout << name << '\n';
  if (names.empty()) complain("no class matches \"" + pattern + "\" in namespace " + state.options.nameSpace);
}

void printContents(Argument pattern, ShellState& state) {
  const ModelContents contents = contentsOf(state.session.manager(), QORString(state.options.nameSpace));
  bool isAny = false;
  std::optional<Pager> pager(std::in_place, !state.options.hasNoPager);
  for (const ModelContents::ClassCount& known : contents.classes) {
    if (!isClassMatch(known.name, pattern)) continue;
    isAny = true;
    std::cout << known.name << ' ' << known.count << '\n';
  }
  pager.reset();  // before anything is told
  reportGaps(contents.gaps, state.options.isQuiet);
  state.session.printWarnings();
  if (isAny) return;
  complain(pattern.empty()
               ? "no class has instances in namespace " + state.options.nameSpace
               : "no class with instances matches \"" + pattern + "\" in namespace " + state.options.nameSpace);
}

// Whether there is the class; complains where not.
bool isClass(Argument name, const char* command, const ShellState& state) {
  const EmbeddedObjectManager& manager = state.session.manager();
  const bool isThere =
      !name.empty() && !manager.repository()->getClass(QORString(state.options.nameSpace), QORString(name)).IsNull();
  if (!isThere) {
    complain(name.empty() ? command + std::string(" needs the name of a class")
                          : missingClassText(manager, state.options.nameSpace, name));
  }
  return isThere;
}

void describe(Argument name, ShellState& state) {
  if (!isClass(name, ".describe", state)) return;
  const Pager pager(!state.options.hasNoPager);
  printDescription(std::cout, state.session.manager(), QORString(state.options.nameSpace), QORString(name));
}

void printSchema(Argument pattern, ShellState& state) {
  const Pager pager(!state.options.hasNoPager);
  const EmbeddedObjectManager& manager = state.session.manager();
  // A whole name is meant, unless no class has it.
  const QORString nameSpace(state.options.nameSpace);
  if (!manager.repository()->getClass(nameSpace, QORString(pattern)).IsNull()) {
    std::cout << manager.classMof(nameSpace, QORString(pattern), false);
    return;
  }
  const std::vector<QORString> names = matchingClasses(manager, state.options.nameSpace, pattern);
  for (const QORString& name : names) {
    if (Interrupt::isRequested()) return;
    if (&name != &names.front()) std::cout << '\n';
    std::cout << manager.classMof(nameSpace, name, false);
  }
  if (names.empty()) complain("no class matches \"" + pattern + "\" in namespace " + state.options.nameSpace);
}

void printClass(Argument name, ShellState& state) {
  if (!isClass(name, ".class", state)) return;
  const Pager pager(!state.options.hasNoPager);
  std::cout << state.session.manager().classMof(QORString(state.options.nameSpace), QORString(name), false);
}

void loadMof(Argument path, ShellState& state) {
  if (path.empty()) return complain(".mof needs a file or folder");
  state.session.loadMore(path, state.options.nameSpace);
}

void chooseNamespace(Argument name, ShellState& state) {
  if (name.empty()) {
    std::cout << state.options.nameSpace << '\n';
    return;
  }
  for (const QORString& known : state.session.manager().namespaces()) {
    if (!known.isEqualCaseInsensitive(QORString(name))) continue;
    state.options.nameSpace = known.view();
    return;
  }
  complain("there is no namespace " + name);
}

void chooseForm(Argument name, ShellState& state) {
  const auto& forms = outputForms();
  if (!name.empty() && forms.contains(name)) {
    state.output.form = forms.at(name);
    return;
  }
  std::string names;
  std::string current = "table";
  for (const auto& [known, form] : forms) {
    names += (names.empty() ? "" : ", ") + known;
    if (state.output.form == form) current = known;
  }
  if (name.empty()) {
    std::cout << current << " (of " << names << ")\n";
  } else {
    complain("'" + name + "' is not one of " + names);
  }
}

void explain(Argument query, ShellState& state) {
  for (const Statement& statement : splitStatements(query.empty() ? " " : query)) {
    ParsedQuery parsed(statement);
    try {
      parseWithWarnings(parsed, state.options.nameSpace, state.options.isQuiet);
      printExplanation(std::cout, state.session, parsed, state.options);
    } catch (...) {
      state.session.dropWarnings();
      std::cout.flush();
      const Statement typed{statement.text, 1};
      reportFailure(typed, state.options.isQuiet
                               ? QORQL_Hint()
                               : hintOfFailure(state.session.manager(), state.options.nameSpace, typed));
    }
  }
  if (query.empty()) complain(".explain needs a statement");
}

// Without an argument the setting is toggled.
void toggle(Argument argument, const char* what, bool& isOn) {
  if (!argument.empty() && argument != "on" && argument != "off") {
    complain("'" + argument + "' is not one of off, on");
    return;
  }
  isOn = argument.empty() ? !isOn : argument == "on";
  std::cout << what << (isOn ? " on\n" : " off\n");
}

void toggleStatistics(Argument argument, ShellState& state) {
  toggle(argument, "statistics", state.output.hasStatistics);
}
void toggleValues(Argument argument, ShellState& state) {
  toggle(argument, "texts of values", state.output.hasValueTexts);
}
void toggleTimer(Argument argument, ShellState& state) { toggle(argument, "timer", state.hasTimer); }

void quit(Argument /*argument*/, ShellState& /*state*/) {}

constexpr ShellCommand kCommands[] = {
    {".help", "", "Show this list", printHelp},
    {".classes", "[PATTERN]", "List the classes of the namespace", listClasses},
    {".class", "NAME", "Show a class as MOF text", printClass},
    {".describe", "CLASS", "List the properties of a class and what they mean", describe},
    {".tables", "[PATTERN]", "List the classes that have instances, with their numbers", printContents},
    {".schema", "[PATTERN]", "Show classes as MOF text", printSchema},
    {".mof", "PATH", "Load a MOF file, or every .mof file of a folder", loadMof},
    {".namespace", "[NAME]", "Show or change the namespace", chooseNamespace},
    {".output", "[FORM]", "Show or change the form of results", chooseForm},
    {".values", "[on|off]", "Codes with their texts, as 2 (OK)", toggleValues},
    {".explain", "QUERY", "Say what a query will do, without running it", explain},
    {".stats", "[on|off]", "Counts and times after each statement", toggleStatistics},
    {".timer", "[on|off]", "The time after each statement", toggleTimer},
    {".quit", "", "Leave; so does Ctrl-D", quit},
};

void printHelp(Argument /*argument*/, ShellState& /*state*/) {
  for (const ShellCommand& command : kCommands) {
    std::string line = std::string(command.name) + " " + command.argument;
    line.resize(22, ' ');
    std::cout << line << command.description << '\n';
  }
  std::cout << "\nAnything else is a statement, which ends with \";\" and may take several lines.\n"
               "Tab completes, Ctrl-R searches the history, Ctrl-C stops a running statement.\n";
}

std::string nameOf(std::string_view line) {
  std::string name(line.substr(0, line.find_first_of(" \t;")));
  if (!name.empty() && name.front() != '.') name.insert(0, 1, '.');
  return name == ".exit" ? ".quit" : name;
}

const ShellCommand* find(const std::string& name) {
  const auto* const found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                         [&name](const ShellCommand& command) { return name == command.name; });
  return found == std::end(kCommands) ? nullptr : found;
}

std::string argumentOf(const std::string& line) {
  const std::size_t end = line.find_first_of(" \t");
  const std::size_t start = end == std::string::npos ? end : line.find_first_not_of(" \t", end);
  if (start == std::string::npos) return {};
  std::string argument = line.substr(start);
  while (!argument.empty() && (argument.back() == ';' || argument.back() == ' ')) argument.pop_back();
  return argument;
}

void complainOfUnknown(const std::string& name) {
  QORQL_Suggestion suggestion(name);
  for (const ShellCommand& command : kCommands) suggestion.consider(command.name);
  const std::string& best = suggestion.best();
  complain("there is no command " + name + (best.empty() ? "" : ", did you mean " + best + "?") + "; .help lists them");
}

// Files and folders with which a path may continue.
std::vector<std::string> pathsFrom(const std::string& typed) {
  namespace fs = std::filesystem;
  const std::size_t slash = typed.rfind('/');
  const std::string folder = slash == std::string::npos ? "" : typed.substr(0, slash + 1);
  std::vector<std::string> paths;
  std::error_code error;
  for (fs::directory_iterator entry(folder.empty() ? "." : folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string path = folder + entry->path().filename().string();
    std::error_code ignored;
    const bool isFolder = entry->is_directory(ignored);
    if (!path.starts_with(typed) || (!isFolder && entry->path().extension() != ".mof")) continue;
    paths.push_back(isFolder ? path + "/" : path);
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::vector<std::string> argumentsOf(const std::string& name, const ShellState& state) {
  std::vector<std::string> words;
  const bool isOfClass =
      name == ".class" || name == ".classes" || name == ".describe" || name == ".schema" || name == ".tables";
  if (isOfClass) return classNames(state.session.manager(), state.options.nameSpace);
  if (name == ".stats" || name == ".timer" || name == ".values") return {"off", "on"};
  if (name == ".output") {
    for (const auto& form : outputForms()) words.push_back(form.first);
  }
  if (name == ".namespace") {
    for (const QORString& known : state.session.manager().namespaces()) words.emplace_back(known.view());
  }
  return words;
}

}  // namespace

bool isShellCommand(std::string_view line) {
  if (line.starts_with('.')) return true;
  if (line.ends_with(';')) line.remove_suffix(1);
  return line == "help" || line == "quit" || line == "exit";
}

bool runShellCommand(const std::string& line, ShellState& state) {
  const std::string name = nameOf(line);
  if (name == ".quit") return false;
  const ShellCommand* const command = find(name);
  if (command == nullptr) {
    complainOfUnknown(name);
    return true;
  }
  try {
    command->run(argumentOf(line), state);
  } catch (...) {
    reportStartFailure();
  }
  return true;
}

std::vector<std::string> shellCommandNames() {
  std::vector<std::string> names;
  for (const ShellCommand& command : kCommands) names.emplace_back(command.name);
  return names;
}

Completions completeShellCommand(std::string_view line, std::size_t cursor, const ShellState& state) {
  Completions found;
  const std::string_view typed = line.substr(0, cursor);
  const std::size_t blank = typed.find_first_of(" \t");
  if (blank == std::string_view::npos) {
    found.words = startingWith(shellCommandNames(), typed);
    found.hasBlank = found.words.size() == 1 && *find(found.words.front())->argument != '\0';
    return found;
  }
  const std::string name = nameOf(line);
  if (name == ".explain")
    return completeStatement(line.substr(0, cursor), cursor, state.session.manager(), state.options.nameSpace);
  found.start = typed.find_first_not_of(" \t", blank);
  if (found.start == std::string_view::npos) found.start = cursor;
  const std::string word(typed.substr(found.start));
  found.words = name == ".mof" ? pathsFrom(word) : startingWith(argumentsOf(name, state), word);
  return found;
}
