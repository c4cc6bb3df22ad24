// An object manager that MOF is loaded into, and short ways to look at what it holds.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_MOF_MOFFIXTURE_H
#define QORQL_TESTS_UNIT_MOF_MOFFIXTURE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "cimom/CIMApi.h"

namespace moftest {

using Object = QORSmrPtr<IQoriObject>;
using Value = QORSmrPtr<IQoriValue>;

class MofTest : public ::testing::Test {
 protected:
  MofTest() { _manager.makeCurrent(); }

  void load(const std::string& text) { MofLoader(_manager.sink()).loadText(text, "test.mof"); }

  // The faults for which a text is refused; nothing of it may have been stored.
  std::vector<MofDiagnostic> faultsOf(const std::string& text) {
    const std::size_t classes = _manager.classNames("root/cimv2").size();
    try {
      load(text);
    } catch (const MofException& refusal) {
      EXPECT_EQ(_manager.classNames("root/cimv2").size(), classes) << "a refused load left classes behind";
      return refusal.getDiagnostics();
    }
    ADD_FAILURE() << "not refused: " << text;
    return {};
  }
  // "line:column: message" of the one fault that a text has.
  std::string faultOf(const std::string& text) {
    const std::vector<MofDiagnostic> faults = faultsOf(text);
    EXPECT_EQ(faults.size(), 1U) << text;
    return faults.empty() ? "" : place(faults.front());
  }
  static std::string place(const MofDiagnostic& fault) {
    return std::to_string(fault.line) + ':' + std::to_string(fault.column) + ": " + fault.message;
  }

  std::vector<Object> instancesOf(const char* className, const char* nameSpace = "root/cimv2") {
    std::vector<Object> found;
    CIMApi api;
    const CIMApi::Instances list =
        api.enumerateInstances(nameSpace, className, {}, CIMApi::DefaultTimeout, "", "", "", {});
    if (list.IsNull()) return found;
    QORValSlistIterator<Object> each(*list);
    while (++each) found.push_back(each.key());
    return found;
  }
  static Value valueOf(const Object& object, const char* property) {
    const QORSmrPtr<IQoriProperty> found = object->getProperty(property, true);
    return found.IsNull() ? Value() : found->getValue();
  }
  // The value's text; "NULL" without one.
  static std::string textOf(const Object& object, const char* property) {
    const Value value = valueOf(object, property);
    return value.IsNull() ? "NULL" : std::string(value->toString().view());
  }
  static std::string pathOf(const Object& object) { return std::string(object->getInstanceName()->toString().view()); }

  // The text of the value that `literal` gives to a property of the type.
  std::string read(const std::string& type, const std::string& literal) {
    EmbeddedObjectManager fresh;
    fresh.makeCurrent();
    const std::string declared = type.find('[') == std::string::npos
                                     ? type + " V"
                                     : type.substr(0, type.find('[')) + " V" + type.substr(type.find('['));
    MofLoader(fresh.sink())
        .loadText("class T { [Key] string K; " + declared + "; };\ninstance of T { K = \"k\"; V = " + literal + "; };",
                  "test.mof");
    const std::string text = textOf(instancesOf("T").at(0), "V");
    _manager.makeCurrent();
    return text;
  }

  EmbeddedObjectManager _manager;
};

}  // namespace moftest

#endif
