// What the scanner prints on standard output, collected instead.
// SPDX-License-Identifier: Apache-2.0
#include "ScannerOutput.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <new>
#include <string_view>

#include "DisplayText.h"
#include "StatementText.h"

namespace {

// Further characters and strings are counted, not described.
constexpr std::size_t kMostTold = 20;

bool isKnown(char c) {
  constexpr std::string_view kBlanksAndSigns = " \t\n*=!<>~+-/,()[].:\"#&;{}_";
  const bool isAlphanumeric = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return isAlphanumeric || kBlanksAndSigns.find(c) != std::string_view::npos;
}

// Finds in a text what the scanner skips: it says which bytes, and not where they stand.
class PassedOver {
 public:
  explicit PassedOver(const Statement& scanned)
      : _text(scanned.text), _places(scanned.text, scanned.firstLine, scanned.firstColumn) {}

  // As many as the scanner met before it stopped, perhaps early at a fault.
  std::vector<std::string> sentences(std::size_t unknownBytes, std::size_t openStrings) {
    for (std::size_t at = 0; at < _text.size();) {
      if (_text[at] == '\'' && skipString(at)) continue;
      const std::size_t end = isKnown(_text[at]) ? at + 1 : endOfCharacter(at);
      if (!isKnown(_text[at]) && _unknownBytes < unknownBytes) addUnknown(at, end);
      at = end;
    }
    std::vector<std::string> sentences;
    if (!_unknown.empty()) sentences.push_back("skipped, since the language does not know it: " + _unknown);
    if (_characterCount > kMostTold)
      sentences.back() += " and " + std::to_string(_characterCount - kMostTold) + " more";
    for (std::size_t i = 0; i < std::min(openStrings, _openStrings.size()); ++i) sentences.push_back(_openStrings[i]);
    return sentences;
  }

 private:
  // Skips a string, or the rest of its line when it does not end. Returns false for a quote that is followed by
  // neither.
  bool skipString(std::size_t& at) {
    const std::size_t end = _text.find_first_of("'\n", at + 1);
    if (end == std::string_view::npos) return false;
    const bool isOpen = _text[end] == '\n';
    if (isOpen && _openStrings.size() < kMostTold) {
      _openStrings.push_back("skipped: a string that is not closed on its line (" + _places.place(at) + ")");
    }
    at = isOpen ? end : end + 1;
    return true;
  }

  std::size_t endOfCharacter(std::size_t at) const {
    std::size_t end = at + 1;
    const bool isLead = (static_cast<unsigned char>(_text[at]) & 0xC0U) == 0xC0U;
    while (isLead && end < _text.size() && (static_cast<unsigned char>(_text[end]) & 0xC0U) == 0x80U) ++end;
    return end;
  }

  void addUnknown(std::size_t at, std::size_t end) {
    _unknownBytes += end - at;
    if (++_characterCount > kMostTold) return;
    _unknown +=
        (_unknown.empty() ? "" : ", ") + printableText(_text.substr(at, end - at)) + " (" + _places.place(at) + ")";
  }

  std::string_view _text;
  StatementText _places;
  std::string _unknown;
  std::size_t _characterCount = 0;
  std::size_t _unknownBytes = 0;
  std::vector<std::string> _openStrings;
};

}  // namespace

ScannerOutput::ScannerOutput() : _file(open_memstream(&_fileText, &_fileSize)) {
  if (_file == nullptr) throw std::bad_alloc();
  _previousStream = std::cout.rdbuf(_stream.rdbuf());
  _previousFile = stdout;
  stdout = _file;
}

ScannerOutput::~ScannerOutput() {
  stdout = _previousFile;
  std::cout.rdbuf(_previousStream);
  std::fclose(_file);
  std::free(_fileText);
}

std::vector<std::string> ScannerOutput::passedOver(const Statement& scanned) const {
  std::fflush(_file);
  const std::size_t unknownCount = _stream.view().size();
  if (unknownCount == 0 && _fileSize == 0) return {};
  const std::string_view said(_fileText, _fileSize);
  const auto openCount = static_cast<std::size_t>(std::count(said.begin(), said.end(), '\n'));
  return PassedOver(scanned).sentences(unknownCount, openCount);
}
