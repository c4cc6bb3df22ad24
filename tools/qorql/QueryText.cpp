// Where things stand in the text of a statement.
#include "QueryText.h"

#include <algorithm>
#include <cctype>

#include "DisplayText.h"

namespace {

constexpr std::size_t kIndent = 2;
constexpr std::string_view kCut = "...";

bool isNameCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

bool isEqualFolded(char a, char b) {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

std::optional<std::size_t> findWord(std::string_view text, std::string_view word) {
  for (auto from = text.begin(); from != text.end(); ++from) {
    from = std::search(from, text.end(), word.begin(), word.end(), isEqualFolded);
    if (from == text.end()) break;
    const auto start = static_cast<std::size_t>(from - text.begin());
    const std::size_t end = start + word.size();
    const bool beginsWord = start == 0 || !isNameCharacter(text[start - 1]);
    if (beginsWord && (end == text.size() || !isNameCharacter(text[end]))) return start;
  }
  return std::nullopt;
}

// Whether cutting before this byte leaves characters whole.
bool beginsCharacter(std::string_view text, std::size_t at) { return at >= text.size() || (text[at] & 0xC0) != 0x80; }

}  // namespace

std::optional<std::size_t> findQuotedName(std::string_view text, std::string_view message) {
  const std::size_t open = message.find('\'');
  const std::size_t close = open == std::string_view::npos ? open : message.find('\'', open + 1);
  if (close == std::string_view::npos || close == open + 1) return std::nullopt;
  const std::string_view name = message.substr(open + 1, close - open - 1);
  return std::all_of(name.begin(), name.end(), isNameCharacter) ? findWord(text, name) : std::nullopt;
}

std::string lineWithCaret(std::string_view text, std::size_t offset, std::size_t width) {
  offset = std::min(offset, text.size());
  const std::size_t before = offset == 0 ? std::string_view::npos : text.rfind('\n', offset - 1);
  const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
  std::string blanked(text.substr(begin, std::min(text.find('\n', offset), text.size()) - begin));
  std::replace(blanked.begin(), blanked.end(), '\t', ' ');
  std::string_view line = blanked;
  std::size_t column = offset - begin;
  std::string head;
  std::string tail;
  const std::size_t room = std::max<std::size_t>(width, 20) - kIndent - 1;
  if (displayWidth(printableText(line)) > room) {
    std::size_t first = column > room / 2 ? column - room / 2 : 0;
    while (!beginsCharacter(line, first)) ++first;
    std::size_t end = std::min(first + room - 2 * kCut.size(), line.size());
    while (!beginsCharacter(line, end)) ++end;
    if (first != 0) head = kCut;
    if (end != line.size()) tail = kCut;
    line = line.substr(first, end - first);
    column -= first;
  }
  const std::size_t caret = head.size() + displayWidth(printableText(line.substr(0, column)));
  const std::string indent(kIndent, ' ');
  return indent + head + printableText(line) + tail + "\n" + indent + std::string(caret, ' ') + "^\n";
}
