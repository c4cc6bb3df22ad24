// What a condition decides where something is missing: parenthesised
// comparisons as operands, arrays, and tests of a class.
// SPDX-License-Identifier: Apache-2.0
#include "FilterWorld.h"

namespace {

constexpr char kSchema[] = R"(
class CIM_Part { [key] string Id; };
class XYZ_Part : CIM_Part { };
[indication] class T_Event {
  uint8 U8; string S; string T; boolean B; uint16 A[]; uint32 W[]; real64 R[]; string Texts[]; boolean Truths[];
  datetime Times[]; [EmbeddedObject] string SourceInstance; [EmbeddedObject] string PreviousInstance;
};
)";

struct FilterDecision : testing::Test {
  FilterWorld world{kSchema};

  // In the prepared form and in the walk of the tree alike.
  bool matches(const std::string& condition, const std::string& properties = "") {
    return world.matches("SELECT * FROM T_Event WHERE " + condition,
                         world.indication("instance of T_Event { " + properties + " };"));
  }
  std::string never(const std::string& condition) {
    CQLQueryStatement statement("CQL", QORString("SELECT * FROM T_Event WHERE " + condition), kNameSpace, "");
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << condition;
    return QueryWorld::textOf(statement.neverMatchesBecause());
  }
};

TEST_F(FilterDecision, AComparisonWithoutAValueIsNeitherTrueNorFalse) {
  for (const char* truth : {"TRUE", "FALSE", "B", "(B)"}) {
    for (const char* inner : {"U8 = 5", "U8 <> 5", "5 < U8", "S > T", "U8 + 1 = 6", "ANY A = 5", "5 = EVERY A", "A = A",
                              "SourceInstance ISA CIM_Part", "'SourceInstance' ISA CIM_Part", "-U8 = 5"}) {
      for (const char* relation : {"=", "<>", "<=", ">="}) {
        const std::string condition = std::string("(") + inner + ") " + relation + " " + truth;
        EXPECT_FALSE(matches(condition, "B = FALSE;")) << condition;
        EXPECT_FALSE(matches(condition, "B = TRUE;")) << condition;
      }
    }
  }
}

TEST_F(FilterDecision, LikeAndIsNullHaveNoValue) {
  const std::string values = "U8 = 5; S = \"xyz\"; B = FALSE;";
  for (const char* inner : {"U8 IS NULL", "U8 IS NOT NULL", "T IS NULL", "S LIKE 'y'", "S LIKE 'a'", "U8 *= 5",
                            "U8 =* 5", "U8 *=* 6", "(U8 IS NULL) = TRUE", "MAX(U8) = 5"}) {
    for (const char* truth : {"TRUE", "FALSE", "B"}) {
      const std::string condition = std::string("(") + inner + ") = " + truth;
      EXPECT_FALSE(matches(condition, values)) << condition;
      EXPECT_FALSE(never(condition).empty()) << condition;
    }
  }
  EXPECT_EQ(never("(U8 IS NULL) = FALSE"), "a condition with IS NULL never matches");
  EXPECT_EQ(never("B = (S LIKE 'y')"), "a condition with LIKE never matches");
  EXPECT_EQ(never("(U8 = 5) = FALSE"), "");
}

TEST_F(FilterDecision, ADecidedComparisonHasItsValue) {
  const std::string values = "U8 = 5; S = \"xyz\"; B = FALSE; A = {1, 2}; SourceInstance = instance of XYZ_Part { };";
  for (const char* condition :
       {"(U8 = 5) = TRUE", "(U8 = 6) = FALSE", "(U8 = 6) = B", "(U8 = 5) <> B", "((U8 = 6) = B) = TRUE",
        "((U8 = 5) = B) = FALSE", "(ANY A = 2) = TRUE", "(EVERY A = 2) = FALSE", "(SourceInstance ISA CIM_Part) = TRUE",
        "(SourceInstance ISA T_Event) = FALSE", "('SourceInstance' ISA CIM_Part) = TRUE",
        "('SourceInstance' ISA T_Event) = FALSE", "(S ISA CIM_Part) = FALSE", "(5 = 5) = TRUE", "(A = A) = TRUE"}) {
    EXPECT_TRUE(matches(condition, values)) << condition;
  }
  EXPECT_TRUE(matches("(ANY A = 2) = FALSE", "A = {};"));
  // Values of other kinds are found to be different from each other.
  EXPECT_TRUE(matches("(S = U8) = FALSE", values));
  EXPECT_TRUE(matches("(B = 'other') = FALSE", values));
}

TEST_F(FilterDecision, AnArrayAgainstAValueIsNotDecided) {
  for (const char* inner : {"A = U8", "A < A", "A = Texts", "ANY U8 = 1", "U8 = EVERY S"}) {
    const std::string condition = std::string("(") + inner + ") = FALSE";
    EXPECT_FALSE(matches(condition, "A = {1}; U8 = 1; S = \"x\"; Texts = {\"1\"};")) << condition;
  }
}

TEST_F(FilterDecision, AnElementThatDoesNotCompareIsPassedOver) {
  const std::vector<std::string> orders = {"{\"yes\", \"TRUE\"}", "{\"TRUE\", \"yes\"}", "{\"yes\", \"true\", \"no\"}"};
  for (const std::string& order : orders) {
    const std::string values = "B = TRUE; Texts = " + order + ";";
    EXPECT_TRUE(matches("B = ANY Texts", values)) << order;
    EXPECT_TRUE(matches("ANY Texts = B", values)) << order;
    EXPECT_TRUE(matches("B >= ANY Texts", values)) << order;
    EXPECT_FALSE(matches("B <> ANY Texts", values)) << order;
    EXPECT_FALSE(matches("B = EVERY Texts", values)) << order;
    EXPECT_FALSE(matches("EVERY Texts <> B", values)) << order;
    EXPECT_TRUE(matches("(B = EVERY Texts) = FALSE", values)) << order;
  }
  EXPECT_FALSE(matches("B = ANY Texts", "B = TRUE; Texts = {\"yes\"};"));
  EXPECT_TRUE(matches("ANY Truths = 'true'", "Truths = {FALSE, TRUE};"));
  EXPECT_FALSE(matches("ANY Truths = 'yes'", "Truths = {FALSE, TRUE};"));
  EXPECT_FALSE(matches("B <> ANY Texts", "B = TRUE; Texts = {};"));
}

TEST_F(FilterDecision, ArraysOfOtherElementTypesDoNotCompare) {
  const std::string values =
      "A = {1, 2}; W = {1, 2}; R = {1.0, 2.0}; Texts = {\"1\", \"2\"}; Truths = {TRUE}; Times = {};";
  EXPECT_TRUE(matches("A = W", values));
  EXPECT_TRUE(matches("A[*] = R[]", values));
  EXPECT_FALSE(matches("W <> R", values));
  for (const char* relation : {" = ", " <> "}) {
    for (const char* other : {"Texts", "Truths", "Times"}) {
      EXPECT_FALSE(matches(std::string("A") + relation + other, values)) << relation << other;
      EXPECT_FALSE(matches(std::string(other) + relation + "A", values)) << relation << other;
      EXPECT_FALSE(matches(std::string("A") + relation + other, "A = {}; Texts = {}; Truths = {}; Times = {};"));
    }
    EXPECT_FALSE(matches(std::string("Truths") + relation + "Texts", "Truths = {TRUE}; Texts = {\"TRUE\"};"));
    EXPECT_FALSE(matches(std::string("Times") + relation + "Texts", values));
  }
}

TEST_F(FilterDecision, WhyArraysOfOtherElementTypesDoNotCompare) {
  CQLQueryStatement statement("CQL", "SELECT * FROM T_Event WHERE Truths = Texts", kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  std::string why;
  EXPECT_FALSE(statement.explainMatch(world.indication("instance of T_Event { Truths = {TRUE}; Texts = {\"TRUE\"}; };"),
                                      kNameSpace, why));
  EXPECT_EQ(why, "Truths = Texts ({TRUE} = {'TRUE'}): boolean and string do not compare");
}

TEST_F(FilterDecision, IsaBehindAPathAScopeOrWithAnIndexNeverMatches) {
  const std::string values =
      "SourceInstance = instance of XYZ_Part { Id = \"p\"; }; PreviousInstance = instance of T_Event "
      "{ SourceInstance = \"instance of XYZ_Part { };\"; };";
  const std::string reason =
      "ISA asks a property of the instance itself, without path, scope and index: any other never matches";
  for (const char* left :
       {"PreviousInstance.SourceInstance", "PreviousInstance.T_Event::SourceInstance",
        "T_Event.PreviousInstance.SourceInstance", "T_Event::SourceInstance", "SourceInstance[0]",
        "(PreviousInstance.SourceInstance)", "5", "-U8", "S + 'SourceInstance'", "'SourceInstance' + S", "T_Event"}) {
    const std::string test = std::string(left) + " ISA CIM_Part";
    for (const std::string& condition : {test, "(" + test + ")", "(" + test + ") = FALSE", "(" + test + ") = TRUE"}) {
      EXPECT_FALSE(matches(condition, values + " S = \"\";")) << condition;
      EXPECT_EQ(never(condition), reason) << condition;
    }
  }
  for (const char* left : {"SourceInstance", "T_Event.SourceInstance", "(SourceInstance)", "'SourceInstance'"}) {
    EXPECT_TRUE(matches(std::string(left) + " ISA CIM_Part", values)) << left;
    EXPECT_EQ(never(std::string(left) + " ISA CIM_Part"), "") << left;
  }
}

TEST_F(FilterDecision, TheClassOfIsaMayBeComputed) {
  const std::string values = "SourceInstance = instance of XYZ_Part { }; S = \"_Part\"; U8 = 5;";
  EXPECT_TRUE(matches("SourceInstance ISA 'CIM' + '_Part'", values));
  EXPECT_TRUE(matches("'SourceInstance' ISA 'CIM' + S", values));
  EXPECT_TRUE(matches("SourceInstance ISA XYZ + S", values));
  EXPECT_FALSE(matches("SourceInstance ISA 'ABC' + S", values));
  EXPECT_FALSE(matches("SourceInstance ISA 'CIM' + T", values));
  EXPECT_FALSE(matches("SourceInstance ISA 'CIM' + U8", values));
  EXPECT_FALSE(matches("SourceInstance ISA 'CIM' + 5", values));
  EXPECT_EQ(never("SourceInstance ISA 'CIM' + 5"), "a condition on a value that cannot be computed never matches");
}

}  // namespace
