// A set of filters answers as each of its filters would.
// SPDX-License-Identifier: Apache-2.0
#include <thread>

#include "AllocationCount.h"
#include "Cimom/QORQL/CQLFilterSet.h"
#include "Cimom/QORQL/Filter/CQLFilterKeys.h"
#include "Cimom/QORQL/Filter/CQLMatcher.h"
#include "FilterWorld.h"

namespace {

using Handle = CQLFilterSet::Handle;
using Handles = std::vector<Handle>;
using Statement = CQLFilterSet::Statement;

struct FilterSet : Filter {
  Statement statement(const std::string& text, const char* nameSpace = kNameSpace) {
    Statement made(new CQLQueryStatement("DMTF:CQL", QORString(text), nameSpace, nameSpace));
    EXPECT_EQ(made->validate(), QUERY_VALIDATE_SUCCESS) << text;
    return made;
  }
  Statement alertStatement(const std::string& condition) {
    return statement("SELECT * FROM CIM_AlertIndication WHERE " + condition);
  }
  Handles matches(const QORSmrPtr<IQoriObject>& instance, const char* nameSpace = kNameSpace) {
    Handles handles;
    set.match(instance, nameSpace, handles);
    return handles;
  }
  // Enough filters that match nothing for the set to have its index.
  void addMany() {
    for (Handle handle = 1000; handle < 1040; ++handle) {
      EXPECT_TRUE(set.add(handle, alertStatement("MessageID = 'none" + std::to_string(handle) + "'")));
    }
  }
  // Whether a condition finds an alert, asked through the index and alone.
  bool finds(const std::string& condition, const std::string& properties) {
    const Statement asked = alertStatement(condition);
    const QORSmrPtr<IQoriObject> alert = world.alert(properties);
    if (set.size() == 0) addMany();
    EXPECT_TRUE(set.add(1, asked));
    const bool isFound = matches(alert) == Handles{1};
    EXPECT_TRUE(set.remove(1));
    EXPECT_EQ(isFound, asked->isMatch(alert, kNameSpace)) << condition << " on " << properties;
    return isFound;
  }

  CQLFilterSet set;
};

TEST_F(FilterSet, AnEmptySetMatchesNothing) {
  EXPECT_EQ(matches(world.alert("U8 = 5;")), Handles{});
  EXPECT_EQ(set.size(), 0U);
}

TEST_F(FilterSet, HandlesComeInTheOrderInWhichTheyWereAdded) {
  for (const bool isLarge : {false, true}) {
    if (isLarge) addMany();
    for (const Handle handle : {30, 10, 20}) {
      EXPECT_TRUE(set.add(handle, alertStatement("U8 = " + std::to_string(handle == 10 ? 6 : 5))));
    }
    EXPECT_EQ(matches(world.alert("U8 = 5;")), (Handles{30, 20}));
    EXPECT_TRUE(set.remove(30));
    EXPECT_TRUE(set.add(30, alertStatement("U8 = 5")));
    EXPECT_EQ(matches(world.alert("U8 = 5;")), (Handles{20, 30}));
    for (const Handle handle : {10, 20, 30}) EXPECT_TRUE(set.remove(handle));
  }
}

TEST_F(FilterSet, AHandleIsTakenOnce) {
  EXPECT_TRUE(set.add(7, alertStatement("U8 = 5")));
  EXPECT_FALSE(set.add(7, alertStatement("U8 = 6")));
  EXPECT_EQ(set.size(), 1U);
  EXPECT_EQ(matches(world.alert("U8 = 6;")), Handles{});
  EXPECT_TRUE(set.remove(7));
  EXPECT_FALSE(set.remove(7));
}

TEST_F(FilterSet, AStatementMayStandUnderTwoHandles) {
  const Statement shared = alertStatement("U8 = 5");
  addMany();
  EXPECT_TRUE(set.add(1, shared));
  EXPECT_TRUE(set.add(2, shared));
  EXPECT_EQ(matches(world.alert("U8 = 5;")), (Handles{1, 2}));
}

TEST_F(FilterSet, RefusesStatementsThatCannotBeAsked) {
  EXPECT_EQ(queryError([&] { set.add(1, Statement()); }), "CQLFILTERSET::add|Invalid or NULL param encountered|3");
  const Statement fresh(new CQLQueryStatement("CQL", "SELECT * FROM CIM_AlertIndication", kNameSpace, kNameSpace));
  EXPECT_EQ(queryError([&] { set.add(1, fresh); }), "CQLQUERYSTATEMENT::isMatch|query is not validated |2");
  const Statement refused(new CQLQueryStatement("CQL", "SELECT", kNameSpace, kNameSpace));
  refused->validate();
  EXPECT_EQ(queryError([&] { set.add(1, refused); }), "CQLQUERYSTATEMENT::isMatch|query is not validated |1");
  EXPECT_EQ(set.size(), 0U);
}

TEST_F(FilterSet, RefusesWhatAStatementRefuses) {
  Handles handles;
  EXPECT_EQ(queryError([&] { set.match(QORSmrPtr<IQoriObject>(), kNameSpace, handles); }),
            "CQLFILTERSET::match|Invalid or NULL param encountered|3");
  EXPECT_EQ(queryError([&] { set.match(world.alert("U8 = 5;"), QORString(), handles); }),
            "CQLFILTERSET::match|CQL internal error|4");
}

TEST_F(FilterSet, AsksFiltersOfTheInstancesNamespaceAloneInAnyCase) {
  for (const bool isLarge : {false, true}) {
    if (isLarge) addMany();
    EXPECT_TRUE(set.add(1, alertStatement("U8 = 5")));
    EXPECT_EQ(matches(world.alert("U8 = 5;"), "ROOT/CIMV2"), Handles{1});
    EXPECT_EQ(matches(world.alert("U8 = 5;"), "root/other"), Handles{});
    EXPECT_TRUE(set.remove(1));
  }
}

TEST_F(FilterSet, AsksFiltersOfSuperclassesOnce) {
  addMany();
  EXPECT_TRUE(set.add(1, statement("SELECT * FROM CIM_Indication")));
  EXPECT_TRUE(set.add(2, statement("SELECT * FROM CIM_InstIndication")));
  EXPECT_TRUE(set.add(3, statement("SELECT i.U8 FROM CIM_AlertIndication AS i, CIM_Indication AS j WHERE i.U8 = 5")));
  EXPECT_EQ(matches(world.alert("U8 = 5;")), (Handles{1, 3}));
}

TEST_F(FilterSet, FindsIntegersWhateverTheirTypes) {
  for (const char* property : {"U8", "U16", "U32", "U64", "S8", "S16", "S32", "S64", "R32", "R64"}) {
    EXPECT_TRUE(finds(std::string(property) + " = 5", std::string(property) + " = 5;")) << property;
    EXPECT_TRUE(finds("5 = " + std::string(property), std::string(property) + " = 5;")) << property;
    EXPECT_TRUE(finds(std::string(property) + " = 5.0", std::string(property) + " = 5;")) << property;
    EXPECT_FALSE(finds(std::string(property) + " = 6", std::string(property) + " = 5;")) << property;
  }
}

// An unsigned number beside a signed one is taken for the signed one of its bits.
TEST_F(FilterSet, FindsUnsignedNumbersThatCompareAsSignedOnes) {
  EXPECT_TRUE(finds("U64 = 18446744073709551615", "U64 = 18446744073709551615;"));
  EXPECT_TRUE(finds("U64 = -1", "U64 = 18446744073709551615;"));
  EXPECT_TRUE(finds("U64 < 5 - 6", "U64 = 18446744073709551614;"));
  EXPECT_TRUE(finds("S64 = 18446744073709551615", "S64 = -1;"));
  EXPECT_TRUE(finds("S64 > 18446744073709551614", "S64 = -1;"));
}

// As the signed number it is below the one bound, as itself above the other.
TEST_F(FilterSet, FindsUnsignedNumbersWithinBoundsOfWhichOneIsSigned) {
  EXPECT_TRUE(finds("U64 < -1 AND U64 > -5.5", "U64 = 18446744073709551606;"));
  EXPECT_TRUE(finds("U64 > -5.5 AND U64 <= -1", "U64 = 18446744073709551606;"));
  EXPECT_TRUE(finds("U64 < -1 AND U64 > -5.5", "U64 = 18446744073709551613;"));
  EXPECT_FALSE(finds("U64 < -1 AND U64 > -5.5", "U64 = 5;"));
  EXPECT_TRUE(finds("S64 < -1 AND S64 > -5.5", "S64 = -3;"));
}

TEST_F(FilterSet, FindsNumbersInRanges) {
  for (const char* property : {"U16", "S32", "R64"}) {
    const std::string name(property);
    for (const int value : {9, 10, 11, 19, 20, 21}) {
      const std::string has = name + " = " + std::to_string(value) + ";";
      EXPECT_EQ(finds(name + " >= 10 AND " + name + " < 20", has), value >= 10 && value < 20);
      EXPECT_EQ(finds(name + " > 10 AND 20 >= " + name, has), value > 10 && value <= 20);
      EXPECT_EQ(finds(name + " > 10", has), value > 10);
      EXPECT_EQ(finds(name + " <= 10", has), value <= 10);
      EXPECT_FALSE(finds(name + " > 20 AND " + name + " < 10", has));
      EXPECT_EQ(finds(name + " <> 10", has), value != 10);
    }
  }
  EXPECT_TRUE(finds("S64 >= -10 AND S64 <= 10", "S64 = -10;"));
  EXPECT_TRUE(finds("S64 > -11 AND S64 < 1", "S64 = 0;"));
  EXPECT_TRUE(finds("R64 > -0.5 AND R64 < 0.5", "R64 = 0;"));
}

TEST_F(FilterSet, FindsZeroOfBothSigns) {
  EXPECT_TRUE(finds("R64 = 0", "R64 = -0.0;"));
  EXPECT_TRUE(finds("R64 = -0.0", "R64 = 0.0;"));
}

TEST_F(FilterSet, FindsGreatNumbersThatRealsCannotTellApart) {
  EXPECT_TRUE(finds("U64 = 9007199254740993", "U64 = 9007199254740993;"));
  EXPECT_FALSE(finds("U64 = 9007199254740993", "U64 = 9007199254740992;"));
  EXPECT_TRUE(finds("U64 > 9007199254740992 AND U64 < 9007199254740994", "U64 = 9007199254740993;"));
}

TEST_F(FilterSet, FindsTextsAndBooleansByTheirTexts) {
  EXPECT_TRUE(finds("MessageID = 'M1'", "MessageID = \"M1\";"));
  EXPECT_FALSE(finds("MessageID = 'm1'", "MessageID = \"M1\";"));
  EXPECT_TRUE(finds("B = 'true'", "B = TRUE;"));
  EXPECT_TRUE(finds("B = FALSE", "B = FALSE;"));
  EXPECT_FALSE(finds("B = TRUE", "B = FALSE;"));
  EXPECT_TRUE(finds("MessageID = TRUE", "MessageID = \"TRUE\";"));
  EXPECT_FALSE(finds("MessageID = TRUE", "MessageID = \"true\";"));
}

TEST_F(FilterSet, FindsWhatHangsOnNothing) {
  EXPECT_TRUE(finds("ANY A[*] = 17", "A = {1, 17};"));
  EXPECT_TRUE(finds("U8 + 1 = 6", "U8 = 5;"));
  EXPECT_TRUE(finds("U8 = U16", "U8 = 5; U16 = 5;"));
  EXPECT_FALSE(finds("When < '20270101000000.000000+000'", "When = \"20260101000000.000000+000\";"));
  EXPECT_TRUE(finds("A[1] = 17", "A = {1, 17};"));
  EXPECT_FALSE(finds("A[1] = 17", "A = {17};"));
}

TEST_F(FilterSet, FiltersThatNeverMatchAreHeldAndMatchNothing) {
  EXPECT_FALSE(finds("U8 = 5 OR U8 = 6", "U8 = 5;"));
  EXPECT_FALSE(finds("NOT U8 = 5", "U8 = 6;"));
  EXPECT_FALSE(finds("MessageID LIKE 'M'", "MessageID = \"M\";"));
}

// A set of such filters alone has neither an index nor a list of them.
TEST_F(FilterSet, AFilterAmongThoseThatNeverMatchIsFoundOnce) {
  for (Handle handle = 100; handle < 113; ++handle) {
    EXPECT_TRUE(set.add(handle, alertStatement("U8 = 5 OR U8 = 6")));
  }
  EXPECT_TRUE(set.add(1, alertStatement("U8 = 5")));
  for (Handle handle = 100; handle < 113; ++handle) {
    EXPECT_EQ(matches(world.alert("U8 = 5;")), Handles{1});
    EXPECT_TRUE(set.remove(handle));
  }
  EXPECT_TRUE(set.remove(1));
  EXPECT_EQ(matches(world.alert("U8 = 5;")), Handles{});
}

TEST_F(FilterSet, FindsEmbeddedObjectsByClassAndByProperty) {
  addMany();
  const char* const kFrom = "SELECT * FROM CIM_InstModification WHERE ";
  EXPECT_TRUE(set.add(1, statement(std::string(kFrom) + "SourceInstance ISA CIM_StorageVolume")));
  EXPECT_TRUE(set.add(2, statement(std::string(kFrom) + "SourceInstance ISA CIM_FCPort")));
  EXPECT_TRUE(set.add(3, statement(std::string(kFrom) + "SourceInstance.CIM_StorageVolume::Id = 'v'")));
  EXPECT_TRUE(set.add(4, statement(std::string(kFrom) + "PreviousInstance.CIM_StorageVolume::Size < 10")));
  EXPECT_TRUE(set.add(5, statement(std::string(kFrom) + "sourceinstance ISA cim_managedelement")));
  const auto volume = world.indication(
      "instance of CIM_InstModification { SourceInstance = \"instance of XYZ_Volume { Id = \\\"v\\\"; };\"; "
      "PreviousInstance = \"instance of CIM_StorageVolume { Id = \\\"w\\\"; Size = 5; };\"; };");
  EXPECT_EQ(matches(volume), (Handles{1, 3, 4, 5}));
  const auto port = world.indication(
      "instance of CIM_InstModification { SourceInstance = \"instance of CIM_FCPort { Id = \\\"v\\\"; };\"; };");
  EXPECT_EQ(matches(port), (Handles{2, 5}));
}

TEST_F(FilterSet, FindsTheClassThatTheTextOfAnAlertNames) {
  EXPECT_TRUE(finds("AlertingManagedElement ISA CIM_ManagedElement",
                    "AlertingElementFormat = 2; AlertingManagedElement = \"//h/root/cimv2:CIM_FCPort.Id=\\\"x\\\"\";"));
  EXPECT_FALSE(
      finds("AlertingManagedElement ISA CIM_ManagedElement",
            "AlertingElementFormat = 1; AlertingManagedElement = \"//h/root/cimv2:CIM_FCPort.Id=\\\"x\\\"\";"));
}

TEST_F(FilterSet, ASetThatShrinksAndGrowsAgainAnswersAlike) {
  const QORSmrPtr<IQoriObject> alert = world.alert("U8 = 5;");
  for (int round = 0; round < 3; ++round) {
    Handles expected;
    for (Handle handle = 0; handle < 200; ++handle) {
      EXPECT_TRUE(set.add(handle, alertStatement("U8 = " + std::to_string(handle % 10))));
      if (handle % 10 == 5) expected.push_back(handle);
      EXPECT_EQ(matches(alert), expected);
    }
    for (Handle handle = 0; handle < 200; ++handle) {
      EXPECT_TRUE(set.remove(handle));
      if (handle % 10 == 5) expected.erase(expected.begin());
      EXPECT_EQ(matches(alert), expected);
    }
  }
}

// The number whose filter stands where the directory of a class does: what mixes
// the bits of a place can be turned back.
QORuint64 numberThatMeetsTheDirectory(const Statement& ofTheProperty, const char* className) {
  const auto unmixed = [](QORuint64 bits) { return (bits ^ bits >> 32) * 0xf1de83e19937733dULL; };
  const QORuint64 classHash = cqlkeys::classHash(kNameSpace, "CIM_AlertIndication");
  QoriScalar zero;
  zero.kind = QoriScalarKind::Unsigned;
  zero.u = 0;
  std::vector<QORuint64> keys;
  cqlkeys::addEqualKeys(cqlkeys::pathHash(classHash, ofTheProperty->getMatcher().accesses().front()), zero, keys);
  return unmixed(keys.front()) ^ unmixed(cqlkeys::directoryHash(cqlkeys::classHash(kNameSpace, className)));
}

// A class whose filters have a directory there, and one that has none.
TEST_F(FilterSet, AFilterMayShareTheHashOfADirectory) {
  addMany();
  EXPECT_TRUE(set.add(1, alertStatement("U64 = 1")));
  for (const char* className : {"CIM_AlertIndication", "CIM_Indication"}) {
    const std::string has =
        "U64 = " + std::to_string(numberThatMeetsTheDirectory(alertStatement("U64 = 1"), className));
    EXPECT_TRUE(set.add(2, alertStatement(has)));
    EXPECT_EQ(matches(world.alert(has + ";")), Handles{2});
    EXPECT_TRUE(set.remove(2));
    EXPECT_EQ(matches(world.alert(has + ";")), Handles{});
  }
  EXPECT_EQ(matches(world.alert("U64 = 1;")), Handles{1});
}

// More paths than a class's filters may hang by: the others are asked one by one.
TEST_F(FilterSet, FindsFiltersOfMorePathsThanItKeeps) {
  std::string schema = "[indication] class T_Wide {";
  std::string instance = "instance of T_Wide {";
  for (int i = 0; i < 80; ++i) {
    schema += " uint8 P" + std::to_string(i) + ";";
    instance += " P" + std::to_string(i) + " = 1;";
  }
  FilterWorld wide((schema + " };").c_str());
  Handles expected;
  for (Handle handle = 0; handle < 80; ++handle) {
    EXPECT_TRUE(set.add(handle, statement("SELECT * FROM T_Wide WHERE P" + std::to_string(handle) + " = 1")));
    expected.push_back(handle);
  }
  EXPECT_EQ(matches(wide.indication(instance + " };")), expected);
}

TEST_F(FilterSet, AMatchOfAFewAmongManyAllocatesNothing) {
  for (Handle handle = 0; handle < 500; ++handle) {
    EXPECT_TRUE(set.add(handle, alertStatement("MessageID = 'M" + std::to_string(handle) + "' AND U8 < 9")));
  }
  const QORSmrPtr<IQoriObject> alert = world.alert("U8 = 5; MessageID = \"M77\";");
  const QORString nameSpace(kNameSpace);
  Handles handles;
  set.match(alert, nameSpace, handles);
  const auto before = allocationCount();
  set.match(alert, nameSpace, handles);
  EXPECT_EQ(allocationCount() - before, 0U);
  EXPECT_EQ(handles, Handles{77});
}

// Run under the thread sanitizer too.
using FilterThreadsOfSets = FilterSet;

TEST_F(FilterThreadsOfSets, ASetAnswersManyThreadsWhileOneAddsAndRemoves) {
  constexpr Handle kStays = 100000;
  std::vector<Statement> statements;
  for (Handle handle = 0; handle < 100; ++handle) {
    statements.push_back(alertStatement("U8 = " + std::to_string(handle % 7)));
  }
  const QORSmrPtr<IQoriObject> alert = world.alert("U8 = 5;");
  EXPECT_TRUE(set.add(kStays, alertStatement("U8 = 5 AND U8 > 4")));
  std::atomic<bool> isOver{false};
  std::atomic<int> wrong{0};
  std::vector<std::thread> readers;
  for (int i = 0; i < 4; ++i) {
    readers.emplace_back([&] {
      Handles handles;
      do {
        set.match(alert, kNameSpace, handles);
        // Those that come and go do so in order, and one is always there.
        if (handles.empty() || handles.front() != kStays) ++wrong;
        for (std::size_t at = 1; at < handles.size(); ++at) wrong += handles[at] % 7 == 5 ? 0 : 1;
      } while (!isOver);
    });
  }
  for (int round = 0; round < 10; ++round) {
    for (Handle handle = 0; handle < 100; ++handle) wrong += set.add(handle, statements[handle]) ? 0 : 1;
    for (Handle handle = 0; handle < 100; ++handle) wrong += set.remove(handle) ? 0 : 1;
  }
  isOver = true;
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(set.size(), 1U);
}

}  // namespace
