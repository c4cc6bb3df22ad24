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

// What the terminal says, else the variable, else what is usual.
std::size_t extentOf(std::size_t told, const char* variable, std::size_t usual) {
  if (told != 0) return told;
  const char* const text = std::getenv(variable);
  const long given = text == nullptr ? 0 : std::strtol(text, nullptr, 10);
  return given > 0 && given < 10000 ? static_cast<std::size_t>(given) : usual;
}

void measure(int descriptor, TerminalShape& shape) {
  winsize size{};
  if (ioctl(descriptor, TIOCGWINSZ, &size) != 0) size = {};
  shape.width = std::max(extentOf(size.ws_col, "COLUMNS", shape.width), kNarrowest);
  shape.height = extentOf(size.ws_row, "LINES", shape.height);
}

TerminalShape shapeOf(int descriptor) {
  TerminalShape shape;
  shape.isTerminal = isatty(descriptor) != 0;
  if (!shape.isTerminal) return shape;
  shape.isUtf8 = namesUtf8();
  measure(descriptor, shape);
  return shape;
}

}  // namespace

TerminalShape standardOutputShape() { return shapeOf(STDOUT_FILENO); }
TerminalShape standardErrorShape() { return shapeOf(STDERR_FILENO); }
bool isInteractive() { return isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0; }
