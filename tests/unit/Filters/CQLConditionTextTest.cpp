// Why an instance does not match a filter.
// SPDX-License-Identifier: Apache-2.0
#include "FilterWorld.h"

namespace {

struct FilterReasons : Filter {
  std::string neverBecause(const std::string& condition) {
    CQLQueryStatement statement("CQL", QORString("SELECT * FROM CIM_AlertIndication WHERE " + condition), kNameSpace,
                                "");
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << condition;
    return QueryWorld::textOf(statement.neverMatchesBecause());
  }
  QORuint32 neverOffset(const std::string& filter) {
    CQLQueryStatement statement("CQL", QORString(filter), kNameSpace, "");
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << filter;
    return statement.neverMatchesOffset();
  }
  std::string why(const std::string& condition, const QORSmrPtr<IQoriObject>& instance,
                  const char* from = "CIM_AlertIndication", const char* nameSpace = kNameSpace) {
    CQLQueryStatement statement("CQL", QORString(std::string("SELECT * FROM ") + from + " WHERE " + condition),
                                kNameSpace, "");
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << condition;
    std::string reason = "before";
    const bool isMatch = statement.explainMatch(instance, nameSpace, reason);
    EXPECT_EQ(isMatch, reason.empty()) << condition;
    return reason;
  }
};

TEST_F(FilterReasons, WhyAFilterNeverMatches) {
  EXPECT_EQ(neverBecause("U8 = 5 AND MessageID = 'x'"), "");
  EXPECT_EQ(neverBecause("U8 = 5 OR U8 = 6"), "a filter that uses OR never matches");
  EXPECT_EQ(neverBecause("U8 = 5 AND NOT U8 = 6"), "a condition under NOT never matches");
  EXPECT_EQ(neverBecause("MessageID LIKE 'x'"), "a condition with LIKE never matches");
  EXPECT_EQ(neverBecause("(MessageID IS NULL)"), "a condition with IS NULL never matches");
  EXPECT_EQ(neverBecause("MessageID IS NOT NULL"), "a condition with IS NOT NULL never matches");
  EXPECT_EQ(neverBecause("U8 *= U16"), "a condition with *= never matches");
  EXPECT_EQ(neverBecause("U8 =* U16"), "a condition with =* never matches");
  EXPECT_EQ(neverBecause("U8 *=* U16"), "a condition with *=* never matches");
  EXPECT_EQ(neverBecause("B"), "a condition without a comparison never matches");
  EXPECT_EQ(neverBecause("U8 = 5 / 0"), "a condition on a value that cannot be computed never matches");
  EXPECT_EQ(neverBecause("S64 = -9223372036854775808"), "a condition on a value that cannot be computed never matches");
}

TEST_F(FilterReasons, WhereAFilterNeverMatches) {
  const std::string start = "SELECT * FROM CIM_AlertIndication WHERE ";
  for (const char* const marked :
       {"U8 = 5 ^OR U8 = 6", "MessageID = 'NOT' AND ^NOT U8 = 6", "MessageID ^LIKE 'LIKE'", "(MessageID ^IS NULL)",
        "U8 ^*= U16", "U8 = 1 AND ^B", "U8 = ^5 / 0", "^-(1 / 0) = U8", "(U8 ^IS NULL) = TRUE", "U8 = 1 + ^MAX(U8)",
        "^A[1] ISA CIM_Element", "MessageID ISA ^'a' - 1"}) {
    std::string filter = start + marked;
    const std::size_t offset = filter.find('^');
    filter.erase(offset, 1);
    EXPECT_EQ(neverOffset(filter), offset) << marked;
  }
  EXPECT_EQ(neverOffset(start + "U8 = 5"), CQLQueryFault::kNoOffset);
}

TEST_F(FilterReasons, WhyAnInstanceDoesNotMatch) {
  const QORSmrPtr<IQoriObject> alert(world.alert("U8 = 5; MessageID = \"y\"; A = {1, 2}; S32 = -3; B = TRUE;"));
  EXPECT_EQ(why("U8 = 5", alert), "");
  EXPECT_EQ(why("U8 = 5 AND MessageID = 'x'", alert), "MessageID = 'x' ('y' = 'x')");
  EXPECT_EQ(why("CIM_AlertIndication.U8 > 5", alert), "U8 > 5 (5 > 5)");
  EXPECT_EQ(why("Absent <> 'x'", alert), "Absent <> 'x' (NULL <> 'x')");
  EXPECT_EQ(why("A[1] = 3", alert), "A[1] = 3 (2 = 3)");
  EXPECT_EQ(why("EVERY A[*] < 2", alert), "EVERY A[*] < 2 ({1, 2} < 2)");
  EXPECT_EQ(why("7 = ANY A[*]", alert), "7 = ANY A[*] (7 = {1, 2})");
  EXPECT_EQ(why("U8 + 1 * 2 = S32 / 3", alert), "U8 + 1 * 2 = S32 / 3 (7 = -1)");
  EXPECT_EQ(why("U8 / 0 = 1", alert), "U8 / 0 = 1 (NULL = 1)");
  EXPECT_EQ(why("-S32 = (U8)", alert), "-S32 = (U8) (3 = 5)");
  EXPECT_EQ(why("B = FALSE", alert), "B = 'FALSE' (TRUE = 'FALSE')");
  EXPECT_EQ(why("MAX(U8) = 5", alert), "MAX(...) = 5 (NULL = 5)");
  EXPECT_EQ(why("U8 = 5 OR U8 = 6", alert), "WHERE (a filter that uses OR never matches)");
  EXPECT_EQ(why("NOT U8 = 6", alert), "NOT U8 = 6 (a condition under NOT never matches)");
  EXPECT_EQ(why("U8 = 5 AND Absent IS NULL", alert), "Absent IS NULL (a condition with IS NULL never matches)");
}

TEST_F(FilterReasons, WhyTwoValuesAreNotCompared) {
  const QORSmrPtr<IQoriObject> alert(
      world.alert("U8 = 5; MessageID = \"5\"; A = {1, 2}; B = TRUE; C = 'x'; When = \"20240101120000.000000+000\";"));
  EXPECT_EQ(why("MessageID = 5", alert), "MessageID = 5 ('5' = 5): string and uint8 do not compare");
  EXPECT_EQ(why("C = 'x'", alert), "C = 'x' ('x' = 'x'): char16 and string do not compare");
  EXPECT_EQ(why("When = '20240101120000.000000+000'", alert),
            "When = '20240101120000.000000+000' ('20240101120000.000000+000' = '20240101120000.000000+000'): "
            "datetime and string do not compare");
  EXPECT_EQ(why("B = 'yes'", alert), "B = 'yes' (TRUE = 'yes'): a boolean compares with TRUE and FALSE only");
  EXPECT_EQ(why("'no' <> B", alert), "'no' <> B ('no' <> TRUE): a boolean compares with TRUE and FALSE only");
  EXPECT_EQ(why("B = 'false'", alert), "B = 'false' (TRUE = 'false')");
  EXPECT_EQ(why("A = 1", alert), "A = 1 ({1, 2} = 1): an array compares with a value under ANY or EVERY only");
  EXPECT_EQ(why("1 + 1 <> A", alert),
            "1 + 1 <> A (2 <> {1, 2}): an array compares with a value under ANY or EVERY only");
  EXPECT_EQ(why("A > A", alert), "A > A ({1, 2} > {1, 2}): arrays have no order");
  EXPECT_EQ(why("A <> A", alert), "A <> A ({1, 2} <> {1, 2})");
  EXPECT_EQ(why("ANY U8 = 5", alert), "ANY U8 = 5 (5 = 5): ANY and EVERY ask an array");
  EXPECT_EQ(why("ANY A[*] = A", alert), "ANY A[*] = A ({1, 2} = {1, 2}): an element does not compare with an array");
  EXPECT_EQ(why("'1' = EVERY A[*]", alert), "'1' = EVERY A[*] ('1' = {1, 2}): string and uint16 do not compare");
  EXPECT_EQ(why("MessageID + 'x' = U8 + 0", alert),
            "MessageID + 'x' = U8 + 0 ('5x' = 5): string and uint64 do not compare");
}

TEST_F(FilterReasons, ALiteralBehindAMinusIsShownAsWritten) {
  const QORSmrPtr<IQoriObject> alert(world.alert("S64 = 0;"));
  EXPECT_EQ(why("S64 < -5000000000", alert), "S64 < -5000000000 (0 < -5000000000)");
  EXPECT_EQ(why("S64 = -9223372036854775808", alert), "S64 = -9223372036854775808 (0 = NULL)");
  EXPECT_EQ(why("S64 = -9223372036854775809", alert), "S64 = -9223372036854775809 (0 = 9223372036854775807)");
}

TEST_F(FilterReasons, WhyAnInstanceIsNotAskedAbout) {
  const QORSmrPtr<IQoriObject> alert(world.alert("U8 = 5;"));
  EXPECT_EQ(why("IndicationIdentifier = 'x'", alert, "CIM_InstCreation"),
            "its class CIM_AlertIndication is not in FROM");
  EXPECT_EQ(why("U8 = 5", alert, "CIM_AlertIndication", "root/other"),
            "its namespace is root/other, the filter's root/cimv2");
}

TEST_F(FilterReasons, ExplanationsThrowAsMatchingDoes) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_AlertIndication", kNameSpace, "");
  std::string reason;
  EXPECT_EQ(queryError([&] { statement.explainMatch(world.alert(""), kNameSpace, reason); }),
            "CQLQUERYSTATEMENT::isMatch|query is not validated |2");
  EXPECT_EQ(queryError([&] { statement.neverMatchesBecause(); }),
            "CQLQUERYSTATEMENT::isMatch|query is not validated |2");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  EXPECT_EQ(queryError([&] { statement.explainMatch(QORSmrPtr<IQoriObject>(), kNameSpace, reason); }),
            "CQLQUERYSTATEMENT::isMatch|Invalid or NULL param encountered|3");
}

}  // namespace
