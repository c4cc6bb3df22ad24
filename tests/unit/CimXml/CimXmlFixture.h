// Replies made of text or of a model, and short ways to read them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_CIMXML_CIMXMLFIXTURE_H
#define QORQL_TESTS_UNIT_CIMXML_CIMXMLFIXTURE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlMessages.h"
#include "Cimom/CimXml/CimXmlReply.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "cimom/CIMApi.h"

namespace cimxmltest {

using Object = QORSmrPtr<IQoriObject>;

// Hands out a text so many bytes at a time.
inline cimxml::XmlPull::Source inPieces(std::string text, std::size_t size) {
  return [text = std::move(text), size, at = std::size_t{0}](char* buffer, std::size_t capacity) mutable {
    const std::size_t count = std::min({size, capacity, text.size() - at});
    std::copy_n(text.data() + at, count, buffer);
    at += count;
    return count;
  };
}

inline std::string replyTo(const std::string& operation, const std::string& content) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
         "<MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP><IMETHODRESPONSE NAME=\"" +
         operation + "\">" + content + "</IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>\n";
}

inline std::string instances(const std::string& content) {
  return replyTo("EnumerateInstances", "<IRETURNVALUE>" + content + "</IRETURNVALUE>");
}

class CimXmlTest : public ::testing::Test {
 protected:
  CimXmlTest() { _manager.makeCurrent(); }

  void load(const std::string& mof) { MofLoader(_manager.sink()).loadText(mof, "test.mof"); }

  std::vector<Object> instancesOf(const char* className) {
    std::vector<Object> found;
    CIMApi api;
    const CIMApi::Instances list =
        api.enumerateInstances("root/cimv2", className, {}, CIMApi::DefaultTimeout, "", "", "", {});
    if (list.IsNull()) return found;
    QORValSlistIterator<Object> each(*list);
    while (++each) found.push_back(each.key());
    return found;
  }

  QORSmrPtr<IQoriObject> classObject(const CimClassDeclaration& declaration) {
    _manager.sink().begin();
    const QORSmrPtr<IQoriObject> object = _manager.sink().makeClassObject("root/cimv2", declaration);
    _manager.sink().rollback();
    return object;
  }

  // The objects of a reply to EnumerateInstances.
  std::vector<Object> read(const std::string& document, std::size_t piece = 1 << 14) {
    CimXmlReply reply(inPieces(document, piece), "EnumerateInstances", "1", "root/cimv2");
    reply.setMakeClassObject([this](const CimClassDeclaration& declaration) { return classObject(declaration); });
    std::vector<Object> objects;
    while (reply.next() != CimXmlReply::Item::End) objects.push_back(reply.makeObject());
    return objects;
  }
  Object readOne(const std::string& instance) {
    const std::vector<Object> objects = read(instances(instance));
    EXPECT_EQ(objects.size(), 1U);
    return objects.at(0);
  }
  // The fault for which a reply is refused.
  std::string faultOf(const std::string& document, std::size_t piece = 1 << 14) {
    try {
      read(document, piece);
    } catch (const CimXmlException& fault) {
      return std::string(fault.getMessage().view());
    }
    return "none";
  }
  static std::string mof(const Object& object) {
    return std::string(EmbeddedObjectManager::instanceMof(*object).view());
  }
  static std::string pathOf(const Object& object) { return std::string(object->getInstanceName()->toString().view()); }
  static std::string typeOf(const Object& object, const char* property) {
    const QORSmrPtr<IQoriProperty> found = object->getProperty(property, true);
    return std::string(found->getType()->getName().view()) + (found->getType()->isArray() ? "[]" : "");
  }
  static std::string textOf(const Object& object, const char* property) {
    const QORSmrPtr<IQoriProperty> found = object->getProperty(property, true);
    if (found.IsNull()) return "absent";
    return found->getValue().IsNull() ? "NULL" : std::string(found->getValue()->toString().view());
  }

 private:
  EmbeddedObjectManager _manager;

 protected:
  EmbeddedObjectManager& manager() { return _manager; }
};

}  // namespace cimxmltest

#endif
