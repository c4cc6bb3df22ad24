// QORQL_PAGER names the pager, else PAGER, else it is less where that is installed; an empty name and cat mean none.
// SPDX-License-Identifier: Apache-2.0
#include "Pager.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string_view>
#include <vector>

#include "DisplayText.h"
#include "OptionDeclarations.h"

namespace {

constexpr const char* kDefaultPager = "less -FRX";
// Without LESS in the environment less ends where one screen is enough, and leaves the text on the screen.
constexpr const char* kLessOptions = "LESS=FRX";
constexpr const char* kLessCharacters = "LESSCHARSET=utf-8";
constexpr std::size_t kChunk = std::size_t{1} << 16U;
constexpr int kShellFoundNone = 127;

std::atomic<bool> isPagerRunning{false};

bool isInPath(const std::string& program) {
  const char* const path = std::getenv("PATH");
  std::istringstream folders(path == nullptr ? "" : path);
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (access((folder + '/' + program).c_str(), X_OK) == 0) return true;
  }
  return false;
}

// Whether a command's program is there, as far as its first word tells; the shell makes sense of signs.
bool isInstalled(const std::string& command) {
  const std::string program = command.substr(0, command.find_first_of(" \t"));
  if (program.find_first_of("/$'\"`\\=~;|&<>(){}") != std::string::npos) return true;
  return isInPath(program);
}

bool canMoveCursor() {
  const char* const terminal = std::getenv("TERM");
  return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

std::string pagerCommand() {
  for (const char* name : {"QORQL_PAGER", "PAGER"}) {
    const char* const given = std::getenv(name);
    if (given == nullptr) continue;
    const std::string command(given);
    return command.empty() || command == "cat" || !isInstalled(command) ? "" : command;
  }
  return canMoveCursor() && isInPath("less") ? kDefaultPager : "";
}

// The environment, with what less needs where that does not say it.
std::vector<char*> environmentFor(const TerminalShape& terminal) {
  std::vector<char*> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) variables.push_back(*variable);
  if (std::getenv("LESS") == nullptr) variables.push_back(const_cast<char*>(kLessOptions));
  const bool tellsCharacters = terminal.isUtf8 && std::getenv("LESSCHARSET") == nullptr;
  if (tellsCharacters) variables.push_back(const_cast<char*>(kLessCharacters));
  variables.push_back(nullptr);
  return variables;
}

// Starts a command of the shell that reads from that end of a pipe, with the signals as a program expects them.
// Returns false when it cannot.
bool spawn(const std::string& command, int input, const TerminalShape& terminal, pid_t& process) {
  sigset_t defaults;
  sigemptyset(&defaults);
  for (const int signal : {SIGINT, SIGPIPE, SIGXFSZ}) sigaddset(&defaults, signal);
  sigset_t blocked;
  sigemptyset(&blocked);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setsigmask(&attributes, &blocked);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  std::string text = command;
  char* const arguments[] = {const_cast<char*>("sh"), const_cast<char*>("-c"), text.data(), nullptr};
  const std::vector<char*> environment = environmentFor(terminal);
  const int error = posix_spawn(&process, "/bin/sh", &actions, &attributes, arguments, environment.data());
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  return error == 0;
}

}  // namespace

Pager::Pager(bool isWanted)
    : _command(isWanted && standardOutputShape().isTerminal ? pagerCommand() : ""),
      _terminal(standardOutputShape()),
      _interruptBefore{} {
  if (_command.empty()) return;
  std::cout.flush();
  if (std::cout) _previous = std::cout.rdbuf(this);
}

Pager::~Pager() {
  if (_previous == nullptr) return;
  pass();
  if (_process != 0) {
    await();
  } else {
    _previous->sputn(_held.data(), static_cast<std::streamsize>(_held.size()));
  }
  std::cout.rdbuf(_previous);  // which makes the stream good again
}

bool Pager::isRunning() noexcept { return isPagerRunning; }

Pager::int_type Pager::overflow(int_type byte) {
  if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
  const char text = traits_type::to_char_type(byte);
  return hold({&text, 1}) ? byte : traits_type::eof();
}

std::streamsize Pager::xsputn(const char* text, std::streamsize size) {
  return hold({text, static_cast<std::size_t>(size)}) ? size : 0;
}

bool Pager::hold(std::string_view text) {
  _held += text;
  return _held.size() < kChunk || pass();
}

int Pager::sync() { return _process == 0 || pass() ? 0 : -1; }

bool Pager::isLongerThanScreen() const {
  std::size_t lines = 1;  // the cursor's, under the last one
  std::istringstream text(_held);
  for (std::string line; lines <= _terminal.height && std::getline(text, line);) {
    const std::size_t width = displayWidth(line);
    lines += width == 0 ? 1 : (width + _terminal.width - 1) / _terminal.width;
  }
  return lines > _terminal.height;
}

bool Pager::pass() {
  if (_process == 0 && isLongerThanScreen()) start();
  return _process == 0 || writeToPager();
}

void Pager::start() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return;
  struct sigaction ignored {};
  ignored.sa_handler = SIG_IGN;
  sigaction(SIGINT, &ignored, &_interruptBefore);
  const bool isStarted = spawn(_command, ends[0], _terminal, _process);
  close(ends[0]);
  if (isStarted) {
    _pipe = ends[1];
    isPagerRunning = true;
  } else {
    _process = 0;
    close(ends[1]);
    sigaction(SIGINT, &_interruptBefore, nullptr);
  }
}

bool Pager::writeToPager() {
  std::string_view rest = _held;
  while (!rest.empty() && !_hasEnded) {
    const ssize_t count = write(_pipe, rest.data(), rest.size());
    if (count >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      _hasEnded = true;
    }
  }
  _held.clear();
  return !_hasEnded;
}

void Pager::await() {
  close(_pipe);
  int status = 0;
  while (waitpid(_process, &status, 0) < 0 && errno == EINTR) continue;
  isPagerRunning = false;
  sigaction(SIGINT, &_interruptBefore, nullptr);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kShellFoundNone) {
    std::cerr << "qorql: warning: the pager '" << printableText(_command) << "' is not there\n";
  }
}

void declareNoPager(CLI::App& app, bool& hasNoPager) {
  declareFlag(app, "--no-pager", hasNoPager, "Print what is longer than the screen, too, as it is");
}
