// The fold of an aggregate over views of numbers, of one kind or of several.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_NumberFold.h"
#include "NumberViews.h"
#include "QueryWorld.h"
#include "cimom/CQoriValue.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;

const QoriScalar kText = CQoriValue(QORString("text")).scalar();

// "type value" of the fold, "none" before a first value, "null" for a sum that does not fit.
std::string outcomeOf(const QORQL_NumberFold& fold) {
  QORQL_SelectList::Function function;
  fold.handOver(function, [](QORuint64 row) { return Value(new CQoriValue(row, CQoriType::uint8)); });
  if (!function.isTypeSet) return "none";
  if (function.value.IsNull()) return "null";
  return QueryWorld::textOf(function.value->getType()->getName() + " " + function.value->toString());
}

template <class Cells>
std::string foldedInPlace(QORuint32 functionID, const std::vector<const char*>& cells) {
  const Cells placed{cells.data(), 0};
  QORQL_NumberFold fold(functionID);
  EXPECT_TRUE(fold.takesRun(placed, cells.size()));
  fold.addRun(placed, cells.size(), 0);
  return outcomeOf(fold);
}

// Folds the values where they lie in objects, with and without a row without object behind them.
void expectInPlace(QORuint32 functionID, const std::vector<QoriScalar>& values, const std::string& expected) {
  std::vector<const char*> cells;
  for (const QoriScalar& value : values) cells.push_back(reinterpret_cast<const char*>(&value));
  EXPECT_EQ(foldedInPlace<QORQL_DenseCells>(functionID, cells), expected);
  if (!cells.empty()) cells.push_back(nullptr);
  EXPECT_EQ(foldedInPlace<QORQL_PlacedCells>(functionID, cells), expected);
}

// The values of some rows, one by one and as runs, with the same outcome.
std::string folded(QORuint32 functionID, const std::vector<QoriScalar>& values) {
  QORQL_NumberFold fold(functionID);
  std::size_t present = 0;
  for (std::size_t row = 0; row < values.size(); ++row) {
    EXPECT_TRUE(fold.add(values[row], row)) << "row " << row;
    present += values[row].isNull() ? 0 : 1;
  }
  for (std::size_t first = 0; first <= values.size(); ++first) {
    QORQL_NumberFold runs(functionID);
    const QoriScalar* const second = values.data() + first;
    EXPECT_TRUE(runs.takesRun(values.data(), values.size()));
    EXPECT_EQ(runs.addRun(values.data(), first, 0) + runs.addRun(second, values.size() - first, first), present);
    EXPECT_EQ(outcomeOf(runs), outcomeOf(fold)) << "two runs, of which the first has " << first << " rows";
  }
  expectInPlace(functionID, values, outcomeOf(fold));
  return outcomeOf(fold);
}

constexpr QORuint64 kMost = std::numeric_limits<QORuint64>::max();
constexpr QORsint64 kLeast = std::numeric_limits<QORsint64>::min();

TEST(NumberFold, SumsOfOneKindHaveItsWidestType) {
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(QORuint64{1}), number(QORuint64{2})}), "uint64 3");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(QORsint64{-1}), number(QORsint64{-2})}), "sint64 -3");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(0.5), number(1.0)}), "real64 1.5");
}

TEST(NumberFold, SumsOfSeveralKindsGoWhereTheyFit) {
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(0.5), number(QORuint64{2})}), "real64 2.5");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(QORsint64{-2}), number(0.5)}), "real64 -1.5");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(QORuint64{2}), number(0.5)}), "real64 2.5");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(QORuint64{1}), number(QORsint64{-3})}), "sint64 -2");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(QORsint64{-3}), number(QORuint64{5})}), "sint64 2");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(QORsint64{1}), number(kMost - 1)}), "uint64 18446744073709551615");
}

TEST(NumberFold, ASumThatDoesNotFitIsNullForGood) {
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(kMost), number(QORuint64{1}), number(QORsint64{-1})}), "null");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {number(kLeast), number(QORsint64{-1}), number(0.5)}), "null");
}

TEST(NumberFold, ExtremesAreTheRowsOwnValues) {
  EXPECT_EQ(folded(QORQL_FUNCTIONID_MIN, {number(QORuint64{2}), number(QORsint64{-1}), number(0.5)}), "uint8 1");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_MAX, {number(QORuint64{2}), number(QORsint64{-1}), number(2.5)}), "uint8 2");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_MAX, {number(QORuint64{2}), number(QORuint64{1})}), "uint64 2");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_MIN, {number(0.5), number(std::numeric_limits<double>::quiet_NaN())}),
            "real64 0.5");
}

TEST(NumberFold, CountsWhateverIsNotNull) {
  EXPECT_EQ(folded(QORQL_FUNCTIONID_COUNT, {kText, QoriScalar(), number(0.5)}), "uint64 2");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_COUNT, {QoriScalar()}), "uint64 0");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_COUNT, {}), "none");
  EXPECT_EQ(folded(QORQL_FUNCTIONID_SUM, {QoriScalar()}), "none");
}

TEST(NumberFold, LeavesWhatIsNoNumberToOthers) {
  QORQL_NumberFold fold(QORQL_FUNCTIONID_SUM);
  EXPECT_FALSE(fold.add(kText, 0));
  EXPECT_TRUE(fold.add(number(QORuint64{1}), 1));
  EXPECT_FALSE(fold.add(kText, 2));
  const std::vector<QoriScalar> values = {number(1.5), QoriScalar(), kText};
  EXPECT_TRUE(fold.takesRun(values.data(), 2));
  EXPECT_FALSE(fold.takesRun(values.data(), 3));
  EXPECT_TRUE(QORQL_NumberFold(QORQL_FUNCTIONID_COUNT).takesRun(values.data(), 3));
}

}  // namespace
