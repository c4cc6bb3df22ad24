// Where things stand in the text of a statement.
// SPDX-License-Identifier: Apache-2.0
#include "QueryText.h"

#include <algorithm>

#include "DisplayText.h"

namespace {

constexpr std::size_t kIndent = 2;
constexpr std::string_view kCut = "...";

// Whether cutting before this byte leaves characters whole.
bool beginsCharacter(std::string_view text, std::size_t at) { return at >= text.size() || (text[at] & 0xC0) != 0x80; }

}  // namespace

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
