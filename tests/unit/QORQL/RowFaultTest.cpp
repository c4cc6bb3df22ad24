// What an error of a comparison says of the row: values, object and place. The engine's words stay.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/Face/QORQL_Statement.h"
#include "Cimom/QORQL/QORQL_RowFault.h"
#include "FaultWorld.h"
#include "MarkedStatement.h"

namespace {

using Fault = QORQL_Fault;

constexpr char kModel[] = R"(
class Host { [key] string Name; uint32 Memory; uint16 Ports[]; datetime Born; string Owner; };
class Disk { [key] string Name; string HostName; uint64 Size; };
instance of Host { Name = "a"; Memory = 1; Ports = {1, 2}; Born = "20260101000000.000000+000"; Owner = "x"; };
instance of Host { Name = "b"; Ports = {1}; };
instance of Disk { Name = "d"; HostName = "a"; Size = 7; };
instance of Disk { Name = "e"; HostName = "b"; };
)";

struct Row {
  const char* statement;  // "^" stands at the place
  Fault::Kind kind;
  const char* text;  // as FaultWorld::textOf, without the kind
};

constexpr Row kRows[] = {
    // LIKE
    {"SELECT Name FROM Host WHERE ^Owner LIKE 'x'", Fault::kValueMissing,
     "HOST.Owner of root/cimv2:Host.Name=\"b\":  string 0"},
    {"SELECT h.Name FROM Host AS h WHERE h.Name LIKE ^h.Owner", Fault::kValueMissing,
     "h.Owner of root/cimv2:Host.Name=\"b\":  string 0"},
    {"SELECT Name FROM Host WHERE 'x' LIKE ^Memory + 1", Fault::kValuesIncomparable,
     "HOST.Memory of root/cimv2:Host.Name=\"a\": uint64 string 0"},
    // Types
    {"SELECT Name FROM Host WHERE Name = ^5", Fault::kValuesIncomparable,
     "HOST.Name of root/cimv2:Host.Name=\"a\": uint8 string 0"},
    {"SELECT Name FROM Host WHERE ^5 = Name", Fault::kValuesIncomparable,
     "HOST.Name of root/cimv2:Host.Name=\"a\": uint8 string 0"},
    {"SELECT Name FROM Host WHERE Born > ^'2026-11-22'", Fault::kValuesIncomparable,
     "HOST.Born of root/cimv2:Host.Name=\"a\": string datetime 0"},
    {"SELECT Name FROM Host WHERE ^Memory < Owner", Fault::kValuesIncomparable,
     "HOST.Memory of root/cimv2:Host.Name=\"a\": uint32 string 0"},
    {"SELECT Name FROM Host WHERE ^'x' = ANY Ports[*]", Fault::kValuesIncomparable,
     "HOST.Ports of root/cimv2:Host.Name=\"a\": string uint16[] 0"},
    // Two objects on a row
    {"SELECT h.Name, d.Name FROM Host AS h, Disk AS d WHERE ^h.Name = d.Size", Fault::kValuesIncomparable,
     "h.Name of root/cimv2:Host.Name=\"a\": string uint64 0"},
    {"SELECT h.Name, d.Name FROM Host AS h, Disk AS d WHERE h.Name = d.HostName AND ^h.Owner LIKE d.Name",
     Fault::kValueMissing, "h.Owner of root/cimv2:Host.Name=\"b\":  string 0"},
    // Elements
    {"SELECT Name FROM Host WHERE ^Ports[1] = 2", Fault::kElementMissing,
     "HOST.Ports of root/cimv2:Host.Name=\"b\":   1"},
    {"SELECT Name FROM Host WHERE Memory = 1 AND 0 + ^Ports[2] = 2", Fault::kElementMissing,
     "HOST.Ports of root/cimv2:Host.Name=\"a\":   2"},
    // Paths
    {"SELECT Name FROM Host AS h WHERE Memory = 1 AND 'x' = h.^Owner.Name", Fault::kPathUnread, ".Name of :   0"},
    {"SELECT Name FROM Host AS h WHERE h.^Owner.Name LIKE 'x'", Fault::kPathUnread, ".Name of :   0"},
    // Properties
    {"SELECT h.Name FROM Host AS h WHERE h.^Wheels = 1", Fault::kPropertyMissing,
     "h.Wheels of root/cimv2:Host.Name=\"a\":   0"},
};

TEST(RowFault, TellsValuesObjectAndPlace) {
  const FaultWorld world(kModel);
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.statement);
    const MarkedStatement marked(row.statement);
    const Fault fault = world.faultOf(marked.text);
    EXPECT_EQ(FaultWorld::textOf(fault), std::to_string(row.kind) + " " + row.text);
    EXPECT_EQ(marked.markedAt(fault.offset), row.statement);
  }
}

TEST(RowFault, LeavesTheErrorAsItWas) {
  QueryWorld world(kModel);
  EXPECT_EQ(world.error("SELECT Name FROM Host WHERE Name = 5"), "CIM_Value: Cannot compare string with uint8");
}

// The cause is the quotient and not the comparison.
TEST(RowFault, OfOtherErrorsIsNone) {
  const QueryWorld world(kModel);
  QORQL_Statement statement("SELECT Name FROM Host WHERE Memory / 0 = 'x'");
  try {
    statement.run();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const QoriBaseException& error) {
    EXPECT_STREQ(error.what(), "Division by zero");
    EXPECT_EQ(QORQL_faultOf(error), nullptr);
  }
}

}  // namespace
