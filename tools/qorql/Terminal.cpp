// What the program knows of the terminal that it writes to.
// SPDX-License-Identifier: Apache-2.0
#include "Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <string>

namespace {

constexpr std::size_t kNarrowest = 20;

// The first of the variables that is set decides.
bool namesUtf8() {
  std::string locale;
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* const value = std::getenv(name);
    if (value != nullptr && *value != '\0') {
      locale = value;
      break;
    }
  }
  if (locale.empty()) return true;
  for (char& c : locale) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
}

std::size_t widthOf(int descriptor) {
  winsize size{};
  if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) return size.ws_col;
  const char* const columns = std::getenv("COLUMNS");
  const long given = columns == nullptr ? 0 : std::strtol(columns, nullptr, 10);
  return given > 0 && given < 10000 ? static_cast<std::size_t>(given) : TerminalShape().width;
}

TerminalShape shapeOf(int descriptor) {
  TerminalShape shape;
  shape.isTerminal = isatty(descriptor) != 0;
  if (!shape.isTerminal) return shape;
  shape.isUtf8 = namesUtf8();
  shape.width = std::max(widthOf(descriptor), kNarrowest);
  return shape;
}

}  // namespace

TerminalShape standardOutputShape() { return shapeOf(STDOUT_FILENO); }
TerminalShape standardErrorShape() { return shapeOf(STDERR_FILENO); }
bool isInteractive() { return isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0; }
