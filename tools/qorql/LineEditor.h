// Lines from a person at the terminal, with editing, history and completion.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LINEEDITOR_H
#define QORQL_TOOL_LINEEDITOR_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// What may stand in the place of the word before the cursor.
struct Completions {
  std::size_t start = 0;  // where in the line that word begins
  std::vector<std::string> words;
  bool hasBlank = false;  // a blank is to follow, where one word is left and none stands there
};

// REQUIRES standard input and standard output to be a terminal. One thread.
class LineEditor {
 public:
  // The line and where the cursor stands in it.
  using Completer = std::function<Completions(std::string_view line, std::size_t cursor)>;
  enum class Outcome {
    Line,
    End,         // Ctrl-D at the start of a line, or the terminal is gone
    Interrupted  // Ctrl-C: what was typed is dropped
  };

  explicit LineEditor(Completer completer);
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;
  ~LineEditor();

  // Reads a line, without its line end. REQUIRES an Interrupt alive.
  Outcome read(const char* prompt, std::string& line);
  // The newest entry of the history.
  void remember(const std::string& text);

 private:
  struct Terminal;

  std::unique_ptr<Terminal> _terminal;
};

#endif
