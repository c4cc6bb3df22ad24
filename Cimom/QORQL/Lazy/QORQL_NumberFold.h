// MIN, MAX, COUNT, SUM and AVG over views of numbers: what the fold of values
// gives, without a value for each row.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_NUMBERFOLD_H
#define QORQL_NUMBERFOLD_H

#include "Cimom/QORQL/Lazy/QORQL_PropertyColumn.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

// The views of one property where they lie in the cells of some rows' objects. BORROWS the cells; null for no object.
struct QORQL_PlacedCells {
  const char* const* cells;
  QORuint32 offset;
  const QoriScalar& operator[](std::size_t i) const noexcept { return QORQL_PropertyColumn::viewIn(cells[i], offset); }
};
// The same where every row has an object.
struct QORQL_DenseCells {
  const char* const* cells;
  QORuint32 offset;
  const QoriScalar& operator[](std::size_t i) const noexcept { return QoriCells::at(cells[i], offset); }
};

class QORQL_NumberFold {
 public:
  explicit QORQL_NumberFold(QORuint32 functionID) noexcept : _functionID(functionID) {}

  // Adds a row's value; false, with nothing changed, when the fold must continue
  // with values: a value that is no number, for all but COUNT.
  bool add(const QoriScalar& value, QORuint64 row) noexcept {
    _hasRows = true;
    if (value.isNull()) return true;
    if (_functionID == QORQL_FUNCTIONID_COUNT) {
      ++_count;
      return true;
    }
    return value.isNumber() && addNumber(value, row);
  }

  // Whether add() would take each of the values of some rows that follow one another: a QoriScalar*,
  // QORQL_PlacedCells or QORQL_DenseCells.
  template <class Values>
  bool takesRun(const Values& values, std::size_t count) const noexcept;
  // Adds them; returns how many are not NULL. REQUIRES takesRun().
  template <class Values>
  std::size_t addRun(const Values& values, std::size_t count, QORuint64 firstRow) noexcept;

  // The state as the fold of values has it. `valueOf(row)` gives the folded
  // property's value on a row, for an extreme that is a row's own value.
  template <class ValueOf>
  void handOver(QORQL_SelectList::Function& function, const ValueOf& valueOf) const {
    function.isTypeSet = _isStarted || (_functionID == QORQL_FUNCTIONID_COUNT && _hasRows);
    if (!function.isTypeSet) return;
    function.value = _isRowsOwn ? valueOf(_row) : madeValue();
  }

 private:
  bool addNumber(const QoriScalar& value, QORuint64 row) noexcept;
  // Adds those from `first` on that are of the fold's own kind, for the common kinds; returns how many.
  template <class Values>
  std::size_t addAlike(const Values& values, std::size_t first, std::size_t count, QORuint64 firstRow) noexcept;
  // The same of unsigned ones. REQUIRES an unsigned fold.
  template <class Values>
  std::size_t addUnsigned(const Values& values, std::size_t first, std::size_t count, QORuint64 firstRow) noexcept;
  // The same for an extreme; isBetter(a, b) tells which of two is nearer to it.
  template <class Values, class IsBetter>
  std::size_t addToExtreme(const Values& values, std::size_t first, std::size_t count, QORuint64 firstRow,
                           const IsBetter& isBetter) noexcept;
  void addToSum(const QoriScalar& value) noexcept;
  QORSmrPtr<IQoriValue> madeValue() const;

  QORuint32 _functionID;
  bool _hasRows = false;
  bool _isStarted = false;  // a first number has set the type
  bool _isRowsOwn = false;  // the extreme is the value of _row, with that value's type
  QORuint64 _count = 0;
  QORuint64 _row = 0;
  QoriScalar _folded;  // Null: a sum that does not fit
};

#endif
