// Cuts a text into statements.
#include "Statements.h"

#include <algorithm>

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// Where the statement that begins at `from` ends: at its semicolon or at the end of the text.
std::size_t findEnd(std::string_view text, std::size_t from) {
  std::size_t at = from;
  while (at < text.size() && text[at] != ';') {
    if (text[at] == '\'') {
      const std::size_t close = text.find_first_of("'\n", at + 1);
      if (close == std::string_view::npos) return std::min(text.find(';', at), text.size());
      at = close;
    }
    ++at;
  }
  return std::min(at, text.size());
}

QORuint32 countLines(std::string_view text) {
  return static_cast<QORuint32>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

std::vector<Statement> splitStatements(std::string_view text) {
  std::vector<Statement> statements;
  QORuint32 line = 1;
  std::size_t counted = 0;  // up to here lines are counted
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = findEnd(text, from);
    const std::string_view piece = text.substr(from, end - from);
    const std::size_t first = piece.find_first_not_of(kBlanks);
    if (first != std::string_view::npos) {
      line += countLines(text.substr(counted, from + first - counted));
      counted = from + first;
      const std::size_t last = piece.find_last_not_of(kBlanks);
      statements.push_back({std::string(piece.substr(first, last - first + 1)), line});
    }
    from = end + 1;
  }
  return statements;
}

std::string normaliseText(std::string text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  std::size_t kept = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool endsLine = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
    if (!endsLine) text[kept++] = text[i];
  }
  text.resize(kept);
  return text;
}
