// Matching allocates nothing for the conditions that filters mostly have.
// SPDX-License-Identifier: Apache-2.0
#include "AllocationCount.h"
#include "FilterWorld.h"

namespace {

struct FilterAllocation : Filter {
  // Allocations of a hundred matches after a first one.
  unsigned long allocationsOf(const std::string& filter, const QORSmrPtr<IQoriObject>& instance, bool expected) {
    const QORString nameSpace(kNameSpace);
    CQLQueryStatement statement("DMTF:CQL", QORString(filter), nameSpace, nameSpace);
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << filter;
    EXPECT_EQ(statement.isMatch(instance, nameSpace), expected) << filter;
    const unsigned long before = allocationCount();
    for (int i = 0; i < 100; ++i) statement.isMatch(instance, nameSpace);
    return allocationCount() - before;
  }
};

TEST_F(FilterAllocation, TheCountGrowsWithAnAllocation) {
  const unsigned long before = allocationCount();
  const QORString text("a text of its own");
  EXPECT_GT(allocationCount(), before) << text;
}

TEST_F(FilterAllocation, PropertiesAgainstConstantsAndProperties) {
  const QORSmrPtr<IQoriObject> alert(
      world.alert("U8 = 5; U16 = 5; U64 = 18446744073709551615; S32 = -3; R64 = 2.5; B = TRUE; MessageID = \"FC1\"; "
                  "OwningEntity = \"SNIA\"; A = {2, 17};"));
  const std::string from = "SELECT * FROM CIM_AlertIndication WHERE ";
  for (const char* condition : {"U8 = 5", "5 = u8", "U8 = U16", "S32 > -4", "R64 >= 2", "U64 > U8", "MessageID = 'FC1'",
                                "MessageID <> OwningEntity", "B = TRUE", "B <> FALSE", "(U8 = 5)", "A[1] = 17",
                                "ANY A[*] = 17", "EVERY A[*] > 1", "17 = ANY A[*]", "CIM_AlertIndication.U8 = 5",
                                "U8 = 5 AND MessageID = 'FC1' AND S32 = -3 AND OwningEntity = 'SNIA' AND U16 <= 5"}) {
    EXPECT_EQ(allocationsOf(from + condition, alert, true), 0U) << condition;
  }
  for (const char* condition : {"U8 = 6", "MessageID = 'FC2'", "B = FALSE", "Absent = 'x'", "U8 = 'text'",
                                "ANY A[*] = 3", "EVERY A[*] = 2", "A[7] = 1", "U8 = 5 OR U8 = 5", "NOT U8 = 6"}) {
    EXPECT_EQ(allocationsOf(from + condition, alert, false), 0U) << condition;
  }
}

TEST_F(FilterAllocation, EmbeddedObjectsAndTheirClasses) {
  const QORSmrPtr<IQoriObject> changed(world.indication(R"(instance of CIM_InstModification {
    SourceInstance = "instance of XYZ_Volume { Id = \"v\"; OperationalStatus = {2, 17}; Size = 10; };";
    PreviousInstance = "instance of XYZ_Volume { Id = \"v\"; OperationalStatus = {2}; Size = 10; };"; };)"));
  const std::string from = "SELECT * FROM CIM_InstModification";
  for (const char* where :
       {"", " WHERE SourceInstance ISA XYZ_Volume", " WHERE SourceInstance ISA CIM_StorageVolume",
        " WHERE SourceInstance ISA CIM_ManagedElement", " WHERE SourceInstance.CIM_StorageVolume::Size = 10",
        " WHERE SourceInstance.Size = PreviousInstance.Size",
        " WHERE SourceInstance.OperationalStatus <> PreviousInstance.OperationalStatus",
        " WHERE SourceInstance.OperationalStatus[0] = PreviousInstance.OperationalStatus[0]",
        " WHERE ANY SourceInstance.CIM_StorageVolume::OperationalStatus[*] = 17"}) {
    EXPECT_EQ(allocationsOf(from + where, changed, true), 0U) << where;
  }
  EXPECT_EQ(allocationsOf(from + " WHERE SourceInstance ISA CIM_FCPort", changed, false), 0U);
  EXPECT_EQ(allocationsOf("SELECT * FROM CIM_InstIndication", changed, true), 0U);
  EXPECT_EQ(allocationsOf("SELECT * FROM CIM_InstCreation", changed, false), 0U);
}

TEST_F(FilterAllocation, DatetimesCharactersAndReferences) {
  FilterWorld own(R"(class T_End { [Key] string Id; };
    [association] class T_Link { [Key] T_End REF One; [Key] T_End REF Other; datetime Begun; datetime Ended; char16 Mark;
    datetime Seen[]; };)");
  const QORSmrPtr<IQoriObject> link(own.indication(R"(instance of T_Link {
    One = "T_End.Id=\"a\""; Other = "T_End.Id=\"b\""; Begun = "20240101120000.000000+000";
    Ended = "20240101130000.000000+060"; Mark = 'c'; Seen = {"20230101120000.000000+000"}; };)"));
  for (const char* condition : {"Begun = Ended", "Begun >= Ended", "Begun <> Seen[0]", "ANY Seen[*] < Begun",
                                "Begun > EVERY Seen[*]", "Mark = Mark", "One <> Other", "One < Other"}) {
    EXPECT_EQ(allocationsOf(std::string("SELECT * FROM T_Link WHERE ") + condition, link, true), 0U) << condition;
  }
}

TEST_F(FilterAllocation, MatchingAsksForNoInstances) {
  const QORSmrPtr<IQoriObject> alert(world.alert("U8 = 5;"));
  world.manager().resetStatistics();
  EXPECT_TRUE(world.matches("SELECT * FROM CIM_Indication", alert));
  EXPECT_TRUE(world.matches("SELECT * FROM CIM_AlertIndication WHERE U8 + 0 = 5", alert));
  EXPECT_FALSE(world.matches("SELECT * FROM CIM_AlertIndication WHERE AlertingManagedElement ISA CIM_FCPort", alert));
  const EmbeddedObjectManager::Statistics statistics = world.manager().statistics();
  EXPECT_EQ(statistics.enumerateCalls + statistics.associatorCalls + statistics.getInstanceCalls, 0U);
}

}  // namespace
