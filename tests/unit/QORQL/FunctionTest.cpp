// Function calls, as they are parsed.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Function.h"
#include "ParserSupport.h"

namespace {

using parsertest::Fault;
using parsertest::leadingFactor;
using parsertest::Level;
using parsertest::Parsed;
using parsertest::print;
using parsertest::printFactor;
using parsertest::thrownBy;

TEST(Function, IsFoundInAnyCase) {
  EXPECT_EQ(print(Parsed("count(x)", Level::Factor).tree), "{COUNT(x)}");
  EXPECT_EQ(print(Parsed("Sum ( C.x + 1 )", Level::Factor).tree), "{SUM((C.x + 1))}");
  EXPECT_EQ(print(Parsed("InstanceOf(x)", Level::Factor).tree), "{INSTANCEOF(x)}");
}

TEST(Function, NestsInOthers) {
  EXPECT_EQ(print(Parsed("MAX(MIN(x) + AVG(y))", Level::Factor).tree), "{MAX(({MIN(x)} + {AVG(y)}))}");
}

TEST(Function, HasItsIdAndParameters) {
  const Parsed parsed("AVG(x)", Level::Factor);
  const auto& function =
      dynamic_cast<const QORQL_Function&>(*static_cast<const QORQL_Factor&>(*parsed.tree).getEvaluatable());
  EXPECT_EQ(function.getFunctionID(), 5);
  EXPECT_EQ(function.getParameters()->entries(), 1U);
}

class FunctionFault : public testing::TestWithParam<Fault> {};

TEST_P(FunctionFault, IsReported) {
  Parsed parsed(GetParam().text);
  EXPECT_EQ(thrownBy([&] { parsed.parse(Level::Factor); }), GetParam().thrown);
}

constexpr const char* kObjectPath =
    "parse 17@1: Invalid argument specified to OBJECTPATH function. Only classnames allowed.";

INSTANTIATE_TEST_SUITE_P(
    Faults, FunctionFault,
    testing::Values(Fault{"Unknown", "FOO(x)", "parse 17@1: Invalid function defined"},
                    Fault{"UnknownWithoutArguments", "FOO()", "parse 17@1: Invalid function defined"},
                    Fault{"NoArgument", "COUNT()",
                          "parse 17@1: Incorrect number of arguments specified for the following method - 'COUNT'"},
                    Fault{"TwoArguments", "Sum(a, b)",
                          "parse 17@1: Incorrect number of arguments specified for the following method - 'Sum'"},
                    Fault{"NotClosed", "COUNT(a", "parse 0@1: ')' expected"},
                    Fault{"NotClosedButGoesOn", "COUNT(a\nb)", "parse 0@2: ')' expected"},
                    Fault{"NotClosedBeforeUnknown", "FOO(a", "parse 0@1: ')' expected"},
                    Fault{"CommaAtTheEnd", "SUM(a,)", "parse 2@1: unexpected token ')' found"},
                    Fault{"CommaAtTheStart", "SUM(,a)", "parse 2@1: unexpected token ',' found"},
                    Fault{"ObjectPathOfAProperty", "OBJECTPATH(D.Name)", kObjectPath},
                    Fault{"ObjectPathOfAll", "OBJECTPATH(D.*)", kObjectPath},
                    Fault{"ObjectPathOfAScopedProperty", "OBJECTPATH(Cls::x)", kObjectPath}),
    [](const auto& info) { return info.param.name; });

const QORQL_Factor* argumentOf(const Parsed& parsed) {
  const auto& function =
      dynamic_cast<const QORQL_Function&>(*static_cast<const QORQL_Factor&>(*parsed.tree).getEvaluatable());
  return leadingFactor(function.getParameters()->first());
}

TEST(Function, ObjectPathRewritesItsArgument) {
  const Parsed parsed("OBJECTPATH(Disk)", Level::Factor);
  EXPECT_EQ(printFactor(*argumentOf(parsed)), "[DISK|NONE|~|~|-1]");
  EXPECT_EQ(parsed.requested(""), "Disk");
}

TEST(Function, ObjectPathOfSomethingWithoutPropertyIsAcceptedUnchanged) {
  EXPECT_EQ(print(Parsed("OBJECTPATH('x')", Level::Factor).tree), "{OBJECTPATH(x)}");
  EXPECT_EQ(print(Parsed("OBJECTPATH(a + b)", Level::Factor).tree), "{OBJECTPATH((a + b))}");
}

}  // namespace
