// A small model of disks, and short ways to build declarations and values.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_EMBEDDED_EMBEDDEDFIXTURE_H
#define QORQL_TESTS_UNIT_EMBEDDED_EMBEDDEDFIXTURE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace embeddedtest {

using Value = QORSmrPtr<IQoriValue>;
using Name = QORSmrPtr<IQoriInstanceName>;
using Object = QORSmrPtr<IQoriObject>;

inline Value text(const char* value) { return Value(new CQoriValue(QORString(value))); }
inline Value number(QORuint64 value, const QORSmrPtr<IQoriType>& type = CQoriType::uint64) {
  return Value(new CQoriValue(static_cast<unsigned long long>(value), type));
}
inline Value truth(bool value) { return Value(new CQoriValue(value, CQoriType::boolean)); }
inline Value reference(const Name& name) { return Value(new CQoriValue(name)); }

inline CimQualifier flag(const char* name, bool toSubclass = true) {
  CimQualifier qualifier;
  qualifier.name = name;
  qualifier.toSubclass = toSubclass;
  return qualifier;
}
inline CimPropertyDeclaration property(const char* name, const QORSmrPtr<IQoriType>& type,
                                       std::vector<CimQualifier> qualifiers = {}, const Value& defaultValue = {}) {
  CimPropertyDeclaration declaration;
  declaration.name = name;
  declaration.type = type;
  declaration.qualifiers = std::move(qualifiers);
  declaration.defaultValue = defaultValue;
  return declaration;
}
inline CimPropertyDeclaration refer(const char* name, const char* className,
                                    std::vector<CimQualifier> qualifiers = {flag("Key")}) {
  CimPropertyDeclaration declaration = property(name, CQoriType::reference, std::move(qualifiers));
  declaration.referenceClass = className;
  return declaration;
}
inline CimClassDeclaration classOf(const char* name, const char* superClass,
                                   std::vector<CimPropertyDeclaration> properties,
                                   std::vector<CimQualifier> qualifiers = {}) {
  CimClassDeclaration declaration;
  declaration.name = name;
  declaration.superClass = superClass;
  declaration.properties = std::move(properties);
  declaration.qualifiers = std::move(qualifiers);
  return declaration;
}
inline CimInstanceDeclaration instanceOf(const char* className,
                                         std::initializer_list<std::pair<const char*, Value>> values) {
  CimInstanceDeclaration declaration;
  declaration.className = className;
  for (const auto& [name, value] : values) declaration.properties.push_back({name, value});
  return declaration;
}

inline CIMApi::PropertyNames names(std::initializer_list<const char*> list) {
  const CIMApi::PropertyNames result(new QORValSlist<QORString>);
  for (const char* name : list) result->append(name);
  return result;
}

// A name as a client would build it, in whatever spelling.
inline Name nameOf(const char* nameSpace, const char* className,
                   std::initializer_list<std::pair<const char*, Value>> keys) {
  const QORSmrPtr<IQoriInstanceName::KeyList> list(new IQoriInstanceName::KeyList);
  for (const auto& [key, value] : keys) {
    list->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(key, value, false)));
  }
  return Name(
      new CQoriInstanceName(className, list, QORSmrPtr<IQoriNameSpacePath>(new CQoriNameSpacePath("", nameSpace))));
}

inline std::vector<std::string> paths(const CIMApi::Instances& instances) {
  std::vector<std::string> result;
  QORValSlistIterator<Object> each(*instances);
  while (++each) result.emplace_back(each.key()->getInstanceName()->toString().c_str());
  return result;
}
// The values of one property, "NULL" for none, "absent" where there is no such property.
inline std::vector<std::string> values(const CIMApi::Instances& instances, const char* propertyName) {
  std::vector<std::string> result;
  QORValSlistIterator<Object> each(*instances);
  while (++each) {
    const QORSmrPtr<IQoriProperty> found = each.key()->getProperty(propertyName, true);
    if (found.IsNull()) {
      result.emplace_back("absent");
    } else {
      result.emplace_back(found->getValue().IsNull() ? "NULL" : found->getValue()->toString().c_str());
    }
  }
  return result;
}
inline std::vector<std::string> propertyNames(const Object& object) {
  std::vector<std::string> result;
  for (QORuint32 i = 0; i < object->getPropertyCount(); ++i) {
    result.emplace_back(object->getPropertyAt(i)->getName().c_str());
  }
  return result;
}

// The message, after checking type and code.
template <class Action>
std::string refusal(Action&& action, QORuint32 code, const char* type = "CIM_Repository") {
  try {
    action();
  } catch (const QoriBaseException& error) {
    EXPECT_STREQ(type, error.getType().c_str());
    EXPECT_EQ(code, error.getCode()) << error.what();
    return error.what();
  }
  return "nothing was refused";
}

// The status codes that refusals carry.
enum : QORuint32 {
  kFailed = 1,
  kInvalidNamespace = 3,
  kInvalidParameter = 4,
  kInvalidClass = 5,
  kNotFound = 6,
  kInvalidSuperclass = 10,
  kAlreadyExists = 11,
  kNoSuchProperty = 12,
  kTypeMismatch = 13
};

}  // namespace embeddedtest

// A current object manager with the classes CIM_Device <- CIM_Disk <- CIM_FastDisk
// and the association CIM_Uses (User, Used).
class EmbeddedTest : public ::testing::Test {
 protected:
  EmbeddedTest() {
    using namespace embeddedtest;
    manager.makeCurrent();
    declare(classOf("CIM_Device", "",
                    {property("DeviceID", CQoriType::string, {flag("Key")}), property("Caption", CQoriType::string)},
                    {flag("Abstract", false)}));
    declare(classOf("CIM_Disk", "CIM_Device",
                    {property("Size", CQoriType::uint64), property("Online", CQoriType::boolean, {}, truth(true))}));
    declare(classOf("CIM_FastDisk", "CIM_Disk", {property("Speed", CQoriType::uint32)}));
    declare(classOf("CIM_Uses", "", {refer("User", "CIM_Device"), refer("Used", "CIM_Device")}, {flag("Association")}));
  }

  void declare(const CimClassDeclaration& declaration) { sink().declareClass(kSpace, declaration); }
  CimDeclarationSink& sink() { return manager.sink(); }
  embeddedtest::Name create(const CimInstanceDeclaration& declaration) {
    return manager.createInstance(kSpace, declaration);
  }
  embeddedtest::Name createDisk(const char* id, QORuint64 size = 0, const char* className = "CIM_Disk") {
    return create(embeddedtest::instanceOf(
        className, {{"DeviceID", embeddedtest::text(id)}, {"Size", embeddedtest::number(size)}}));
  }
  embeddedtest::Name createUses(const embeddedtest::Name& user, const embeddedtest::Name& used,
                                const char* className = "CIM_Uses") {
    return create(embeddedtest::instanceOf(
        className, {{"User", embeddedtest::reference(user)}, {"Used", embeddedtest::reference(used)}}));
  }
  static CIMApi::Instances enumerate(const char* className, const CIMApi::PropertyNames& wanted = {},
                                     const char* nameSpace = kSpace) {
    return CIMApi().enumerateInstances(nameSpace, className, wanted, -1, nullptr, nullptr, "", {});
  }
  static CIMApi::Instances associators(const embeddedtest::Name& source, const char* associationClass = "",
                                       const char* resultClass = "", const CIMApi::PropertyNames& wanted = {},
                                       const char* role = "", const char* resultRole = "") {
    return CIMApi().associators(kSpace, source, associationClass, resultClass, wanted, CIMApi::DefaultTimeout, role,
                                resultRole, "");
  }
  static embeddedtest::Object get(const embeddedtest::Name& name, const CIMApi::PropertyNames& wanted = {},
                                  const char* nameSpace = kSpace) {
    return CIMApi().getInstance(nameSpace, name, wanted, CIMApi::DefaultTimeout, nullptr, nullptr, "");
  }

  static constexpr const char* kSpace = "root/cimv2";
  EmbeddedObjectManager manager;
};

#endif
