// Runs statements through the command-line program, one process each. Output
// goes to files, so that neither side waits for the other.
// SPDX-License-Identifier: Apache-2.0
#include "ToolRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "LibraryRun.h"

namespace {

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

int spawnAndWait(const std::vector<std::string>& arguments, const std::string& out, const std::string& err) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), kFlags, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), kFlags, 0600);
  std::vector<char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);
  pid_t child = -1;
  const int error = posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw ScriptError(arguments[0] + " cannot be run");
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

ToolRun::ToolRun(const std::string& program, const Script& script, const std::vector<std::string>& folders,
                 const std::string& server) {
  std::string pattern = (std::filesystem::temp_directory_path() / "qorql-queries-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw ScriptError("no folder for temporary files");
  _folder = pattern;
  _arguments = {program, "--no-live"};
  if (server.empty()) {
    addModels(script, folders);
  } else {
    _arguments.insert(_arguments.end(), {"--server", server});
  }
  for (const auto& [key, value] : script.settings) {
    _arguments.insert(_arguments.end(), {"--set", "ZEMO." + key + "=" + value});
  }
}

void ToolRun::addModels(const Script& script, const std::vector<std::string>& folders) {
  // A file of pragmas, since -n would move the models with the queries.
  std::ofstream pragmas(_folder + "/models.mof");
  pragmas << "#pragma namespace (\"" << script.nameSpace << "\")\n";
  for (const std::string& model : script.models) {
    pragmas << "#pragma include (\"" << std::filesystem::absolute(findModel(model, folders)).string() << "\")\n";
  }
  for (const std::string& text : script.mofTexts) pragmas << text << "\n";
  _arguments.insert(_arguments.end(), {"-m", _folder + "/models.mof"});
}

ToolRun::~ToolRun() {
  std::error_code ignored;
  std::filesystem::remove_all(_folder, ignored);
}

std::vector<std::string> ToolRun::argumentsOf(const Case& one) const {
  std::vector<std::string> arguments = _arguments;
  const char* const form = one.expected == Case::Expected::Csv ? "csv" : "xml";
  arguments.insert(arguments.end(), {"-n", one.nameSpace, "-o", form, one.query});
  return arguments;
}

ToolOutcome ToolRun::run(const Case& one) const {
  const std::string out = _folder + "/out";
  const std::string err = _folder + "/err";
  ToolOutcome outcome;
  outcome.status = spawnAndWait(argumentsOf(one), out, err);
  outcome.out = contentOf(out);
  outcome.err = contentOf(err);
  return outcome;
}
