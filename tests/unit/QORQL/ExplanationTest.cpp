// What the explanation says of a query, and that execution does it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/QORQL/Explain/QORQL_Explanation.h"
#include "Cimom/QORQL/Explain/QORQL_Surprises.h"
#include "Cimom/QORQL/QORQL_ExpressionText.h"
#include "QueryWorld.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kModel[] = R"(
class Host { [key] string Name; uint32 Memory; real32 Heat; };
class FastHost : Host { };
class Disk { [key] string Name; string Kind; uint64 Size; uint16 Ports[]; string HostName; datetime Made; real64 Load; };
[association] class On { [key] Host REF Where; [key] Disk REF What; };
class Spare { [key] uint32 Id; };
[association] class Backed { [key] On REF Kept; [key] Spare REF By; };
instance of Host { Name = "a"; Memory = 1; };
instance of Host { Name = "b"; Memory = 2; };
instance of Disk { Name = "d"; Kind = "k"; Size = 1; HostName = "a"; };
instance of Spare { Id = 1; };
)";

std::string textOf(const QORQL_ExplainedStep& step) {
  using Step = QORQL_ExplainedStep;
  constexpr const char* kKinds[] = {"fetch", "associate", "", "combine", "sort", "select", "first", "fail"};
  constexpr const char* kMethods[] = {"filter", "hash", "keys", "product"};
  std::string text = step.kind == Step::kCondition ? kMethods[step.method] : kKinds[step.kind];
  if (step.isDiscarded) text += " discarded";
  if (step.dependsOnValues) text += "?";
  if (step.kind == Step::kAssociate) text += " " + step.source + " " + step.association;
  if (step.kind != Step::kFetch && step.kind != Step::kAssociate) return text + " " + step.text;
  text += " " + step.className + (step.alias.empty() ? "" : " AS " + step.alias) + ":";
  if (step.hasAllProperties) text += " *";
  for (const std::string& name : step.properties) text += " " + name;
  return text;
}

struct Explanation : testing::Test {
  QueryWorld world{kModel};

  template <class Use>
  void parse(const std::string& query, Use use) {
    const QORString text(query.data(), query.size());
    const QORString nameSpace("root/cimv2");
    QORQL_Lexer lexer(text, false);
    QORQL_SymbolTable symbols(nullptr);
    const auto parsed =
        QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", nameSpace).StaticCast<QORQL_Query>();
    use(*parsed, symbols, nameSpace);
  }
  std::vector<std::string> steps(const std::string& query) {
    std::vector<std::string> texts;
    parse(query, [&](const QORQL_Query& parsed, const QORQL_SymbolTable& symbols, const QORString& nameSpace) {
      const QORQL_Explanation explanation(parsed, symbols, nameSpace);
      for (const auto& step : explanation.steps()) texts.push_back(textOf(step));
    });
    return texts;
  }
  std::vector<std::string> rules(const std::string& query) {
    std::vector<std::string> found;
    parse(query, [&](const QORQL_Query& parsed, const QORQL_SymbolTable&, const QORString& nameSpace) {
      for (const auto& surprise : QORQL_findSurprises(parsed, nameSpace)) found.emplace_back(surprise.rule);
    });
    return found;
  }
  std::string surprise(const std::string& query) {
    std::string text;
    parse(query, [&](const QORQL_Query& parsed, const QORQL_SymbolTable&, const QORString& nameSpace) {
      for (const auto& one : QORQL_findSurprises(parsed, nameSpace)) text += one.text;
    });
    return text;
  }
  // The condition as text.
  std::string condition(const std::string& text) {
    const std::vector<std::string> found = steps("SELECT Name FROM Disk WHERE " + text);
    return found.size() < 3 ? "" : found[1].substr(found[1].find(' ') + 1);
  }
};

TEST_F(Explanation, fetchesConditionsSortAndColumns) {
  EXPECT_THAT(steps("SELECT FIRST 3 Name AS N FROM disk AS d WHERE Size > 5 AND Kind LIKE 'k' ORDER BY Load DESC"),
              ElementsAre("fetch Disk AS D: Name Size Kind Load", "filter Size > 5", "filter Kind LIKE 'k'",
                          "sort Load DESC", "select Name AS N", "first 3"));
}

TEST_F(Explanation, tellsWhetherEveryProviderFiltersItself) {
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

TEST_F(Explanation, allPropertiesOfAStar) {
  EXPECT_THAT(steps("SELECT * FROM Host"), ElementsAre("fetch Host: *", "select *"));
}

TEST_F(Explanation, joinsByKeysOfDeclaredTypes) {
  const std::string select = "SELECT h.Name, d.Name FROM Host AS h, Disk AS d WHERE ";
  EXPECT_EQ(steps(select + "h.Name = d.HostName")[2], "hash h.Name = d.HostName");
  EXPECT_EQ(steps(select + "h.Memory < d.Size")[2], "keys h.Memory < d.Size");
  EXPECT_EQ(steps(select + "h.Memory + 1 = d.Size")[2], "hash? h.Memory + 1 = d.Size");
  EXPECT_EQ(steps(select + "h.Name *= d.HostName")[2], "hash h.Name *= d.HostName");
  EXPECT_EQ(steps(select + "(h.Name) = (d.HostName)")[2], "hash (h.Name) = (d.HostName)");
}

TEST_F(Explanation, testsEveryPairWhereKeysDoNotJoin) {
  const std::string select = "SELECT h.Name, d.Name FROM Host AS h, Disk AS d WHERE ";
  EXPECT_EQ(steps(select + "h.Memory + d.Size = 3")[2], "product h.Memory + d.Size = 3");
  EXPECT_EQ(steps(select + "NOT h.Name = d.HostName")[2], "product NOT h.Name = d.HostName");
  EXPECT_EQ(steps(select + "h.Name = d.Size")[2], "product? h.Name = d.Size");
  EXPECT_EQ(steps(select + "h.Memory = ANY d.Ports")[2], "product h.Memory = ANY d.Ports");
  EXPECT_EQ(steps(select + "h.Name LIKE d.Name")[2], "product h.Name LIKE d.Name");
  EXPECT_EQ(steps(select + "h.Memory = d.Ports[0]")[2], "product h.Memory = d.Ports[0]");
  EXPECT_EQ(steps(select + "h <> d")[2], "product h <> d") << "whole objects are no keys";
}

TEST_F(Explanation, combinesWhatNothingJoins) {
  EXPECT_THAT(steps("SELECT h.Name, Id FROM Host AS h, Disk AS d, Spare WHERE h.Name = d.HostName"),
              ElementsAre("fetch Host AS H: Name", "fetch Disk AS D: HostName", "fetch Spare: Id",
                          "hash h.Name = d.HostName", "combine Spare, Host with Disk", "select h.Name, Spare.Id"));
}

TEST_F(Explanation, theLastOperandOfOrComesFirst) {
  EXPECT_THAT(steps("SELECT Name FROM Disk WHERE Size = 1 OR Size = 2 AND Size > 0 OR Size = 3"),
              ElementsAre("fetch Disk: Name Size", "filter Size = 3", "filter discarded Size = 2",
                          "filter discarded Size > 0", "filter discarded Size = 1", "select Name"));
}

TEST_F(Explanation, associationsAskSourceBySource) {
  EXPECT_THAT(steps("SELECT h.Name, d.Kind FROM Host AS h, Disk AS d WHERE On = h AND On = d AND d.Size > 1"),
              ElementsAre("fetch Host AS H: Name", "associate Host On Disk AS D: Size Kind", "filter d.Size > 1",
                          "select h.Name, d.Kind"));
}

TEST_F(Explanation, anAssociationLeftOfOrDecidesNothing) {
  EXPECT_THAT(
      steps("SELECT h.Name, d.Kind FROM Host AS h, Disk AS d WHERE On = h AND On = d OR h.Memory = 1"),
      ElementsAre("fetch Host AS H: Memory Name", "fetch Disk AS D: Kind", "filter h.Memory = 1",
                  "associate discarded Host On Disk AS D: Kind", "combine Host, Disk", "select h.Name, d.Kind"));
}

// An association class that may be a column is asked for whole, whoever asks.
TEST_F(Explanation, anAssociationComesWhole) {
  const std::string begin = "SELECT h.Name, o.What FROM Host AS h, Disk AS d, On AS o, Spare AS s WHERE ";
  EXPECT_THAT(steps(begin + "Backed = o AND Backed = s AND o = h AND o = d"),
              ElementsAre("fetch Host AS H: Name", "fetch On AS O: *",
                          "associate On Backed Spare AS S:", "associate Host On Disk AS D:", "select h.Name, o.What"));
  EXPECT_THAT(steps(begin + "o = h AND o = d AND Backed = s AND Backed = o"),
              ElementsAre("fetch Host AS H: Name", "fetch Spare AS S:", "associate Host On Disk AS D:",
                          "associate Spare Backed On AS O: *", "select h.Name, o.What"));
}

TEST_F(Explanation, anAssociationComesWholeWhereItDecidesNothing) {
  EXPECT_THAT(steps("SELECT h.Name FROM Host AS h, Disk AS d, On AS o WHERE o = h AND o = d OR o.What IS NULL"),
              ElementsAre("fetch Host AS H: Name", "fetch Disk AS D:", "fetch On AS O: *", "filter o.What IS NULL",
                          "associate discarded Host On Disk AS D:", "combine Host, Disk, On", "select h.Name"));
}

TEST_F(Explanation, saysWhereExecutionFails) {
  EXPECT_THAT(steps("SELECT Nowhere.Id FROM Nowhere"),
              ElementsAre("fetch NOWHERE: Id", "fail Enumerateinstance call for 'NOWHERE' returned NULL"));
  EXPECT_EQ(world.error("SELECT Nowhere.Id FROM Nowhere"),
            "runtime 3: Enumerateinstance call for 'NOWHERE' returned NULL");
}

TEST_F(Explanation, textsShowTheGrouping) {
  EXPECT_EQ(condition("Size - 1 - 2 + 3 = 4"), "Size - (1 - (2 + 3)) = 4");
  EXPECT_EQ(condition("Size / 2 * 3 = 1"), "Size / (2 * 3) = 1");
  EXPECT_EQ(condition("Size * 100 / 3 = 1"), "Size * (100 / 3) = 1");
  EXPECT_EQ(condition("Size + 1 - 2 = 4"), "Size + (1 - 2) = 4");
  EXPECT_EQ(condition("Size * 2 * 3 = 4"), "Size * 2 * 3 = 4");
  EXPECT_EQ(condition("Size > -9223372036854775808"), "Size > -9223372036854775808");
  EXPECT_EQ(condition("Size + 1 + 2 * 3 = 4"), "Size + 1 + 2 * 3 = 4");
  EXPECT_EQ(condition("(Size - 1) - 2 = 4"), "(Size - 1) - 2 = 4");
  EXPECT_EQ(condition("-(Size + 1) < -2"), "-(Size + 1) < -2");
  EXPECT_EQ(condition("NOT ANY Ports[*] <> 3"), "NOT ANY Ports[*] <> 3");
  EXPECT_EQ(condition("3 >= EVERY Ports"), "3 >= EVERY Ports");
  EXPECT_EQ(condition("Name IS NOT NULL"), "Name IS NOT NULL");
  EXPECT_EQ(condition("OBJECTPATH(Disk) ISA Host"), "OBJECTPATH(Disk) ISA Host");
  EXPECT_EQ(condition("Kind = 'a b' "), "Kind = 'a b'");
}

TEST_F(Explanation, longChainsAndDeepNestingAreRead) {
  std::string chain = "Size";
  for (int i = 0; i < 50000; ++i) chain += " - 1";
  EXPECT_THAT(condition(chain + " = 1"), testing::EndsWith(")) = 1"));
  EXPECT_THAT(condition(std::string(900, '(') + "Size" + std::string(900, ')') + " = 1"), testing::StartsWith("((("));
}

TEST_F(Explanation, surprisesOfTheLanguage) {
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

TEST_F(Explanation, multiplicationBeforeADivision) {
  EXPECT_THAT(rules("SELECT Size * 100 / Load AS P, Name FROM Disk"), IsEmpty());  // a real is not cut off
  EXPECT_THAT(rules("SELECT Size * 100 / 3 AS P FROM Disk"), ElementsAre("ARITH-2"));
  EXPECT_THAT(surprise("SELECT Size * 2 * 100 / 3 AS P FROM Disk"), testing::HasSubstr("\"Size * (2 * (100 / 3))\""));
  EXPECT_THAT(surprise("SELECT Size - 1 - 2 - 3 AS P FROM Disk"), testing::HasSubstr("\"Size - (1 - (2 - 3))\""));
}

TEST_F(Explanation, likeSurprisesByWildcardsAlone) {
  const std::string select = "SELECT Name FROM Disk WHERE Name LIKE ";
  for (const char* text : {"'d%'", "'d_'", "'*d'", "('%')"}) EXPECT_THAT(rules(select + text), ElementsAre("LIKE-1"));
  for (const char* text : {"'d'", "'a?.b'", "Kind"}) EXPECT_THAT(rules(select + text), IsEmpty()) << text;
}

TEST_F(Explanation, arraysAgainstSingleValues) {
  const std::string select = "SELECT Name FROM Disk WHERE ";
  EXPECT_THAT(surprise(select + "Ports = 3"), testing::HasSubstr("write 3 = ANY Ports"));
  EXPECT_THAT(surprise(select + "Ports < Size"), testing::HasSubstr("write Size > ANY Ports"));
  EXPECT_THAT(surprise(select + "3 <= Ports"), testing::HasSubstr("write 3 <= ANY Ports"));
  EXPECT_THAT(surprise(select + "Ports <> 3"), testing::HasSubstr("write NOT EVERY Ports = 3"));
  EXPECT_THAT(surprise(select + "Ports < Ports"), testing::HasSubstr("arrays have no order"));
  EXPECT_THAT(rules("SELECT h.Name FROM Host AS h, Disk AS d WHERE h.Memory =* d.Ports"), ElementsAre("ARR-7"));
  EXPECT_THAT(rules(select + "ANY Size = 3"), ElementsAre("ARR-5"));
  for (const char* condition :
       {"Ports = Ports", "Ports[0] = 3", "3 = ANY Ports", "Ports IS NULL", "Unknown::Name = 'a'"}) {
    EXPECT_THAT(rules(select + condition), testing::Not(testing::Contains(testing::StartsWith("ARR")))) << condition;
  }
}

TEST_F(Explanation, real32BesideALiteralThatItCannotHold) {
  const std::string select = "SELECT Name FROM Host WHERE ";
  for (const char* condition : {"Heat = 0.1", "-0.1 < Heat", "Heat <> 16777217", "Heat < 1.0e300"}) {
    EXPECT_THAT(rules(select + condition), ElementsAre("CMP-2")) << condition;
  }
  EXPECT_THAT(surprise(select + "Heat = 0.1"), testing::HasSubstr("the nearest is 0.10000000149011612"));
  for (const char* condition : {"Heat = 0.5", "Heat > 16777216", "Memory = 0.1", "0.1 = 0.1", "Heat = Memory"}) {
    EXPECT_THAT(rules(select + condition), IsEmpty()) << condition;
  }
}

// rule: ASSOC-6
TEST_F(Explanation, joinClassesThatTieNothing) {
  const std::string select = "SELECT h.Name, d.Name FROM Host AS h, Disk AS d, On AS o WHERE ";
  EXPECT_THAT(rules(select + "On = h AND On = d"), IsEmpty());
  EXPECT_THAT(rules(select + "o = h AND o = d"), IsEmpty());
  EXPECT_THAT(surprise(select + "Onn = h AND Onn = d"), testing::HasSubstr("there is no class Onn"));
  EXPECT_THAT(surprise(select + "Spare = h AND Spare = d"), testing::HasSubstr("Spare is no association"));
  EXPECT_THAT(rules(select + "OBJECTPATH(h) = OBJECTPATH(d) AND OBJECTPATH(h) = OBJECTPATH(d)"),
              ElementsAre("ASSOC-6"));
}

// rule: FROM-10, NAME-7
TEST_F(Explanation, aliasesThatNameSomethingElseToo) {
  EXPECT_THAT(surprise("SELECT a.Name FROM Host AS a, Disk AS a"), testing::HasSubstr("names both Host and Disk"));
  EXPECT_THAT(surprise("SELECT Disk.Name FROM Host AS Disk, Disk"), testing::HasSubstr("names both Host and Disk"));
  EXPECT_THAT(surprise("SELECT Disk.Name FROM Disk, Host AS Disk"), testing::HasSubstr("names both Disk and Host"));
  EXPECT_THAT(rules("SELECT Kind.Size FROM Disk AS kind"), ElementsAre("NAME-7"));
  EXPECT_THAT(rules("SELECT Memory.Name FROM Disk AS Memory, Host AS h"), ElementsAre("NAME-7"));
  EXPECT_THAT(rules("SELECT Disk.Name FROM Disk AS disk, Host AS h"), IsEmpty());
}

TEST_F(Explanation, scopesOfAnotherClass) {
  EXPECT_THAT(surprise("SELECT Name FROM Disk WHERE Host::Kind = 'a'"), testing::HasSubstr("reads Kind of Disk"));
  EXPECT_THAT(rules("SELECT FastHost::Memory FROM Host"), ElementsAre("NAME-6"));
  EXPECT_THAT(rules("SELECT Host::Memory FROM FastHost WHERE fasthost::Memory = 1"), IsEmpty());
}

TEST_F(Explanation, countOfACondition) {
  for (const char* argument : {"Size > 1", "(Size > 1)", "Kind IS NULL", "Size OR Load", "NOT Size"}) {
    EXPECT_THAT(rules("SELECT COUNT(" + std::string(argument) + ") AS C FROM Disk"), ElementsAre("AGG-2")) << argument;
  }
  EXPECT_THAT(rules("SELECT COUNT(Size * 2) AS C, COUNT(d) AS D FROM Disk AS d"), IsEmpty());
}

TEST_F(Explanation, negationOfUnsigned) {
  for (const char* value : {"-(Memory + 1)", "-(2 * 3)", "-SUM(Memory)", "-COUNT(Name)", "-(-(Memory + 1))"}) {
    EXPECT_THAT(rules("SELECT " + std::string(value) + " AS X FROM Host"), ElementsAre("ARITH-6")) << value;
  }
  EXPECT_THAT(rules("SELECT -MAX(Memory) AS X FROM Host"), IsEmpty());
  EXPECT_THAT(surprise("SELECT -(Memory + 1) AS X FROM Host"), testing::HasSubstr("Write 0 - (Memory + 1)"));
  EXPECT_THAT(rules("SELECT -Size AS X FROM Disk"), ElementsAre("ARITH-6"));
  EXPECT_THAT(rules("SELECT -Memory AS X, -(Memory - 1) AS Y, -5 AS Z FROM Host"), IsEmpty());
}

TEST_F(Explanation, literalsBelowTheLeast) {
  EXPECT_THAT(rules("SELECT Name FROM Disk WHERE Size > -9223372036854775808"), ElementsAre("LEX-6"));
  EXPECT_THAT(rules("SELECT Name FROM Disk WHERE Size > -9223372036854775807"), IsEmpty());
}

TEST_F(Explanation, outerJoinsBesideThirdClasses) {
  EXPECT_THAT(rules("SELECT h.Name FROM Disk AS d, Host AS h, Spare WHERE h.Name =* d.HostName"),
              ElementsAre("JOIN-2"));
}

TEST_F(Explanation, filtersAreToldOfArithmetic) {
  std::vector<std::string> found;
  parse("SELECT * FROM Disk WHERE Size * 100 / 3 > 5 AND -Size < 3 AND Ports = 3 AND Size > -9223372036854775808",
        [&](const QORQL_Query& parsed, const QORQL_SymbolTable&, const QORString& nameSpace) {
          for (const auto& surprise : QORQL_findFilterSurprises(parsed, nameSpace)) found.emplace_back(surprise.rule);
        });
  EXPECT_THAT(found, ElementsAre("ARITH-2", "ARITH-6", "LEX-6"));
}

TEST_F(Explanation, noSurpriseWhereTheLanguageMeansWhatItSays) {
  for (const char* query :
       {"SELECT Name FROM Disk WHERE Size = 1 AND Kind = 'a'", "SELECT Name FROM Disk WHERE 2 > ANY Ports",
        "SELECT Name FROM Disk WHERE ANY Ports = 2", "SELECT Size - 1 AS S, Size - (1 + 2) AS T FROM Disk",
        "SELECT Size + 1 - 2 AS S FROM Disk", "SELECT AVG(Size) AS A FROM Disk", "SELECT Name, * FROM Disk",
        "SELECT SUM(Size) AS S, MAX(Size) AS M FROM Disk",
        "SELECT h.Name FROM Disk AS d, Host AS h WHERE h.Name =* d.HostName"}) {
    EXPECT_THAT(rules(query), IsEmpty()) << query;
  }
}

TEST_F(Explanation, surprisesSayWhatTheStatementMeans) {
  EXPECT_THAT(surprise("SELECT Name FROM Disk WHERE Size = 1 OR Size = 2 AND Kind = 'a'"),
              testing::HasSubstr("only \"Size = 2 AND Kind = 'a'\" decides"));
  EXPECT_THAT(surprise("SELECT Size - 1 - 2 AS S FROM Disk"), testing::HasSubstr("\"Size - (1 - 2)\""));
}

}  // namespace
