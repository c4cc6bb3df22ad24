// The filters that storage and server vendors publish: each is valid, matches
// the indication that it is for and no other, however its words are written.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "FilterWorld.h"

namespace {

constexpr char kFieldSchema[] = R"(
class CIM_ManagedElement { string Caption; string ElementName; };
class CIM_ManagedSystemElement : CIM_ManagedElement { uint16 OperationalStatus[]; uint16 HealthState; string Name; };
class CIM_LogicalElement : CIM_ManagedSystemElement { };
class CIM_System : CIM_LogicalElement { [key] string SystemId; };
class CIM_ComputerSystem : CIM_System { uint16 EnabledState; uint16 Dedicated[]; };
class CIM_Job : CIM_LogicalElement { [key] string InstanceID; uint16 PercentComplete; };
class CIM_ConcreteJob : CIM_Job { uint16 JobState; boolean DeleteOnCompletion; };
class CIM_LogicalDevice : CIM_LogicalElement { [key] string DeviceID; uint16 EnabledState; };
class CIM_StorageExtent : CIM_LogicalDevice {
  uint64 BlockSize; uint64 NumberOfBlocks; boolean IsBasedOnUnderlyingRedundancy; uint16 DataRedundancy;
};
class CIM_StorageVolume : CIM_StorageExtent { uint16 NameFormat; };
class CIM_LogicalDisk : CIM_StorageExtent { };
class CIM_MediaAccessDevice : CIM_LogicalDevice { };
class CIM_DiskDrive : CIM_MediaAccessDevice { uint32 RPM; };
class CIM_LogicalPort : CIM_LogicalDevice { uint64 Speed; };
class CIM_NetworkPort : CIM_LogicalPort { };
class CIM_FCPort : CIM_NetworkPort { };
class CIM_Battery : CIM_LogicalDevice { uint16 EstimatedChargeRemaining; real32 Voltage; };
class CIM_StoragePool : CIM_LogicalElement {
  [key] string InstanceID; uint64 TotalManagedSpace; uint64 RemainingManagedSpace; boolean Primordial;
};
class CIM_Synchronized : CIM_ManagedElement { [key] string Id; };
class CIM_StorageSynchronized : CIM_Synchronized { uint16 SyncState; uint16 CopyType; };
class XYZ_Volume : CIM_StorageVolume { string Rack; };
class XYZ_Array : CIM_ComputerSystem { };
[indication] class CIM_Indication { string IndicationIdentifier; datetime IndicationTime; };
[indication] class CIM_InstIndication : CIM_Indication { [EmbeddedObject] string SourceInstance; };
[indication] class CIM_InstCreation : CIM_InstIndication { };
[indication] class CIM_InstDeletion : CIM_InstIndication { };
[indication] class CIM_InstModification : CIM_InstIndication { [EmbeddedObject] string PreviousInstance; };
[indication] class CIM_ProcessIndication : CIM_Indication { };
[indication] class CIM_AlertIndication : CIM_ProcessIndication {
  string AlertingManagedElement; uint16 AlertingElementFormat; uint16 AlertType; uint16 PerceivedSeverity;
  uint16 ProbableCause; uint16 Trending; string SystemName; string OwningEntity; string MessageID;
  string MessageArguments[]; string ProviderName;
};
[indication] class XYZ_Alert : CIM_AlertIndication { string Slot; };
)";

std::string quoted(const std::string& text) {
  std::string quotedText = "\"";
  for (const char c : text) quotedText += c == '"' ? std::string("\\\"") : std::string(1, c);
  return quotedText + "\"";
}
std::string object(const std::string& className, const std::string& properties) {
  return quoted("instance of " + className + " { " + properties + " };");
}
std::string created(const std::string& className, const std::string& properties = "") {
  return "instance of CIM_InstCreation { SourceInstance = " + object(className, properties) + "; };";
}
std::string deleted(const std::string& className, const std::string& properties = "") {
  return "instance of CIM_InstDeletion { SourceInstance = " + object(className, properties) + "; };";
}
std::string modified(const std::string& className, const std::string& now, const std::string& before) {
  return "instance of CIM_InstModification { SourceInstance = " + object(className, now) +
         "; PreviousInstance = " + object(className, before) + "; };";
}
std::string alert(const std::string& properties, const std::string& className = "CIM_AlertIndication") {
  return "instance of " + className + " { " + properties + " };";
}
std::string alertAbout(const std::string& path, int format = 2) {
  return alert("AlertingElementFormat = " + std::to_string(format) + "; AlertingManagedElement = " + quoted(path) +
               ";");
}

struct FieldFilter {
  std::string filter;
  std::string matching;
  std::string other;
};

void PrintTo(const FieldFilter& field, std::ostream* out) { *out << field.filter; }

const std::string kOk = "OperationalStatus = {2};";
const std::string kError = "OperationalStatus = {6};";

std::vector<FieldFilter> lifecycleFilters() {
  return {
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_StorageVolume", created("CIM_StorageVolume"),
       created("CIM_LogicalDisk")},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA 'CIM_StorageVolume'", created("XYZ_Volume"),
       deleted("XYZ_Volume")},
      {"SELECT * FROM CIM_InstDeletion WHERE SourceInstance ISA CIM_StorageVolume", deleted("XYZ_Volume"),
       created("XYZ_Volume")},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_ComputerSystem", created("XYZ_Array"),
       created("CIM_System")},
      {"SELECT * FROM CIM_InstDeletion WHERE SourceInstance ISA CIM_ComputerSystem", deleted("CIM_ComputerSystem"),
       deleted("CIM_DiskDrive")},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_FCPort", created("CIM_FCPort"),
       created("CIM_NetworkPort")},
      {"SELECT * FROM CIM_InstDeletion WHERE SourceInstance ISA CIM_LogicalPort", deleted("CIM_FCPort"),
       deleted("CIM_DiskDrive")},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_DiskDrive", created("CIM_DiskDrive"),
       created("CIM_MediaAccessDevice")},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_StoragePool AND "
       "SourceInstance.CIM_StoragePool::Primordial = FALSE",
       created("CIM_StoragePool", "Primordial = FALSE;"), created("CIM_StoragePool", "Primordial = TRUE;")},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_StorageSynchronized",
       created("CIM_StorageSynchronized"), created("CIM_Synchronized")},
      {"SELECT * FROM CIM_InstIndication WHERE SourceInstance ISA CIM_DiskDrive", deleted("CIM_DiskDrive"),
       deleted("CIM_FCPort")},
      {"SELECT i.SourceInstance FROM CIM_InstCreation AS i WHERE i.SourceInstance ISA CIM_DiskDrive",
       created("CIM_DiskDrive"), created("CIM_FCPort")},
      {"SELECT SourceInstance FROM CIM_InstCreation WHERE (SourceInstance ISA CIM_StorageVolume) AND "
       "(SourceInstance.CIM_StorageVolume::NumberOfBlocks > 1000)",
       created("CIM_StorageVolume", "NumberOfBlocks = 1001;"), created("CIM_StorageVolume", "NumberOfBlocks = 1000;")},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_DiskDrive AND "
       "SourceInstance.CIM_DiskDrive::Name = 'Slot 1'",
       created("CIM_DiskDrive", "Name = \"Slot 1\";"), created("CIM_DiskDrive", "Name = \"slot 1\";")},
  };
}

std::vector<FieldFilter> statusFilters() {
  return {
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_StorageVolume AND "
       "SourceInstance.CIM_StorageVolume::OperationalStatus <> PreviousInstance.CIM_StorageVolume::OperationalStatus",
       modified("CIM_StorageVolume", kError, kOk), modified("CIM_StorageVolume", kOk, kOk)},
      {"SELECT SourceInstance, PreviousInstance FROM CIM_InstModification WHERE SourceInstance ISA CIM_DiskDrive AND "
       "SourceInstance.OperationalStatus <> PreviousInstance.OperationalStatus",
       modified("CIM_DiskDrive", "OperationalStatus = {2, 5};", kOk), modified("CIM_FCPort", kError, kOk)},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_LogicalPort AND "
       "SourceInstance.CIM_LogicalPort::OperationalStatus[*] <> PreviousInstance.CIM_LogicalPort::OperationalStatus[*]",
       modified("CIM_FCPort", kError, kOk), modified("CIM_FCPort", kError, kError)},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_ComputerSystem AND "
       "SourceInstance.OperationalStatus[0] <> PreviousInstance.OperationalStatus[0]",
       modified("XYZ_Array", kError, kOk), modified("XYZ_Array", "OperationalStatus = {2, 6};", kOk)},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_ComputerSystem AND "
       "EVERY SourceInstance.CIM_ComputerSystem::OperationalStatus[*] <> 2",
       modified("XYZ_Array", "OperationalStatus = {3, 6};", kOk),
       modified("XYZ_Array", "OperationalStatus = {6, 2};", kOk)},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_ComputerSystem AND "
       "SourceInstance.CIM_ComputerSystem::EnabledState = 3 AND PreviousInstance.CIM_ComputerSystem::EnabledState = 2",
       modified("CIM_ComputerSystem", "EnabledState = 3;", "EnabledState = 2;"),
       modified("CIM_ComputerSystem", "EnabledState = 2;", "EnabledState = 3;")},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_StorageSynchronized AND "
       "SourceInstance.CIM_StorageSynchronized::SyncState != PreviousInstance.CIM_StorageSynchronized::SyncState",
       modified("CIM_StorageSynchronized", "SyncState = 6;", "SyncState = 5;"),
       modified("CIM_StorageSynchronized", "SyncState = 6; CopyType = 2;", "SyncState = 6; CopyType = 3;")},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_StoragePool AND "
       "SourceInstance.CIM_StoragePool::TotalManagedSpace <> PreviousInstance.CIM_StoragePool::TotalManagedSpace",
       modified("CIM_StoragePool", "TotalManagedSpace = 18446744073709551615;", "TotalManagedSpace = 1;"),
       modified("CIM_StoragePool", "TotalManagedSpace = 1; RemainingManagedSpace = 0;", "TotalManagedSpace = 1;")},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_StoragePool AND "
       "SourceInstance.CIM_StoragePool::RemainingManagedSpace * 10 < SourceInstance.CIM_StoragePool::TotalManagedSpace",
       modified("CIM_StoragePool", "TotalManagedSpace = 1000; RemainingManagedSpace = 99;", ""),
       modified("CIM_StoragePool", "TotalManagedSpace = 1000; RemainingManagedSpace = 100;", "")},
      {"SELECT SourceInstance.CIM_StorageVolume::Name FROM CIM_InstModification WHERE SourceInstance ISA "
       "CIM_StorageVolume AND SourceInstance.CIM_StorageVolume::IsBasedOnUnderlyingRedundancy = TRUE",
       modified("XYZ_Volume", "IsBasedOnUnderlyingRedundancy = TRUE;", ""), modified("XYZ_Volume", "", "")},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_LogicalDevice AND "
       "SourceInstance.CIM_LogicalDevice::HealthState > PreviousInstance.CIM_LogicalDevice::HealthState",
       modified("CIM_Battery", "HealthState = 20;", "HealthState = 5;"),
       modified("CIM_Battery", "HealthState = 5;", "HealthState = 20;")},
      {"SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_Battery AND "
       "SourceInstance.CIM_Battery::EstimatedChargeRemaining <= 20 AND SourceInstance.CIM_Battery::Voltage < 3.5",
       modified("CIM_Battery", "EstimatedChargeRemaining = 20; Voltage = 3.4;", ""),
       modified("CIM_Battery", "EstimatedChargeRemaining = 20; Voltage = 3.5;", "")},
  };
}

std::vector<FieldFilter> jobFilters() {
  const std::string running = "OperationalStatus = {2};";
  const std::string done = "OperationalStatus = {17, 2};";
  const std::string failed = "OperationalStatus = {17, 6};";
  const std::string isJob = "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_ConcreteJob AND ";
  const std::string any = "ANY SourceInstance.CIM_ConcreteJob::OperationalStatus[*] = ";
  return {
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_ConcreteJob", created("CIM_ConcreteJob"),
       created("CIM_Job")},
      {isJob + any + "17 AND " + any + "2", modified("CIM_ConcreteJob", done, running),
       modified("CIM_ConcreteJob", failed, running)},
      {isJob + any + "17 AND " + any + "6", modified("CIM_ConcreteJob", failed, running),
       modified("CIM_ConcreteJob", done, running)},
      {isJob + "SourceInstance.CIM_ConcreteJob::PercentComplete <> PreviousInstance.CIM_ConcreteJob::PercentComplete",
       modified("CIM_ConcreteJob", "PercentComplete = 50;", "PercentComplete = 49;"),
       modified("CIM_ConcreteJob", "PercentComplete = 50;", "PercentComplete = 50;")},
      {isJob + "SourceInstance.CIM_ConcreteJob::JobState <> PreviousInstance.CIM_ConcreteJob::JobState",
       modified("CIM_ConcreteJob", "JobState = 7;", "JobState = 4;"), modified("CIM_ConcreteJob", "JobState = 7;", "")},
      {isJob + "17 = ANY SourceInstance.CIM_ConcreteJob::OperationalStatus[*]",
       modified("CIM_ConcreteJob", done, running), modified("CIM_ConcreteJob", "OperationalStatus = {};", running)},
  };
}

std::vector<FieldFilter> alertFilters() {
  const std::string from = "SELECT * FROM CIM_AlertIndication WHERE ";
  return {
      {from + "OwningEntity = 'SNIA' AND MessageID = 'FC1'", alert("OwningEntity = \"SNIA\"; MessageID = \"FC1\";"),
       alert("OwningEntity = \"SNIA\"; MessageID = \"FC2\";")},
      {from + "OwningEntity='DMTF' AND MessageID='PLAT0003'",
       alert("OwningEntity = \"DMTF\"; MessageID = \"PLAT0003\";", "XYZ_Alert"), alert("MessageID = \"PLAT0003\";")},
      {from + "AlertingManagedElement ISA CIM_FCPort", alertAbout("//host/root/cimv2:CIM_FCPort.DeviceID=\"1\""),
       alertAbout("//host/root/cimv2:CIM_NetworkPort.DeviceID=\"1\"")},
      {from + "AlertingManagedElement ISA CIM_LogicalDevice", alertAbout("//h/n:CIM_FCPort.DeviceID=\"a:b.c\""),
       alertAbout("//h/n:CIM_FCPort.DeviceID=\"1\"", 1)},
      {from + "PerceivedSeverity >= 4", alert("PerceivedSeverity = 4;"), alert("PerceivedSeverity = 3;")},
      {from + "AlertType = 5 AND ProbableCause = 47", alert("AlertType = 5; ProbableCause = 47;"),
       alert("AlertType = 5;")},
      {from + "SystemName <> 'array1' AND PerceivedSeverity > 2",
       alert("SystemName = \"array2\"; PerceivedSeverity = 3;"), alert("PerceivedSeverity = 3;")},
      {from + "ANY MessageArguments[*] = 'Controller A'", alert("MessageArguments = {\"1\", \"Controller A\"};"),
       alert("MessageArguments = {\"1\", \"Controller B\"};")},
      {from + "MessageArguments[1] = 'Controller A'", alert("MessageArguments = {\"1\", \"Controller A\"};"),
       alert("MessageArguments = {\"Controller A\"};")},
      {"SELECT OwningEntity, MessageID, MessageArguments FROM XYZ_Alert WHERE Slot = '7' AND Trending = 3",
       alert("Slot = \"7\"; Trending = 3;", "XYZ_Alert"), alert("Trending = 3;")},
      {"SELECT * FROM CIM_ProcessIndication", alert(""), created("CIM_FCPort")},
      {"SELECT * FROM CIM_Indication", deleted("CIM_FCPort"), ""},
  };
}

std::string withWords(std::string text, int (*change)(int)) {
  bool isLiteral = false;
  for (char& c : text) {
    if (c == '\'') isLiteral = !isLiteral;
    if (!isLiteral) c = static_cast<char>(change(static_cast<unsigned char>(c)));
  }
  return text;
}

class FieldFilters : public testing::TestWithParam<FieldFilter> {
 protected:
  FilterWorld world{kFieldSchema};
};

TEST_P(FieldFilters, MatchesWhatItIsForHoweverItsWordsAreWritten) {
  const FieldFilter& field = GetParam();
  const std::string lower = withWords(field.filter, [](int c) { return std::tolower(c); });
  const std::string upper = withWords(field.filter, [](int c) { return std::toupper(c); });
  for (const std::string& filter : {field.filter, lower, upper}) {
    EXPECT_TRUE(world.matches(filter, world.indication(field.matching))) << filter;
    if (!field.other.empty()) {
      EXPECT_FALSE(world.matches(filter, world.indication(field.other))) << filter;
    }
    EXPECT_FALSE(world.matches(filter, world.indication("instance of CIM_FCPort { };"))) << filter;
  }
}

TEST_P(FieldFilters, IsUnderstoodInEveryLanguage) {
  for (const char* language : {"CQL", "DMTF:CQL", "WQL"}) {
    CQLQueryStatement statement(language, QORString(GetParam().filter), kNameSpace, "");
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << statement.getFault().message;
    EXPECT_TRUE(statement.isMatch(world.indication(GetParam().matching), kNameSpace)) << GetParam().filter;
    EXPECT_TRUE(statement.neverMatchesBecause().isEmpty());
  }
}

INSTANTIATE_TEST_SUITE_P(Lifecycle, FieldFilters, testing::ValuesIn(lifecycleFilters()));
INSTANTIATE_TEST_SUITE_P(Status, FieldFilters, testing::ValuesIn(statusFilters()));
INSTANTIATE_TEST_SUITE_P(Jobs, FieldFilters, testing::ValuesIn(jobFilters()));
INSTANTIATE_TEST_SUITE_P(Alerts, FieldFilters, testing::ValuesIn(alertFilters()));

}  // namespace
