// The text of a file of filters cut into filters.
// SPDX-License-Identifier: Apache-2.0
#include "FilterFile.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

constexpr std::string_view kBlanksOfLine = " \t";

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || (c & 0x80) != 0; }
bool isFilterNameCharacter(char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; }
bool isBlank(char c) { return kBlanksOfLine.find(c) != std::string_view::npos; }

// The length of a name that a colon and then a blank or the end follow; 0 when there is none. It begins with a letter,
// so that it is not taken for a number of a line.
std::size_t lengthOfName(std::string_view text) {
  if (text.empty() || !isLetter(text.front())) return 0;
  const auto end =
      static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isFilterNameCharacter) - text.begin());
  const bool hasColon = end < text.size() && text[end] == ':' && (end + 1 == text.size() || isBlank(text[end + 1]));
  return hasColon ? end : 0;
}

bool beginsWithSelect(std::string_view text) {
  constexpr std::string_view kSelect = "SELECT";
  const bool isWord = text.size() == kSelect.size() || (text.size() > kSelect.size() && isBlank(text[kSelect.size()]));
  return isWord && QORString::equalIgnoringCase(text.substr(0, kSelect.size()), kSelect);
}

QORuint32 columnOf(std::string_view line, std::size_t offset) {
  const auto begins = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  return static_cast<QORuint32>(
             std::count_if(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(offset), begins)) +
         1;
}

class FilterLines {
 public:
  void take(std::string_view line) {
    ++_line;
    const std::size_t first = std::min(line.find_first_not_of(kBlanksOfLine), line.size());
    const std::string_view content = line.substr(first);
    if (content.starts_with('#')) return skip();
    if (content.empty()) {
      _isOpen = false;
      return;
    }
    const std::size_t nameLength = lengthOfName(content);
    if (nameLength != 0) return beginNamed(line, first, nameLength);
    const bool isWaiting = _isOpen && _filters.back().text.empty();
    if (isWaiting) return beginText(line, first);
    if (_isOpen && first != 0 && !beginsWithSelect(content)) return continueText(line);
    const bool isStray = _isOpen && !beginsWithSelect(content);
    begin();
    beginText(line, first);
    const bool followsStray = std::exchange(_isAstray, isStray);
    _filters.back().isStray = isStray && !followsStray;
  }
  std::vector<FileFilter> filters() { return std::move(_filters); }

 private:
  void begin() {
    FileFilter filter;
    filter.line = filter.firstLine = _line;
    _filters.push_back(filter);
    _isOpen = true;
    _skipped = 0;
  }
  void beginNamed(std::string_view line, std::size_t first, std::size_t nameLength) {
    begin();
    _filters.back().name = line.substr(first, nameLength);
    const std::size_t text = line.find_first_not_of(kBlanksOfLine, first + nameLength + 1);
    if (text != std::string_view::npos) beginText(line, text);
  }
  void beginText(std::string_view line, std::size_t first) {
    FileFilter& filter = _filters.back();
    filter.firstLine = _line;
    filter.firstColumn = columnOf(line, first);
    filter.text = line.substr(first);
    _skipped = 0;
  }
  // The lines of comments between stay as empty ones, so that places in the text are those in the file.
  void continueText(std::string_view line) {
    _filters.back().text.append(_skipped + 1, '\n').append(line);
    _skipped = 0;
  }
  void skip() { ++_skipped; }

  std::vector<FileFilter> _filters;
  QORuint32 _line = 0;
  bool _isAstray = false;    // the last line is stray or follows one
  bool _isOpen = false;      // an indented line continues the last filter
  std::size_t _skipped = 0;  // comments since the last line of the last filter
};

}  // namespace

std::vector<FileFilter> splitFilters(std::string_view text) {
  FilterLines lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.take(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines.filters();
}

std::string placeOfFilter(const FileFilter& filter) {
  const std::string place = "line " + std::to_string(filter.line);
  return place + (filter.name.empty() ? ": " : " (" + filter.name + "): ");
}

const char* const kStrayHint = "a filter goes on in lines that are indented under it";

std::map<QORuint32, std::string> doubledNames(const std::vector<FileFilter>& filters) {
  std::map<std::string_view, QORuint32> lines;
  std::map<QORuint32, std::string> doubled;
  for (const FileFilter& filter : filters) {
    if (filter.name.empty()) continue;
    const auto [known, isNew] = lines.emplace(filter.name, filter.line);
    if (isNew) continue;
    doubled[filter.line] =
        "there is a filter " + filter.name + " in line " + std::to_string(known->second) + " already";
  }
  return doubled;
}
