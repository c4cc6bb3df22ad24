// References to properties: their parts, and what is requested for them.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Parsed;
using parsertest::printFactor;

struct Form {
  const char* name;
  const char* text;
  const char* factor;
  const char* record;     // which record of the map the reference goes to
  const char* requested;  // and what that record holds
};

class Reference : public testing::TestWithParam<Form> {};

TEST_P(Reference, IsReadIntoItsParts) {
  Parsed parsed(GetParam().text);
  parsed.parse(Level::Factor);
  const QORQL_Factor& factor = static_cast<const QORQL_Factor&>(*parsed.tree);
  EXPECT_EQ(printFactor(factor), GetParam().factor);
  EXPECT_EQ(parsed.requested(GetParam().record), GetParam().requested);
  EXPECT_EQ(parsed.map->entries(), 1U);
  EXPECT_TRUE(factor.isPropertyReference());
  EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenEOF);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, Reference,
    testing::Values(
        Form{"Bare", "x", "[|x|~|~|-1]", "", "x"}, Form{"Qualified", "C.x", "[C|x|~|~|-1]", "C", "x"},
        Form{"KeepsSpelling", "cim_Disk.nAme", "[cim_Disk|nAme|~|~|-1]", "cim_Disk", "nAme"},
        Form{"All", "C.*", "[C|*|~|~|-1]", "C", "*"}, Form{"Element", "x[2]", "[|x|~|~|2]", "", "x"},
        Form{"FirstElement", "x[0]", "[|x|~|~|0]", "", "x"}, Form{"WholeArray", "x[*]", "[|x|~|~|-2]", "", "x"},
        Form{"EmptyBrackets", "x[]", "[|x|~|~|-3]", "", "x"},
        Form{"QualifiedElement", "C.x[3]", "[C|x|~|~|3]", "C", "x"},
        Form{"LastIndexCounts", "C[1].x[3]", "[C|x|~|~|3]", "C", "x"},
        Form{"EarlierIndex", "C[1].x", "[C|x|~|~|1]", "C", "x"},
        Form{"IndexBeyondSint32", "x[99999999999]", "[|x|~|~|2147483647]", "", "x"},
        Form{"Scoped", "Cls::x", "[|x||Cls|-1]", "", "x"}, Form{"ScopedElement", "Cls::x[1]", "[|x||Cls|1]", "", "x"},
        Form{"EmbeddedScoped", "Emb.Cls::x", "[Emb|x|Emb|Cls|-1]", "Emb", "x"},
        Form{"LongScoped", "i.SourceInstance.CIM_X::P", "[i|P|i.SourceInstance|CIM_X|-1]", "i", "SourceInstance"},
        Form{"Chain", "A.b.c", "[A|c|A.b|~|-1]", "A", "b"}, Form{"LongChain", "A.b.c.d", "[A|d|A.b.c|~|-1]", "A", "b"},
        Form{"LongChainScoped", "A.b.c.D::e[*]", "[A|e|A.b.c|D|-2]", "A", "b"}),
    [](const auto& info) { return info.param.name; });

}  // namespace
