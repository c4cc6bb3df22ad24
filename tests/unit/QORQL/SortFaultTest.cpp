// Why a sort fails: a key without a value, a name of no class, an element that is not there.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/Run/QORQL_SortFault.h"
#include "FaultWorld.h"
#include "MarkedStatement.h"

namespace {

using Fault = QORQL_Fault;

constexpr char kModel[] = R"(
class Host { [key] string Name; uint32 Memory; uint16 Ports[]; };
class Disk { [key] string Name; string HostName; uint64 Size; };
instance of Host { Name = "a"; Memory = 1; Ports = {1, 2}; };
instance of Host { Name = "b"; Ports = {1}; };
instance of Host { Name = "c"; Ports = {1}; };
instance of Disk { Name = "d"; HostName = "a"; Size = 7; };
instance of Disk { Name = "e"; HostName = "a"; };
)";

struct Row {
  const char* statement;  // "^" stands at the place
  Fault::Kind kind;
  const char* text;  // as FaultWorld::textOf, without the kind
};

constexpr Row kRows[] = {
    {"SELECT Name FROM Host ORDER BY ^Memory ASC", Fault::kValueMissing,
     "HOST.Memory of root/cimv2:Host.Name=\"b\":   0"},
    {"SELECT h.Name FROM Host AS h WHERE h.Name <> 'b' ORDER BY ^h.Memory * 2 DESC", Fault::kValueMissing,
     "h.Memory of root/cimv2:Host.Name=\"c\":   0"},
    {"SELECT Memory + 1 AS m FROM Host ORDER BY ^m ASC", Fault::kValueMissing,
     "HOST.Memory of root/cimv2:Host.Name=\"b\":   0"},
    {"SELECT h.Name, d.Name FROM Host AS h, Disk AS d WHERE h.Name = d.HostName ORDER BY ^d.Size ASC",
     Fault::kValueMissing, "d.Size of root/cimv2:Disk.Name=\"e\":   0"},
    {"SELECT Name FROM Host ORDER BY Memory + ^Wheels ASC", Fault::kPropertyUnknown, ".Wheels of :   0"},
    {"SELECT h.Memory, d.Size FROM Host AS h, Disk AS d ORDER BY ^Name ASC", Fault::kPropertyAmbiguous,
     ".Name of :   0"},
    {"SELECT h.Name FROM Host AS h ORDER BY h.^Wheels ASC", Fault::kPropertyMissing,
     "h.Wheels of root/cimv2:Host.Name=\"a\":   0"},
    {"SELECT Name FROM Host ORDER BY ^Ports[1] ASC", Fault::kElementMissing,
     "HOST.Ports of root/cimv2:Host.Name=\"b\":   1"},
    {"SELECT h.Name FROM Host AS h ORDER BY h.^Owner.Name ASC", Fault::kPathUnread, ".Name of :   0"},
    {"SELECT h.Name FROM Host AS h ORDER BY 1 + ^Owner.Name ASC", Fault::kFromNameUnknown, ".Owner of :   0"},
};

TEST(SortFault, TellsTheKeyItsObjectAndItsPlace) {
  const FaultWorld world(kModel);
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.statement);
    const MarkedStatement marked(row.statement);
    const Fault fault = world.faultOf(marked.text);
    EXPECT_EQ(FaultWorld::textOf(fault), std::to_string(row.kind) + " " + row.text);
    EXPECT_EQ(marked.markedAt(fault.offset), row.statement);
  }
}

}  // namespace
