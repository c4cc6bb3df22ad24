// Tokens, recovery, pragmas, instances and values of MOF.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofParser.h"

#include <algorithm>
#include <utility>

#include "Cimom/Mof/MofLiterals.h"

namespace {

// Nothing is declared in a namespace that was not meant.
constexpr const char* kLostNameSpace = "; what follows is left out, up to the next namespace";

// In a path every row of backslashes, doubled or not, is a slash; the row at its front stands before a host.
void appendSlashed(std::string& path, std::string_view text) {
  for (const char c : text) {
    if (c != '\\') {
      path += c;
    } else if (path.empty()) {
      path = "//";
    } else if (path.back() != '/') {
      path += '/';
    }
  }
}

std::string slashed(std::string_view path) {
  std::string result;
  appendSlashed(result, path);
  return result;
}

}  // namespace

MofParser::MofParser(const MofSource& source, MofDocument& document, MofReport& report, Context& context)
    : _source(source),
      _document(document),
      _report(report),
      _context(context),
      _scanner(source),
      _rows(source, document.rows) {
  // No token has been read yet; this is not the end of the text.
  _token.kind = Kind::Symbol;
}

void MofParser::readDeclarations() {
  bool isStarted = false;
  while (!_report.isFull()) {
    try {
      if (!std::exchange(isStarted, true)) advance();
      if (_token.kind == Kind::End) return;
      readDeclaration();
    } catch (const MofFault& fault) {
      refuseDeclaration(fault);
      recover();
    }
  }
}

std::unique_ptr<MofInstanceSyntax> MofParser::readInstanceAt(std::size_t offset) {
  _scanner.resumeAt(offset);
  advance();
  expectWord("instance");
  return readInstance(0);
}

MofParser::EmbeddedObject MofParser::readEmbeddedObject(QORuint32 depth) {
  advance();
  EmbeddedObject object;
  std::vector<MofQualifierSyntax> qualifiers = readQualifiers();
  if (takeWord("class")) {
    object.definition = readClass(std::move(qualifiers));
  } else {
    if (!takeWord("instance")) fail("\"instance\" or \"class\"");
    object.instance = readInstance(depth);
  }
  takeSymbol(';');
  if (_token.kind != Kind::End) fail("the end of the embedded object");
  return object;
}

// --- tokens --------------------------------------------------------------------

void MofParser::advance() {
  step();
  if (_token.kind == Kind::Bad) throw _scanner.faultOf(_token);
}

void MofParser::step() noexcept {
  if (isSymbol('{')) ++_braces;
  if (isSymbol('}')) --_braces;
  if (isSymbol(';')) _longString.length = 0;
  _lastEnd = _token.offset + _token.length;
  _token = _scanner.next();
  const bool isLong = _token.kind == Kind::String && _token.lineEnd != std::string_view::npos;
  if (isLong && _longString.length == 0) _longString = _token;
}

bool MofParser::isWord(const char* word) const noexcept {
  return _token.kind == Kind::Identifier && isMofWord(textOf(_token), word);
}

bool MofParser::takeSymbol(char symbol) {
  if (!isSymbol(symbol)) return false;
  advance();
  return true;
}

bool MofParser::takeWord(const char* word) {
  if (!isWord(word)) return false;
  advance();
  return true;
}

void MofParser::expectSymbol(char symbol) {
  if (!takeSymbol(symbol)) fail(std::string("\"") + symbol + '"');
}

void MofParser::expectWord(const char* word) {
  if (!takeWord(word)) fail(std::string("\"") + word + '"');
}

void MofParser::endDeclaration() {
  if (!isSymbol(';')) fail("\";\"");
  step();
}

MofName MofParser::expectName(const char* what) {
  if (_token.kind != Kind::Identifier) fail(what);
  MofName name{_document.names.nameOf(textOf(_token)), here()};
  advance();
  return name;
}

std::string_view MofParser::textOf(const MofToken& token) const noexcept {
  return {_source.getText().data() + token.offset, token.length};
}

std::string_view MofParser::insideOf(const MofToken& token) const noexcept {
  return {_source.getText().data() + token.offset + 1, token.length - 2};
}

std::string MofParser::describeToken() const {
  if (_token.kind == Kind::End) return "the end of the text";
  constexpr std::size_t kShown = 40;
  const bool isString = _token.kind == Kind::String;
  std::string shown(textOf(_token));
  if (const std::size_t lineEnd = shown.find_first_of("\r\n"); lineEnd != std::string::npos || shown.size() > kShown) {
    shown.resize(std::min(lineEnd, kShown));
    // A character that would be cut in the middle is left out.
    while (!shown.empty() && static_cast<unsigned char>(shown.back()) >= 0x80) shown.pop_back();
    shown += "...";
  }
  return isString ? "the string " + shown : '"' + shown + '"';
}

void MofParser::fail(const std::string& expected) {
  if (_token.kind == Kind::Bad) throw _scanner.faultOf(_token);
  throw MofFault{here(), "found " + describeToken() + ", expected " + expected};
}

// --- recovery ------------------------------------------------------------------

void MofParser::refuseDeclaration(const MofFault& fault) {
  if (!_className.isEmpty()) _document.refuseClass(_className);
  if (!_alias.isEmpty()) _document.refuseAlias(_alias);
  _className = _alias = QORString();
  if (_longString.length == 0 || fault.at.source != &_source || fault.at.offset <= _longString.offset) {
    MofFault told = fault;
    if (_hasLostNameSpace) told.message += kLostNameSpace;
    _report.add(told);
    return;
  }
  _report.add(
      {&_source, _longString.offset},
      "unterminated string: it runs on into the next lines, and what follows it does not fit (" + fault.message + ')');
  _scanner.resumeAt(_longString.lineEnd);
  _token = MofToken{Kind::Bad, '\0', false, _longString.lineEnd, 0, std::string_view::npos, nullptr};
}

void MofParser::recover() {
  if (_pragma != std::string_view::npos) {
    _scanner.resumeAt(_scanner.lineEndAfter(std::exchange(_pragma, std::string_view::npos)));
    step();
  } else {
    while (_token.kind != Kind::End) {
      const bool isEnd = isSymbol(';') && _braces <= 0;
      if (!isEnd && startsLine()) break;
      step();
      if (isEnd) break;
    }
  }
  _braces = 0;
  _longString.length = 0;
}

bool MofParser::startsLine() const noexcept {
  const std::string_view text = _source.getText();
  if (_token.offset != _source.getStart() && text[_token.offset - 1] != '\n') return false;
  return _token.kind == Kind::Pragma || isSymbol('[') || isWord("class") || isWord("instance") || isWord("qualifier");
}

// --- declarations --------------------------------------------------------------

void MofParser::readDeclaration() {
  _className = _alias = QORString();
  _longString.length = 0;
  _braces = 0;
  _hasLostNameSpace = false;
  if (_token.kind == Kind::Pragma) return readPragma();
  if (_context.makesRows && readRow()) return;
  if (takeWord("qualifier")) return readQualifierDeclaration();
  std::vector<MofQualifierSyntax> qualifiers = readQualifiers();
  if (takeWord("class")) {
    std::unique_ptr<MofClassSyntax> declared = readClass(std::move(qualifiers));
    endDeclaration();
    if (isPlaced()) _document.classes.push_back(std::move(declared));
    return;
  }
  if (!takeWord("instance")) fail("a declaration: \"class\", \"instance of\", \"Qualifier\" or \"#pragma\"");
  std::unique_ptr<MofInstanceSyntax> instance = readInstance(0);
  endDeclaration();
  if (isPlaced()) _document.instances.push_back({std::move(instance), {}});
}

// False when there is no plain instance here: nothing has been read then.
bool MofParser::readRow() {
  if (!isWord("instance")) return false;
  MofRow row;
  const std::size_t end = _rows.read(_token.offset, _context.nameSpace, row);
  if (end == std::string_view::npos) return false;
  row.scope = _context.scope;
  if (isPlaced()) _document.instances.push_back({nullptr, row});
  _scanner.resumeAt(end);
  _token = MofToken{Kind::Symbol, ';', false, end - 1, 1, std::string_view::npos, nullptr};
  step();
  return true;
}

// Whether a declaration belongs to a namespace.
bool MofParser::isPlaced() noexcept {
  _context.use();
  return !_context.nameSpace.isEmpty();
}

void MofParser::readPragma() {
  _pragma = _token.offset;
  advance();
  if (_token.offset >= _scanner.lineEndAfter(_pragma))
    throw MofFault{{&_source, _lastEnd}, "found the end of the line, expected the name of a pragma"};
  if (_report.isLenient() && passOverPragma()) return;
  const bool isNameSpace = isWord("namespace");
  _hasLostNameSpace = isNameSpace && _report.isLenient();
  if (_hasLostNameSpace) _context.nameSpace = QORString();
  const MofName name = expectName("the name of a pragma");
  const bool isKnown = isNameSpace || isMofWord(name.text.view(), "include");
  const std::string reads = isKnown ? "" : kLenientReads;
  const bool isAtLineEnd = _token.offset >= _scanner.lineEndAfter(_lastEnd);
  if (isAtLineEnd && !isSymbol('('))
    throw MofFault{{&_source, _lastEnd}, "found the end of the line, expected \"(\"" + reads};
  if (!isSymbol('(')) fail("\"(\"" + reads);
  advance();
  const MofLocation at = here();
  if (_token.kind != Kind::String) fail("a string" + reads);
  const std::string argument = _hasLostNameSpace ? readNameSpacePath() : std::string(readString());
  if (!isSymbol(')')) fail("\")\"" + reads);
  _pragma = std::string_view::npos;
  // The included file is read first: the next token comes after its content.
  if (isMofWord(name.text.view(), "include")) _context.include(argument, at);
  if (isNameSpace) enterNameSpace(argument, at);
  _hasLostNameSpace = false;
  advance();
}

// A pragma that means nothing here may look as it likes: it ends with its line or with its parenthesis.
bool MofParser::passOverPragma() {
  if (_token.kind != Kind::Identifier || isWord("include") || isWord("namespace")) return false;
  const std::string_view text = _source.getText();
  const std::size_t next = text.find_first_not_of(" \t", _token.offset + _token.length);
  if (next != std::string_view::npos && text[next] == '(') {
    while (_token.kind != Kind::End && !isSymbol(')') && !isSymbol(';') && !startsLine()) step();
    if (isSymbol(')')) step();
  } else {
    _scanner.resumeAt(_scanner.lineEndAfter(_token.offset));
    step();
  }
  _pragma = std::string_view::npos;
  return true;
}

void MofParser::enterNameSpace(const std::string& path, const MofLocation& at) {
  const QORString nameSpace = localMofNameSpace(path);
  if (nameSpace.isEmpty()) {
    const bool isWindowsPath = path.find('\\') != std::string::npos && !localMofNameSpace(slashed(path)).isEmpty();
    const char* const reads = isWindowsPath ? kLenientReads : "";
    _report.add(at, "\"" + path + "\" is not a namespace" + (_report.isLenient() ? kLostNameSpace : reads));
    return;
  }
  _document.nameSpaces.push_back(nameSpace);
  _context.nameSpace = nameSpace;
  _context.hasNamed = true;
}

std::string MofParser::readNameSpacePath() {
  std::string path;
  for (; _token.kind == Kind::String; advance()) appendSlashed(path, insideOf(_token));
  return isUtf8(path) ? path : std::string();
}

// --- instances and values ------------------------------------------------------

std::unique_ptr<MofInstanceSyntax> MofParser::readInstance(QORuint32 depth) {
  if (depth > kMofMaximumNesting) {
    throw MofFault{here(), "instances nested too deeply: more than " + std::to_string(kMofMaximumNesting) + " levels"};
  }
  auto instance = std::make_unique<MofInstanceSyntax>();
  instance->nameSpace = _context.nameSpace;
  instance->scope = _context.scope;
  instance->at = here();
  expectWord("of");
  instance->className = expectName("the name of a class");
  if (takeWord("as")) {
    if (_token.kind != Kind::Alias) fail("an alias such as $a");
    instance->alias = {QORString(textOf(_token)), here()};
    if (depth == 0) _alias = instance->alias.text;
    advance();
  }
  expectSymbol('{');
  while (!isSymbol('}')) instance->properties.push_back(readInstanceProperty(depth));
  advance();
  return instance;
}

MofPropertySyntax MofParser::readInstanceProperty(QORuint32 depth) {
  readQualifiers();
  if (_token.kind != Kind::Identifier) fail("the name of a property or \"}\"");
  MofPropertySyntax property;
  property.name = expectName("the name of a property");
  expectSymbol('=');
  property.value = readInitializer(depth);
  expectSymbol(';');
  return property;
}

MofValueSyntax MofParser::readInitializer(QORuint32 depth) {
  return isSymbol('{') ? readArray(depth) : readValue(depth);
}

MofValueSyntax MofParser::readArray(QORuint32 depth, QORSlabs* slabs) {
  MofValueSyntax array;
  array.kind = MofValueSyntax::Kind::Array;
  array.at = here();
  advance();
  if (takeSymbol('}')) return array;
  MofListReader<MofValueSyntax> elements(_elements);
  do {
    elements.add(readValue(depth, slabs));
  } while (takeSymbol(','));
  if (!isSymbol('}')) fail("\",\" or \"}\"");
  advance();
  array.elements = elements.take();
  return array;
}

MofValueSyntax MofParser::readValue(QORuint32 depth, QORSlabs* slabs) {
  MofValueSyntax value;
  value.at = here();
  switch (_token.kind) {
    case Kind::String:
      value.kind = MofValueSyntax::Kind::Text;
      value.text = slabs == nullptr ? QORString(readString()) : QORString(readString(), *slabs);
      return value;
    case Kind::Number:
      value = readMofNumber(textOf(_token), here());
      break;
    case Kind::Char:
      value.kind = MofValueSyntax::Kind::Char16;
      value.character = readMofChar(textOf(_token), here());
      break;
    case Kind::Alias:
      value.kind = MofValueSyntax::Kind::Alias;
      value.text = QORString(textOf(_token));
      break;
    default:
      return readWordValue(depth);
  }
  advance();
  return value;
}

MofValueSyntax MofParser::readWordValue(QORuint32 depth) {
  MofValueSyntax value;
  value.at = here();
  if (takeWord("instance")) {
    value.kind = MofValueSyntax::Kind::Instance;
    value.instance = readInstance(depth + 1);
    return value;
  }
  if (isWord("true") || isWord("false")) {
    value.kind = MofValueSyntax::Kind::Boolean;
    value.flag = isWord("true");
  } else if (!isWord("null")) {
    fail("a value");
  }
  advance();
  return value;
}

// A plain literal that stands alone is not copied.
std::string_view MofParser::readString() {
  _string.clear();
  if (_token.isPlain) {
    const std::string_view alone = insideOf(_token);
    advance();
    if (_token.kind != Kind::String) return alone;
    _string.append(alone);
  }
  for (; _token.kind == Kind::String; advance()) {
    _token.isPlain ? void(_string.append(insideOf(_token))) : appendMofString(textOf(_token), here(), _string);
  }
  return _string;
}
