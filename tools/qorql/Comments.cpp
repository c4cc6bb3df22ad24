// One pass over the text, which what is kept of it replaces from its beginning on.
// SPDX-License-Identifier: Apache-2.0
#include "Comments.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace {

class CommentRemover {
 public:
  explicit CommentRemover(std::string text) : _result{std::move(text), 0}, _text(_result.text) {}

  TextWithoutComments result() {
    while (_place < _text.size()) takeNext();
    _result.text.resize(_kept);
    return std::move(_result);
  }

 private:
  bool isAt(std::string_view sign) const { return _text.substr(_place).starts_with(sign); }
  std::size_t lineEnd() const { return std::min(_text.find('\n', _place), _text.size()); }

  void takeNext() {
    if (isAt("#") || (isAt("--") && !_isInStatement)) {
      _place = lineEnd();
    } else if (isAt("/*")) {
      passBlock();
    } else if (isAt("'")) {
      _isInStatement = true;
      keepUpTo(endOfLiteral());
    } else {
      takeCharacter();
    }
  }

  void takeCharacter() {
    constexpr std::string_view kBlanks = " \t\r\n";
    const char c = _text[_place];
    if (c == ';') {
      _isInStatement = false;
    } else if (kBlanks.find(c) == std::string_view::npos) {
      _isInStatement = true;
    }
    keepUpTo(_place + 1);
  }

  // A quote without a partner in its line reaches to the end of the line.
  std::size_t endOfLiteral() const {
    const std::size_t close = _text.find_first_of("'\n", _place + 1);
    if (close == std::string_view::npos) return _text.size();
    return _text[close] == '\'' ? close + 1 : close;
  }

  void keep(char c) { _result.text[_kept++] = c; }

  void keepUpTo(std::size_t end) {
    while (_place < end) keep(_text[_place++]);
  }

  void passBlock() {
    const std::size_t close = _text.find("*/", _place + 2);
    if (close == std::string_view::npos) {
      const auto before = _text.substr(0, _kept);  // with all line ends up to here
      _result.openLine = static_cast<QORuint32>(std::count(before.begin(), before.end(), '\n')) + 1;
      _place = _text.size();
      return;
    }
    for (const char c : _text.substr(_place, close + 2 - _place)) blank(c);
    _place = close + 2;
  }

  // Columns count characters, of which the further bytes are none.
  void blank(char c) {
    if (c == '\n') {
      keep(c);
    } else if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80U) {
      keep(' ');
    }
  }

  TextWithoutComments _result;
  const std::string_view _text;  // from the place on as it was given
  std::size_t _place = 0;
  std::size_t _kept = 0;
  bool _isInStatement = false;
};

}  // namespace

TextWithoutComments withoutComments(std::string text) { return CommentRemover(std::move(text)).result(); }

std::string withoutEndedComments(std::string text) {
  TextWithoutComments rest = withoutComments(std::move(text));
  if (rest.openLine == 0) return std::move(rest.text);
  throw std::runtime_error("the comment that begins in line " + std::to_string(rest.openLine) + " does not end");
}
