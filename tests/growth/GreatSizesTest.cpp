// Statements of a size that nobody writes by hand give their result or a stated
// error, and so does every byte at every place of a short one.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "QueryWorld.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr std::size_t kMillion = 1000000;

// The scanner shows bytes that it does not know on standard output: not here.
class SilentOutput {
 public:
  SilentOutput() : _buffer(std::cout.rdbuf(nullptr)) {}
  SilentOutput(const SilentOutput&) = delete;
  SilentOutput& operator=(const SilentOutput&) = delete;
  ~SilentOutput() {
    std::cout.rdbuf(_buffer);
    std::cout.clear();
  }

 private:
  std::streambuf* _buffer;
};

struct GreatSizes : testing::Test {
  QueryWorld world{R"(
class C { [key] uint32 Id; string Text; };
instance of C { Id = 1; Text = "one"; };
instance of C { Id = 2; };
)"};
  QueryOutcome run(const std::string& query) { return world.runIn(query, QORQL_DataTable::kExecutionLazy); }
};

TEST_F(GreatSizes, AStatementOfTenMegabytes) {
  std::string query = "SELECT Id FROM C WHERE Text = 'one'";
  const std::string term = " OR Text = '" + std::string(180, 'x') + "'";
  while (query.size() < 10 * kMillion) query += term;
  query += " OR Id = 2";
  EXPECT_THAT(run(query).rows, ElementsAre("2")) << "the last operand decides where all have a value";
  EXPECT_THAT(run("SELECT Id FROM C WHERE Id = 1" + std::string(10 * kMillion, ' ')).rows, ElementsAre("1"));
  EXPECT_EQ(run("SELECT Id FROM C WHERE Id = 1" + std::string(10 * kMillion, '\n') + " ,").error,
            "parse 2 line 10000001: unexpected token ',' found");
}

TEST_F(GreatSizes, NamesOfAMegabyteInEveryPlace) {
  const std::string name(kMillion, 'n');
  const std::string capitals(kMillion, 'N');  // as aliases are kept
  EXPECT_THAT(run("SELECT " + name + ".Id FROM C AS " + name).rows, ElementsAre("1", "2"));
  EXPECT_THAT(run("SELECT Id AS " + name + " FROM C ORDER BY " + name + " DESC").columns, ElementsAre(capitals));
  EXPECT_EQ(run("SELECT Id FROM " + name).error, "parse 12 line 0: property 'Id' not found in any class");
  EXPECT_EQ(run("SELECT C." + name + " FROM C").rows.size(), 0U);
  EXPECT_EQ(run("SELECT " + name + "(Id) FROM C").error, "parse 17 line 1: Invalid function defined");
  EXPECT_NE(run("SELECT Id FROM C WHERE " + name + ".Id = 1").error, "");
  EXPECT_EQ(run("SELECT Id FROM C FORMAT AS " + name).error.substr(0, 7), "parse 2");
}

TEST_F(GreatSizes, LiteralsOfTenMegabytes) {
  const std::string letters(10 * kMillion, 'x');
  EXPECT_THAT(run("SELECT '" + letters + "' AS X FROM C WHERE Id = 1").rows, ElementsAre(letters));
  EXPECT_NE(run("SELECT Id FROM C WHERE Id = '" + letters).error, "") << "without its end";
  EXPECT_EQ(run("SELECT Id FROM C WHERE Id < " + std::string(10 * kMillion, '9')).error, "");
}

TEST_F(GreatSizes, AThousandClassesInFrom) {
  constexpr int kClasses = 1000;
  std::string mof;
  std::string from;
  for (int i = 0; i < kClasses; ++i) {
    const std::string name = "F" + std::to_string(i);
    mof += "class " + name + " { [key] uint32 Id; uint32 P" + std::to_string(i) + "; };instance of " + name +
           " { Id = 1; };";
    from += (i == 0 ? "" : ", ") + name;
  }
  MofLoader(world.manager().sink()).loadText(mof, "classes");
  EXPECT_THAT(world.rows("SELECT F0.Id, P999 FROM " + from), ElementsAre("1|NULL"));
  EXPECT_THAT(run("SELECT * FROM " + from).columns, SizeIs(2 * kClasses));
}

TEST_F(GreatSizes, EveryByteAtEveryPlaceOfAShortQuery) {
  const SilentOutput silent;
  const std::string query = "SELECT Id FROM C WHERE Id*2.5 = 'a' ORDER BY Id ASC";
  for (std::size_t place = 0; place <= query.size(); ++place) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string inserted = query;
      inserted.insert(place, 1, static_cast<char>(byte));
      world.run(inserted);
      if (place == query.size()) continue;
      std::string replaced = query;
      replaced[place] = static_cast<char>(byte);
      world.run(replaced);
    }
    ASSERT_FALSE(HasFailure()) << "at " << place;
  }
}

TEST_F(GreatSizes, EveryByteAtEveryPlaceOfAShortFilter) {
  const SilentOutput silent;
  const QORSmrPtr<IQoriObject> instance(
      MofLoader(world.manager().sink()).readInstances("instance of C { Id = 1; };", "instance").at(0));
  const std::string filter = "SELECT * FROM C WHERE Id = 1 AND Text <> 'b'";
  for (std::size_t place = 0; place < filter.size(); ++place) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = filter;
      changed[place] = static_cast<char>(byte);
      CQLQueryStatement statement("CQL", QORString(changed.data(), changed.size()), "root/cimv2", "");
      if (statement.validate() == QUERY_VALIDATE_SUCCESS) {
        const bool walked = statement.isMatchFromClause(instance) && statement.isMatchWhereClause(instance);
        EXPECT_EQ(statement.isMatch(instance, "root/cimv2"), walked) << changed;
      }
    }
  }
}

}  // namespace
