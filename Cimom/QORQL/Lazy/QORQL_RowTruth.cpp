// The truth of comparisons: fused forms for relations and null tests on bound
// operands, the comparison's own rules on bound values, and evaluation on a row
// for everything else.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_RowTruth.h"

#include <algorithm>
#include <array>

#include "Cimom/QORQL/Lazy/QORQL_ClassTest.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Bound = std::unique_ptr<QORQL_BoundValue>;
using Value = QORSmrPtr<IQoriValue>;

class RelationTruth final : public QORQL_RowTruth {
 public:
  RelationTruth(Bound left, QoriRelation relation, Bound right)
      : _left(std::move(left)), _right(std::move(right)), _relation(relation), _leftRun(*_left), _rightRun(*_right) {}

  QoriTruth test(const QORQL_RowView& row) override {
    Value rightHolder;
    Value leftHolder;
    const QoriScalar right = _right->view(row, rightHolder);
    const QoriScalar left = _left->view(row, leftHolder);
    const QORQL_ViewTruth truth = QORQL_relateViews(left, _relation, right);
    if (truth != QORQL_ViewTruth::Undecided) return static_cast<QoriTruth>(truth);
    return _left->value(row)->relate(_relation, *_right->value(row));
  }
  bool testRun(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QORQL_RunTruths& truths) override {
    if (!_leftRun.isReadable() || !_rightRun.isReadable()) return false;
    _leftRun.read(block, first, count);
    _rightRun.read(block, first, count);
    QORQL_relateRun(_leftRun, _relation, _rightRun, count, truths);
    return true;
  }
  std::optional<std::size_t> selectRun(const QORQL_RowBlock& block, QORuint64 first, std::size_t count,
                                       QORuint32* out) override {
    const QORQL_PropertyColumn* const column = _leftRun.column();
    if (column == nullptr || !_rightRun.isConstant()) return std::nullopt;
    return QORQL_selectRun(*column, _relation, _rightRun.constant(), block, first, count, out);
  }

 private:
  Bound _left;
  Bound _right;
  QoriRelation _relation;
  QORQL_RunOperand _leftRun;
  QORQL_RunOperand _rightRun;
};

class NullTruth final : public QORQL_RowTruth {
 public:
  NullTruth(Bound operand, bool wantsNull)
      : _operand(std::move(operand)), _wantsNull(wantsNull), _operandRun(*_operand) {}
  QoriTruth test(const QORQL_RowView& row) override {
    Value holder;
    return qori::truth(_operand->view(row, holder).isNull() == _wantsNull);
  }
  bool testRun(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QORQL_RunTruths& truths) override {
    if (!_operandRun.isReadable()) return false;
    _operandRun.read(block, first, count);
    for (std::size_t i = 0; i < count; ++i) truths[i] = QORQL_viewTruth(_operandRun[i].isNull() == _wantsNull);
    return true;
  }

 private:
  Bound _operand;
  bool _wantsNull;
  QORQL_RunOperand _operandRun;
};

// The text is searched without making a value of the property.
class LikeTruth final : public QORQL_RowTruth {
 public:
  LikeTruth(const QORQL_Comparison& comparison, Bound left, Bound right)
      : _comparison(comparison),
        _left(std::move(left)),
        _right(std::move(right)),
        _leftRun(*_left),
        _rightRun(*_right) {}
  QoriTruth test(const QORQL_RowView& row) override {
    Value rightHolder;
    Value leftHolder;
    const QoriScalar right = _right->view(row, rightHolder);
    const QoriScalar left = _left->view(row, leftHolder);
    if (left.kind == QoriScalarKind::Text && right.kind == QoriScalarKind::Text) {
      return qori::truth(left.text->contains(*right.text, true));
    }
    return _comparison.compareValues(_left->value(row), _right->value(row), QORString::emptyString());
  }
  bool testRun(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QORQL_RunTruths& truths) override {
    if (!_leftRun.isReadable() || !_rightRun.isReadable()) return false;
    _leftRun.read(block, first, count);
    _rightRun.read(block, first, count);
    // Takes less time than to wait for one text after the other.
    for (std::size_t i = 0; i < count; ++i) QORQL_PropertyColumn::prefetchText(_leftRun[i]);
    for (std::size_t i = 0; i < count; ++i) {
      const QoriScalar& left = _leftRun[i];
      const QoriScalar& right = _rightRun[i];
      const bool areTexts = left.kind == QoriScalarKind::Text && right.kind == QoriScalarKind::Text;
      truths[i] =
          areTexts ? QORQL_viewTruth(left.text->find(*right.text) != QORString::npos) : QORQL_ViewTruth::Undecided;
    }
    return true;
  }

 private:
  const QORQL_Comparison& _comparison;
  Bound _left;
  Bound _right;
  QORQL_RunOperand _leftRun;
  QORQL_RunOperand _rightRun;
};

// ANY and EVERY: the elements are compared where they lie, as far as views tell.
class ElementTruth final : public QORQL_RowTruth {
 public:
  ElementTruth(const QORQL_Comparison& comparison, Bound left, Bound right)
      : _comparison(comparison),
        _relation(QORQL_relationOf(comparison.getOperator())),
        _left(std::move(left)),
        _right(std::move(right)),
        _leftRun(*_left),
        _rightRun(*_right) {}
  QoriTruth test(const QORQL_RowView& row) override {
    Value rightHolder;
    Value leftHolder;
    const QoriScalar right = _right->view(row, rightHolder);
    const QoriScalar left = _left->view(row, leftHolder);
    const QORQL_ViewTruth truth = relate(left, right);
    if (truth != QORQL_ViewTruth::Undecided) return static_cast<QoriTruth>(truth);
    const Value value(_right->value(row));
    return _comparison.compareValues(_left->value(row), value, QORString::emptyString());
  }
  bool testRun(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QORQL_RunTruths& truths) override {
    if (!_leftRun.isReadable() || !_rightRun.isReadable()) return false;
    _leftRun.read(block, first, count);
    _rightRun.read(block, first, count);
    for (std::size_t i = 0; i < count; ++i) truths[i] = relate(_leftRun[i], _rightRun[i]);
    return true;
  }

 private:
  QORQL_ViewTruth relate(const QoriScalar& left, const QoriScalar& right) const {
    return _comparison.asksLeft() ? relateElements(right, left) : relateElements(left, right);
  }
  QORQL_ViewTruth relateElements(const QoriScalar& fixed, const QoriScalar& array) const {
    if (fixed.isNull() || array.kind != QoriScalarKind::Complex) return QORQL_ViewTruth::Null;
    const QORSmrPtr<IQoriValue::List> elements(array.value->getArray());
    if (elements.IsNull()) return QORQL_ViewTruth::Null;
    const QORQL_ViewTruth last = QORQL_viewTruth(_comparison.asksAny());
    QORQL_ViewTruth truth = QORQL_ViewTruth::False;
    QORValSlistIterator<Value> iterator(*elements);
    while (++iterator) {
      const Value& element = iterator.key();
      truth = element.IsNull() ? QORQL_ViewTruth::False : QORQL_relateViews(fixed, _relation, element->scalar());
      if (truth == last || truth == QORQL_ViewTruth::Undecided) break;
    }
    return truth;
  }

  const QORQL_Comparison& _comparison;
  const QoriRelation _relation;
  Bound _left;
  Bound _right;
  QORQL_RunOperand _leftRun;
  QORQL_RunOperand _rightRun;
};

// ISA of a column's objects, which their layouts tell as soon as one object of the layout has been tested.
class IsaTruth final : public QORQL_RowTruth {
 public:
  IsaTruth(const QORQL_LazyRows& rows, QORuint32 column, const QORString& nameSpace, const QORString& className)
      : _extent(rows.extent(column)), _column(column), _test(nameSpace, className) {}
  QoriTruth test(const QORQL_RowView& row) override {
    const IQoriObject* const object = row.object(_column);
    return object == nullptr ? QoriTruth::Null : _test.test(*object);
  }
  bool testRun(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QORQL_RunTruths& truths) override {
    if (!_extent.hasLayouts()) return false;
    _layouts = block.fetchLayouts(_extent, _column, first, count, _buffer.data());
    _test.beginRun();
    look(0, count, truths);
    return true;
  }
  // Once all layouts of the column's objects have been asked about.
  std::optional<std::size_t> selectRun(const QORQL_RowBlock& block, QORuint64 first, std::size_t count,
                                       QORuint32* out) override {
    if (!_extent.hasLayouts()) return std::nullopt;
    _test.beginRun();
    if (!_test.remembersAll(_extent.layouts())) return std::nullopt;
    std::size_t selected = 0;
    for (std::size_t done = 0; done < count; done += _buffer.size()) {
      const std::size_t run = std::min(_buffer.size(), count - done);
      const auto* const layouts = block.fetchLayouts(_extent, _column, first + done, run, _buffer.data());
      const std::size_t found = _test.select(layouts, run, out + selected);
      for (std::size_t i = selected; i < selected + found; ++i) out[i] = block.index(first + done + out[i], 0);
      selected += found;
    }
    return selected;
  }
  void learn(std::size_t next, std::size_t count, QORQL_RunTruths& truths) override {
    if (_layouts != nullptr && _test.rememberedCount() != _known) look(next, count, truths);
  }

 private:
  void look(std::size_t first, std::size_t count, QORQL_RunTruths& truths) noexcept {
    _test.look(_layouts + first, count - first, truths.data() + first);
    _known = _test.rememberedCount();
  }

  const QORQL_Extent& _extent;
  const QORuint32 _column;
  QORQL_ClassTest _test;
  std::size_t _known = 0;                        // how many layouts were remembered when the run was looked at last
  const IQoriLayout* const* _layouts = nullptr;  // of the run; null for no object
  std::array<const IQoriLayout*, QORQL_PropertyColumn::kBatch> _buffer;
};

// A condition that is no comparison.
class ValueTruth final : public QORQL_RowTruth {
 public:
  ValueTruth(const QORQL_Comparison& comparison, Bound left, Bound right, const QORString& nameSpace)
      : _comparison(comparison), _left(std::move(left)), _right(std::move(right)), _nameSpace(nameSpace) {}
  QoriTruth test(const QORQL_RowView& row) override {
    const Value right(_right == nullptr ? Value() : _right->value(row));
    return _comparison.compareValues(_left->value(row), right, _nameSpace);
  }

 private:
  const QORQL_Comparison& _comparison;
  Bound _left;
  Bound _right;
  const QORString& _nameSpace;
};

class RowEvaluation final : public QORQL_RowTruth {
 public:
  RowEvaluation(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, QORQL_Comparison& comparison,
                const QORString& nameSpace)
      : _symbolTable(symbolTable),
        _table(table),
        _comparison(comparison),
        _nameSpace(nameSpace),
        _row(new QORQL_DataRow()) {
    _row->setParentTable(table.Get());
  }
  QoriTruth test(const QORQL_RowView& row) override {
    _table->lazy()->fillRow(row, *_row);
    return QORQL_truthOf(_comparison.evaluate(_symbolTable, _row, _nameSpace));
  }

 private:
  QORQL_SymbolTable& _symbolTable;
  QORSmrPtr<QORQL_DataTable>& _table;
  QORQL_Comparison& _comparison;
  const QORString& _nameSpace;
  QORSmrPtr<QORQL_DataRow> _row;
};

// ISA of a whole object by a class name; null for every other left side.
std::unique_ptr<QORQL_RowTruth> makeIsa(const QORQL_DataTable& table, const QORQL_Comparison& comparison,
                                        const QORQL_BoundValue* right, const QORString& nameSpace) {
  const QORQL_Factor* const left = QORQL_soleLeaf(comparison.getLHSArithmeticExpression());
  const QoriScalar* const name = right == nullptr ? nullptr : right->constant();
  if (left == nullptr || !QORQL_isWholeObject(*left) || name == nullptr || name->kind != QoriScalarKind::Text)
    return {};
  const QORsint32 column = QORQL_Binder(table).sourceColumn(*left->getClassName());
  if (column < 0 || nameSpace.isEmpty()) return {};
  return std::make_unique<IsaTruth>(*table.lazy()->rows(), static_cast<QORuint32>(column), nameSpace, *name->text);
}

}  // namespace

std::unique_ptr<QORQL_RowTruth> QORQL_RowTruth::make(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                                     const QORQL_ConditionPlan& plan, QORQL_BoundSides sides,
                                                     const QORString& nameSpace) {
  QORQL_Comparison& comparison = *plan.comparison;
  const bool hasRight = !comparison.getRHSArithmeticExpression().IsNull();
  const QORQL_Operator op = comparison.getOperator();
  if (op == QORQL_OperatorISA && !comparison.isArrayComp()) {
    if (auto isa = makeIsa(*table, comparison, sides.right.get(), nameSpace)) return isa;
  }
  if (sides.left == nullptr || (hasRight && sides.right == nullptr) || op == QORQL_OperatorISA) {
    return std::make_unique<RowEvaluation>(symbolTable, table, comparison, nameSpace);
  }
  if (op == QORQL_OperatorISNULL || op == QORQL_OperatorISNOTNULL) {
    return std::make_unique<NullTruth>(std::move(sides.left), op == QORQL_OperatorISNULL);
  }
  if (plan.relation) {
    return std::make_unique<RelationTruth>(std::move(sides.left), *plan.relation, std::move(sides.right));
  }
  if (comparison.isArrayComp() && QORQL_isRelational(op)) {
    return std::make_unique<ElementTruth>(comparison, std::move(sides.left), std::move(sides.right));
  }
  if (op == QORQL_OperatorLIKE) {
    return std::make_unique<LikeTruth>(comparison, std::move(sides.left), std::move(sides.right));
  }
  return std::make_unique<ValueTruth>(comparison, std::move(sides.left), std::move(sides.right), nameSpace);
}
