// The reading of identifier references:
//
//   ID [index] { . ID [index] } [ :: ID [index] ]    or    ID . *
//
// The first identifier of a dotted reference is its class, the last one its
// property, the one before "::" its scope. Of a longer chain only the root
// property, the second identifier, is asked of the class: what lies below comes
// with the embedded object.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Reference.h"

#include <utility>

#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace {

using Text = QORSmrPtr<QORString>;

class Reference {
 public:
  Reference(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer, QORQL_ProjectionMap& projMap)
      : _symbolTable(symbolTable),
        _lexer(lexer),
        _projMap(projMap),
        _offset(lexer.getOffset()),
        _afterAnyOrEvery(lexer.lookBack().getType() == TokenANY || lexer.lookBack().getType() == TokenEVERY) {}

  QORSmrPtr<QORQL_Evaluatable> parse() {
    readIdentifier();
    while (currentType() == TokenDOT) {
      if (_identifiers == 1 && _index == QORQL_Factor::kNoArray && _lexer.lookAhead(1).getType() == TokenASTERISK) {
        return parseSelectAll();
      }
      if (_lexer.next(false).getType() != TokenID) QORQL_raise(QORQL_Messages::kDotIdentifierExpected, _lexer);
      readIdentifier();
    }
    if (currentType() == TokenSCOPE) {
      if (_lexer.next(false).getType() != TokenID) QORQL_raise(QORQL_Messages::kScopeIdentifierExpected, _lexer);
      _isScoped = true;
      readIdentifier();
    }
    return makeFactor();
  }

 private:
  QORQL_TokenType currentType() { return _lexer.getCurrent().getType(); }

  // Adds an identifier: the places first, second, between, last but one and last move along.
  void readIdentifier() {
    if (_identifiers == 1) _first = std::move(_last);
    if (_identifiers == 2) _path = _first;
    if (_identifiers == 2) _second = _last;
    if (_identifiers > 2) (_path += ".") += _beforeLast;
    if (_identifiers > 1) _beforeLast = std::move(_last);
    _last = _lexer.getCurrent().newText(_lexer.slabs());
    _lastOffset = _lexer.getOffset();
    ++_identifiers;
    _lexer.next(false);
    if (currentType() == TokenOPENSQUAREBRACK) readIndex();
  }

  void readIndex() {
    if (_symbolTable.isSymbolTableUpdated()) QORQL_raiseAt(_lastOffset, QORQL_Messages::kSelectArray, _lexer);
    _index = QORQL_Factor::kEmptyBrackets;
    if (_lexer.next(false).getType() != TokenCLOSESQUAREBRACK) {
      if (currentType() == TokenDECIMALLITERAL) {
        _index = _lexer.getCurrent().getValue().atoi();
      } else if (currentType() == TokenASTERISK) {
        _index = QORQL_Factor::kWholeArray;
      } else {
        QORQL_raise(QORQL_Messages::kArrayIndexInvalid, _lexer);
      }
      if (_lexer.next(false).getType() != TokenCLOSESQUAREBRACK) {
        QORQL_raise(QORQL_Messages::kSquareBracketExpected, _lexer);
      }
    }
    if (_index >= 0 && _afterAnyOrEvery) {
      QORQL_raiseAt(_lastOffset, QORQL_Messages::kAnyEveryOfElement, _lexer);
    }
    _lexer.next(false);
  }

  QORSmrPtr<QORQL_Evaluatable> parseSelectAll() {
    _lexer.next(false);
    _lastOffset = _lexer.getOffset();
    _lexer.next(false);
    if (QORQL_ClassInfo* const record = QORQL_recordOf(_projMap, _last, _lexer.slabs())) {
      record->setNeedAllProperties(true);
    }
    return placed(QORSmrPtr<QORQL_Evaluatable>::MakeIn<QORQL_Factor>(_lexer.slabs(), nullptr, newText(std::move(_last)),
                                                                     newText("*"), nullptr, QORQL_OperatorNONE, true));
  }

  // In a condition the ends of an association are no properties to request.
  void request(const QORString& className, const QORString& property) {
    if (!_lexer.recordsBareNames() && (className.isEmpty() || QORQL_isAssociationEnd(property))) return;
    QORQL_ClassInfo* const record = QORQL_recordOf(_projMap, className, _lexer.slabs());
    if (record != nullptr) record->addPropertyOnce(property, _lexer.slabs());
  }

  QORSmrPtr<QORQL_Evaluatable> makeFactor() {
    const bool isDotted = _identifiers > (_isScoped ? 2U : 1U);
    const QORString& className = isDotted ? _first : QORString::emptyString();
    const bool asksSecond = isDotted && _identifiers > 2 && !(_isScoped && _identifiers == 3);
    request(className, asksSecond ? _second : _last);
    const bool hasChain = _isScoped || _identifiers > 2;
    return placed(QORSmrPtr<QORQL_Evaluatable>::MakeIn<QORQL_Factor>(
        _lexer.slabs(), nullptr, newText(className), newText(std::move(_last)), nullptr, QORQL_OperatorNONE,
        hasChain ? newText(chainText()) : Text(), _isScoped ? newText(beforeLast()) : Text(), _index));
  }

  QORSmrPtr<QORQL_Evaluatable> placed(QORSmrPtr<QORQL_Evaluatable> factor) const {
    static_cast<QORQL_Factor*>(factor.Get())->setPlace(_offset, _lastOffset);
    return factor;
  }

  const QORString& beforeLast() const noexcept { return _identifiers == 2 ? _first : _beforeLast; }

  // All identifiers but the property and the scope, joined by dots.
  QORString chainText() const {
    if (!_isScoped) return _path + "." + _beforeLast;
    return _identifiers == 2 ? QORString::emptyString() : _path;
  }

  Text newText(QORString text) { return Text::MakeIn(_lexer.slabs(), std::move(text)); }

  QORQL_SymbolTable& _symbolTable;
  QORQL_Lexer& _lexer;
  QORQL_ProjectionMap& _projMap;
  const QORuint32 _offset;
  const bool _afterAnyOrEvery;
  bool _isScoped = false;
  QORuint32 _identifiers = 0;
  QORsint32 _index = QORQL_Factor::kNoArray;
  QORuint32 _lastOffset = 0;
  QORString _first;
  QORString _second;
  QORString _path;        // all but the two last of three and more, joined by dots
  QORString _beforeLast;  // of three and more
  QORString _last;
};

// A reference of one identifier, as most are.
QORSmrPtr<QORQL_Evaluatable> parseBareName(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                           QORQL_ProjectionMap& projMap) {
  QORSlabs& slabs = lexer.slabs();
  QORString name = lexer.getCurrent().newText(slabs);
  const QORuint32 offset = lexer.getOffset();
  lexer.next(false);
  if (lexer.recordsBareNames()) {
    QORQL_ClassInfo* const record = QORQL_recordOf(projMap, QORString::emptyString(), slabs);
    if (record != nullptr) record->addPropertyOnce(name, slabs);
  }
  const bool isKnownFromName = symbolTable.findIgnoringCase(name) != nullptr;
  auto result = QORSmrPtr<QORQL_Evaluatable>::MakeIn<QORQL_Factor>(
      slabs, nullptr, Text::MakeIn(slabs, QORString::emptyString()), Text::MakeIn(slabs, std::move(name)), nullptr,
      QORQL_OperatorNONE, false);
  auto& factor = static_cast<QORQL_Factor&>(*result);
  factor.setKnownFromName(isKnownFromName);
  factor.setPlace(offset, offset);
  return result;
}

// Whether a token after an identifier continues the reference.
bool continuesReference(QORQL_TokenType type) {
  return type == TokenDOT || type == TokenSCOPE || type == TokenOPENSQUAREBRACK;
}

}  // namespace

QORSmrPtr<QORQL_Evaluatable> QORQL_parseReference(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                  QORQL_ProjectionMap& projMap) {
  if (!continuesReference(lexer.lookAhead(1).getType())) return parseBareName(symbolTable, lexer, projMap);
  return Reference(symbolTable, lexer, projMap).parse();
}
