// The terminal is asked itself: standard input may be a file of statements. Ctrl-C comes as the end of a line, since
// the thread that waits takes no signals; it becomes one when the terminal is as it was.
// SPDX-License-Identifier: Apache-2.0
#include "PasswordPrompt.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>

namespace {

constexpr std::size_t kLongestPassword = 1024;
constexpr char kCtrlC = 3;
constexpr int kBetweenLooks = 50;  // milliseconds until the next look whether to stop

struct Answer {
  std::optional<std::string> line;
  bool isInterrupted = false;
};

class Terminal {
 public:
  Terminal() : _file(open("/dev/tty", O_RDWR | O_CLOEXEC)) {
    _isReady = _file >= 0 && tcgetattr(_file, &_before) == 0;
    if (!_isReady) return;
    termios silent = _before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
    silent.c_cc[VEOL] = kCtrlC;
    _isReady = tcsetattr(_file, TCSAFLUSH, &silent) == 0;
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() {
    if (_isReady) tcsetattr(_file, TCSAFLUSH, &_before);
    if (_file >= 0) close(_file);
  }

  bool isReady() const noexcept { return _isReady; }

  void print(const std::string& text) const {
    if (write(_file, text.data(), text.size()) < 0) return;
  }

  // A line without its end; nothing when the input ends before it, or when it is to stop.
  Answer readLine(const std::atomic<bool>& isStopped) const {
    std::string line;
    for (char c = 0; line.size() < kLongestPassword && waitForInput(isStopped) && read(_file, &c, 1) == 1;) {
      if (c == kCtrlC) return {std::nullopt, true};
      if (c == '\n') return {line, false};
      line += c;
    }
    return {};
  }

 private:
  // False when it is to stop.
  bool waitForInput(const std::atomic<bool>& isStopped) const {
    pollfd input{_file, POLLIN, 0};
    while (!isStopped) {
      const int ready = poll(&input, 1, kBetweenLooks);
      if (ready > 0 || (ready < 0 && errno != EINTR)) return true;
    }
    return false;
  }

  const int _file;
  termios _before{};
  bool _isReady = false;
};

// The terminal is as it was when this returns.
Answer ask(const std::string& question, const std::atomic<bool>& isStopped) {
  const Terminal terminal;
  if (!terminal.isReady()) return {};
  terminal.print(question);
  Answer answer = terminal.readLine(isStopped);
  terminal.print("\n");
  return answer;
}

}  // namespace

std::optional<std::string> askForPassword(const std::string& question, const std::atomic<bool>& isStopped) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  if (isStopped || isatty(STDERR_FILENO) == 0) return std::nullopt;
  const Answer answer = ask(question, isStopped);
  if (answer.isInterrupted) kill(getpid(), SIGINT);
  return answer.line;
}
