// Where a statement does not mean what someone who knows SQL expects.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ExplanationWorld.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Surprises = ExplanationWorld;

TEST_F(Surprises, SurprisesOfTheLanguage) {
  EXPECT_THAT(rules("SELECT Name FROM Disk WHERE Size = 1 OR Size = 2"), ElementsAre("WHERE-3"));
  EXPECT_THAT(rules("SELECT Name FROM Disk WHERE Name LIKE 'd%'"), ElementsAre("LIKE-1"));
  EXPECT_THAT(rules("SELECT Name FROM Disk WHERE ANY Ports < 2"), ElementsAre("ARR-4"));
  EXPECT_THAT(rules("SELECT Name FROM Disk WHERE ANY Ports <> 2"), ElementsAre("ARR-6"));
  EXPECT_THAT(rules("SELECT Size - 1 - 2 AS S FROM Disk"), ElementsAre("ARITH-2"));
  EXPECT_THAT(rules("SELECT Name FROM Disk ORDER BY Size / 2 / 3 ASC"), ElementsAre("ARITH-2"));
  EXPECT_THAT(rules("SELECT AVG(Size) AS A, SUM(Load) AS S FROM Disk"), ElementsAre("AGG-4"));
  EXPECT_THAT(rules("SELECT *, Name FROM Disk"), ElementsAre("SEL-6"));
  EXPECT_THAT(rules("SELECT a.Name FROM Disk AS a, Disk AS b"), ElementsAre("FROM-5"));
  EXPECT_THAT(rules("SELECT h.Name FROM Disk AS d, Host AS h WHERE d.HostName *= h.Name"), ElementsAre("JOIN-4"));
  EXPECT_THAT(rules("SELECT h.Name FROM Disk AS d, Host AS h WHERE d.HostName *=* h.Name"), ElementsAre("JOIN-4"));
}

// rule: FROM-10, NAME-7
TEST_F(Surprises, AliasesThatNameSomethingElseToo) {
  EXPECT_THAT(surprise("SELECT a.Name FROM Host AS a, Disk AS a"), testing::HasSubstr("names both Host and Disk"));
  EXPECT_THAT(surprise("SELECT Disk.Name FROM Host AS Disk, Disk"), testing::HasSubstr("names both Host and Disk"));
  EXPECT_THAT(surprise("SELECT Disk.Name FROM Disk, Host AS Disk"), testing::HasSubstr("names both Disk and Host"));
  EXPECT_THAT(rules("SELECT Kind.Size FROM Disk AS kind"), ElementsAre("NAME-7"));
  EXPECT_THAT(rules("SELECT Memory.Name FROM Disk AS Memory, Host AS h"), ElementsAre("NAME-7"));
  EXPECT_THAT(rules("SELECT Disk.Name FROM Disk AS disk, Host AS h"), IsEmpty());
}

TEST_F(Surprises, OuterJoinsBesideThirdClasses) {
  EXPECT_THAT(rules("SELECT h.Name FROM Disk AS d, Host AS h, Spare WHERE h.Name =* d.HostName"),
              ElementsAre("JOIN-2"));
}

TEST_F(Surprises, FiltersAreToldOfArithmetic) {
  std::vector<std::string> found;
  const std::string text =
      "SELECT * FROM Disk WHERE Size * 100 / 3 > 5 AND -Size < 3 AND Ports = 3 AND Size > -9223372036854775808 AND "
      "Size "
      "< 18446744073709551616";
  parse(text, [&](const QORQL_Query& parsed, const QORQL_SymbolTable&, const QORString& nameSpace) {
    for (const auto& surprise : QORQL_findFilterSurprises(parsed, nameSpace, text)) found.emplace_back(surprise.rule);
  });
  EXPECT_THAT(found, ElementsAre("ARITH-2", "ARITH-6", "LEX-6", "LEX-6"));
}

TEST_F(Surprises, NoSurpriseWhereTheLanguageMeansWhatItSays) {
  for (const char* query :
       {"SELECT Name FROM Disk WHERE Size = 1 AND Kind = 'a'", "SELECT Name FROM Disk WHERE 2 > ANY Ports",
        "SELECT Name FROM Disk WHERE ANY Ports = 2", "SELECT Size - 1 AS S, Size - (1 + 2) AS T FROM Disk",
        "SELECT Size + 1 - 2 AS S FROM Disk", "SELECT AVG(Size) AS A FROM Disk", "SELECT Name, * FROM Disk",
        "SELECT SUM(Size) AS S, MAX(Size) AS M FROM Disk",
        "SELECT h.Name FROM Disk AS d, Host AS h WHERE h.Name =* d.HostName"}) {
    EXPECT_THAT(rules(query), IsEmpty()) << query;
  }
}

TEST_F(Surprises, SurprisesSayWhatTheStatementMeans) {
  EXPECT_THAT(surprise("SELECT Name FROM Disk WHERE Size = 1 OR Size = 2 AND Kind = 'a'"),
              testing::HasSubstr("only \"Size = 2 AND Kind = 'a'\" decides"));
  EXPECT_THAT(surprise("SELECT Size - 1 - 2 AS S FROM Disk"), testing::HasSubstr("\"Size - (1 - 2)\""));
}

}  // namespace
