// One entry of a select list: `*`, a property reference or a computed column.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SELECTEDENTRY_H
#define QORQL_SELECTEDENTRY_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_FunctionID.h"

class QORQL_Lexer;

// One entry of the select list. Immutable after name resolution, but for the result of an aggregate.
class QORQL_SelectedEntry {
 public:
  using ClassNameList = QORSmrPtr<QORValSlist<QORSmrPtr<QORString>>>;

  // As parse() makes it; what the operations below give.
  QORQL_SelectedEntry(QORString className, QORString propertyName, QORString alias,
                      QORSmrPtr<QORQL_Evaluatable> expression, ClassNameList classNameList, QORboolean selectAll,
                      QORboolean isEntryAggregate, QORuint32 functionID);
  QORQL_SelectedEntry(const QORQL_SelectedEntry&) = delete;
  QORQL_SelectedEntry& operator=(const QORQL_SelectedEntry&) = delete;
  virtual ~QORQL_SelectedEntry();

  // Reads it from the current token on and leaves the first token after it current. Adds the properties that are
  // named to `classInfos`. THROWS QORQL_ParseException and QORQL_Exception.
  static QORSmrPtr<QORQL_SelectedEntry> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                              QORQL_ProjectionMap& classInfos, const QORString& queryString,
                                              const QORString& queryLanguage);

  // Of the reference that the entry consists of; empty where it is something else.
  const QORString& getClassName() const noexcept { return _className; }
  const QORString& getPropertyName() const noexcept { return _propertyName; }
  // Upper case; empty when none.
  const QORString& getAlias() const noexcept { return _alias; }
  // The name of a column without alias that is a function or has a minus sign, such as COUNT(Name), for readers: as
  // it was written, without superfluous blanks. Empty for every other entry.
  const QORString& getWrittenText() const noexcept { return _writtenText; }
  // Where the entry begins, and where its alias does if it has one, as bytes of the statement's text.
  QORuint32 getOffset() const noexcept { return _offset; }
  QORuint32 getAliasOffset() const noexcept { return _aliasOffset; }
  // Null for `*`.
  const QORSmrPtr<QORQL_Evaluatable>& getExpression() const noexcept { return _expression; }
  // The factors' own class-name strings; null for `*`.
  const ClassNameList& getClassNameList() const noexcept { return _classNameList; }
  QORboolean isSelectAll() const noexcept { return _selectAll; }
  QORboolean isEntryAggregate() const noexcept { return _isEntryAggregate; }
  QORuint32 GetFunctionID() const noexcept { return _functionID; }
  // The folded result of the last execution; null before, and for a null result.
  void SetAggregateValue(const QORSmrPtr<IQoriValue>& value) { _aggregateValue = value; }
  const QORSmrPtr<IQoriValue>& GetAggregateValue() const noexcept { return _aggregateValue; }
  // A reference with a class, written or resolved.
  QORboolean isProperty() const noexcept { return !_className.isEmpty(); }
  // A property reference with nothing around it, read straight from the row's
  // object. A whole object (class without property) is none.
  bool isPlainProperty() const noexcept { return _isPlainProperty && !_propertyName.isEmpty(); }
  // Written C.* with nothing around it.
  bool isClassAll() const noexcept { return _isClassAll; }

  // For name resolution only.
  void setClassName(const QORString& className) { _className = className; }
  void setPropertyName(const QORString& propertyName) { _propertyName = propertyName; }

  // The entry's value on a row. A function entry reads the row's VALUES object
  // where the row's table has one; a plain property reads the row's property;
  // everything else evaluates its expression.
  QORSmrPtr<IQoriValue> evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) const;

 private:
  QORString _className;
  QORString _propertyName;
  QORString _alias;
  QORSmrPtr<QORQL_Evaluatable> _expression;
  ClassNameList _classNameList;
  QORboolean _selectAll;
  QORboolean _isEntryAggregate;
  QORuint32 _offset = 0;
  QORSmrPtr<IQoriValue> _aggregateValue;
  QORuint32 _functionID;
  QORuint32 _aliasOffset = 0;
  QORString _writtenText = QORString::emptyString();
  // By the expression's shape; decided by the constructor.
  bool _isPlainProperty;
  bool _isClassAll;
};

#endif
