// Lines and columns of a MOF text.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofSource.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// A diagnostic shows at most this many bytes on each side of the fault.
constexpr std::size_t kLineContext = 90;

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

QORuint32 countCharacters(std::string_view text) {
  return static_cast<QORuint32>(
      std::count_if(text.begin(), text.end(), [](char byte) { return !continuesCharacter(byte); }));
}

// Control characters would spoil the reader's terminal.
void blankControls(std::string& line) {
  for (char& byte : line) {
    const unsigned char code = static_cast<unsigned char>(byte);
    if ((code < 0x20 && byte != '\t') || code == 0x7F) byte = '?';
  }
}

}  // namespace

MofSource::MofSource(std::string name, std::string text) : _name(std::move(name)), _text(std::move(text)) {
  if (std::string_view(_text).substr(0, kByteOrderMark.size()) == kByteOrderMark) _start = kByteOrderMark.size();
}

MofSource::MofSource(std::string text, MofLocation origin)
    : _name(origin.source->getName()), _text(std::move(text)), _origin(origin) {}

const MofSource& MofSource::outermost() const noexcept {
  return _origin.source == nullptr ? *this : _origin.source->outermost();
}

std::size_t MofSource::outermostOffset(std::size_t offset) const noexcept {
  return _origin.source == nullptr ? offset : _origin.source->outermostOffset(_origin.offset);
}

MofDiagnostic MofSource::diagnose(std::size_t offset, const std::string& message) const {
  const std::string_view text(_text);
  offset = std::min(offset, text.size());
  const std::size_t newline = offset == 0 ? std::string_view::npos : text.rfind('\n', offset - 1);
  const std::size_t lineStart = newline == std::string_view::npos ? _start : newline + 1;
  const std::size_t lineEnd = std::min(text.find_first_of("\r\n", offset), text.size());

  MofDiagnostic diagnostic;
  diagnostic.line =
      1 + static_cast<QORuint32>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(lineStart), '\n'));
  diagnostic.column = 1 + countCharacters(text.substr(lineStart, offset - std::min(offset, lineStart)));
  if (_origin.source != nullptr) {
    return _origin.source->diagnose(_origin.offset, "in line " + std::to_string(diagnostic.line) + ", column " +
                                                        std::to_string(diagnostic.column) +
                                                        " of the embedded text: " + message);
  }
  std::size_t from = offset - std::min(offset - std::min(offset, lineStart), kLineContext);
  while (from > lineStart && continuesCharacter(text[from])) --from;
  std::size_t to = std::min(lineEnd, offset + kLineContext);
  while (to < lineEnd && continuesCharacter(text[to])) ++to;
  diagnostic.file = _name;
  diagnostic.message = message;
  const std::string prefix = from > lineStart ? "..." : "";
  diagnostic.sourceLine = prefix + std::string(text.substr(from, to - from)) + (to < lineEnd ? "..." : "");
  diagnostic.caret = static_cast<QORuint32>(prefix.size()) + countCharacters(text.substr(from, offset - from));
  blankControls(diagnostic.sourceLine);
  return diagnostic;
}

std::string describeMofPlace(const MofLocation& at) {
  const MofDiagnostic place = at.source->diagnose(at.offset, "");
  return place.file + ':' + std::to_string(place.line) + ':' + std::to_string(place.column);
}
