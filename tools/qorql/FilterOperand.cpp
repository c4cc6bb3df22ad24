// Reading the two sides of a comparison from a filter's words and signs.
#include "FilterOperand.h"

#include <algorithm>

#include "Cimom/QORQL/CQLQueryStatement.h"

namespace {

using Kind = FilterOperand::Kind;

constexpr std::size_t kNowhere = FilterText::kNowhere;

Kind kindOf(const QORString& type) {
  if (CQLQueryStatement::isNumericalData(type, type)) return Kind::Number;
  if (type == "string") return Kind::Text;
  return type == "boolean" ? Kind::Boolean : Kind::Other;
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
  const FilterText::Piece& literal = _text.pieces()[piece];
  if (literal.kind == FilterText::Kind::Number) {
    operand.kind = Kind::Number;
    operand.type = "number";
    const bool hasFraction = _text.is(piece + 1, ".") && piece + 2 < _text.pieces().size() &&
                             _text.pieces()[piece + 2].kind == FilterText::Kind::Number;
    return piece + (hasFraction ? 3 : 1);
  }
  if (isNegative || literal.kind == FilterText::Kind::Sign) return kNowhere;
  std::string_view text = literal.text;
  if (literal.kind == FilterText::Kind::Literal && text.size() > 2) text = text.substr(1, text.size() - 2);
  operand.kind = Kind::Text;
  operand.type = "text";
  operand.saysTruth = isTruth(text);
  return piece + 1;
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
  const FilterText::Piece& first = _text.pieces()[operand.piece];
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
    classes.push_back(scope.empty() ? _text.classOf(qualifier) : scope);
  } else {
    for (const FilterText::Source& source : _text.sources()) classes.push_back(source.className);
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
    return;
  }
}
