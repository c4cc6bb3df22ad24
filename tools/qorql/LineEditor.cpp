// Lines from a person at the terminal: libedit does the editing, this file reads
// its characters, so that Ctrl-C gets through, and completes its words.
// SPDX-License-Identifier: Apache-2.0
#include "LineEditor.h"

#include <histedit.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include "DisplayText.h"
#include "Interrupt.h"
#include "Terminal.h"

namespace {

constexpr int kHistorySize = 1000;
constexpr std::size_t kMaximumShown = 120;

// Standard output of its own: the program's has no buffer.
struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// While it lives, SIGINT is delivered only while the editor waits for a character: one
// that came after its look at the request and before its wait would be lost.
class HeldInterrupt {
 public:
  HeldInterrupt() : _before{} {
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGINT);
    pthread_sigmask(SIG_BLOCK, &held, &_before);
  }
  HeldInterrupt(const HeldInterrupt&) = delete;
  HeldInterrupt& operator=(const HeldInterrupt&) = delete;
  ~HeldInterrupt() { pthread_sigmask(SIG_SETMASK, &_before, nullptr); }

 private:
  sigset_t _before;
};

// Returns false when Ctrl-C came.
bool waitForByte() {
  sigset_t open;
  pthread_sigmask(SIG_SETMASK, nullptr, &open);
  sigdelset(&open, SIGINT);
  pollfd input{STDIN_FILENO, POLLIN, 0};
  while (!Interrupt::isRequested()) {
    if (ppoll(&input, 1, nullptr, &open) >= 0 || errno != EINTR) return true;
  }
  return false;
}

// A character of the terminal's character set; -1 when Ctrl-C came instead.
int readCharacter(EditLine* /*editor*/, wchar_t* character) {
  std::mbstate_t state{};
  for (;;) {
    if (!waitForByte()) return -1;
    char byte = 0;
    const ssize_t count = read(STDIN_FILENO, &byte, 1);
    if (count == 0) return 0;
    if (count < 0) {
      if (errno == EINTR || errno == EAGAIN) continue;
      return -1;
    }
    const std::size_t length = std::mbrtowc(character, &byte, 1, &state);
    if (length == static_cast<std::size_t>(-2)) continue;  // more bytes belong to it
    if (length == static_cast<std::size_t>(-1)) *character = static_cast<unsigned char>(byte);
    return 1;
  }
}

std::string commonBeginning(const std::vector<std::string>& words) {
  std::string common = words.front();
  for (const std::string& word : words) {
    const auto end = std::mismatch(common.begin(), common.end(), word.begin(), word.end()).first;
    common.erase(end, common.end());
  }
  return common;
}

// The editor counts characters, the line is bytes.
std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

// The words in columns, as many as fit.
std::string listing(const std::vector<std::string>& words) {
  std::size_t widest = 0;
  for (const std::string& word : words) widest = std::max(widest, displayWidth(word));
  const std::size_t columns = std::max<std::size_t>(1, standardOutputShape().width / (widest + 2));
  const std::size_t shown = std::min(words.size(), kMaximumShown);
  std::string text = "\n";
  for (std::size_t i = 0; i < shown; ++i) {
    text += words[i];
    const bool endsLine = (i + 1) % columns == 0 || i + 1 == shown;
    text += endsLine ? std::string("\n") : std::string(widest + 2 - displayWidth(words[i]), ' ');
  }
  if (shown < words.size()) text += "... and " + std::to_string(words.size() - shown) + " more\n";
  return text;
}

}  // namespace

struct LineEditor::Terminal {
  Completer completer;
  std::unique_ptr<std::FILE, FileCloser> out;
  EditLine* editor = nullptr;
  History* history = nullptr;
  const char* prompt = "";

  static Terminal& of(EditLine* editor) {
    void* data = nullptr;
    el_get(editor, EL_CLIENTDATA, &data);
    return *static_cast<Terminal*>(data);
  }
  static char* promptOf(EditLine* editor) { return const_cast<char*>(of(editor).prompt); }
  static unsigned char completeWord(EditLine* editor, int /*character*/) { return of(editor).complete(); }
  unsigned char complete() const;
};

// A single word is inserted as a whole, of several what they have in common; when that adds
// nothing they are listed.
unsigned char LineEditor::Terminal::complete() const {
  const LineInfo* const info = el_line(editor);
  const std::string_view line(info->buffer, static_cast<std::size_t>(info->lastchar - info->buffer));
  const auto cursor = static_cast<std::size_t>(info->cursor - info->buffer);
  const Completions found = completer(line, cursor);
  if (found.words.empty() || found.start > cursor) return CC_ERROR;
  const std::string_view typed = line.substr(found.start, cursor - found.start);
  std::string text = commonBeginning(found.words);
  if (found.words.size() == 1) {
    const bool isBlankThere = cursor < line.size() && line[cursor] == ' ';
    if (found.hasBlank && !isBlankThere) text += ' ';
  } else if (text.size() <= typed.size()) {
    std::fputs(listing(found.words).c_str(), out.get());
    return CC_REDISPLAY;
  }
  el_deletestr(editor, static_cast<int>(characterCount(typed)));
  el_insertstr(editor, text.c_str());
  return CC_REFRESH;
}

LineEditor::LineEditor(Completer completer) : _terminal(std::make_unique<Terminal>()) {
  std::setlocale(LC_CTYPE, "");
  if (MB_CUR_MAX == 1 && standardOutputShape().isUtf8) std::setlocale(LC_CTYPE, "C.UTF-8");
  Terminal& terminal = *_terminal;
  terminal.completer = std::move(completer);
  terminal.out.reset(fdopen(dup(STDOUT_FILENO), "w"));
  terminal.editor = el_init("qorql", stdin, terminal.out.get(), stderr);
  terminal.history = history_init();
  HistEvent event;
  history(terminal.history, &event, H_SETSIZE, kHistorySize);
  history(terminal.history, &event, H_SETUNIQUE, 1);
  EditLine* const editor = terminal.editor;
  el_set(editor, EL_CLIENTDATA, &terminal);
  el_set(editor, EL_PROMPT, &Terminal::promptOf);
  el_set(editor, EL_EDITOR, "emacs");
  el_set(editor, EL_SIGNAL, 1);
  el_set(editor, EL_GETCFN, &readCharacter);
  el_set(editor, EL_HIST, history, terminal.history);
  // The wide form keeps these texts; the other one keeps copies that it never frees.
  el_wset(editor, EL_ADDFN, L"qorql-complete", L"Complete a word", &Terminal::completeWord);
  el_set(editor, EL_BIND, "^I", "qorql-complete", nullptr);
  el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
  el_source(editor, nullptr);
}

LineEditor::~LineEditor() {
  el_end(_terminal->editor);
  history_end(_terminal->history);
}

LineEditor::Outcome LineEditor::read(const char* prompt, std::string& line) {
  _terminal->prompt = prompt;
  Interrupt::clear();
  const HeldInterrupt held;
  int length = 0;
  const char* const text = el_gets(_terminal->editor, &length);
  if (Interrupt::isRequested()) {
    Interrupt::clear();
    std::fputs("^C\n", _terminal->out.get());
    std::fflush(_terminal->out.get());
    return Outcome::Interrupted;
  }
  if (text == nullptr || length <= 0) {
    std::fputs("\n", _terminal->out.get());
    std::fflush(_terminal->out.get());
    return Outcome::End;
  }
  line.assign(text, static_cast<std::size_t>(length));
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  return Outcome::Line;
}

void LineEditor::remember(const std::string& text) {
  HistEvent event;
  history(_terminal->history, &event, H_ENTER, text.c_str());
}
