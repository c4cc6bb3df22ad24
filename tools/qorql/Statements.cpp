// Cuts a text into statements.
// SPDX-License-Identifier: Apache-2.0
#include "Statements.h"

#include <algorithm>

namespace {

constexpr std::string_view kBlankSigns = " \t\r\n";

struct Extent {
  std::size_t end;   // at the semicolon or at the end of the text
  std::size_t kept;  // blanks before this stay: the line end of a quote without end belongs to it
};

Extent findExtent(std::string_view text, std::size_t from) {
  Extent extent{from, from};
  while (extent.end < text.size() && text[extent.end] != ';') {
    if (text[extent.end] == '\'') {
      const std::size_t close = text.find_first_of("'\n", extent.end + 1);
      if (close == std::string_view::npos) return {std::min(text.find(';', extent.end), text.size()), extent.kept};
      if (text[close] == '\n') extent.kept = close + 1;
      extent.end = close;
    }
    ++extent.end;
  }
  return extent;
}

// A place that moves forward through the text.
struct Place {
  QORuint32 line = 1;
  QORuint32 column = 1;

  void pass(std::string_view text) {
    line += static_cast<QORuint32>(std::count(text.begin(), text.end(), '\n'));
    const std::size_t lineEnd = text.rfind('\n');
    if (lineEnd != std::string_view::npos) {
      column = 1;
      text.remove_prefix(lineEnd + 1);
    }
    column += static_cast<QORuint32>(std::count_if(text.begin(), text.end(), beginsCharacter));
  }
  static bool beginsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }
};

}  // namespace

std::vector<Statement> splitStatements(std::string_view text) {
  std::vector<Statement> statements;
  Place place;
  std::size_t counted = 0;  // up to here the place is
  for (std::size_t from = 0; from < text.size();) {
    const auto [end, kept] = findExtent(text, from);
    const std::size_t first = text.find_first_not_of(kBlankSigns, from);
    if (first < end) {
      place.pass(text.substr(counted, first - counted));
      counted = first;
      const std::size_t last = text.find_last_not_of(kBlankSigns, end - 1) + 1;
      statements.push_back({std::string(text.substr(first, std::max(last, kept) - first)), place.line, place.column});
    }
    from = end + 1;
  }
  return statements;
}

std::size_t endOfStatements(std::string_view text) {
  std::size_t found = 0;
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = findExtent(text, from).end;
    if (end < text.size()) found = end + 1;
    from = end + 1;
  }
  return found;
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
