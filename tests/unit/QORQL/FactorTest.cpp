// The leaves of expressions: literals, parentheses, negation, and the names that they collect.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "ParserSupport.h"

namespace {

using parsertest::Fault;
using parsertest::Level;
using parsertest::Parsed;
using parsertest::plain;
using parsertest::print;
using parsertest::printFactor;
using parsertest::thrownBy;

struct Literal {
  const char* name;
  const char* text;
  const char* type;
  const char* value;
};

class LiteralFactor : public testing::TestWithParam<Literal> {};

TEST_P(LiteralFactor, HasItsTypeAndValue) {
  const Parsed parsed(GetParam().text, Level::Factor);
  const QORQL_Factor* factor = dynamic_cast<const QORQL_Factor*>(parsed.tree.Get());
  while (factor != nullptr && !factor->getEvaluatable().IsNull()) {
    EXPECT_EQ(factor->getOperator(), QORQL_OperatorMINUS);
    factor = dynamic_cast<const QORQL_Factor*>(factor->getEvaluatable().Get());
  }
  ASSERT_NE(factor, nullptr);
  ASSERT_FALSE(factor->getLiteral().IsNull());
  EXPECT_EQ(plain(factor->getLiteral()->getType()->getName()), GetParam().type);
  EXPECT_EQ(plain(factor->getLiteral()->toString()), GetParam().value);
  EXPECT_EQ(printFactor(*factor), "[~|~|~|~|-1]");
  EXPECT_FALSE(factor->isPropertyReference());
}

INSTANTIATE_TEST_SUITE_P(
    All, LiteralFactor,
    testing::Values(
        Literal{"Zero", "0", "uint8", "0"}, Literal{"Uint8", "200", "uint8", "200"},
        Literal{"Uint8End", "255", "uint8", "255"}, Literal{"Uint16Start", "256", "uint16", "256"},
        Literal{"Uint16", "300", "uint16", "300"}, Literal{"Uint16End", "65535", "uint16", "65535"},
        Literal{"Uint32Start", "65536", "uint32", "65536"}, Literal{"Uint32", "70000", "uint32", "70000"},
        Literal{"Uint32End", "4294967295", "uint32", "4294967295"},
        Literal{"Uint64Start", "4294967296", "uint64", "4294967296"},
        Literal{"Uint64", "5000000000", "uint64", "5000000000"},
        Literal{"Uint64End", "18446744073709551615", "uint64", "18446744073709551615"},
        Literal{"BeyondUint64", "99999999999999999999", "uint64", "18446744073709551615"},
        Literal{"LeadingZeros", "000012", "uint8", "12"}, Literal{"NegativeSmall", "-100", "sint32", "100"},
        Literal{"NegativeSmallEnd", "-127", "sint32", "127"}, Literal{"NegativeSint16Start", "-128", "sint16", "128"},
        Literal{"NegativeSint16", "-200", "sint16", "200"}, Literal{"NegativeSint16End", "-32767", "sint16", "32767"},
        Literal{"NegativeSint32Start", "-32768", "sint32", "32768"},
        Literal{"NegativeSint32", "-40000", "sint32", "40000"},
        Literal{"NegativeSint32End", "-2147483647", "sint32", "2147483647"},
        Literal{"NegativeSint64Start", "-2147483648", "sint64", "2147483648"},
        Literal{"NegativeSint64", "-3000000000", "sint64", "3000000000"},
        Literal{"NegativeReinterpreted", "-18446744073709551615", "sint64", "-1"},
        Literal{"Real", "1.5", "real64", "1.5"}, Literal{"NegativeReal", "-1.5", "real64", "1.5"},
        Literal{"RealWithExponent", "12.5E2", "real64", "1250"},
        Literal{"RealWithNegativeExponent", "12.5e-1", "real64", "1.25"}, Literal{"String", "'Abc'", "string", "Abc"},
        Literal{"EmptyString", "''", "string", ""}, Literal{"TrueIsText", "TRUE", "string", "TRUE"},
        Literal{"FalseKeepsItsCase", "fAlse", "string", "fAlse"}),
    [](const auto& info) { return info.param.name; });

double realOf(const char* text) {
  const Parsed parsed(text, Level::Factor);
  return static_cast<const QORQL_Factor&>(*parsed.tree).getLiteral()->getReal64();
}

TEST(RealLiteral, BeyondTheRangeIsInfinityOrZero) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(realOf("1.0e400"), kInfinity);
  EXPECT_EQ(realOf("0.5e4000"), kInfinity);
  EXPECT_EQ(realOf("1.0e99999999999999999999"), kInfinity);
  EXPECT_EQ(realOf((std::string(400, '9') + ".0e-1").c_str()), kInfinity);
  EXPECT_EQ(realOf("1.0e-400"), 0.0);
  EXPECT_EQ(realOf("1.0e-99999999999999999999"), 0.0);
  EXPECT_EQ(realOf(("0." + std::string(400, '0') + "1").c_str()), 0.0);
  EXPECT_EQ(realOf("0.0e999999"), 0.0);
}

TEST(Literal, IsTypedByTheTokenBeforeItAlone) {
  const Parsed difference("x - 5", Level::Arithmetic);
  EXPECT_EQ(print(difference.tree), "(x - 5)");
  const Parsed after("x - 5 + 5", Level::Arithmetic);
  EXPECT_EQ(print(after.tree), "(x - (5 + 5))");
}

TEST(Factor, CollectsEachNameOnce) {
  Parsed parsed("a + C.x + A + b + C.X + C.y + c.z", Level::Arithmetic);
  EXPECT_EQ(parsed.requested(""), "a,b");
  EXPECT_EQ(parsed.requested("C"), "x,y");
  EXPECT_EQ(parsed.requested("c"), "z");
}

TEST(Factor, SelectAllOfAClassKeepsItsProperties) {
  Parsed parsed("Disk.Name + Disk.*", Level::Arithmetic);
  EXPECT_EQ(parsed.requested("Disk"), "*,Name");
}

TEST(Factor, AnAsteriskAfterAPropertyMultiplies) {
  EXPECT_EQ(print(Parsed("C.x * 2", Level::Arithmetic).tree), "(C.x * 2)");
}

TEST(Factor, KnowsABareFromNameWhenItIsParsed) {
  Parsed parsed("disk");
  parsed.know({"DISK"});
  parsed.parse(Level::Factor);
  const QORQL_Factor& known = static_cast<const QORQL_Factor&>(*parsed.tree);
  EXPECT_TRUE(known.isKnownFromName());
  EXPECT_TRUE(known.isBareIdentifier());
  for (const char* text : {"other", "DISK.x", "DISK::x", "DISK[1]"}) {
    Parsed one(text);
    one.know({"DISK"});
    one.parse(Level::Factor);
    EXPECT_FALSE(static_cast<const QORQL_Factor&>(*one.tree).isKnownFromName()) << text;
  }
}

TEST(Factor, TellsBareIdentifiers) {
  const auto isBare = [](const char* text) {
    const Parsed parsed(text, Level::Factor);
    return static_cast<const QORQL_Factor&>(*parsed.tree).isBareIdentifier();
  };
  EXPECT_TRUE(isBare("x"));
  for (const char* text : {"C.x", "Cls::x", "x[1]", "x[]", "C.*", "5", "'x'", "(x)", "-x", "COUNT(x)"}) {
    EXPECT_FALSE(isBare(text)) << text;
  }
}

TEST(Factor, TellsClassReferences) {
  const auto isReference = [](const char* text) {
    const Parsed parsed(text, Level::Factor);
    return static_cast<const QORQL_Factor&>(*parsed.tree).isClassReference();
  };
  EXPECT_TRUE(isReference("Assoc.firstref"));
  EXPECT_TRUE(isReference("Assoc.secondref"));
  for (const char* text : {"Assoc.Firstref", "firstref", "Assoc.x", "(Assoc.firstref)", "'firstref'", "Assoc.*"}) {
    EXPECT_FALSE(isReference(text)) << text;
  }
}

TEST(Factor, WrapsAParenthesisedComparison) {
  EXPECT_EQ(print(Parsed("(x)", Level::Factor).tree), "{x}");
  EXPECT_EQ(print(Parsed("(a + b = c)", Level::Factor).tree), "{((a + b) = c)}");
  EXPECT_EQ(print(Parsed("((x))", Level::Factor).tree), "{{x}}");
}

TEST(Factor, Negates) {
  EXPECT_EQ(print(Parsed("-x", Level::Factor).tree), "-{x}");
  EXPECT_EQ(print(Parsed("--x", Level::Factor).tree), "-{-{x}}");
  EXPECT_EQ(print(Parsed("-(a + b)", Level::Factor).tree), "-{(a + b)}");
  EXPECT_EQ(print(Parsed("-COUNT(x)", Level::Factor).tree), "-{{COUNT(x)}}");
}

class FactorFault : public testing::TestWithParam<Fault> {};

TEST_P(FactorFault, IsReported) {
  Parsed parsed(GetParam().text);
  EXPECT_EQ(thrownBy([&] { parsed.parse(Level::Comparison); }), GetParam().thrown);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, FactorFault,
    testing::Values(Fault{"ParenthesisOpen", "(a", "parse 2@1: ')' expected"},
                    Fault{"NoOrInParentheses", "(a = 1 OR b = 2)", "parse 2@1: ')' expected"},
                    Fault{"NoAndInParentheses", "(a\n= 1 AND b = 2)", "parse 2@2: ')' expected"},
                    Fault{"NoNotInParentheses", "(NOT a = 1)", "parse 2@1: unexpected token 'NOT' found"},
                    Fault{"NegatedParenthesisOpen", "-(a", "parse 2@1: ')' expected"},
                    Fault{"Nothing", "", "parse 2@1: unexpected token '' found"},
                    Fault{"Keyword", "DISTINCT x", "parse 2@1: unexpected token 'DISTINCT' found"},
                    Fault{"Character", "a = ;", "parse 2@1: unexpected token ';' found"},
                    Fault{"Tilda", "~", "parse 2@1: unexpected token '~' found"},
                    Fault{"MinusAlone", "- ", "parse 2@1: unexpected token '' found"},
                    Fault{"IndexIsAName", "A[x]", "parse 0@1: Invalid array index list"},
                    Fault{"IndexIsNegative", "A[-1]", "parse 0@1: Invalid array index list"},
                    Fault{"IndexIsReal", "A[1.5]", "parse 0@1: Invalid array index list"},
                    Fault{"IndexIsMissing", "A[", "parse 0@1: Invalid array index list"},
                    Fault{"BracketMissing", "A[3", "parse 0@1: No closing square bracket"},
                    Fault{"TwoIndexes", "A[3 4]", "parse 0@1: No closing square bracket"},
                    Fault{"BracketMissingAfterAsterisk", "C.A[* = 1", "parse 0@1: No closing square bracket"},
                    Fault{"AnyOfElement", "ANY A[3] = 1",
                          "parse 0@1: ANY|EVERY cannot be used with direct reference to array element."},
                    Fault{"EveryOfElement", "EVERY C.A[0] = 1",
                          "parse 0@1: ANY|EVERY cannot be used with direct reference to array element."},
                    Fault{"AnyOfElementOnTheRight", "1 = ANY Cls::A[1]",
                          "parse 0@1: ANY|EVERY cannot be used with direct reference to array element."},
                    Fault{"ScopeOfNothing", "Cls::", "parse 0@1: Must be identifier after scope operator"},
                    Fault{"ScopeOfNumber", "A.Cls::5", "parse 0@1: Must be identifier after scope operator"},
                    Fault{"DotOfNothing", "C.", "parse 0@1: Must be identifier after DOT"},
                    Fault{"DotOfKeyword", "C.select", "parse 0@1: Must be identifier after DOT"},
                    Fault{"DotOfString", "C.'x'", "parse 0@1: Must be identifier after DOT"},
                    Fault{"AllOfAProperty", "C.x.*", "parse 0@1: Must be identifier after DOT"},
                    Fault{"AllOfAnElement", "C[1].*", "parse 0@1: Must be identifier after DOT"}),
    [](const auto& info) { return info.param.name; });

TEST(Factor, AnyOfAWholeArrayIsAccepted) {
  EXPECT_EQ(print(Parsed("ANY A[] = 1", Level::Comparison).tree), "ANY< (A = 1)");
  EXPECT_EQ(print(Parsed("ANY A[*] = 1", Level::Comparison).tree), "ANY< (A = 1)");
}

TEST(Factor, RefusesArraysWhileTheUpdatedFlagIsSet) {
  for (const char* text : {"A[]", "A[1]", "C.A[*]", "Cls::A[]", "A["}) {
    Parsed parsed(text);
    parsed.symbols.setSymbolTableUpdatedFlag(true);
    EXPECT_EQ(thrownBy([&] { parsed.parse(Level::Factor); }), "parse 0@1: SELECT clause cannot contain array!") << text;
  }
}

}  // namespace
