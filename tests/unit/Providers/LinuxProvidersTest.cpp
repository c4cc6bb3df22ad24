// The live classes inside an object manager: schema, registration, fuller schemas.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <unistd.h>

#include <string>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Providers/LinuxProviders.h"
#include "ProviderFixture.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriProviderException.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kNamespace = "root/cimv2";
// Those of which every machine has instances.
constexpr const char* kClasses[] = {
    "Linux_Process", "Linux_FileSystem", "Linux_OperatingSystem", "Linux_Processor",   "Linux_NetworkPort",
    "Linux_User",    "Linux_Group",      "Linux_ProcessOwner",    "Linux_GroupMember", "Linux_ComputerSystem"};
constexpr const char* kOtherClasses[] = {
    "Linux_BlockDevice",    "Linux_ListeningPort", "Linux_Service", "Linux_ProcessPort", "Linux_FileSystemDevice",
    "Linux_ServiceProcess", "Linux_Socket",        "Linux_Login",   "Linux_Package",     "Linux_KernelModule",
    "Linux_Timer",          "Linux_CronEntry",     "Linux_Route"};

class LinuxProviders : public testing::Test {
 protected:
  void SetUp() override { _manager.makeCurrent(); }

  void load(const std::string& mof) { MofLoader(_manager.sink(), kNamespace).loadText(mof, "test"); }
  void addLiveClasses() {
    LinuxSchemaSink sink(_manager.sink());
    MofLoader(sink, kNamespace).loadText(linuxSchemaMof(), "live classes");
    registerLinuxProviders(_manager, kNamespace);
  }
  // All instances with all properties.
  static CIMApi::Instances enumerate(const char* className, const CIMApi::PropertyNames& names = {}) {
    CIMApi api;
    return api.enumerateInstances(kNamespace, className, names, CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {});
  }
  static QORSmrPtr<IQoriObject> ownProcess(const char* className, const CIMApi::PropertyNames& names = {}) {
    const CIMApi::Instances instances = enumerate(className, names);
    QORValSlistIterator<QORSmrPtr<IQoriObject>> instance(*instances);
    const std::string self = std::to_string(getpid());
    while (instance()) {
      if (textOf(instance.key()->getProperty("Handle", true)->getValue()) == self) return instance.key();
    }
    return {};
  }
  static std::string property(const QORSmrPtr<IQoriObject>& object, const char* name) {
    const QORSmrPtr<IQoriProperty> found = object->getProperty(name, true);
    return found.IsNull() ? "(no such property)" : textOf(found->getValue());
  }

  EmbeddedObjectManager _manager;
};

TEST_F(LinuxProviders, SchemaIsMofThatLoads) {
  load(linuxSchemaMof());
  for (const char* name : kClasses) EXPECT_FALSE(_manager.sink().findClass(kNamespace, name).IsNull()) << name;
  for (const char* name : kOtherClasses) EXPECT_FALSE(_manager.sink().findClass(kNamespace, name).IsNull()) << name;
  EXPECT_EQ(_manager.sink().findClass(kNamespace, "Linux_Process")->getSuperClassName(), "CIM_Process");
}

// Tools that show no descriptions do without them; nothing else may differ.
TEST_F(LinuxProviders, WithoutDescriptionsTheClassesAreTheSame) {
  EmbeddedObjectManager brief;
  load(linuxSchemaMof());
  MofLoader(brief.sink(), kNamespace).loadText(linuxSchemaMofWithoutDescriptions(), "test");
  EXPECT_THAT(linuxSchemaMof(), HasSubstr("Description("));
  EXPECT_THAT(linuxSchemaMofWithoutDescriptions(), Not(HasSubstr("Description(")));
  ASSERT_EQ(brief.classNames(kNamespace), _manager.classNames(kNamespace));
  for (const QORString& name : _manager.classNames(kNamespace)) {
    const auto expected = _manager.allProperties(kNamespace, name);
    const auto found = brief.allProperties(kNamespace, name);
    EXPECT_EQ(brief.isAssociation(kNamespace, name), _manager.isAssociation(kNamespace, name));
    EXPECT_EQ(brief.sink().findClass(kNamespace, name)->getSuperClassName(),
              _manager.sink().findClass(kNamespace, name)->getSuperClassName());
    ASSERT_EQ(found.size(), expected.size()) << name.c_str();
    for (std::size_t i = 0; i < found.size(); ++i) {
      EXPECT_EQ(found[i].name, expected[i].name);
      EXPECT_EQ(found[i].type->getName(), expected[i].type->getName());
      EXPECT_EQ(found[i].arraySize, expected[i].arraySize);
      EXPECT_EQ(found[i].referenceClass, expected[i].referenceClass);
      EXPECT_EQ(found[i].hasFlag("Key"), expected[i].hasFlag("Key")) << name.c_str() << found[i].name.c_str();
      EXPECT_EQ(found[i].hasFlag("Volatile"), expected[i].hasFlag("Volatile"));
    }
  }
}

TEST_F(LinuxProviders, EveryClassOfTheSchemaHasAProvider) {
  addLiveClasses();
  for (const char* name : kOtherClasses) {
    try {
      EXPECT_FALSE(enumerate(name).IsNull()) << name;
    } catch (const CQoriProviderException& failure) {
      EXPECT_EQ(failure.getCode(), InstanceProvider::kNoSource) << name << ": " << failure.what();
    }
  }
  std::size_t count = 0;
  for (const QORString& name : _manager.classNames(kNamespace)) count += name.beginsWith("Linux_") ? 1U : 0U;
  EXPECT_EQ(count, std::size(kClasses) + std::size(kOtherClasses));
}

TEST_F(LinuxProviders, EveryClassHasInstancesWithAPath) {
  addLiveClasses();
  for (const char* name : kClasses) {
    const CIMApi::Instances instances = enumerate(name);
    ASSERT_FALSE(instances.IsNull()) << name;
    ASSERT_GT(instances->entries(), 0u) << name;
    const std::string path(instances->first()->getInstanceName()->toString().view());
    EXPECT_THAT(path, HasSubstr(std::string("root/cimv2:") + name + ".")) << name;
  }
}

// What a virtual machine need not have.
bool isOfFirmware(const std::string& property) {
  const std::vector<std::string> names = {"Model",          "ModelVersion",    "SerialNumber",
                                          "UUID",           "BoardVendor",     "BoardModel",
                                          "FirmwareVendor", "FirmwareVersion", "FirmwareDate"};
  return std::find(names.begin(), names.end(), property) != names.end();
}

// A property that the schema declares and no provider knows would always be NULL.
TEST_F(LinuxProviders, EveryDeclaredPropertyIsKnownToItsProvider) {
  addLiveClasses();
  const std::vector<std::string> never = {"Description", "InstallDate", "StatusDescriptions"};
  for (const char* name : kClasses) {
    const CIMApi::Instances instances = enumerate(name);
    for (const CimPropertyDeclaration& declared : _manager.allProperties(kNamespace, name)) {
      const std::string property(declared.name.view());
      if (std::find(never.begin(), never.end(), property) != never.end()) continue;
      const bool mayBeNull = property == "Speed" || property == "Vendor" || property == "CurrentClockSpeed" ||
                             property == "Caption" || property == "Name" || property == "ElementName" ||
                             property == "Version" || property == "FullName" || property == "Terminal" ||
                             property == "ProcessorModel" || isOfFirmware(property);
      bool hasValue = false;
      QORValSlistIterator<QORSmrPtr<IQoriObject>> instance(*instances);
      while (instance()) hasValue |= !instance.key()->getProperty(declared.name, true)->getValue().IsNull();
      EXPECT_TRUE(hasValue || mayBeNull) << name << "." << property;
    }
  }
}

TEST_F(LinuxProviders, ValuesHaveTheDeclaredTypes) {
  addLiveClasses();
  for (const char* name : kClasses) {
    const CIMApi::Instances instances = enumerate(name);
    for (const CimPropertyDeclaration& declared : _manager.allProperties(kNamespace, name)) {
      QORValSlistIterator<QORSmrPtr<IQoriObject>> instance(*instances);
      while (instance()) {
        const QORSmrPtr<IQoriValue> value = instance.key()->getProperty(declared.name, true)->getValue();
        if (!value.IsNull()) {
          EXPECT_EQ(typeOf(value), std::string(declared.type->getName().view())) << declared.name.c_str();
        }
      }
    }
  }
}

TEST_F(LinuxProviders, FindTheCurrentProcessAlsoThroughItsBaseClass) {
  addLiveClasses();
  ASSERT_FALSE(ownProcess("Linux_Process").IsNull());
  const QORSmrPtr<IQoriObject> process = ownProcess("CIM_Process");
  ASSERT_FALSE(process.IsNull());
  EXPECT_EQ(process->getClassName(), "Linux_Process");
  EXPECT_EQ(property(process, "ParentProcessID"), std::to_string(getppid()));
}

TEST_F(LinuxProviders, GiveOneInstanceByItsName) {
  addLiveClasses();
  CIMApi api;
  const QORSmrPtr<IQoriInstanceName> name = ownProcess("Linux_Process")->getInstanceName();
  const QORSmrPtr<IQoriObject> process =
      api.getInstance(kNamespace, name, {}, CIMApi::DefaultTimeout, nullptr, nullptr, nullptr);
  ASSERT_FALSE(process.IsNull());
  EXPECT_EQ(property(process, "ProcessID"), std::to_string(getpid()));
}

TEST_F(LinuxProviders, AClassThatIsNotDeclaredIsLeftOut) {
  load("class Linux_Process { [Key] string Handle; uint64 WorkingSetSize; };");
  registerLinuxProviders(_manager, kNamespace);
  EXPECT_FALSE(ownProcess("Linux_Process").IsNull());
  EXPECT_TRUE(enumerate("Linux_FileSystem").IsNull());
}

TEST_F(LinuxProviders, AFullerSchemaTakesTheirBaseClassesPlace) {
  load(
      "class CIM_ManagedElement { string Caption; uint64 Generation; };\n"
      "class CIM_Process : CIM_ManagedElement { [Key] string CSName; [Key] string Handle; string Extra; };");
  addLiveClasses();
  const QORSmrPtr<IQoriObject> process = ownProcess("Linux_Process");
  ASSERT_FALSE(process.IsNull());
  EXPECT_EQ(property(process, "Extra"), "(null)");
  EXPECT_EQ(property(process, "Name"), "(no such property)");
  EXPECT_EQ(property(process, "ThreadCount"), "1");
  EXPECT_THAT(std::string(process->getInstanceName()->toString().view()), HasSubstr(",Handle=\""));
}

TEST_F(LinuxProviders, LoadingTheSchemaTwiceChangesNothing) {
  addLiveClasses();
  const std::size_t count = _manager.classNames(kNamespace).size();
  LinuxSchemaSink sink(_manager.sink());
  MofLoader(sink, kNamespace).loadText(linuxSchemaMof(), "live classes");
  EXPECT_EQ(_manager.classNames(kNamespace).size(), count);
}

TEST_F(LinuxProviders, ASchemaThatDoesNotFitRefusesThemWhole) {
  load("class CIM_LogicalElement { [Key] uint32 Name; };");
  EXPECT_THROW(addLiveClasses(), MofException);
  EXPECT_TRUE(_manager.sink().findClass(kNamespace, "Linux_Process").IsNull());
  EXPECT_TRUE(_manager.sink().findClass(kNamespace, "CIM_Process").IsNull());
}

}  // namespace
