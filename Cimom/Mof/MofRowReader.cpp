// One pass over the bytes. Wherever something is unusual, the whole instance is left to the parser.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofRowReader.h"

#include <charconv>

#include "Cimom/Mof/MofBytes.h"
#include "Cimom/Mof/MofLiterals.h"
#include "Cimom/Mof/MofSyntax.h"

namespace {

constexpr std::size_t kNone = std::string_view::npos;
// Decimal digits that fit 64 bits, whatever they are.
constexpr std::size_t kSafeDigits = 18;

bool isPlainNameStart(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

}  // namespace

std::size_t MofRowReader::read(std::size_t offset, const QORString& nameSpace, MofRow& row) {
  _names.clear();
  _cells.clear();
  if (!readHead(offset) || !readProperties()) return kNone;
  if (!isAsBefore(nameSpace)) _form = _rows.form(nameSpace, _className, _names);
  if (_form == MofRows::kMaximumForms) return kNone;
  row = {&_source, offset, _rows.keep(_cells), _form, 0};
  return _at;
}

bool MofRowReader::isAsBefore(const QORString& nameSpace) const noexcept {
  if (_form == MofRows::kMaximumForms) return false;
  const MofRowForm& form = _rows.forms()[_form];
  if (form.className.view() != _className || form.names.size() != _names.size()) return false;
  for (std::size_t i = 0; i < _names.size(); ++i) {
    if (form.names[i].view() != _names[i]) return false;
  }
  return form.nameSpace == nameSpace;
}

void MofRowReader::skipBlanks() noexcept {
  while (isMofBlank(at(_at))) ++_at;
}

bool MofRowReader::take(char symbol) noexcept {
  skipBlanks();
  if (at(_at) != symbol) return false;
  ++_at;
  return true;
}

std::string_view MofRowReader::takeName() noexcept {
  skipBlanks();
  const std::size_t begin = _at;
  if (!isPlainNameStart(at(_at))) return {};
  while (isPlainNameStart(at(_at)) || isMofDigit(at(_at))) ++_at;
  return _text.substr(begin, _at - begin);
}

bool MofRowReader::readHead(std::size_t offset) {
  _at = offset;
  takeName();
  if (!isMofWord(takeName(), "of")) return false;
  _className = takeName();
  return !_className.empty() && take('{');
}

bool MofRowReader::readProperties() {
  CimRowWriter writer(_cells);
  while (!take('}')) {
    if (!readProperty(writer)) return false;
  }
  return take(';');
}

bool MofRowReader::readProperty(CimRowWriter& writer) {
  const std::string_view name = takeName();
  if (name.empty() || !take('=')) return false;
  _names.push_back(name);
  skipBlanks();
  const bool isArray = at(_at) == '{';
  return (isArray ? readArray(writer) : readValue(writer)) && take(';');
}

bool MofRowReader::readArray(CimRowWriter& writer) {
  ++_at;
  const std::size_t begun = writer.beginArray();
  QORuint32 count = 0;
  if (take('}')) return true;
  do {
    skipBlanks();
    if (!readValue(writer)) return false;
    ++count;
  } while (take(','));
  writer.endArray(begun, count);
  return take('}');
}

bool MofRowReader::readValue(CimRowWriter& writer) {
  const char c = at(_at);
  if (c == '"') return readString(writer);
  return isMofDigit(c) || c == '-' ? readNumber(writer) : readWord(writer);
}

bool MofRowReader::readString(CimRowWriter& writer) {
  const std::size_t begin = _at++;
  bool isAsWritten = true;
  for (;; ++_at) {
    const char c = at(_at);
    if (c == '"') break;
    if (c == '\n' || c == '\r' || c == '\0') return false;
    if (c == '\\') ++_at;
    if (c == '\\' || static_cast<unsigned char>(c) >= 0x80) isAsWritten = false;
  }
  const std::string_view literal = _text.substr(begin, ++_at - begin);
  skipBlanks();
  if (at(_at) == '"') return false;
  if (isAsWritten) {
    writer.putText(literal.substr(1, literal.size() - 2));
    return true;
  }
  _decoded.clear();
  try {
    appendMofString(literal, {&_source, begin}, _decoded);
  } catch (const MofFault&) {
    return false;
  }
  writer.putText(_decoded);
  return true;
}

bool MofRowReader::readNumber(CimRowWriter& writer) {
  const bool isNegative = at(_at) == '-';
  if (isNegative) ++_at;
  const std::size_t begin = _at;
  QORuint64 number = 0;
  for (; isMofDigit(at(_at)); ++_at) number = 10 * number + static_cast<QORuint64>(at(_at) - '0');
  const std::size_t digits = _at - begin;
  if (digits == 0 || digits > kSafeDigits) return false;
  if (at(_at) == '.') return readReal(begin, digits, isNegative, writer);
  const bool isOctal = digits > 1 && at(begin) == '0';
  if (isOctal || isPlainNameStart(at(_at)) || static_cast<unsigned char>(at(_at)) >= 0x80) return false;
  if (isNegative && number == 0) return false;
  isNegative ? writer.putSigned(-static_cast<QORsint64>(number)) : writer.putUnsigned(number);
  return true;
}

bool MofRowReader::readReal(std::size_t begin, std::size_t digits, bool isNegative, CimRowWriter& writer) {
  std::size_t end = begin + digits + 1;
  while (isMofDigit(at(end))) ++end;
  // An exponent, a second point or a name behind it.
  const char next = at(end);
  if (next == '.' || isPlainNameStart(next) || static_cast<unsigned char>(next) >= 0x80) return false;
  QORreal64 real = 0;
  const auto [stop, error] = std::from_chars(_text.data() + begin, _text.data() + end, real);
  if (error != std::errc() || stop != _text.data() + end) return false;
  _at = end;
  writer.putReal(isNegative ? -real : real);
  return true;
}

bool MofRowReader::readWord(CimRowWriter& writer) {
  const std::string_view word = takeName();
  const bool isTrue = isMofWord(word, "true");
  if (!isTrue && !isMofWord(word, "false") && !isMofWord(word, "null")) return false;
  writer.putWord(isTrue ? CimCellKind::True : isMofWord(word, "false") ? CimCellKind::False : CimCellKind::Null);
  return static_cast<unsigned char>(at(_at)) < 0x80;
}
