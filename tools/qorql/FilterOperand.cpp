// Reading the two sides of a comparison from a filter's words and signs.
#include "FilterOperand.h"

#include <algorithm>
#include <cstdlib>

#include "Cimom/QORQL/CQLQueryStatement.h"

namespace {

using Kind = FilterOperand::Kind;

constexpr std::size_t kNowhere = StatementText::kNowhere;

Kind kindOf(const QORString& type) {
  if (CQLQueryStatement::isNumericalData(type, type)) return Kind::Number;
  if (type == "string") return Kind::Text;
  return type == "boolean" ? Kind::Boolean : Kind::Other;
}

bool isExponent(std::string_view word) {
  return (word.front() == 'e' || word.front() == 'E') &&
         word.substr(1).find_first_not_of("0123456789") == std::string_view::npos;
}

// As the scanner types it: a whole number after a minus is signed.
QoriScalar numberOf(const std::string& digits, bool isNegative) {
  QoriScalar number;
  if (digits.find('.') != std::string::npos) {
    number.kind = QoriScalarKind::Real;
    number.r = (isNegative ? -1 : 1) * std::strtod(digits.c_str(), nullptr);
    return number;
  }
  number.kind = isNegative ? QoriScalarKind::Signed : QoriScalarKind::Unsigned;
  number.u = std::strtoull(digits.c_str(), nullptr, 10);
  if (isNegative) number.s = static_cast<QORsint64>(0 - number.u);
  return number;
}

bool isTruth(std::string_view word) {
  return QORString::equalIgnoringCase(word, "TRUE") || QORString::equalIgnoringCase(word, "FALSE");
}

}  // namespace

bool holdsObjects(const CimPropertyDeclaration& property) {
  return property.hasFlag("EmbeddedObject") || property.findQualifier("EmbeddedInstance") != nullptr;
}

bool FilterOperandReader::read(std::size_t sign, FilterOperand& left, FilterOperand& right) const {
  return readOperand(startOf(sign), left) == sign && isEnd(readOperand(sign + 1, right));
}

// Behind the word or parenthesis that opens the condition.
std::size_t FilterOperandReader::startOf(std::size_t sign) const noexcept {
  std::size_t start = sign;
  while (start > _text.behindFrom()) {
    const std::size_t before = start - 1;
    for (const char* opening : {"WHERE", "AND", "OR", "NOT", "("}) {
      if (_text.is(before, opening)) return start;
    }
    start = before;
  }
  return start;
}

bool FilterOperandReader::isEnd(std::size_t piece) const noexcept {
  if (piece == kNowhere) return false;
  for (const char* closing : {"AND", "OR", ")", "ORDER", "FORMAT"}) {
    if (_text.is(piece, closing)) return true;
  }
  return piece >= _text.pieces().size();
}

// Gives the piece behind the operand; kNowhere when it is of another form.
std::size_t FilterOperandReader::readOperand(std::size_t piece, FilterOperand& operand) const {
  operand.isAsked = _text.is(piece, "ANY") || _text.is(piece, "EVERY");
  if (operand.isAsked) ++piece;
  if (piece >= _text.pieces().size()) return kNowhere;
  operand.piece = piece;
  return _text.isWord(piece) && !isTruth(_text.pieces()[piece].text) ? readReference(piece, operand)
                                                                     : readLiteral(piece, operand);
}

std::size_t FilterOperandReader::readLiteral(std::size_t piece, FilterOperand& operand) const {
  const bool isNegative = _text.is(piece, "-");
  if (isNegative) ++piece;
  if (piece >= _text.pieces().size()) return kNowhere;
  const StatementText::Piece& literal = _text.pieces()[piece];
  if (literal.kind == StatementText::Kind::Number) {
    operand.kind = Kind::Number;
    operand.type = "number";
    const std::size_t end = behindNumber(piece);
    const StatementText::Piece& last = _text.pieces()[end - 1];
    const std::string digits(_text.text().substr(literal.offset, last.offset + last.text.size() - literal.offset));
    operand.number = numberOf(digits, isNegative);
    operand.isSigned = operand.number.kind == QoriScalarKind::Signed;
    return end;
  }
  if (isNegative || literal.kind == StatementText::Kind::Sign) return kNowhere;
  std::string_view text = literal.text;
  if (literal.kind == StatementText::Kind::Literal && text.size() > 2) text = text.substr(1, text.size() - 2);
  operand.kind = Kind::Text;
  operand.type = "text";
  operand.saysTruth = isTruth(text);
  return piece + 1;
}

// digits [ . digits [ e [-] digits ] ]
std::size_t FilterOperandReader::behindNumber(std::size_t piece) const noexcept {
  const auto isNumber = [this](std::size_t i) {
    return i < _text.pieces().size() && _text.pieces()[i].kind == StatementText::Kind::Number;
  };
  if (!_text.is(piece + 1, ".") || !isNumber(piece + 2)) return piece + 1;
  const std::size_t exponent = piece + 3;
  if (!_text.isWord(exponent) || !isExponent(_text.pieces()[exponent].text)) return exponent;
  const bool isNegative = _text.is(exponent, "E") && _text.is(exponent + 1, "-") && isNumber(exponent + 2);
  return exponent + (isNegative ? 3 : 1);
}

// [2], [*] or []
std::size_t FilterOperandReader::behindIndex(std::size_t piece, bool& isElement) const noexcept {
  if (!_text.is(piece, "[")) return piece;
  isElement = !_text.is(piece + 1, "]") && !_text.is(piece + 1, "*");
  return piece + (_text.is(piece + 1, "]") ? 2 : 3);
}

// Name { . Name } [ :: Name ], each with an index or without.
std::size_t FilterOperandReader::readReference(std::size_t piece, FilterOperand& operand) const {
  std::string qualifier;
  std::string scope;
  bool isElement = false;
  for (;;) {
    operand.property = _text.pieces()[piece].text;
    piece = behindIndex(piece + 1, isElement);
    const bool isScope = _text.is(piece, "::");
    if (!isScope && !_text.is(piece, ".")) break;
    if (!_text.isWord(piece + 1)) return kNowhere;
    if (isScope) {
      scope = operand.property;
    } else {
      qualifier += (qualifier.empty() ? "" : ".") + operand.property;
    }
    ++piece;
  }
  const StatementText::Piece& first = _text.pieces()[operand.piece];
  const std::size_t last = std::min(piece, _text.pieces().size()) - 1;
  const std::size_t end = _text.pieces()[last].offset + _text.pieces()[last].text.size();
  operand.written = _text.text().substr(first.offset, end - first.offset);
  describe(qualifier, scope, isElement, operand);
  return piece;
}

// A property of an object whose class is not named stays unknown.
void FilterOperandReader::describe(const std::string& qualifier, const std::string& scope, bool isElement,
                                   FilterOperand& operand) const {
  std::vector<std::string> classes;
  if (!qualifier.empty()) {
    const std::string fromClass = scope.empty() ? _text.classOf(qualifier) : scope;
    classes.push_back(fromClass.empty() ? _text.isaClassOf(qualifier) : fromClass);
  } else {
    for (const StatementText::Source& source : _text.sources()) classes.push_back(source.className);
  }
  for (const std::string& className : classes) {
    CimPropertyDeclaration property;
    if (!_manager.sink().describeProperty(_nameSpace, QORString(className), QORString(operand.property), property)) {
      continue;
    }
    const QORString type(holdsObjects(property) ? QORString("object") : property.type->getName());
    operand.kind = kindOf(type);
    operand.type = type.view();
    operand.isArray = property.type->isArray() && !isElement;
    operand.isSigned = type.beginsWith("sint");
    return;
  }
}
