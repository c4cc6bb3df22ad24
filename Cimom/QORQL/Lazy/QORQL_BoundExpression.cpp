// Bound forms of literals, properties, object paths, negations and arithmetic chains.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_BoundExpression.h"

#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Log.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Bound = std::unique_ptr<QORQL_BoundValue>;
using Value = QORSmrPtr<IQoriValue>;

class BoundNull final : public QORQL_BoundValue {
 public:
  Value value(const QORQL_RowView& /*row*/) const override { return {}; }
  QoriScalar view(const QORQL_RowView& /*row*/, Value& /*holder*/) const override { return {}; }
};

class BoundLiteral final : public QORQL_BoundValue {
 public:
  explicit BoundLiteral(const Value& literal) : _literal(literal), _view(literal->scalar()) {}
  Value value(const QORQL_RowView& /*row*/) const override { return _literal; }
  QoriScalar view(const QORQL_RowView& /*row*/, Value& /*holder*/) const override { return _view; }
  const QoriScalar* constant() const noexcept override { return &_view; }

 private:
  Value _literal;
  QoriScalar _view;
};

// A property that every object of the column has, or that is NULL where an object lacks it.
class BoundProperty final : public QORQL_BoundValue {
 public:
  explicit BoundProperty(QORQL_PropertyColumn column) : _column(std::move(column)) {}
  Value value(const QORQL_RowView& row) const override { return _column.value(row.object(_column.column())); }
  QoriScalar view(const QORQL_RowView& row, Value& /*holder*/) const override {
    return _column.view(row.object(_column.column()));
  }
  const QORQL_PropertyColumn* propertyColumn() const noexcept override { return &_column; }

 private:
  QORQL_PropertyColumn _column;
};

// A property that some object lacks: an error on its row.
class BoundPartialProperty final : public QORQL_BoundValue {
 public:
  BoundPartialProperty(const QORQL_PropertyColumn& column, const QORString& className, const QORString& propertyName)
      : _column(column), _className(className), _propertyName(propertyName) {}
  Value value(const QORQL_RowView& row) const override { return _column.value(checkedObject(row)); }
  QoriScalar view(const QORQL_RowView& row, Value& /*holder*/) const override {
    return _column.view(checkedObject(row));
  }

 private:
  const IQoriObject* checkedObject(const QORQL_RowView& row) const {
    const IQoriObject* const object = row.object(_column.column());
    if (object != nullptr && object->getLayout()->getPosition(_propertyName) < 0) {
      QORQL_DataRow::raiseNoProperty(_className, _propertyName);
    }
    return object;
  }

  QORQL_PropertyColumn _column;
  QORString _className;
  QORString _propertyName;
};

// An object that cannot tell its name has none, as on a row.
class BoundObjectPath final : public QORQL_BoundValue {
 public:
  BoundObjectPath(QORuint32 column, const QORString& className) : _column(column), _className(className) {}
  Value value(const QORQL_RowView& row) const override {
    const IQoriObject* const object = row.object(_column);
    if (object == nullptr) return {};
    try {
      const QORSmrPtr<IQoriInstanceName> name(object->getInstanceName());
      return name.IsNull() ? Value() : Value(Value::Make<CQoriValue>(name));
    } catch (...) {
      QORQL_logError(QORString(QORQL_ExecutionMessages::kInstanceNameFailed) + _className + "'");
      return {};
    }
  }

 private:
  QORuint32 _column;
  QORString _className;
};

// What a function gave on the row of a projected table.
class BoundResult final : public QORQL_BoundValue {
 public:
  BoundResult(std::shared_ptr<const QORQL_LazyResults> results, std::size_t function)
      : _results(std::move(results)), _function(function) {}
  Value value(const QORQL_RowView& row) const override { return _results->value(_function, row); }

 private:
  std::shared_ptr<const QORQL_LazyResults> _results;
  std::size_t _function;
};

class BoundNegation final : public QORQL_BoundValue {
 public:
  explicit BoundNegation(Bound operand) : _operand(std::move(operand)) {}
  Value value(const QORQL_RowView& row) const override { return QORQL_negate(_operand->value(row)); }

 private:
  Bound _operand;
};

// The operands are computed from the left and combined from the right.
class BoundChain final : public QORQL_BoundValue {
 public:
  void add(Bound operand, QORQL_Operator op) {
    _operands.push_back(std::move(operand));
    _operators.push_back(op);
  }
  Value value(const QORQL_RowView& row) const override {
    std::vector<Value> values;
    values.reserve(_operands.size());
    for (const Bound& operand : _operands) values.push_back(operand->value(row));
    return QORQL_combineChain(_operators, values);
  }

 private:
  std::vector<Bound> _operands;
  std::vector<QORQL_Operator> _operators;  // the last one is NONE
};

}  // namespace

bool QORQL_Binder::namesResults(const QORString& className) const {
  const QORsint32 column = _table.getFunctionColumn();
  return column >= 0 && !className.isEmpty() && _table.getColumnIndex(className) == column;
}

QORsint32 QORQL_Binder::sourceColumn(const QORString& className) const {
  const QORsint32 column = className.isEmpty() ? -1 : _table.getColumnIndex(className);
  if (column < 0 || namesResults(className)) return -1;
  const QORuint32 cell = _table.cellOfColumn(static_cast<QORuint32>(column));
  return static_cast<QORsint32>(_table.lazy()->sourceColumn(cell));
}

Bound QORQL_Binder::bindProperty(const QORString& className, const QORString& propertyName) const {
  if (namesResults(className)) return nullptr;
  const QORsint32 column = sourceColumn(className);
  if (column < 0) return std::make_unique<BoundNull>();
  auto property = QORQL_PropertyColumn::bind(*_table.lazy()->rows(), static_cast<QORuint32>(column), propertyName);
  if (!property) return nullptr;
  if (property->isComplete()) return std::make_unique<BoundProperty>(std::move(*property));
  return std::make_unique<BoundPartialProperty>(*property, className, propertyName);
}

Bound QORQL_Binder::bindFetched(const QORString& className, const QORString& propertyName) const {
  const QORsint32 column = sourceColumn(className);
  if (column < 0) return std::make_unique<BoundNull>();
  auto property = QORQL_PropertyColumn::bind(*_table.lazy()->rows(), static_cast<QORuint32>(column), propertyName);
  return property ? std::make_unique<BoundProperty>(std::move(*property)) : nullptr;
}

Bound QORQL_Binder::bindFunction(const QORQL_Function& function) const {
  if (function.getFunctionID() != QORQL_FUNCTIONID_OBJECTPATH) return nullptr;
  const QORSmrPtr<QORString> className(function.argumentClass());
  if (className.IsNull()) return std::make_unique<BoundNull>();
  if (namesResults(*className)) return nullptr;
  const QORsint32 column = sourceColumn(*className);
  if (column < 0) return std::make_unique<BoundNull>();
  return std::make_unique<BoundObjectPath>(static_cast<QORuint32>(column), *className);
}

Bound QORQL_Binder::bindFactor(const QORQL_Factor& factor) const {
  if (!factor.getSelectedEntry().IsNull()) return bindEntry(*factor.getSelectedEntry());
  if (!factor.getEvaluatable().IsNull()) {
    Bound nested = bind(factor.getEvaluatable());
    if (nested == nullptr || factor.getOperator() != QORQL_OperatorMINUS) return nested;
    return std::make_unique<BoundNegation>(std::move(nested));
  }
  if (factor.getClassName().IsNull()) {
    if (factor.getLiteral().IsNull()) return nullptr;
    return std::make_unique<BoundLiteral>(factor.getLiteral());
  }
  const bool hasProperty = !factor.getPropertyName().IsNull() && !factor.getPropertyName()->isEmpty();
  if (QORQL_hasPath(factor) || QORQL_hasIndex(factor) || !hasProperty) return nullptr;
  return bindProperty(*factor.getClassName(), *factor.getPropertyName());
}

template <class Node>
Bound QORQL_Binder::bindChain(const Node& first) const {
  auto chain = std::make_unique<BoundChain>();
  for (const Node& link : QORQL_linksOf(first)) {
    Bound operand = bind(QORQL_operandOf(link));
    if (operand == nullptr) return nullptr;
    chain->add(std::move(operand), link.getOperator());
  }
  return chain;
}

Bound QORQL_Binder::bind(const QORSmrPtr<QORQL_Evaluatable>& node) const {
  const QORQL_Evaluatable* const bare = QORQL_peel(node.Get());
  if (const auto* factor = QORQL_nodeAs<QORQL_Factor>(bare)) return bindFactor(*factor);
  if (const auto* term = QORQL_nodeAs<QORQL_Term>(bare)) return bindChain(*term);
  if (const auto* arithmetic = QORQL_nodeAs<QORQL_Arithmetic>(bare)) return bindChain(*arithmetic);
  if (const auto* function = QORQL_nodeAs<QORQL_Function>(bare)) return bindFunction(*function);
  return nullptr;
}

QORQL_BoundSides QORQL_Binder::bindSides(const QORQL_Comparison& comparison) const {
  return {bind(comparison.getLHSArithmeticExpression()), bind(comparison.getRHSArithmeticExpression())};
}

Bound QORQL_Binder::bindEntry(const QORQL_SelectedEntry& entry) const {
  const std::shared_ptr<QORQL_LazyResults>& results = _table.lazy()->results();
  if (entry.GetFunctionID() != QORQL_FUNCTIONID_UNKNOWN && results != nullptr) {
    const QORsint32 function = results->find(QORQL_SelectList::_functionID(entry));
    if (function < 0) return std::make_unique<BoundNull>();
    return std::make_unique<BoundResult>(results, static_cast<std::size_t>(function));
  }
  if (entry.isPlainProperty()) return bindProperty(entry.getClassName(), entry.getPropertyName());
  return bind(entry.getExpression());
}
