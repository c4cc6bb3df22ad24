// A function call: parsing and walking.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Function.h"

#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_ParseContext.h"

namespace {

using Parameters = QORQL_Function::ParameterList;

// Also finds Class::Property, which is more than a class name.
class ArgumentFinder : public QORQL_IdentifierFinder {
 public:
  void visitFactor(const QORQL_Factor& factor) override {
    QORQL_IdentifierFinder::visitFactor(factor);
    _isScoped = _isScoped || !factor.getPropertyScope().IsNull();
    _offset = factor.getOffset();
  }
  // Of the last factor.
  QORuint32 offset() const noexcept { return _offset; }
  bool isScoped() const noexcept { return _isScoped; }

 private:
  bool _isScoped = false;
  QORuint32 _offset = 0;
};

// Until here a class name was parsed as a property: it becomes the class, and a
// word that is no property takes the property's place.
void rewriteObjectPath(const Parameters& parameters, const QORQL_Lexer& lexer) {
  ArgumentFinder* const finder = new ArgumentFinder;
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  parameters->first()->accept(visitor);
  const QORSmrPtr<QORString> property = finder->getPropertyName();
  if (property.IsNull()) return;
  const QORSmrPtr<QORString> className = finder->getClassName();
  if (className.IsNull() || !className->isEmpty() || finder->isScoped()) {
    QORQL_raiseAt(finder->offset(), QORQL_Messages::kObjectPathArgument, lexer);
  }
  *className = QORString::toUpperCase(*property);
  *property = QORQL_ExecutionMessages::kNoProperty;
}

// Entered on the closing parenthesis. Not inlined: parsing nests, and small stack frames allow deeper nesting.
[[gnu::noinline]] QORSmrPtr<QORQL_Evaluatable> finishCall(const QORString& name, QORuint32 offset,
                                                          const Parameters& parameters, QORQL_Lexer& lexer) {
  const QORQL_FunctionID functionID = QORQL_findFunction(name);
  if (functionID == QORQL_FUNCTIONID_UNKNOWN) QORQL_raiseAt(offset, QORQL_Messages::kFunctionUnknown, lexer, name);
  if (parameters->entries() != 1) QORQL_raiseAt(offset, QORQL_Messages::kArgumentCount, lexer, name);
  if (functionID == QORQL_FUNCTIONID_OBJECTPATH) rewriteObjectPath(parameters, lexer);
  lexer.next(false);
  auto function = QORSmrPtr<QORQL_Evaluatable>::MakeIn<QORQL_Function>(lexer.slabs(), parameters, functionID);
  function.Get()->setOffset(offset);
  return function;
}

}  // namespace

QORQL_Function::QORQL_Function(const ParameterList& parameters, QORQL_FunctionID functionID)
    : QORQL_Evaluatable(kKind), _parameters(parameters), _fid(functionID) {}

QORQL_Function::~QORQL_Function() = default;

QORSmrPtr<QORQL_Evaluatable> QORQL_Function::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                   QORQL_ProjectionMap& projMap, const QORString& queryString,
                                                   const QORString& queryLanguage) {
  const QORQL_NestingGuard guard(lexer);
  const ParameterList parameters = ParameterList::MakeIn(lexer.slabs());
  const QORString name = lexer.getCurrent().getValue();
  const QORuint32 offset = lexer.getOffset();
  lexer.next(false);
  do {
    lexer.next(false);  // past the opening parenthesis or a comma
    if (parameters->isEmpty() && lexer.getCurrent().getType() == TokenCLOSEPAREN) break;
    parameters->append(QORQL_Expression::parse(symbolTable, lexer, projMap, queryString, queryLanguage));
  } while (lexer.getCurrent().getType() == TokenCOMMA);
  if (lexer.getCurrent().getType() != TokenCLOSEPAREN) QORQL_raise(QORQL_Messages::kFunctionParenExpected, lexer);
  return finishCall(name, offset, parameters, lexer);
}

void QORQL_Function::accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) {
  QORValSlistIterator<QORSmrPtr<QORQL_Evaluatable>> parameters(*_parameters);
  while (++parameters) parameters.key()->accept(visitor);
  visitor->visitFunction(*this);
}
