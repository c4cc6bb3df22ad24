// The leaf of an expression: a literal, a class or property reference, or a
// wrapper of a nested node (parentheses, negation, function call).
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_FACTOR_H
#define QORQL_FACTOR_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Operator.h"

class QORQL_Lexer;
class QORQL_SelectedEntry;

// Texts that are absent are null pointers; present texts may be empty. Name
// resolution writes through the shared strings, so that whoever holds one sees it.
//   x            class "", property x          C.x     class C, property x
//   C.*          class C, property "*"         Cls::x  class "", property x, chain "", scope Cls
//   literal      class and property absent     nested  class and property absent
class QORQL_Factor : public QORQL_Evaluatable {
 public:
  // What kind() says of it.
  static constexpr QORQL_NodeKind kKind = QORQL_NodeKind::Factor;

  // Kinds of array reference besides an element's index.
  static constexpr QORsint32 kNoArray = -1;
  static constexpr QORsint32 kWholeArray = -2;     // x[*]
  static constexpr QORsint32 kEmptyBrackets = -3;  // x[]

  // As parse() makes it, of what it consists; everything else is null: a nested expression or function, a reference
  // by class and property, or a literal. The operator is QORQL_OperatorMINUS after a minus sign.
  QORQL_Factor(QORSmrPtr<QORQL_Evaluatable> evaluatable, QORSmrPtr<QORString> className,
               QORSmrPtr<QORString> propertyName, QORSmrPtr<IQoriValue> literal, QORQL_Operator op, bool isSelectAll);
  QORQL_Factor(QORSmrPtr<QORQL_Evaluatable> evaluatable, QORSmrPtr<QORString> className,
               QORSmrPtr<QORString> propertyName, QORSmrPtr<IQoriValue> literal, QORQL_Operator op,
               QORSmrPtr<QORString> chain, QORSmrPtr<QORString> propertyScope, QORsint32 arrayIndexList);
  ~QORQL_Factor() override;

  // Reads it from the current token on and leaves the first token after it current. Adds the properties that are
  // named to `projMap`. THROWS QORQL_ParseException and QORQL_Exception.
  static QORSmrPtr<QORQL_Evaluatable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                            QORQL_ProjectionMap& projMap, const QORString& queryString,
                                            const QORString& queryLanguage);

  // The parts; null, or kNoArray, where it has no such part.
  const QORSmrPtr<QORQL_Evaluatable>& getEvaluatable() const noexcept { return _evaluatable; }
  const QORSmrPtr<QORString>& getClassName() const noexcept { return _idClassName; }
  const QORSmrPtr<QORString>& getPropertyName() const noexcept { return _idPropertyName; }
  const QORSmrPtr<IQoriValue>& getLiteral() const noexcept { return _literal; }
  QORQL_Operator getOperator() const noexcept { return _operator; }
  const QORSmrPtr<QORString>& getChain() const noexcept { return _chain; }
  const QORSmrPtr<QORString>& getPropertyScope() const noexcept { return _property_scope; }
  QORsint32 getArrayIndexList() const noexcept { return _array_index_list; }
  bool isSelectAll() const noexcept { return _isSelectAll; }
  // Where the property's name stands; getOffset() is where the first of the reference's names does.
  QORuint32 getPropertyOffset() const noexcept { return _propertyOffset; }
  // A bare identifier that was a known FROM name when it was parsed, or has
  // been found to be one by name resolution.
  bool isKnownFromName() const noexcept { return _isKnownFromName; }

  // A class reference: `X.firstref` or `X.secondref`.
  QORboolean isClassReference() const noexcept;
  QORboolean isPropertyReference() const noexcept;
  // A bare identifier: class "" (before resolution), no chain, scope, index or nested node.
  bool isBareIdentifier() const noexcept;

  // For the parser only.
  void setPlace(QORuint32 offset, QORuint32 propertyOffset) noexcept {
    setOffset(offset);
    _propertyOffset = propertyOffset;
  }
  // For name resolution only.
  void setClassName(const QORSmrPtr<QORString>& className) { _idClassName = className; }
  void setPropertyName(const QORSmrPtr<QORString>& propertyName) { _idPropertyName = propertyName; }
  void setKnownFromName(bool known) noexcept { _isKnownFromName = known; }
  // A sort key that names a column of the select list: the entry it stands for (null: none).
  void setSelectedEntry(const QORSmrPtr<QORQL_SelectedEntry>& entry);
  const QORSmrPtr<QORQL_SelectedEntry>& getSelectedEntry() const noexcept { return _selectedEntry; }

  QORSmrPtr<IQoriValue> evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) override;
  using QORQL_Evaluatable::evaluate;
  void accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) override;

  // The step from a fetched property value to what its array reference selects.
  QORSmrPtr<IQoriValue> selectElements(const QORSmrPtr<IQoriValue>& value) const;

 private:
  QORSmrPtr<IQoriValue> _evaluateNested(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row);

  QORSmrPtr<QORQL_Evaluatable> _evaluatable;
  QORSmrPtr<QORString> _idClassName;
  QORSmrPtr<QORString> _idPropertyName;
  QORSmrPtr<IQoriValue> _literal;
  QORQL_Operator _operator;
  QORuint32 _propertyOffset = 0;
  QORSmrPtr<QORString> _chain;
  QORSmrPtr<QORString> _property_scope;
  QORsint32 _array_index_list = kNoArray;
  bool _isSelectAll = false;
  bool _isKnownFromName = false;
  QORSmrPtr<QORQL_SelectedEntry> _selectedEntry;
};

#endif
