// One property of many objects: read in runs, one by one, and where some objects lack it.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "Cimom/Model/ModelInstance.h"
#include "Cimom/QORQL/Lazy/QORQL_PropertyColumn.h"
#include "FetchedStatement.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriValue.h"

namespace {

std::string model() {
  std::string mof = "class A { [key] uint32 Id; uint32 K; }; class B : A { string More; };";
  for (int i = 0; i < 100; ++i) {
    const std::string id = std::to_string(i);
    mof += "instance of " + std::string(i % 3 == 0 ? "B" : "A") + " { Id = " + id +
           (i % 2 == 0 ? "; K = " + id + "; };" : "; };");
  }
  return mof;
}

using Object = QORSmrPtr<IQoriObject>;

// A stored instance that has the number in its last property.
Object stored(std::vector<ModelLayout::Column> columns, unsigned number) {
  std::vector<QORSmrPtr<IQoriValue>> values(columns.size());
  values.back() = new CQoriValue(number, CQoriType::uint32);
  const QORSmrPtr<ModelLayout> layout(new ModelLayout(columns));
  const QORSmrPtr<ModelShape> shape(new ModelShape{"root/cimv2", "A", layout, {}});
  return ModelInstance::create(shape, values);
}

// The copy that has property K alone.
Object onlyK(const Object& source) {
  const QORSmrPtr<QORValSlist<QORString>> names(new QORValSlist<QORString>);
  names->append("K");
  return {new CQoriBaseObject(source, names, true)};
}

// Shows its values by getScalarAt() alone.
class Shielded final : public IQoriObject {
 public:
  explicit Shielded(const Object& inner) : _inner(inner) {}
  const QORString& getClassName() const noexcept override { return _inner->getClassName(); }
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override { return {}; }
  QORuint32 getPropertyCount() const noexcept override { return _inner->getPropertyCount(); }
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override { return _inner->getPropertyAt(position); }
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool includeInherited) const override {
    return _inner->getProperty(name, includeInherited);
  }
  const IQoriLayout* getLayout() const noexcept override { return _inner->getLayout(); }
  QoriScalar getScalarAt(QORuint32 position) const noexcept override { return _inner->getScalarAt(position); }

 private:
  Object _inner;
};

// What the column K of these objects gives for each of them, and null for none behind them.
std::string readK(const std::vector<Object>& objects, bool& readsCells) {
  const QORQL_Extent::ObjectList list(new QORValSlist<Object>);
  for (const Object& object : objects) list->append(object);
  QORQL_LazyRows rows;
  rows.addExtent(std::make_shared<QORQL_Extent>(list));
  const auto column = QORQL_PropertyColumn::bind(rows, 0, "K");
  readsCells = column->readsCells();
  QORQL_RowBlock block = rows.blocks().front();
  std::string whole;
  std::string tuples;
  std::array<QoriScalar, QORQL_PropertyColumn::kBatch> cells;
  column->read(block, 0, objects.size(), cells.data());
  for (std::size_t i = 0; i < objects.size(); ++i) whole += std::to_string(cells[i].u) + " ";
  block.isWholeExtent = false;
  for (QORuint32 i = 0; i < objects.size(); ++i) block.tuples.push_back(i);
  block.tuples.push_back(QORQL_kNoObject);
  column->read(block, 0, objects.size() + 1, cells.data());
  for (std::size_t i = 0; i < objects.size(); ++i) tuples += std::to_string(cells[i].u) + " ";
  EXPECT_EQ(tuples, whole);
  EXPECT_TRUE(cells[objects.size()].isNull());
  return whole;
}

TEST(PropertyColumnCells, AreReadWhereAllObjectsHaveThemAlike) {
  bool readsCells = false;
  const Object one = onlyK(stored({{"A", CQoriType::uint32}, {"K", CQoriType::uint32}}, 1));
  const Object two = onlyK(stored({{"B", CQoriType::string}, {"K", CQoriType::uint32}}, 2));
  EXPECT_EQ(readK({one, two, one}, readsCells), "1 2 1 ");
  EXPECT_TRUE(readsCells);
}

TEST(PropertyColumnCells, AreNotReadWhereTheyLieElsewhereInSomeObjects) {
  bool readsCells = true;
  const Object one = onlyK(stored({{"A", CQoriType::uint32}, {"K", CQoriType::uint32}}, 1));
  const Object two = onlyK(stored({{"K", CQoriType::uint32}}, 2));
  EXPECT_EQ(readK({one, two, one}, readsCells), "1 2 1 ");
  EXPECT_FALSE(readsCells);
}

TEST(PropertyColumnCells, AreNotReadWhereAnObjectHasNone) {
  bool readsCells = true;
  const Object one = onlyK(stored({{"A", CQoriType::uint32}, {"K", CQoriType::uint32}}, 1));
  EXPECT_EQ(readK({one, Object(new Shielded(one)), one}, readsCells), "1 1 1 ");
  EXPECT_FALSE(readsCells);
}

struct PropertyColumn : testing::Test {
  QueryWorld world{model()};
  FetchedStatement fetched{"SELECT Id, K FROM A"};
};

TEST_F(PropertyColumn, ReadsRunsAsItReadsOneByOne) {
  const auto column = QORQL_PropertyColumn::bind(fetched.rows(), 0, "k");
  ASSERT_TRUE(column.has_value());
  EXPECT_TRUE(column->isComplete());
  const QORQL_RowBlock& block = fetched.rows().blocks().front();
  ASSERT_EQ(block.rowCount, 100U);
  for (const QORuint64 first : {0U, 20U, 1U, 36U}) {
    std::array<QoriScalar, QORQL_PropertyColumn::kBatch> cells;
    column->read(block, first, cells.size(), cells.data());
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const IQoriObject* const object = fetched.rows().object(0, block.index(first + i, 0));
      const QoriScalar one = column->view(object);
      EXPECT_EQ(cells[i].kind, one.kind) << first + i;
      EXPECT_EQ(cells[i].u, one.u) << first + i;
      EXPECT_EQ(column->value(object).IsNull(), one.isNull()) << first + i;
    }
  }
}

TEST_F(PropertyColumn, IsNullWhereAnObjectLacksTheProperty) {
  const auto column = QORQL_PropertyColumn::bind(fetched.rows(), 0, "More");
  ASSERT_TRUE(column.has_value());
  EXPECT_FALSE(column->isComplete());
  EXPECT_TRUE(column->view(nullptr).isNull());
  EXPECT_TRUE(column->value(nullptr).IsNull());
}

// The type is that of the value, which need not be made; where there is none nothing tells it.
TEST_F(PropertyColumn, TellsTheTypeOfAValue) {
  QORQL_RowView row(fetched.rows());
  for (const char* const name : {"Id", "K", "More"}) {
    const auto column = QORQL_PropertyColumn::bind(fetched.rows(), 0, name);
    ASSERT_TRUE(column.has_value());
    EXPECT_EQ(column->type(row), nullptr);
    for (QORuint32 i = 0; i < 100; ++i) {
      QORQL_RowView one(fetched.rows());
      one.select(0, i);
      const QORSmrPtr<IQoriValue> value(column->value(one.object(0)));
      const IQoriType* const type = column->type(one);
      ASSERT_EQ(type == nullptr, value.IsNull()) << name << i;
      if (type == nullptr) continue;
      EXPECT_EQ(type->getName(), value->getType()->getName());
      EXPECT_FALSE(type->isArray());
    }
  }
}

TEST_F(PropertyColumn, IsTheSameForTheSameProperty) {
  const auto column = QORQL_PropertyColumn::bind(fetched.rows(), 0, "K");
  EXPECT_TRUE(column->isSameAs(*QORQL_PropertyColumn::bind(fetched.rows(), 0, "K")));
  EXPECT_FALSE(column->isSameAs(*QORQL_PropertyColumn::bind(fetched.rows(), 0, "Id")));
}

}  // namespace
