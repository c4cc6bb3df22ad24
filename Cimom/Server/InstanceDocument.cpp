// Reads and writes INSTANCE elements.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/InstanceDocument.h"

#include "Cimom/CimXml/CimXmlClassReader.h"
#include "Cimom/CimXml/CimXmlInstanceReader.h"
#include "Cimom/CimXml/CimXmlObjects.h"
#include "Cimom/CimXml/CimXmlWriter.h"
#include "Cimom/Embedded/ClientCalls.h"
#include "Cimom/Embedded/EmbeddedState.h"

std::string instanceDocument(const IQoriObject& object) {
  std::string text;
  CimXmlWriter(text).writeInstance(object);
  return text;
}

CimInstanceDeclaration readInstanceDocument(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                            std::string_view document) {
  cimxml::XmlPull xml(document, cimxml::XmlPull::Limits());
  CimXmlObjects objects(nameSpace);
  CimXmlInstanceReader reader(xml, nameSpace, objects, [&](cimxml::XmlPull& inner) {
    CimXmlInstanceReader values(inner, nameSpace, objects);
    CimClassDeclaration declaration;
    CimXmlClassReader(inner, values).readClass(declaration);
    return manager.sink().makeClassObject(nameSpace, declaration);
  });
  CimXmlInstance instance;
  reader.readNamedInstance(instance);
  xml.finish();
  CimInstanceDeclaration declaration;
  declaration.className = instance.className;
  for (const CimXmlProperty& property : instance.properties()) {
    declaration.properties.push_back({property.name, property.value});
  }
  return declaration;
}

QORSmrPtr<IQoriObject> findInstance(const EmbeddedObjectManager& manager, const QORSmrPtr<IQoriInstanceName>& name) {
  return embedded::getInstance(*manager.state()->store, nameSpaceOf(*name), name, {});
}

QORString nameSpaceOf(const IQoriInstanceName& name) {
  return name.getNameSpacePath().IsNull() ? QORString::emptyString() : name.getNameSpacePath()->getNameSpace();
}
