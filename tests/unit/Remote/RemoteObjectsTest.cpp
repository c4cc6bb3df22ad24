// Objects of known classes from what servers send.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Remote/RemoteObjects.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

const QORString kSpace("root/cimv2");

CimPropertyDeclaration property(const char* name, const QORSmrPtr<IQoriType>& type, bool isKey) {
  CimPropertyDeclaration declaration;
  declaration.name = name;
  declaration.type = type;
  if (isKey) declaration.qualifiers.push_back({"Key", {}});
  return declaration;
}

QORSmrPtr<IQoriInstanceName> nameOf(const char* className, const char* nameSpace, const char* key, const char* text) {
  const QORSmrPtr<IQoriValue> value(new CQoriValue(QORString(text)));
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(key, CQoriType::string, value)));
  const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(QORString("cimom.example"), QORString(nameSpace)));
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(className, keys, path));
}

class RemoteObjectsOfAServer : public testing::Test {
 protected:
  RemoteObjectsOfAServer() {
    RemoteServerOptions options;
    options.name = "array1";
    options.hasGivenName = true;
    options.nameSpace = QORString("root/maker");
    server = std::make_unique<RemoteServer>(options, log, isStopped);
    CimClassDeclaration disk;
    disk.name = "M_Disk";
    disk.properties = {property("Number", CQoriType::uint32, true), property("Text", CQoriType::string, false)};
    CimClassDeclaration user;
    user.name = "M_User";
    user.properties = {property("Id", CQoriType::string, true), property("Disk", CQoriType::reference, false)};
    user.properties.back().referenceClass = "M_Disk";
    user.qualifiers.push_back({"Association", {}});
    served = {disk, user};
  }

  QORSmrPtr<IQoriObject> make(CimXmlInstance& instance, const char* asked) {
    RemoteObjects maker(*server, classes, manager.sink(), kSpace, asked);
    return maker.make(instance);
  }
  static std::string textOf(const IQoriObject& object, const char* name) {
    const QORSmrPtr<IQoriProperty> found(object.getProperty(name, true));
    return found->getValue().IsNull() ? "NULL" : std::string(found->getValue()->toString().view());
  }

  EmbeddedObjectManager manager;
  RemoteCallLog log;
  std::atomic<bool> isStopped{false};
  std::unique_ptr<RemoteServer> server;
  std::vector<CimClassDeclaration> served;
  RemoteClasses classes{[this](const QORString&, const QORString& className) {
                          RemoteClasses::Fetched fetched;
                          for (const CimClassDeclaration& one : served) {
                            if (one.name.isEqualCaseInsensitive(className)) fetched.declarations.push_back(one);
                          }
                          return fetched;
                        },
                        true};
};

TEST_F(RemoteObjectsOfAServer, KeysComeFromTheNameAsTheirDeclaredTypes) {
  CimXmlInstance instance;
  instance.className = "m_DISK";
  instance.name = nameOf("M_Disk", "root/maker", "number", "7");
  const QORSmrPtr<IQoriObject> made = make(instance, "M_Disk");
  ASSERT_FALSE(made.IsNull());
  EXPECT_EQ("M_Disk", made->getClassName());
  EXPECT_EQ("7", textOf(*made, "Number"));
  EXPECT_EQ("NULL", textOf(*made, "Text"));
  EXPECT_EQ("array1", textOf(*made, "__SERVER"));
  std::string path;
  made->appendPath(path);
  EXPECT_EQ("//array1/root/cimv2:M_Disk.Number=7", path);
}

TEST_F(RemoteObjectsOfAServer, ReferencesAreToThisServerUnderItsNameAndOurNamespace) {
  CimXmlInstance instance;
  instance.className = "M_User";
  instance.name = nameOf("M_User", "root/maker", "Id", "u");
  for (const auto& [nameSpace, wanted] : {std::pair{"root/maker", "//array1/root/cimv2:M_Disk.Number=7"},
                                          std::pair{"", "//array1/root/cimv2:M_Disk.Number=7"},
                                          std::pair{"interop", "//array1/interop:M_Disk.number=\"7\""}}) {
    CimXmlProperty& added = instance.add("Disk");
    added.type = CQoriType::Code::Reference;
    added.value = QORSmrPtr<IQoriValue>(new CQoriValue(nameOf("m_disk", nameSpace, "number", "7")));
    const QORSmrPtr<IQoriObject> made = make(instance, "M_User");
    EXPECT_TRUE(QORString(textOf(*made, "Disk")).isEqualCaseInsensitive(wanted)) << textOf(*made, "Disk");
    instance.clear();
  }
}

TEST_F(RemoteObjectsOfAServer, InstanceOfAClassThatNobodyKnowsIsOneOfTheClassThatWasAskedFor) {
  CimXmlInstance instance;
  instance.className = "M_Unheard";
  instance.name = nameOf("M_Unheard", "root/maker", "Number", "9");
  EXPECT_EQ("M_Disk", make(instance, "M_Disk")->getClassName());
}

}  // namespace
