// What a refused filter says of its fault, what is logged, and what a valid one
// says of itself.
#include <gmock/gmock.h>

#include "FilterWorld.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct FilterFault : Filter {
  std::vector<std::string> log;

  FilterFault() {
    world.manager().setLogSink(
        [this](const QORString& who, const QORString& message, QORuint32 severity) {
          log.push_back(QueryWorld::textOf(who) + "/" + std::to_string(severity) + ": " + QueryWorld::textOf(message));
        },
        QoriTraceLog::kTrace);
  }
  ~FilterFault() override { world.manager().setLogSink({}, 0); }

  CQLQueryFault faultOf(const std::string& filter, const char* language = "CQL") {
    log.clear();
    CQLQueryStatement statement(language, QORString(filter), kNameSpace, "");
    EXPECT_NE(statement.validate(), QUERY_VALIDATE_SUCCESS) << filter;
    return statement.getFault();
  }
};

TEST_F(FilterFault, AValidFilterHasNone) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_InstCreation", kNameSpace, "");
  EXPECT_EQ(statement.getFault().kind, CQLQueryFault::kNone);
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  EXPECT_EQ(statement.getFault().kind, CQLQueryFault::kNone);
  EXPECT_TRUE(statement.getFault().message.isEmpty());
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(FilterFault, ALanguage) {
  const CQLQueryFault fault = faultOf("SELECT * FROM CIM_InstCreation", "SQL");
  EXPECT_EQ(fault.kind, CQLQueryFault::kLanguage);
  EXPECT_EQ(fault.name, "SQL");
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate()/1: Unsupported Query Language"));
}

TEST_F(FilterFault, ATextThatDoesNotParseIsWrongAtAToken) {
  const CQLQueryFault fault = faultOf("SELECT * FORM CIM_InstCreation");
  EXPECT_EQ(fault.kind, CQLQueryFault::kSyntax);
  EXPECT_EQ(fault.offset, 9U);
  EXPECT_EQ(fault.message, "'FROM' expected");
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate/1: 'FROM' expected"));
  EXPECT_EQ(faultOf("").offset, 0U);
  EXPECT_EQ(faultOf("SELECT * FROM CIM_InstCreation WHERE").offset, 36U);
  EXPECT_EQ(faultOf("SELECT * FROM CIM_AlertIndication WHERE U8 ISA 5").kind, CQLQueryFault::kSyntax);
  EXPECT_EQ(faultOf("SELECT * FROM CIM_AlertIndication WHERE ANY A[*] = A[*]").kind, CQLQueryFault::kSyntax);
}

TEST_F(FilterFault, AFaultThatIsFoundBehindTheTextHasNoPlace) {
  const CQLQueryFault fault = faultOf("SELECT COUNT(U8) AS n, U16 FROM CIM_AlertIndication");
  EXPECT_EQ(fault.kind, CQLQueryFault::kSyntax);
  EXPECT_EQ(fault.offset, CQLQueryFault::kNoOffset);
}

TEST_F(FilterFault, AClass) {
  const CQLQueryFault fault = faultOf("SELECT * FROM CIM_InstCreation, CIM_Nothing AS n");
  EXPECT_EQ(fault.kind, CQLQueryFault::kClass);
  EXPECT_TRUE(fault.name.isEqualCaseInsensitive("CIM_Nothing"));
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate()/1: Invalid Schema"));
}

TEST_F(FilterFault, AProperty) {
  const CQLQueryFault bare = faultOf("SELECT * FROM CIM_AlertIndication WHERE Owner = 'x'");
  EXPECT_EQ(bare.kind, CQLQueryFault::kProperty);
  EXPECT_EQ(bare.name, "Owner");
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate/1: property 'Owner' not found in any class"));
  const CQLQueryFault selected = faultOf("SELECT a.Owner FROM CIM_AlertIndication AS a");
  EXPECT_EQ(selected.kind, CQLQueryFault::kProperty);
  EXPECT_EQ(selected.name, "Owner");
  EXPECT_TRUE(selected.className.isEqualCaseInsensitive("CIM_AlertIndication"));
  EXPECT_THAT(log, ElementsAre("CQLQUERYSTATEMENT::validate()/1: Invalid Schema"));
  EXPECT_EQ(faultOf("SELECT SUM(a.Owner) AS s FROM CIM_AlertIndication AS a").kind, CQLQueryFault::kProperty);
}

TEST_F(FilterFault, APropertyOfSeveralClasses) {
  const CQLQueryFault fault =
      faultOf("SELECT * FROM CIM_AlertIndication, CIM_InstCreation WHERE IndicationIdentifier = 'x'");
  EXPECT_EQ(fault.kind, CQLQueryFault::kAmbiguous);
  EXPECT_EQ(fault.name, "IndicationIdentifier");
}

TEST_F(FilterFault, AQualifier) {
  const CQLQueryFault fault = faultOf("SELECT Nobody.U8 FROM CIM_AlertIndication");
  EXPECT_EQ(fault.kind, CQLQueryFault::kQualifier);
  EXPECT_TRUE(fault.name.isEqualCaseInsensitive("Nobody"));
}

TEST_F(FilterFault, ASecondValidationRepeatsNothing) {
  CQLQueryStatement statement("CQL", "SELECT", kNameSpace, "");
  statement.validate();
  log.clear();
  EXPECT_EQ(statement.validate(), QUERY_INVALID_QUERY);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(FilterFault, WithoutARepositoryNothingIsValid) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_InstCreation", "root/nowhere", "");
  EXPECT_EQ(statement.validate(), QUERY_INVALID_QUERY);
  EXPECT_EQ(statement.getFault().kind, CQLQueryFault::kClass);
}

struct FilterReasons : Filter {
  std::string neverBecause(const std::string& condition) {
    CQLQueryStatement statement("CQL", QORString("SELECT * FROM CIM_AlertIndication WHERE " + condition), kNameSpace,
                                "");
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << condition;
    return QueryWorld::textOf(statement.neverMatchesBecause());
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
