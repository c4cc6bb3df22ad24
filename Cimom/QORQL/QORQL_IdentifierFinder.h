// The visitor that finds the classes and the property that an expression names.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_IDENTIFIERFINDER_H
#define QORQL_IDENTIFIERFINDER_H

#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "cmpbase.h"

class QORQL_Factor;

// Made for one walk over an expression.
class QORQL_IdentifierFinder : public QORQL_ExpressionVisitor {
 public:
  using ClassNameList = QORSmrPtr<QORValSlist<QORSmrPtr<QORString>>>;

  // Has seen nothing yet.
  QORQL_IdentifierFinder();
  void visitFactor(const QORQL_Factor& factor) override;
  void visitFunction(const QORQL_Function& function) override;

  // Exactly one factor was seen, and it names a class or stands in OBJECTPATH.
  QORboolean isClassReference() const noexcept;
  // Exactly one factor was seen, and it is a property reference.
  QORboolean isPropertyReference() const noexcept;
  // Of the one factor; a null pointer when several were seen or it has none.
  QORSmrPtr<QORString> getClassName() const;
  QORSmrPtr<QORString> getPropertyName() const;
  // The factors' own class-name strings in order, empty ones too; never null.
  ClassNameList getClassNameList() const { return _classNameList; }
  QORuint32 getFactorCount() const noexcept { return _countFactors; }

 private:
  QORuint32 _countFactors = 0;
  QORuint32 _countFunctions = 0;
  QORboolean _isClassReference = false;
  QORboolean _isObjectPath = false;
  QORboolean _isPropertyReference = false;
  QORSmrPtr<QORString> _className;
  QORSmrPtr<QORString> _propertyName;
  ClassNameList _classNameList;
};

#endif
