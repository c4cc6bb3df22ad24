// Reads paths from left to right: prefix, class, then keys.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofObjectPath.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "Cimom/Mof/MofLiterals.h"

namespace {

class PathReader {
 public:
  PathReader(std::string_view path, const MofLocation& at) : _path(path), _rest(path), _at(at) {}

  MofObjectPath read() {
    MofObjectPath path;
    // Quotes and "=" begin the values, which may hold any character.
    const std::string_view prefix = _rest.substr(0, _rest.find_first_of("\"="));
    if (const std::size_t colon = prefix.rfind(':'); colon != std::string_view::npos) {
      path.nameSpace = localMofNameSpace(prefix.substr(0, colon));
      if (path.nameSpace.isEmpty()) fail("its namespace is malformed");
      _rest.remove_prefix(colon + 1);
    }
    path.className = readName("a class name");
    if (!take('.')) fail("\".\" and the keys are missing after the class name");
    do {
      path.keys.push_back(readKey());
    } while (take(','));
    if (!_rest.empty()) fail("\",\" or its end is expected before \"" + std::string(_rest.substr(0, 20)) + '"');
    return path;
  }

 private:
  [[noreturn]] void fail(const std::string& why) const {
    constexpr std::size_t kShown = 80;
    std::string shown(_path.substr(0, kShown));
    if (_path.size() > kShown) shown += "...";
    throw MofFault{_at, "malformed instance path \"" + shown + "\": " + why};
  }

  void skipBlanks() {
    const std::size_t start = _rest.find_first_not_of(" \t\r\n");
    _rest.remove_prefix(start == std::string_view::npos ? _rest.size() : start);
  }

  bool take(char sign) {
    skipBlanks();
    if (_rest.empty() || _rest.front() != sign) return false;
    _rest.remove_prefix(1);
    skipBlanks();
    return true;
  }

  QORString readName(const char* what) {
    skipBlanks();
    const std::size_t end = std::min(_rest.find_first_of(" \t\r\n.=,\"'"), _rest.size());
    if (end == 0) fail(std::string(what) + " is missing");
    QORString name(_rest.substr(0, end));
    _rest.remove_prefix(end);
    return name;
  }

  MofPropertySyntax readKey() {
    MofPropertySyntax key;
    key.name = {readName("the name of a key"), _at};
    if (!take('=')) fail("\"=\" is missing after the key " + std::string(key.name.text.view()));
    key.value.at = _at;
    if (!_rest.empty() && _rest.front() == '"') {
      key.value.kind = MofValueSyntax::Kind::Text;
      key.value.text = readQuoted();
    } else {
      readBareValue(key.value);
    }
    skipBlanks();
    return key;
  }

  // A backslash escapes the character after it.
  QORString readQuoted() {
    std::string text;
    for (std::size_t i = 1; i < _rest.size(); ++i) {
      if (_rest[i] == '"') {
        _rest.remove_prefix(i + 1);
        return QORString(std::string_view(text));
      }
      if (_rest[i] == '\\' && i + 1 < _rest.size()) ++i;
      text += _rest[i];
    }
    fail("a closing quote is missing");
  }

  void readBareValue(MofValueSyntax& value) {
    const std::string_view word = _rest.substr(0, _rest.find_first_of(", \t\r\n"));
    if (word.empty()) fail("the value of a key is missing");
    if (isMofWord(word, "true") || isMofWord(word, "false")) {
      value.kind = MofValueSyntax::Kind::Boolean;
      value.flag = isMofWord(word, "true");
    } else if (word.size() > 2 && word.front() == '\'' && word.back() == '\'') {
      value.kind = MofValueSyntax::Kind::Char16;
      value.character = readMofChar(word, _at);
    } else if (std::string_view("0123456789+-.").find(word.front()) == std::string_view::npos) {
      fail("the text \"" + std::string(word.substr(0, 40)) + "\" is not quoted");
    } else {
      value = readMofNumber(word, _at);
    }
    _rest.remove_prefix(word.size());
  }

  std::string_view _path;
  std::string_view _rest;
  MofLocation _at;
};

}  // namespace

MofObjectPath readMofObjectPath(const QORString& path, const MofLocation& at) {
  return PathReader(path.view(), at).read();
}
