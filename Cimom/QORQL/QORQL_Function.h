// A function call.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_FUNCTION_H
#define QORQL_FUNCTION_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_FunctionID.h"

class QORQL_Lexer;

// OBJECTPATH and INSTANCEOF are computed per row; aggregates by the select list.
class QORQL_Function : public QORQL_Evaluatable {
 public:
  // What kind() says of it.
  static constexpr QORQL_NodeKind kKind = QORQL_NodeKind::Function;

  using ParameterList = QORSmrPtr<QORValSlist<QORSmrPtr<QORQL_Evaluatable>>>;

  // Shares the list of the arguments, which is never null.
  QORQL_Function(const ParameterList& parameters, QORQL_FunctionID functionID);
  ~QORQL_Function() override;

  // Entered on the function's name.
  static QORSmrPtr<QORQL_Evaluatable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                            QORQL_ProjectionMap& projMap, const QORString& queryString,
                                            const QORString& queryLanguage);

  // What the constructor was given.
  QORQL_FunctionID getFunctionID() const noexcept { return _fid; }
  const ParameterList& getParameters() const noexcept { return _parameters; }
  // The one class that the argument names; a null pointer when it names none or several.
  QORSmrPtr<QORString> argumentClass() const;

  // INSTANCEOF of a row's object, which is not null: that object where `isComplete`, otherwise the whole instance, for
  // which the object manager is asked. Logs when it has none.
  static QORSmrPtr<IQoriValue> instanceOf(const QORSmrPtr<IQoriObject>& object, bool isComplete);
  // Whether the objects of a class or alias of the statement are fetched with all their properties.
  static bool isComplete(const QORQL_SymbolTable& symbolTable, const QORString& className);

  QORSmrPtr<IQoriValue> evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) override;
  using QORQL_Evaluatable::evaluate;
  void accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) override;

 private:
  QORSmrPtr<IQoriValue> _evaluateObjectPath(QORSmrPtr<QORQL_DataRow>& row) const;
  QORSmrPtr<IQoriValue> _evaluateInstanceOf(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) const;

  ParameterList _parameters;
  QORQL_FunctionID _fid;
};

#endif
