// The leaf of an expression: what it is, and the parsing of all its forms but
// the identifier reference, which QORQL_Reference reads.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Factor.h"

#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_ParseContext.h"
#include "Cimom/QORQL/QORQL_Reference.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"
#include "cimom/CQoriValue.h"

namespace {

using Node = QORSmrPtr<QORQL_Evaluatable>;
using Value = QORSmrPtr<IQoriValue>;

// Parsing nests, so what does not nest is not inlined: that keeps the stack frames of the recursion small.
[[gnu::noinline]] Node nested(QORSlabs& slabs, Node&& node, QORQL_Operator op, QORuint32 offset) {
  Node factor = Node::MakeIn<QORQL_Factor>(slabs, std::move(node), nullptr, nullptr, nullptr, op, false);
  factor.Get()->setOffset(offset);
  return factor;
}

// Typed by its size; a number after a minus sign is typed as signed, though it
// stays non-negative itself: the negation or subtraction applies the sign.
Value decimalValue(QORSlabs& slabs, QORuint64 number, bool afterMinus) {
  constexpr auto fits = [](QORuint64 value, auto limit) { return value <= static_cast<QORuint64>(limit); };
  if (afterMinus) {
    // The smallest signed type of a literal is sint32, not sint8, on purpose.
    if (fits(number, std::numeric_limits<QORsint8>::max())) {
      return Value::MakeIn<CQoriValue>(slabs, static_cast<int>(number), CQoriType::sint32);
    }
    if (fits(number, std::numeric_limits<QORsint16>::max())) {
      return Value::MakeIn<CQoriValue>(slabs, static_cast<short>(number), CQoriType::sint16);
    }
    if (fits(number, std::numeric_limits<QORsint32>::max())) {
      return Value::MakeIn<CQoriValue>(slabs, static_cast<int>(number), CQoriType::sint32);
    }
    return Value::MakeIn<CQoriValue>(slabs, static_cast<long long>(number), CQoriType::sint64);
  }
  if (fits(number, std::numeric_limits<QORuint8>::max())) {
    return Value::MakeIn<CQoriValue>(slabs, static_cast<unsigned char>(number), CQoriType::uint8);
  }
  if (fits(number, std::numeric_limits<QORuint16>::max())) {
    return Value::MakeIn<CQoriValue>(slabs, static_cast<unsigned short>(number), CQoriType::uint16);
  }
  if (fits(number, std::numeric_limits<QORuint32>::max())) {
    return Value::MakeIn<CQoriValue>(slabs, static_cast<unsigned int>(number), CQoriType::uint32);
  }
  return Value::MakeIn<CQoriValue>(slabs, static_cast<unsigned long long>(number), CQoriType::uint64);
}

// The power of ten of a real literal's first digit that is not zero.
QORsint64 magnitudeOf(std::string_view text) {
  const std::size_t exponent = text.find_first_of("eE");
  const QORsint64 power = exponent == std::string_view::npos ? 0 : QORString(text.substr(exponent + 1)).atoi();
  return power + static_cast<QORsint64>(text.find('.')) - static_cast<QORsint64>(text.find_first_not_of("0."));
}

// The longest valid prefix, whatever the process's locale; beyond the range of
// a double, infinity or zero.
Value realValue(QORSlabs& slabs, std::string_view text) {
  double number = 0;
  const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec == std::errc::result_out_of_range) {
    number = magnitudeOf(text) > 0 ? std::numeric_limits<double>::infinity() : 0.0;
  }
  return Value::MakeIn<CQoriValue>(slabs, number, CQoriType::real64);
}

bool isLiteral(QORQL_TokenType type, QORQL_TokenType before) {
  return before == TokenISA || type == TokenSTRINGLITERAL || type == TokenDECIMALLITERAL ||
         type == TokenBOOLEANLITERAL || type == TokenREALLITERAL;
}

// Saturates at the greatest value.
QORuint64 decimalNumber(std::string_view digits) {
  QORuint64 number = 0;
  const std::from_chars_result result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return result.ec == std::errc::result_out_of_range ? std::numeric_limits<QORuint64>::max() : number;
}

// The class name after ISA is text, and so are TRUE and FALSE.
Value literalValue(QORSlabs& slabs, const QORQL_Token& token, QORQL_TokenType before) {
  if (before != TokenISA && token.getType() == TokenDECIMALLITERAL) {
    return decimalValue(slabs, decimalNumber(token.text()), before == TokenMINUS);
  }
  if (before != TokenISA && token.getType() == TokenREALLITERAL) return realValue(slabs, token.text());
  return Value::MakeIn<CQoriValue>(slabs, token.newText(slabs));
}

[[gnu::noinline]] Node parseLiteral(QORQL_Lexer& lexer) {
  QORSlabs& slabs = lexer.slabs();
  const QORuint32 offset = lexer.getOffset();
  Value literal = literalValue(slabs, lexer.getCurrent(), lexer.lookBack().getType());
  lexer.next(false);
  Node factor =
      Node::MakeIn<QORQL_Factor>(slabs, nullptr, nullptr, nullptr, std::move(literal), QORQL_OperatorNONE, false);
  factor.Get()->setOffset(offset);
  return factor;
}

// Entered on the opening parenthesis.
Node parseParentheses(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer, QORQL_ProjectionMap& projMap,
                      const QORString& queryString, const QORString& queryLanguage) {
  const QORQL_NestingGuard guard(lexer);
  lexer.next(false);
  Node comparison = QORQL_Comparison::parse(symbolTable, lexer, projMap, queryString, queryLanguage);
  if (lexer.getCurrent().getType() != TokenCLOSEPAREN) QORQL_raise(QORQL_Messages::kFactorParenExpected, lexer);
  lexer.next(false);
  return comparison;
}

// Entered on the minus sign; gives what it negates.
Node parseNegated(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer, QORQL_ProjectionMap& projMap,
                  const QORString& queryString, const QORString& queryLanguage) {
  const QORQL_NestingGuard guard(lexer);
  const bool isParenthesised = lexer.next(false).getType() == TokenOPENPAREN;
  return isParenthesised ? parseParentheses(symbolTable, lexer, projMap, queryString, queryLanguage)
                         : QORQL_Factor::parse(symbolTable, lexer, projMap, queryString, queryLanguage);
}

}  // namespace

QORQL_Factor::QORQL_Factor(QORSmrPtr<QORQL_Evaluatable> evaluatable, QORSmrPtr<QORString> className,
                           QORSmrPtr<QORString> propertyName, QORSmrPtr<IQoriValue> literal, QORQL_Operator op,
                           bool isSelectAll)
    : QORQL_Evaluatable(kKind),
      _evaluatable(std::move(evaluatable)),
      _idClassName(std::move(className)),
      _idPropertyName(std::move(propertyName)),
      _literal(std::move(literal)),
      _operator(op),
      _isSelectAll(isSelectAll) {}

QORQL_Factor::QORQL_Factor(QORSmrPtr<QORQL_Evaluatable> evaluatable, QORSmrPtr<QORString> className,
                           QORSmrPtr<QORString> propertyName, QORSmrPtr<IQoriValue> literal, QORQL_Operator op,
                           QORSmrPtr<QORString> chain, QORSmrPtr<QORString> propertyScope, QORsint32 arrayIndexList)
    : QORQL_Evaluatable(kKind),
      _evaluatable(std::move(evaluatable)),
      _idClassName(std::move(className)),
      _idPropertyName(std::move(propertyName)),
      _literal(std::move(literal)),
      _operator(op),
      _chain(std::move(chain)),
      _property_scope(std::move(propertyScope)),
      _array_index_list(arrayIndexList) {}

QORQL_Factor::~QORQL_Factor() = default;

QORSmrPtr<QORQL_Evaluatable> QORQL_Factor::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                 QORQL_ProjectionMap& projMap, const QORString& queryString,
                                                 const QORString& queryLanguage) {
  const QORQL_TokenType type = lexer.getCurrent().getType();
  const QORuint32 offset = lexer.getOffset();
  if (type == TokenOPENPAREN) {
    return nested(lexer.slabs(), parseParentheses(symbolTable, lexer, projMap, queryString, queryLanguage),
                  QORQL_OperatorNONE, offset);
  }
  if (isLiteral(type, lexer.lookBack().getType())) return parseLiteral(lexer);
  if (type == TokenMINUS) {
    return nested(lexer.slabs(), parseNegated(symbolTable, lexer, projMap, queryString, queryLanguage),
                  QORQL_OperatorMINUS, offset);
  }
  if (type != TokenID) QORQL_raiseAtToken(QORQL_Messages::kUnexpectedToken, lexer);
  if (lexer.lookAhead(1).getType() == TokenOPENPAREN) {
    return nested(lexer.slabs(), QORQL_Function::parse(symbolTable, lexer, projMap, queryString, queryLanguage),
                  QORQL_OperatorNONE, offset);
  }
  return QORQL_parseReference(symbolTable, lexer, projMap);
}

QORboolean QORQL_Factor::isClassReference() const noexcept {
  return _evaluatable.IsNull() && !_idClassName.IsNull() && !_idPropertyName.IsNull() &&
         !_idClassName.Get()->isEmpty() && QORQL_isAssociationEnd(*_idPropertyName.Get());
}

QORboolean QORQL_Factor::isPropertyReference() const noexcept {
  return (!_idPropertyName.IsNull() || _isSelectAll) && !_idClassName.IsNull() && _evaluatable.IsNull() &&
         _literal.IsNull() && _operator == QORQL_OperatorNONE;
}

bool QORQL_Factor::isBareIdentifier() const noexcept {
  return isPropertyReference() && !_idPropertyName.IsNull() && _idClassName.Get()->isEmpty() && _chain.IsNull() &&
         _property_scope.IsNull() && _array_index_list == kNoArray;
}

void QORQL_Factor::setSelectedEntry(const QORSmrPtr<QORQL_SelectedEntry>& entry) { _selectedEntry = entry; }

void QORQL_Factor::accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) {
  if (_evaluatable.IsNull()) {
    visitor->visitFactor(*this);
  } else {
    _evaluatable->accept(visitor);
  }
}
