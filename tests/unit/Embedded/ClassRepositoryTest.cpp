// Declaring classes: inheritance, overriding, qualifiers and what is refused.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/CimDeclarationRefusal.h"
#include "EmbeddedFixture.h"
#include "cimom/QoriProviderPluginManager.h"

using namespace embeddedtest;
using testing::ElementsAre;

namespace {

class ClassRepositories : public EmbeddedTest {
 protected:
  QORSmrPtr<IQoriClass> find(const char* name) { return manager.repository()->getClass(kSpace, name); }
  std::string refusedClass(const CimClassDeclaration& declaration, QORuint32 code) {
    return refusal([&] { declare(declaration); }, code);
  }
  std::vector<std::string> propertiesOf(const char* className) {
    std::vector<std::string> result;
    for (const CimPropertyDeclaration& each : manager.allProperties(kSpace, className)) {
      result.emplace_back(each.name.c_str());
    }
    return result;
  }
};

CimQualifier labelled(const char* name, const char* value, bool toSubclass = true) {
  CimQualifier qualifier = flag(name, toSubclass);
  qualifier.value = text(value);
  return qualifier;
}

TEST_F(ClassRepositories, ClassesAreFoundIgnoringCaseInTheirOwnSpelling) {
  const QORSmrPtr<IQoriClass> disk = manager.repository()->getClass("ROOT/CIMV2", "cim_disk");
  ASSERT_FALSE(disk.IsNull());
  EXPECT_STREQ("CIM_Disk", disk->getClassName().c_str());
  EXPECT_STREQ("CIM_Device", disk->getSuperClassName().c_str());
  EXPECT_TRUE(find("CIM_Device")->getSuperClassName().isEmpty());
  EXPECT_TRUE(find("CIM_Nothing").IsNull());
  EXPECT_TRUE(manager.repository()->getClass("root/none", "CIM_Disk").IsNull());
}

TEST_F(ClassRepositories, TheSuperclassIsSpelledAsItWasDeclared) {
  declare(classOf("CIM_Tape", "cim_DEVICE", {}));
  EXPECT_STREQ("CIM_Device", find("CIM_Tape")->getSuperClassName().c_str());
}

TEST_F(ClassRepositories, PropertiesAreInheritedFirst) {
  EXPECT_THAT(propertiesOf("CIM_FastDisk"), ElementsAre("DeviceID", "Caption", "Size", "Online", "Speed"));
  EXPECT_NE(nullptr, find("CIM_FastDisk")->getProperty("deviceid", true));
  EXPECT_EQ(nullptr, find("CIM_FastDisk")->getProperty("DeviceID", false));
  EXPECT_NE(nullptr, find("CIM_FastDisk")->getProperty("SPEED", false));
  EXPECT_EQ(nullptr, find("CIM_FastDisk")->getProperty("NoSuch", true));
}

TEST_F(ClassRepositories, APropertyOfTheSameNameReplacesTheInheritedOneInPlace) {
  declare(classOf("CIM_Small", "CIM_Disk",
                  {property("New", CQoriType::uint8), property("SIZE", CQoriType::uint64, {}, number(5))}));
  EXPECT_THAT(propertiesOf("CIM_Small"), ElementsAre("DeviceID", "Caption", "SIZE", "Online", "New"));
  create(instanceOf("CIM_Small", {{"DeviceID", text("a")}}));
  EXPECT_THAT(values(enumerate("CIM_Disk"), "Size"), ElementsAre("5"));
  const IQoriProperty* const size = find("CIM_Small")->getProperty("Size", false);
  ASSERT_NE(nullptr, size);
  EXPECT_STREQ("5", size->getValue()->toString().c_str());
  EXPECT_TRUE(find("CIM_Disk")->getProperty("Size", true)->getValue().IsNull());
}

TEST_F(ClassRepositories, AnOverridingPropertyKeepsTheInheritedDefaultUnlessItHasItsOwn) {
  declare(classOf("CIM_Plain", "CIM_Disk", {property("Online", CQoriType::boolean)}));
  declare(classOf("CIM_Off", "CIM_Disk", {property("Online", CQoriType::boolean, {}, truth(false))}));
  create(instanceOf("CIM_Plain", {{"DeviceID", text("a")}}));
  create(instanceOf("CIM_Off", {{"DeviceID", text("a")}}));
  EXPECT_THAT(values(enumerate("CIM_Disk"), "Online"), ElementsAre("TRUE", "FALSE"));
}

TEST_F(ClassRepositories, KeysAreInheritedThroughAnOverrideWithoutTheQualifier) {
  declare(classOf("CIM_Renamed", "CIM_Disk", {property("DeviceID", CQoriType::string, {flag("Override", false)})}));
  const Name made = create(instanceOf("CIM_Renamed", {{"DeviceID", text("a")}}));
  EXPECT_STREQ("root/cimv2:CIM_Renamed.DeviceID=\"a\"", made->toString().c_str());
}

TEST_F(ClassRepositories, KeysAreOrderedByNameInThePath) {
  declare(classOf("CIM_Two", "",
                  {property("b", CQoriType::uint8, {flag("Key")}), property("A", CQoriType::string, {flag("KEY")})}));
  const Name made = create(instanceOf("CIM_Two", {{"B", number(2, CQoriType::uint8)}, {"a", text("x\"\\y")}}));
  EXPECT_STREQ("root/cimv2:CIM_Two.A=\"x\\\"\\\\y\",b=2", made->toString().c_str());
}

TEST_F(ClassRepositories, AKeyQualifierThatIsFalseMakesNoKey) {
  CimQualifier isNoKey = flag("Key");
  isNoKey.value = truth(false);
  declare(classOf("CIM_One", "",
                  {property("A", CQoriType::string, {isNoKey}), property("B", CQoriType::string, {flag("Key")})}));
  const Name made = create(instanceOf("CIM_One", {{"A", text("x")}, {"B", text("y")}}));
  EXPECT_STREQ("root/cimv2:CIM_One.B=\"y\"", made->toString().c_str());
}

TEST_F(ClassRepositories, QualifiersReachSubclassesUnlessRestricted) {
  declare(classOf("CIM_Base", "", {}, {labelled("Wide", "base"), labelled("Narrow", "base", false)}));
  declare(classOf("CIM_Derived", "CIM_Base", {}, {labelled("Own", "derived")}));
  declare(classOf("CIM_Anew", "CIM_Derived", {}, {labelled("WIDE", "anew")}));
  const QORSmrPtr<IQoriClass> derived = find("CIM_Derived");
  ASSERT_NE(nullptr, derived->getQualifier("wide", true));
  EXPECT_EQ(nullptr, derived->getQualifier("Wide", false));
  EXPECT_EQ(nullptr, derived->getQualifier("Narrow", true));
  ASSERT_NE(nullptr, derived->getQualifier("OWN", false));
  EXPECT_STREQ("Own", derived->getQualifier("OWN", false)->getName().c_str());
  EXPECT_STREQ("anew", find("CIM_Anew")->getQualifier("Wide", true)->getValue()->toString().c_str());
  EXPECT_STREQ("derived", find("CIM_Anew")->getQualifier("Own", true)->getValue()->toString().c_str());
  EXPECT_NE(nullptr, find("CIM_Base")->getQualifier("Narrow", true));
}

TEST_F(ClassRepositories, PropertyQualifiersReachSubclassesUnlessRestrictedOrReplaced) {
  declare(classOf("CIM_Base", "",
                  {property("P", CQoriType::string, {labelled("Wide", "b"), labelled("Not", "b", false)})}));
  declare(classOf("CIM_Same", "CIM_Base", {}));
  declare(classOf("CIM_Anew", "CIM_Base", {property("P", CQoriType::string, {labelled("Extra", "a")})}));
  CimPropertyDeclaration described;
  ASSERT_TRUE(sink().describeProperty(kSpace, "CIM_Base", "p", described));
  EXPECT_NE(nullptr, described.findQualifier("not"));
  ASSERT_TRUE(sink().describeProperty(kSpace, "CIM_Same", "p", described));
  EXPECT_NE(nullptr, described.findQualifier("WIDE"));
  EXPECT_EQ(nullptr, described.findQualifier("Not"));
  ASSERT_TRUE(sink().describeProperty(kSpace, "CIM_Anew", "p", described));
  EXPECT_NE(nullptr, described.findQualifier("Wide"));
  EXPECT_NE(nullptr, described.findQualifier("Extra"));
  EXPECT_EQ(nullptr, described.findQualifier("Not"));
  EXPECT_FALSE(sink().describeProperty(kSpace, "CIM_Anew", "q", described));
  EXPECT_FALSE(sink().describeProperty(kSpace, "CIM_None", "p", described));
}

TEST_F(ClassRepositories, AssociationsAreRecognisedAlsoWhenInherited) {
  declare(classOf("CIM_UsesMore", "CIM_Uses", {refer("Third", "CIM_Disk", {})}));
  EXPECT_TRUE(manager.isAssociation(kSpace, "cim_usesmore"));
  EXPECT_TRUE(manager.isAssociation(kSpace, "CIM_Uses"));
  EXPECT_FALSE(manager.isAssociation(kSpace, "CIM_Disk"));
  EXPECT_FALSE(manager.isAssociation(kSpace, "CIM_None"));
}

TEST_F(ClassRepositories, AbstractIsNotInherited) {
  declare(classOf("CIM_Base", "", {property("K", CQoriType::string, {flag("Key")})}, {flag("Abstract")}));
  declare(classOf("CIM_Concrete", "CIM_Base", {}));
  EXPECT_FALSE(create(instanceOf("CIM_Concrete", {{"K", text("a")}})).IsNull());
  EXPECT_EQ(nullptr, find("CIM_Concrete")->getQualifier("Abstract", true));
}

TEST_F(ClassRepositories, EmbeddedObjectsAreOfTypeObjectInInstances) {
  declare(classOf("CIM_Holder", "",
                  {property("K", CQoriType::string, {flag("Key")}),
                   property("One", CQoriType::string, {labelled("EmbeddedInstance", "CIM_Disk")}),
                   property("Many", CQoriType::arrayOf(CQoriType::string), {flag("EmbeddedObject")})}));
  EXPECT_STREQ("object", find("CIM_Holder")->getProperty("One", true)->getType()->getName().c_str());
  EXPECT_STREQ("object", find("CIM_Holder")->getProperty("Many", true)->getType()->getName().c_str());
  EXPECT_TRUE(find("CIM_Holder")->getProperty("Many", true)->getType()->isArray());
  EXPECT_STREQ("string", manager.allProperties(kSpace, "CIM_Holder")[1].type->getName().c_str());
}

TEST_F(ClassRepositories, DescribeClassGivesTheDeclarationItself) {
  CimClassDeclaration described;
  ASSERT_TRUE(manager.describeClass(kSpace, "cim_fastdisk", described));
  EXPECT_STREQ("CIM_FastDisk", described.name.c_str());
  EXPECT_STREQ("CIM_Disk", described.superClass.c_str());
  ASSERT_EQ(1u, described.properties.size());
  EXPECT_STREQ("Speed", described.properties[0].name.c_str());
  EXPECT_FALSE(manager.describeClass(kSpace, "CIM_None", described));
}

TEST_F(ClassRepositories, ClassNamesComeInDeclarationOrder) {
  const auto is = [](const char* name) { return testing::Property(&QORString::c_str, testing::StrEq(name)); };
  EXPECT_THAT(manager.classNames("ROOT/cimv2"),
              ElementsAre(is("CIM_Device"), is("CIM_Disk"), is("CIM_FastDisk"), is("CIM_Uses")));
  EXPECT_TRUE(manager.classNames("root/none").empty());
  EXPECT_TRUE(manager.allProperties(kSpace, "CIM_None").empty());
}

TEST_F(ClassRepositories, NamespacesAreCreatedOnce) {
  sink().createNamespace("root/Other");
  sink().createNamespace("ROOT/other");
  ASSERT_EQ(2u, manager.namespaces().size());
  EXPECT_STREQ("root/Other", manager.namespaces()[1].c_str());
  EXPECT_EQ("a namespace needs a name", refusal([&] { sink().createNamespace(""); }, kInvalidNamespace));
}

TEST_F(ClassRepositories, TheSameDeclarationAgainIsAccepted) {
  declare(classOf("cim_FASTDISK", "cim_disk", {property("SPEED", CQoriType::uint32)}));
  EXPECT_EQ(4u, manager.classNames(kSpace).size());
  EXPECT_STREQ("CIM_FastDisk", find("CIM_FASTDISK")->getClassName().c_str());
}

TEST_F(ClassRepositories, AnotherDeclarationOfAClassIsRefused) {
  const std::string message = "class CIM_FastDisk is declared already, with another declaration";
  EXPECT_EQ(message,
            refusedClass(classOf("CIM_FASTDISK", "CIM_Disk", {property("Speed", CQoriType::uint64)}), kAlreadyExists));
  EXPECT_EQ(message, refusedClass(classOf("CIM_FastDisk", "CIM_Device", {property("Speed", CQoriType::uint32)}),
                                  kAlreadyExists));
  EXPECT_EQ(message, refusedClass(classOf("CIM_FastDisk", "CIM_Disk", {}), kAlreadyExists));
  EXPECT_EQ(message, refusedClass(classOf("CIM_FastDisk", "CIM_Disk", {property("Speed", CQoriType::uint32)},
                                          {flag("Abstract")}),
                                  kAlreadyExists));
  EXPECT_EQ(message, refusedClass(classOf("CIM_FastDisk", "CIM_Disk",
                                          {property("Speed", CQoriType::uint32, {}, number(1, CQoriType::uint32))}),
                                  kAlreadyExists));
}

TEST_F(ClassRepositories, ArrayDefaultsAreComparedElementByElement) {
  const auto strings = [](std::initializer_list<const char*> list) {
    const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List);
    for (const char* each : list) elements->append(text(each));
    return Value(new CQoriValue(elements, CQoriType::string));
  };
  const auto holding = [&](const Value& value) {
    return classOf("CIM_List", "", {property("L", CQoriType::arrayOf(CQoriType::string), {}, value)});
  };
  declare(holding(strings({"a", "b,c"})));
  declare(holding(strings({"a", "b,c"})));
  EXPECT_EQ("class CIM_List is declared already, with another declaration",
            refusedClass(holding(strings({"a,b", "c"})), kAlreadyExists));
}

TEST_F(ClassRepositories, AMissingSuperclassIsRefused) {
  EXPECT_EQ("class CIM_Lost: superclass CIM_None is not declared",
            refusedClass(classOf("CIM_Lost", "CIM_None", {}), kInvalidSuperclass));
  EXPECT_EQ("class CIM_Self: superclass CIM_Self is not declared",
            refusedClass(classOf("CIM_Self", "CIM_Self", {}), kInvalidSuperclass));
}

TEST_F(ClassRepositories, APropertyDeclaredTwiceIsRefused) {
  EXPECT_EQ("class CIM_Twice: property p is declared twice",
            refusedClass(classOf("CIM_Twice", "", {property("P", CQoriType::string), property("p", CQoriType::string)}),
                         kAlreadyExists));
  EXPECT_EQ("class CIM_Twice: property size is declared twice",
            refusedClass(classOf("CIM_Twice", "CIM_Disk",
                                 {property("Size", CQoriType::uint64), property("size", CQoriType::uint64)}),
                         kAlreadyExists));
}

TEST_F(ClassRepositories, APropertyRedeclaredWithAnotherTypeIsRefused) {
  EXPECT_EQ("class CIM_Other: property size is redeclared as uint32, it is inherited as uint64",
            refusedClass(classOf("CIM_Other", "CIM_Disk", {property("size", CQoriType::uint32)}), kTypeMismatch));
  EXPECT_EQ("class CIM_Other: property Size is redeclared as uint64[], it is inherited as uint64",
            refusedClass(classOf("CIM_Other", "CIM_Disk", {property("Size", CQoriType::arrayOf(CQoriType::uint64))}),
                         kTypeMismatch));
}

TEST_F(ClassRepositories, AReferenceOutsideAnAssociationIsRefused) {
  EXPECT_EQ("class CIM_Stray: reference User outside an association",
            refusedClass(classOf("CIM_Stray", "", {refer("User", "CIM_Disk")}), kInvalidParameter));
}

TEST_F(ClassRepositories, ADefaultOfAnotherTypeIsRefused) {
  EXPECT_EQ("class CIM_Bad: property P is uint8, its default value is string",
            refusedClass(classOf("CIM_Bad", "", {property("P", CQoriType::uint8, {}, text("x"))}), kTypeMismatch));
}

TEST_F(ClassRepositories, NamelessAndTypelessDeclarationsAreRefused) {
  EXPECT_EQ("a class needs a name", refusedClass(classOf("", "", {}), kInvalidParameter));
  EXPECT_EQ("class CIM_Bad: a property has no name",
            refusedClass(classOf("CIM_Bad", "", {property("", CQoriType::uint8)}), kInvalidParameter));
  EXPECT_EQ("class CIM_Bad: property P has no type",
            refusedClass(classOf("CIM_Bad", "", {property("P", {})}), kTypeMismatch));
  EXPECT_EQ("namespace root/none does not exist",
            refusal([&] { sink().declareClass("root/none", classOf("A", "", {})); }, kInvalidNamespace));
}

TEST_F(ClassRepositories, InheritanceHasALimitInsteadOfALimitlessCost) {
  std::string last = "C0";
  declare(classOf("C0", "", {}));
  for (int i = 1; i <= 500; ++i) {
    const std::string next = "C" + std::to_string(i);
    declare(classOf(next.c_str(), last.c_str(), {}));
    last = next;
  }
  EXPECT_EQ("class C501: inheritance is nested too deeply",
            refusedClass(classOf("C501", last.c_str(), {}), kInvalidSuperclass));
}

TEST_F(ClassRepositories, ARefusalListsEveryFaultWithItsFeature) {
  CimClassDeclaration declaration =
      classOf("CIM_Bad", "CIM_Disk", {property("Size", CQoriType::uint8), property("P", {})});
  CimMethodDeclaration method;
  method.name = "Start";
  method.parameters = {property("by", {})};
  declaration.methods = {method};
  try {
    declare(declaration);
    FAIL() << "not refused";
  } catch (const CimDeclarationRefusal& refusal) {
    ASSERT_EQ(4U, refusal.getFaults().size());
    EXPECT_STREQ("Size", refusal.getFaults()[0].feature.c_str());
    EXPECT_STREQ(refusal.what(), refusal.getFaults()[0].message.c_str());
    EXPECT_STREQ("class CIM_Bad: property P has no type", refusal.getFaults()[1].message.c_str());
    EXPECT_STREQ("class CIM_Bad: method Start has no type", refusal.getFaults()[2].message.c_str());
    EXPECT_STREQ("class CIM_Bad: parameter by of method Start has no type", refusal.getFaults()[3].message.c_str());
    EXPECT_EQ(kTypeMismatch, refusal.getFaults()[3].code);
  }
}

TEST_F(ClassRepositories, ARefusedClassLeavesNothingBehind) {
  refusedClass(classOf("CIM_Twice", "", {property("P", CQoriType::string), property("p", CQoriType::string)}),
               kAlreadyExists);
  EXPECT_TRUE(find("CIM_Twice").IsNull());
  declare(classOf("CIM_Twice", "", {property("P", CQoriType::string)}));
  EXPECT_FALSE(find("CIM_Twice").IsNull());
}

TEST_F(ClassRepositories, QualifierDeclarationsAreFoundAndDeclaredOnce) {
  CimQualifierDeclaration key;
  key.name = "Key";
  key.type = CQoriType::boolean;
  key.defaultValue = truth(false);
  key.scopes = {"property", "reference"};
  key.overridable = false;
  sink().declareQualifier(kSpace, key);
  key.name = "KEY";
  sink().declareQualifier(kSpace, key);
  CimQualifierDeclaration found;
  ASSERT_TRUE(sink().describeQualifier(kSpace, "key", found));
  EXPECT_STREQ("Key", found.name.c_str());
  EXPECT_FALSE(found.overridable);
  EXPECT_FALSE(sink().describeQualifier(kSpace, "none", found));
  EXPECT_FALSE(sink().describeQualifier("root/none", "key", found));
  key.overridable = true;
  EXPECT_EQ("qualifier Key is declared already, with another declaration",
            refusal([&] { sink().declareQualifier(kSpace, key); }, kAlreadyExists));
}

TEST_F(ClassRepositories, ClassesOutliveTheObjectManager) {
  QORSmrPtr<IQoriClass> kept;
  {
    EmbeddedObjectManager other;
    other.sink().declareClass(kSpace, classOf("CIM_X", "", {property("P", CQoriType::string)}));
    kept = other.repository()->getClass(kSpace, "CIM_X");
  }
  EXPECT_NE(nullptr, kept->getProperty("p", true));
}

TEST_F(ClassRepositories, TheServiceHandsOutTheCurrentRepositoryAndItsNamespaces) {
  sink().createNamespace("root/other");
  const QoriProviderPluginManager* const service = QoriProviderPluginManager::getQoriProviderPluginManager();
  EXPECT_FALSE(service->getRepository()->getClass(kSpace, "CIM_Disk").IsNull());
  const auto spaces = service->getNamespaceList();
  ASSERT_EQ(2u, spaces->entries());
  EXPECT_STREQ("root/cimv2", spaces->at(0).c_str());
  EXPECT_STREQ("root/other", spaces->at(1).c_str());
}

TEST(CimPropertyDeclarations, FlagsAreQualifiersThatArePresentAndNotFalse) {
  CimQualifier off = flag("Off");
  off.value = truth(false);
  CimQualifier on = flag("On");
  on.value = truth(true);
  const CimPropertyDeclaration declaration = property("P", CQoriType::string, {off, on, flag("Bare")});
  EXPECT_FALSE(declaration.hasFlag("off"));
  EXPECT_TRUE(declaration.hasFlag("ON"));
  EXPECT_TRUE(declaration.hasFlag("bare"));
  EXPECT_FALSE(declaration.hasFlag("absent"));
  EXPECT_EQ(nullptr, declaration.findQualifier("absent"));
}

TEST_F(ClassRepositories, AnUnknownClassOrNamespaceHasNoMof) {
  EXPECT_NE(manager.classMof(kSpace, "cim_disk", false), "");
  for (const bool isComplete : {false, true}) {
    EXPECT_EQ(manager.classMof(kSpace, "CIM_Nowhere", isComplete), "");
    EXPECT_EQ(manager.classMof("root/nowhere", "CIM_Disk", isComplete), "");
  }
}

}  // namespace
