// Reading query scripts, line by line.
// SPDX-License-Identifier: Apache-2.0
#include "Script.h"

#include <fstream>
#include <set>
#include <sstream>
#include <string_view>

namespace {

bool startsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

std::vector<std::string> wordsOf(const std::string& line) {
  std::istringstream words(line);
  std::vector<std::string> result;
  for (std::string word; words >> word;) result.push_back(word);
  return result;
}

class ScriptReader {
 public:
  explicit ScriptReader(const std::string& path) : _path(path), _file(path) {
    if (!_file) throw ScriptError(path + ": cannot be read");
  }

  Script read() {
    while (nextLine()) {
      if (!_line.empty() && _line[0] != '#') readDeclaration();
    }
    if (_script.cases.empty()) fail("no case");
    return std::move(_script);
  }

 private:
  [[noreturn]] void fail(const std::string& message) const {
    throw ScriptError(_path + ":" + std::to_string(_number) + ": " + message);
  }

  bool nextLine() {
    if (_isPending) {
      _isPending = false;
      return true;
    }
    if (!std::getline(_file, _line)) return false;
    ++_number;
    return true;
  }

  // The rest of the current line after its first word.
  std::string argument() const {
    const std::size_t blank = _line.find(' ');
    if (blank == std::string::npos) fail("'" + _line + "' needs an argument");
    return _line.substr(blank + 1);
  }

  void readDeclaration() {
    const std::string word = _line.substr(0, _line.find(' '));
    if (word == "case") {
      readCase();
    } else if (!_script.cases.empty()) {
      fail("'" + word + "' after the first case");
    } else if (word == "model") {
      _script.models.push_back(argument());
    } else if (word == "namespace") {
      _script.nameSpace = argument();
    } else if (word == "set") {
      readSetting();
    } else if (_line == "mof {{") {
      readMof();
    } else {
      fail("unknown word '" + word + "'");
    }
  }

  void readSetting() {
    const std::vector<std::string> words = wordsOf(_line);
    if (words.size() != 3) fail("'set' needs key and value");
    _script.settings.emplace_back(words[1], words[2]);
  }

  void readMof() {
    std::string text;
    while (nextLine() && _line != "}}") text += _line + "\n";
    _script.mofTexts.push_back(text);
  }

  void readCase() {
    Case one;
    one.name = argument();
    one.line = _number;
    one.nameSpace = _script.nameSpace;
    if (!_names.insert(one.name).second) fail("a second case '" + one.name + "'");
    while (true) {
      if (!nextLine()) fail("'end' is missing");
      if (_line == "end") break;
      readSection(one);
    }
    if (one.query.empty()) fail("case '" + one.name + "' has no query");
    if (one.expected == Case::Expected::Missing) fail("case '" + one.name + "' expects nothing");
    _script.cases.push_back(std::move(one));
  }

  void readSection(Case& one) {
    if (startsWith(_line, "rule:") || _line.empty() || _line[0] == '#') return;
    if (startsWith(_line, "namespace ")) {
      one.nameSpace = argument();
    } else if (_line == "query") {
      one.query = readUnendedText();
    } else if (_line == "echo") {
      one.echo = readUnendedText();
    } else if (_line == "result csv" || _line == "result xml") {
      one.expected = _line == "result csv" ? Case::Expected::Csv : Case::Expected::Xml;
      one.result = readText();
    } else if (startsWith(_line, "error ")) {
      readFailure(one);
    } else if (_line == "calls") {
      one.hasCalls = true;
      one.calls = readLines();
    } else if (_line == "log") {
      one.log = readLines();
    } else {
      fail("unknown section '" + _line + "'");
    }
  }

  void readFailure(Case& one) {
    const std::vector<std::string> words = wordsOf(_line);
    Failure& failure = one.failure;
    if (words.size() == 7 && words[1] == "parse" && words[3] == "line" && words[5] == "status") {
      failure = {FailureKind::Parse, number(words[2]), number(words[4]), number(words[6]), {}};
    } else if (words.size() == 5 && words[1] == "runtime" && words[3] == "status") {
      failure = {FailureKind::Runtime, number(words[2]), 0, number(words[4]), {}};
    } else if (words.size() == 2 && words[1] == "platform") {
      failure.kind = FailureKind::Platform;
    } else {
      fail("'" + _line + "' is no error");
    }
    one.expected = Case::Expected::Failure;
    failure.message = readUnendedText();
  }

  unsigned number(const std::string& word) const {
    if (word.empty() || word.find_first_not_of("0123456789") != std::string::npos) fail("'" + word + "' is no number");
    return static_cast<unsigned>(std::stoul(word));
  }

  static bool beginsSection(const std::string& line) {
    static const std::set<std::string> kWords = {"query", "result csv", "result xml", "error platform",
                                                 "log",   "calls",      "end",        "echo"};
    return kWords.count(line) != 0 || startsWith(line, "error parse ") || startsWith(line, "error runtime ");
  }

  // The lines up to the next section, each with its line feed.
  std::string readText() {
    std::string text;
    while (nextLine()) {
      if (beginsSection(_line)) {
        _isPending = true;
        return text;
      }
      text += _line + "\n";
    }
    fail("'end' is missing");
  }

  // Without the line feed before the next section.
  std::string readUnendedText() {
    std::string text = readText();
    if (!text.empty()) text.pop_back();
    return text;
  }

  std::vector<std::string> readLines() {
    std::istringstream text(readText());
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }

  std::string _path;
  std::ifstream _file;
  std::string _line;
  unsigned _number = 0;
  bool _isPending = false;
  std::set<std::string> _names;
  Script _script;
};

}  // namespace

std::string Failure::toText() const {
  switch (kind) {
    case FailureKind::None:
      return "no error";
    case FailureKind::Parse:
      return "error parse " + std::to_string(code) + " line " + std::to_string(line) + " status " +
             std::to_string(status);
    case FailureKind::Runtime:
      return "error runtime " + std::to_string(code) + " status " + std::to_string(status);
    case FailureKind::Platform:
      return "error platform";
  }
  return {};
}

Script readScript(const std::string& path) { return ScriptReader(path).read(); }
