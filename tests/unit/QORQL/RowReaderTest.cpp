// Rows that exist and rows that do not are read alike, in any order.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/Lazy/QORQL_RowReader.h"
#include "FetchedStatement.h"

namespace {

constexpr char kModel[] = R"(
class A { [key] uint32 Id; uint32 K; string S; };
class B : A { string More; };
instance of A { Id = 1; K = 10; S = "x"; };
instance of B { Id = 2; S = "y"; More = "m"; };
instance of A { Id = 3; K = 30; };
)";

struct RowReader : testing::Test {
  // All columns and fetched properties of the rows in an order that jumps.
  std::string read(QORQL_DataTable::ExecutionMode mode) {
    FetchedStatement fetched("SELECT K, S, K + 1 AS X, OBJECTPATH(A) AS P FROM A", mode);
    QORQL_RowReader reader(fetched.symbols, fetched.table);
    for (QORuint32 i = 0; i < 4; ++i) EXPECT_EQ(reader.addEntry(fetched.entry(i)), i);
    const std::size_t expression = reader.addExpression(fetched.entry(2)->getExpression());
    const std::size_t more = reader.addFetchedProperty("A", "More");
    std::string text = std::to_string(reader.rowCount()) + ":";
    for (const QORuint64 row : {0U, 2U, 1U, 1U, 0U}) {
      reader.select(row);
      EXPECT_TRUE(reader.hasRow());
      for (const std::size_t slot :
           {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{3}, expression, more}) {
        const QORSmrPtr<IQoriValue> value(reader.value(slot));
        QORSmrPtr<IQoriValue> holder;
        EXPECT_EQ(reader.view(slot, holder).isNull(), value.IsNull());
        text += value.IsNull() ? " null" : " " + QueryWorld::textOf(value->toString());
      }
      text += " " + QueryWorld::textOf(reader.object("A")->getClassName()) + ";";
    }
    return text;
  }
  QueryWorld world{kModel};
};

TEST_F(RowReader, ReadsBothAlike) {
  const std::string lazy = read(QORQL_DataTable::kExecutionLazy);
  EXPECT_EQ(lazy, read(QORQL_DataTable::kExecutionPlain));
  EXPECT_EQ(lazy.substr(0, lazy.find(';')), "3: 10 x 11 root/cimv2:A.Id=1 11 null A");
}

TEST_F(RowReader, TellsPropertiesFromWhatIsComputed) {
  FetchedStatement fetched("SELECT K, K + 1 AS X, INSTANCEOF(A) AS I FROM A");
  QORQL_RowReader reader(fetched.symbols, fetched.table);
  const std::size_t property = reader.addEntry(fetched.entry(0));
  const std::size_t computed = reader.addEntry(fetched.entry(1));
  const std::size_t asked = reader.addEntry(fetched.entry(2));
  EXPECT_TRUE(reader.isProperty(property));
  EXPECT_FALSE(reader.isProperty(computed));
  EXPECT_TRUE(reader.isBound(computed));
  EXPECT_FALSE(reader.isBound(asked));
}

TEST_F(RowReader, KnowsNoObjectOfAnotherClass) {
  FetchedStatement fetched("SELECT K FROM A");
  QORQL_RowReader reader(fetched.symbols, fetched.table);
  reader.select(0);
  EXPECT_TRUE(reader.object("Nowhere").IsNull());
  EXPECT_EQ(reader.fetchedObject("Nowhere"), nullptr);
  EXPECT_EQ(reader.fetchedObject("A"), reader.object("A").Get());
}

}  // namespace
