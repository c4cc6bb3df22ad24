// Values, properties and instances of a CIM-XML document.
// Tested by tests/unit/CimXml/CimXmlReplyTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLINSTANCEREADER_H
#define QORQL_CIMXML_CIMXMLINSTANCEREADER_H

#include <functional>
#include <string_view>
#include <vector>

#include "Cimom/CimXml/CimXmlInstance.h"
#include "Cimom/CimXml/CimXmlObjects.h"
#include "Cimom/CimXml/CimXmlPathReader.h"
#include "Cimom/CimXml/XmlPull.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// Each operation reads the next element and closes it; an element that it
// cannot read is a fault. THROWS CimXmlException. One thread at a time.
class CimXmlInstanceReader {
 public:
  // Makes the object for an embedded class from the document of its CLASS element.
  using EmbeddedClass = std::function<QORSmrPtr<IQoriObject>(cimxml::XmlPull& xml)>;

  // BORROWS the document and `objects`, which makes embedded instances. Without
  // `embeddedClass` an embedded class is a fault.
  CimXmlInstanceReader(cimxml::XmlPull& xml, const QORString& nameSpace, CimXmlObjects& objects,
                       EmbeddedClass embeddedClass = {});

  CimXmlPathReader& paths() noexcept { return _paths; }

  // INSTANCE, without a name.
  void readInstance(CimXmlInstance& out);
  // VALUE.NAMEDINSTANCE, VALUE.INSTANCEWITHPATH, VALUE.OBJECT and the others
  // that hold an instance; INSTANCE too. The name is kept where there is one.
  void readNamedInstance(CimXmlInstance& out);
  // VALUE or VALUE.ARRAY as a value of the type; the type Unknown takes texts.
  // `what` names the value in messages.
  IQoriValue::Pointer readValue(CQoriType::Code type, std::string_view what);

 private:
  void readProperty(CimXmlInstance& out);
  void readReferenceProperty(CimXmlInstance& out);
  IQoriValue::Pointer readText(CQoriType::Code type, std::string_view what);
  IQoriValue::Pointer readArray(CQoriType::Code type, std::string_view what);
  IQoriValue::Pointer embeddedObject(std::string_view text, std::string_view what);
  [[noreturn]] void raiseUnexpected(const char* within);

  cimxml::XmlPull& _xml;
  CimXmlPathReader _paths;
  const QORString _nameSpace;
  CimXmlObjects& _objects;
  const EmbeddedClass _embeddedClass;
};

#endif
