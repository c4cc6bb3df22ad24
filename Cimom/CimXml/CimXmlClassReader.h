// Classes and qualifiers of a CIM-XML document.
// Tested by tests/unit/CimXml/CimXmlReplyTest.cpp, tests/unit/CimXml/CimXmlWriterTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLCLASSREADER_H
#define QORQL_CIMXML_CIMXMLCLASSREADER_H

#include <vector>

#include "Cimom/CimXml/CimXmlInstanceReader.h"
#include "Cimom/CimXml/XmlPull.h"
#include "Cimom/Embedded/CimDeclarations.h"
#include "cmpbase.h"

// Each operation reads the next element and closes it; an element that it
// cannot read is a fault. THROWS CimXmlException. One thread at a time.
class CimXmlClassReader {
 public:
  // BORROWS both.
  CimXmlClassReader(cimxml::XmlPull& xml, CimXmlInstanceReader& instances) : _xml(xml), _instances(instances) {}

  // CLASS. What the document marks as propagated belongs to a superclass and is
  // left out, so that the class is declared as its author did.
  void readClass(CimClassDeclaration& out);
  // QUALIFIER.DECLARATION.
  void readQualifierDeclaration(CimQualifierDeclaration& out);

 private:
  void readQualifier(std::vector<CimQualifier>& out);
  void readProperty(std::vector<CimPropertyDeclaration>& out);
  void readMethod(std::vector<CimMethodDeclaration>& out);
  void readParameter(std::vector<CimPropertyDeclaration>& out);
  void readFeature(const cimxml::XmlAttributes& attributes, cimxml::Element element, CimPropertyDeclaration& out);
  void readContent(CimPropertyDeclaration& out);
  QORSmrPtr<IQoriType> typeOf(const cimxml::XmlAttributes& attributes, bool isArray) const;
  void readScopes(std::vector<QORString>& out);

  cimxml::XmlPull& _xml;
  CimXmlInstanceReader& _instances;
};

#endif
