// Instances that were fetched together, by the names that others have for them.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Remote/RemoteIndex.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

const QORString kSpace("root/cimv2");

class RemoteIndexOfDisks : public testing::Test {
 protected:
  RemoteIndexOfDisks() {
    declare("Disk", "");
    declare("Fast", "Disk");
    declare("Slow", "Disk");
  }
  void declare(const char* name, const char* superClass) {
    CimClassDeclaration declaration;
    declaration.name = name;
    declaration.superClass = superClass;
    if (declaration.superClass.isEmpty()) {
      CimPropertyDeclaration id;
      id.name = "Id";
      id.type = CQoriType::string;
      id.qualifiers.push_back({"Key", {}});
      declaration.properties.push_back(id);
    }
    manager.sink().declareClass(kSpace, declaration);
  }
  void add(const char* className, const char* id) {
    CimInstanceDeclaration declaration;
    declaration.className = className;
    declaration.properties.push_back({"Id", QORSmrPtr<IQoriValue>(new CQoriValue(QORString(id)))});
    index.add(manager.sink().makeObject(kSpace, declaration));
  }
  RemoteIndex::Found find(const char* className, const char* id, const char* nameSpace = "root/cimv2") {
    const QORSmrPtr<IQoriValue> value(new CQoriValue(QORString(id)));
    const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
    keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty("Id", CQoriType::string, value)));
    const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(QORString::emptyString(), QORString(nameSpace)));
    return index.find(CQoriInstanceName(className, keys, path));
  }
  // The class of the instance; "none" or "several".
  std::string found(const char* className, const char* id, const char* nameSpace = "root/cimv2") {
    const RemoteIndex::Found one = find(className, id, nameSpace);
    if (one.isUncertain) return "several";
    return one.object.IsNull() ? "none" : std::string(one.object->getClassName().view());
  }

  EmbeddedObjectManager manager;
  RemoteIndex index;
};

TEST_F(RemoteIndexOfDisks, NameOfTheInstanceItself) {
  add("Fast", "a");
  add("Slow", "a");
  EXPECT_EQ("Fast", found("Fast", "a"));
  EXPECT_EQ("Slow", found("Slow", "a"));
  EXPECT_EQ("none", found("Fast", "b"));
}

TEST_F(RemoteIndexOfDisks, NameThatTellsASuperclass) {
  add("Fast", "a");
  add("Fast", "Disk.b");
  EXPECT_EQ("Fast", found("Disk", "a"));
  EXPECT_EQ("Fast", found("Disk", "Disk.b"));
  EXPECT_EQ("none", found("Disk", "c"));
  EXPECT_EQ("none", found("Disk", "a", "root/other"));
}

TEST_F(RemoteIndexOfDisks, SuperclassOfSeveralWithTheseKeysIsUncertain) {
  add("Fast", "a");
  add("Slow", "a");
  EXPECT_EQ("several", found("Disk", "a"));
  add("Disk", "a");
  EXPECT_EQ("Disk", found("Disk", "a"));
}

}  // namespace
