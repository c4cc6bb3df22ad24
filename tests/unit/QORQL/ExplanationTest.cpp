// What the explanation says of a query, and that execution does it.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/QORQL/Explain/QORQL_Explanation.h"
#include "ExplanationWorld.h"
#include "QueryWorld.h"

namespace {

using testing::ElementsAre;

using Explanation = ExplanationWorld;

TEST_F(Explanation, FetchesConditionsSortAndColumns) {
  EXPECT_THAT(steps("SELECT FIRST 3 Name AS N FROM disk AS d WHERE Size > 5 AND Kind LIKE 'k' ORDER BY Load DESC"),
              ElementsAre("fetch Disk AS D: Name Size Kind Load", "filter Size > 5", "filter Kind LIKE 'k'",
                          "sort Load DESC", "select Name AS N", "first 3"));
}

TEST_F(Explanation, TellsWhetherEveryProviderFiltersItself) {
  QueryWorld filtering(R"(
Qualifier YRK_TRBS_ProviderFiltered : boolean = false, Scope(class), Flavor(EnableOverride, ToSubclass);
[YRK_TRBS_ProviderFiltered] class F { [key] uint32 Id; };
class G : F { };
class Open { [key] uint32 Id; };
[association] class Tie { [key] F REF One; [key] F REF Other; };
)");
  const auto isPreFiltered = [this](const std::string& query) {
    bool is = false;
    parse(query, [&](const QORQL_Query& parsed, const QORQL_SymbolTable& symbols, const QORString& nameSpace) {
      is = QORQL_Explanation(parsed, symbols, nameSpace).isPreFiltered();
    });
    return is;
  };
  EXPECT_TRUE(isPreFiltered("SELECT Id FROM F WHERE Id = 1"));
  EXPECT_TRUE(isPreFiltered("SELECT a.Id FROM F AS a, G AS b"));
  EXPECT_FALSE(isPreFiltered("SELECT F.Id FROM F, Open"));
  EXPECT_FALSE(isPreFiltered("SELECT Nowhere.Id FROM Nowhere"));
  EXPECT_FALSE(isPreFiltered("SELECT F.Id FROM F, G WHERE Tie = F AND Tie = G"));
  EXPECT_FALSE(isPreFiltered("SELECT F.Id FROM F, G WHERE Tie = F AND Tie = G OR F.Id = 1"));
}

TEST_F(Explanation, AllPropertiesOfAStar) {
  EXPECT_THAT(steps("SELECT * FROM Host"), ElementsAre("fetch Host: *", "select *"));
}

TEST_F(Explanation, CombinesWhatNothingJoins) {
  EXPECT_THAT(steps("SELECT h.Name, Id FROM Host AS h, Disk AS d, Spare WHERE h.Name = d.HostName"),
              ElementsAre("fetch Host AS H: Name", "fetch Disk AS D: HostName", "fetch Spare: Id",
                          "hash h.Name = d.HostName", "combine Spare, Host with Disk", "select h.Name, Spare.Id"));
}

TEST_F(Explanation, TheLastOperandOfOrComesFirst) {
  EXPECT_THAT(steps("SELECT Name FROM Disk WHERE Size = 1 OR Size = 2 AND Size > 0 OR Size = 3"),
              ElementsAre("fetch Disk: Name Size", "filter Size = 3", "filter discarded Size = 2",
                          "filter discarded Size > 0", "filter discarded Size = 1", "select Name"));
}

TEST_F(Explanation, AssociationsAskSourceBySource) {
  EXPECT_THAT(steps("SELECT h.Name, d.Kind FROM Host AS h, Disk AS d WHERE On = h AND On = d AND d.Size > 1"),
              ElementsAre("fetch Host AS H: Name", "associate Host On Disk AS D: Size Kind", "filter d.Size > 1",
                          "select h.Name, d.Kind"));
}

TEST_F(Explanation, AnAssociationLeftOfOrDecidesNothing) {
  EXPECT_THAT(
      steps("SELECT h.Name, d.Kind FROM Host AS h, Disk AS d WHERE On = h AND On = d OR h.Memory = 1"),
      ElementsAre("fetch Host AS H: Memory Name", "fetch Disk AS D: Kind", "filter h.Memory = 1",
                  "associate discarded Host On Disk AS D: Kind", "combine Host, Disk", "select h.Name, d.Kind"));
}

// An association class that may be a column is asked for whole, whoever asks.
TEST_F(Explanation, AnAssociationComesWhole) {
  const std::string begin = "SELECT h.Name, o.What FROM Host AS h, Disk AS d, On AS o, Spare AS s WHERE ";
  EXPECT_THAT(steps(begin + "Backed = o AND Backed = s AND o = h AND o = d"),
              ElementsAre("fetch Host AS H: Name", "fetch On AS O: *",
                          "associate On Backed Spare AS S:", "associate Host On Disk AS D:", "select h.Name, o.What"));
  EXPECT_THAT(steps(begin + "o = h AND o = d AND Backed = s AND Backed = o"),
              ElementsAre("fetch Host AS H: Name", "fetch Spare AS S:", "associate Host On Disk AS D:",
                          "associate Spare Backed On AS O: *", "select h.Name, o.What"));
}

TEST_F(Explanation, AnAssociationComesWholeWhereItDecidesNothing) {
  EXPECT_THAT(steps("SELECT h.Name FROM Host AS h, Disk AS d, On AS o WHERE o = h AND o = d OR o.What IS NULL"),
              ElementsAre("fetch Host AS H: Name", "fetch Disk AS D:", "fetch On AS O: *", "filter o.What IS NULL",
                          "associate discarded Host On Disk AS D:", "combine Host, Disk, On", "select h.Name"));
}

TEST_F(Explanation, SaysWhereExecutionFails) {
  EXPECT_THAT(steps("SELECT Nowhere.Id FROM Nowhere"),
              ElementsAre("fetch NOWHERE: Id", "fail Enumerateinstance call for 'NOWHERE' returned NULL"));
  EXPECT_EQ(world.error("SELECT Nowhere.Id FROM Nowhere"),
            "runtime 3: Enumerateinstance call for 'NOWHERE' returned NULL");
}

}  // namespace
