// One side of a filter's comparison, prepared: a constant or a property path.
// Tested by tests/unit/Filters/CQLQueryStatementTest.cpp, tests/unit/Filters/CQLConditionsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLOPERAND_H
#define QORQL_CQLOPERAND_H

#include <memory>

#include "Cimom/QORQL/Filter/CQLPropertyPath.h"

// Threads may share one.
class CQLOperand {
 public:
  // Null when the side is neither. BORROWS the scope.
  static std::unique_ptr<CQLOperand> make(const CQLScope& scope, const QORSmrPtr<QORQL_Evaluatable>& side);

  explicit CQLOperand(std::unique_ptr<CQLPropertyPath> path) : _path(std::move(path)) {}
  explicit CQLOperand(const QORSmrPtr<IQoriValue>& constant);

  // As CQLPropertyPath::view and CQLPropertyPath::value.
  QoriScalar view(const IQoriObject& instance, QORSmrPtr<IQoriObject>& object, QORSmrPtr<IQoriValue>& holder) const {
    return _path == nullptr ? _view : _path->view(instance, object, holder);
  }
  QORSmrPtr<IQoriValue> value(const IQoriObject& instance) const {
    return _path == nullptr ? _constant : _path->value(instance);
  }
  // As CQLPropertyPath::ownProperty; null for a constant.
  const QORString* ownProperty() const noexcept { return _path == nullptr ? nullptr : _path->ownProperty(); }
  // BORROWS: null for a constant.
  const CQLPropertyPath* path() const noexcept { return _path.get(); }
  bool holdsConstant() const noexcept { return _path == nullptr; }
  // REQUIRES holdsConstant().
  const QoriScalar& constant() const noexcept { return _view; }

 private:
  QORSmrPtr<IQoriValue> _constant;
  QoriScalar _view;
  std::unique_ptr<CQLPropertyPath> _path;  // null: the constant
};

#endif
