// Names of instances on servers that have names and namespaces of their own.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/Remote/RemoteNames.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

using Name = QORSmrPtr<IQoriInstanceName>;

Name nameOf(const char* className, const char* nameSpace, const char* key, const QORSmrPtr<IQoriValue>& value) {
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(key, value->getType(), value)));
  const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(QORString::emptyString(), QORString(nameSpace)));
  return Name(new CQoriInstanceName(className, keys, path));
}

Name disk(const char* nameSpace) {
  return nameOf("CIM_Disk", nameSpace, "Id", QORSmrPtr<IQoriValue>(new CQoriValue(QORString("a/b"))));
}

Name tie(const char* nameSpace, const Name& end) {
  return nameOf("CIM_Tie", nameSpace, "End", QORSmrPtr<IQoriValue>(new CQoriValue(end)));
}

std::string there(const Name& name, const char* here, const char* away) {
  return std::string(remote::nameThere(*name, here, away)->toString().view());
}

TEST(RemoteNames, ServerOfANamespace) {
  EXPECT_EQ("array1", remote::serverOf("//array1/root/cimv2"));
  EXPECT_EQ("[::1]:5989", remote::serverOf("//[::1]:5989/root"));
  EXPECT_EQ("array1", remote::serverOf("//array1"));
  EXPECT_EQ("", remote::serverOf("root/cimv2"));
  EXPECT_EQ("", remote::serverOf(""));
  EXPECT_EQ("", remote::serverOf("//"));
}

TEST(RemoteNames, NamespaceWithoutTheServer) {
  EXPECT_EQ("root/cimv2", remote::withoutServer("//array1/root/cimv2"));
  EXPECT_EQ("root/cimv2", remote::withoutServer("root/cimv2"));
  EXPECT_EQ("", remote::withoutServer("//array1"));
  EXPECT_EQ("", remote::withoutServer("//array1/"));
  EXPECT_EQ("", remote::withoutServer("//"));
  EXPECT_EQ("", remote::withoutServer(""));
}

TEST(RemoteNames, NameLosesItsServerAndTakesTheNamespaceThere) {
  EXPECT_EQ("root/maker:CIM_Disk.Id=\"a/b\"", there(disk("//array1/root/cimv2"), "root/cimv2", "root/maker"));
  EXPECT_EQ("root/maker:CIM_Disk.Id=\"a/b\"", there(disk("ROOT/cimv2"), "root/cimv2", "root/maker"));
  EXPECT_EQ("root/cimv2:CIM_Disk.Id=\"a/b\"", there(disk("//array1/root/cimv2"), "root/cimv2", "root/cimv2"));
}

TEST(RemoteNames, AnotherNamespaceStays) {
  EXPECT_EQ("interop:CIM_Disk.Id=\"a/b\"", there(disk("//array1/interop"), "root/cimv2", "root/maker"));
}

TEST(RemoteNames, ReferencesInKeysFollowAtAnyDepth) {
  const Name deep = tie("//a/root/cimv2", tie("//a/root/cimv2", disk("//a/root/cimv2")));
  const std::string text = there(deep, "root/cimv2", "root/maker");
  EXPECT_EQ(std::string::npos, text.find("//a")) << text;
  EXPECT_EQ(std::string::npos, text.find("cimv2")) << text;
  EXPECT_EQ(there(tie("root/maker", tie("root/maker", disk("root/maker"))), "x", "y"), text);
}

}  // namespace
