// The terminal is asked itself: standard input may be a file of statements.
// SPDX-License-Identifier: Apache-2.0
#include "PasswordPrompt.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <mutex>

namespace {

constexpr std::size_t kLongest = 1024;

class Terminal {
 public:
  Terminal() : _file(open("/dev/tty", O_RDWR | O_CLOEXEC)) {
    _isReady = _file >= 0 && tcgetattr(_file, &_before) == 0;
    if (!_isReady) return;
    termios silent = _before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
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

  // A line without its end; nothing when the input ends before it.
  std::optional<std::string> readLine() const {
    std::string line;
    for (char c = 0; line.size() < kLongest && read(_file, &c, 1) == 1;) {
      if (c == '\n') return line;
      line += c;
    }
    return std::nullopt;
  }

 private:
  const int _file;
  termios _before{};
  bool _isReady = false;
};

}  // namespace

std::optional<std::string> askForPassword(const std::string& question) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  if (isatty(STDERR_FILENO) == 0) return std::nullopt;
  const Terminal terminal;
  if (!terminal.isReady()) return std::nullopt;
  terminal.print(question);
  const std::optional<std::string> line = terminal.readLine();
  terminal.print("\n");
  return line;
}
