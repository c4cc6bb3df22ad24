// Instances that reach the store as rows.
// SPDX-License-Identifier: Apache-2.0
#include <functional>

#include "Cimom/Embedded/CimDeclarationRows.h"
#include "EmbeddedFixture.h"

using namespace embeddedtest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Put = std::function<void(CimRowWriter&)>;

class InstanceRows : public EmbeddedTest {
 protected:
  InstanceRows() {
    declare(classOf(
        "T_Row", "",
        {property("K", CQoriType::string, {flag("Key")}), property("U8", CQoriType::uint8),
         property("S8", CQoriType::sint8), property("U64", CQoriType::uint64), property("S64", CQoriType::sint64),
         property("R32", CQoriType::real32), property("R64", CQoriType::real64), property("B", CQoriType::boolean),
         property("T", CQoriType::string), property("D", CQoriType::datetime),
         property("L", CQoriType::arrayOf(CQoriType::uint16)), property("C", CQoriType::char16),
         property("Kept", CQoriType::string, {}, text("default"))}));
  }

  // What one cell makes of a property; "refused" when the row is.
  std::string made(const char* propertyName, const Put& put) {
    const auto maker = manager.sink().instanceMaker("root/cimv2", "t_row", {"K", propertyName});
    if (maker == nullptr) return "no way";
    std::string row;
    CimRowWriter writer(row);
    const std::string key = std::to_string(_keys++);
    writer.putText(key);
    put(writer);
    if (!maker->create(row)) return "refused";
    return values(enumerate("T_Row"), propertyName).back();
  }
  static Put unsignedCell(QORuint64 u) {
    return [u](CimRowWriter& writer) { writer.putUnsigned(u); };
  }
  static Put signedCell(QORsint64 s) {
    return [s](CimRowWriter& writer) { writer.putSigned(s); };
  }
  static Put realCell(double r) {
    return [r](CimRowWriter& writer) { writer.putReal(r); };
  }
  static Put word(CimCellKind kind) {
    return [kind](CimRowWriter& writer) { writer.putWord(kind); };
  }
  static Put textCell(const char* t) {
    return [t](CimRowWriter& writer) { writer.putText(t); };
  }
  static Put array(const std::vector<Put>& elements) {
    return [elements](CimRowWriter& writer) {
      const std::size_t begun = writer.beginArray();
      for (const Put& put : elements) put(writer);
      writer.endArray(begun, static_cast<QORuint32>(elements.size()));
    };
  }

 private:
  int _keys = 0;
};

TEST_F(InstanceRows, NumbersFitByTheirValue) {
  EXPECT_EQ("255", made("U8", unsignedCell(255)));
  EXPECT_EQ("refused", made("U8", unsignedCell(256)));
  EXPECT_EQ("7", made("U8", signedCell(7)));
  EXPECT_EQ("refused", made("U8", signedCell(-1)));
  EXPECT_EQ("127", made("S8", unsignedCell(127)));
  EXPECT_EQ("refused", made("S8", unsignedCell(128)));
  EXPECT_EQ("-128", made("S8", signedCell(-128)));
  EXPECT_EQ("refused", made("S8", signedCell(-129)));
  EXPECT_EQ("18446744073709551615", made("U64", unsignedCell(18446744073709551615ULL)));
  EXPECT_EQ("9223372036854775807", made("S64", unsignedCell(9223372036854775807ULL)));
  EXPECT_EQ("refused", made("S64", unsignedCell(9223372036854775808ULL)));
  EXPECT_EQ("-9223372036854775808", made("S64", signedCell(std::numeric_limits<QORsint64>::min())));
  EXPECT_EQ("refused", made("U8", realCell(1)));
}

TEST_F(InstanceRows, RealsTakeIntegersAndAreRoundedToTheirType) {
  EXPECT_EQ("0.1", made("R32", realCell(0.1)));
  EXPECT_EQ("refused", made("R32", realCell(1e39)));
  EXPECT_EQ("refused", made("R32", realCell(-1e39)));
  EXPECT_EQ("1e+39", made("R64", realCell(1e39)));
  EXPECT_EQ("3", made("R64", unsignedCell(3)));
  EXPECT_EQ("-3", made("R64", signedCell(-3)));
}

TEST_F(InstanceRows, OtherCellsMustBeOfTheType) {
  EXPECT_EQ("TRUE", made("B", word(CimCellKind::True)));
  EXPECT_EQ("FALSE", made("B", word(CimCellKind::False)));
  EXPECT_EQ("refused", made("B", unsignedCell(1)));
  EXPECT_EQ("refused", made("U8", word(CimCellKind::True)));
  EXPECT_EQ("a text", made("T", textCell("a text")));
  EXPECT_EQ("refused", made("U8", textCell("1")));
  EXPECT_EQ("refused", made("B", textCell("TRUE")));
  EXPECT_EQ("20200101000000.000000+000", made("D", textCell("20200101000000.000000+000")));
  EXPECT_EQ("refused", made("T", array({textCell("a")})));
  EXPECT_EQ("NULL", made("T", word(CimCellKind::Null)));
  EXPECT_EQ("NULL", made("Kept", word(CimCellKind::Null)));
}

TEST_F(InstanceRows, ArraysAreSharedWhereTheyAreAlike) {
  const Put two = array({unsignedCell(14), word(CimCellKind::Null), unsignedCell(19)});
  const std::string first = made("L", two);
  EXPECT_EQ(first, made("L", two));
  EXPECT_EQ("refused", made("L", array({unsignedCell(70000)})));
  EXPECT_EQ("refused", made("L", unsignedCell(7)));
  EXPECT_EQ("refused", made("L", array({array({unsignedCell(7)})})));
}

TEST_F(InstanceRows, WhatRowsDoNotGiveTakesItsDefault) {
  EXPECT_EQ("x", made("T", textCell("x")));
  EXPECT_THAT(values(enumerate("T_Row"), "Kept"), ElementsAre("default"));
}

TEST_F(InstanceRows, SomeClassesAndPropertiesHaveNoWay) {
  CimDeclarationSink& sink = manager.sink();
  EXPECT_EQ(nullptr, sink.instanceMaker("root/none", "T_Row", {"K"}));
  EXPECT_EQ(nullptr, sink.instanceMaker("root/cimv2", "T_None", {"K"}));
  EXPECT_EQ(nullptr, sink.instanceMaker("root/cimv2", "CIM_Device", {"DeviceID"})) << "it is abstract";
  EXPECT_EQ(nullptr, sink.instanceMaker("root/cimv2", "T_Row", {"T"})) << "the key has no value";
  EXPECT_EQ(nullptr, sink.instanceMaker("root/cimv2", "T_Row", {"K", "k"}));
  EXPECT_EQ(nullptr, sink.instanceMaker("root/cimv2", "T_Row", {"K", "None"}));
  EXPECT_EQ("no way", made("C", unsignedCell(65)));
}

TEST_F(InstanceRows, ABadRowStoresNothing) {
  const auto maker = manager.sink().instanceMaker("root/cimv2", "T_Row", {"K", "T", "L"});
  std::string row;
  CimRowWriter writer(row);
  writer.putText("key");
  writer.putText("text");
  array({unsignedCell(1), unsignedCell(2)})(writer);
  for (std::size_t length = 0; length < row.size(); ++length) {
    EXPECT_FALSE(maker->create(std::string_view(row).substr(0, length))) << length;
  }
  EXPECT_FALSE(maker->create(row + '\0')) << "a cell too many";
  EXPECT_FALSE(maker->create("\x63" + row)) << "an unknown kind";
  EXPECT_THAT(paths(enumerate("T_Row")), IsEmpty());
  EXPECT_TRUE(maker->create(row));
  EXPECT_FALSE(maker->create(row)) << "the path is there already";
  EXPECT_EQ(1U, enumerate("T_Row")->entries());
}

TEST_F(InstanceRows, AKeyNeedsAValue) {
  const auto maker = manager.sink().instanceMaker("root/cimv2", "T_Row", {"K"});
  std::string row;
  CimRowWriter(row).putWord(CimCellKind::Null);
  EXPECT_FALSE(maker->create(row));
}

TEST_F(InstanceRows, ALoadThatIsRolledBackLeavesNone) {
  CimDeclarationSink& sink = manager.sink();
  sink.begin();
  const auto maker = sink.instanceMaker("root/cimv2", "T_Row", {"K"});
  std::string row;
  CimRowWriter(row).putText("pending");
  EXPECT_TRUE(maker->create(row));
  EXPECT_THAT(paths(enumerate("T_Row")), IsEmpty());
  sink.rollback();
  sink.begin();
  const auto again = sink.instanceMaker("root/cimv2", "T_Row", {"K"});
  EXPECT_TRUE(again->create(row)) << "the path is free again";
  sink.commit();
  EXPECT_THAT(paths(enumerate("T_Row")), ElementsAre("root/cimv2:T_Row.K=\"pending\""));
}

}  // namespace
