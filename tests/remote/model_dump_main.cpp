// Prints what MOF files declare, for the tests' own WBEM server: model_dump MOF...
// Each line is a JSON object: a namespace; a class as it was declared, in CIM-XML;
// or an instance with its name, both in CIM-XML. The instances of a class and its
// subclasses come in the order in which the object manager gives them.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Cimom/CimXml/CimXmlWriter.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "cimom/CIMApi.h"

namespace {

std::string textOf(const QORString& text) { return std::string(text.view()); }

void print(const nlohmann::ordered_json& line) { std::cout << line.dump() << '\n'; }

void printClass(const QORString& nameSpace, const CimClassDeclaration& declaration) {
  std::string xml;
  CimXmlWriter(xml).writeClass(declaration);
  print({{"kind", "class"},
         {"namespace", textOf(nameSpace)},
         {"name", textOf(declaration.name)},
         {"superclass", textOf(declaration.superClass)},
         {"xml", xml}});
}

void printInstance(const QORString& nameSpace, const IQoriObject& object) {
  std::string name;
  CimXmlWriter(name).writeInstanceName(*object.getInstanceName());
  std::string xml;
  CimXmlWriter(xml).writeInstance(object);
  print({{"kind", "instance"},
         {"namespace", textOf(nameSpace)},
         {"class", textOf(object.getClassName())},
         {"name", name},
         {"xml", xml}});
}

void printInstances(const QORString& nameSpace, const QORString& rootClass) {
  CIMApi client;
  const CIMApi::Instances instances =
      client.enumerateInstances(nameSpace, rootClass, {}, -1, nullptr, nullptr, nullptr, {});
  QORValSlistIterator<QORSmrPtr<IQoriObject>> it(*instances);
  while (++it) printInstance(nameSpace, *it.key());
}

void printNameSpace(const EmbeddedObjectManager& manager, const QORString& nameSpace) {
  print({{"kind", "namespace"}, {"name", textOf(nameSpace)}});
  std::vector<QORString> roots;
  for (const QORString& name : manager.classNames(nameSpace)) {
    CimClassDeclaration declaration;
    manager.describeClass(nameSpace, name, declaration);
    printClass(nameSpace, declaration);
    if (declaration.superClass.isEmpty()) roots.push_back(name);
  }
  for (const QORString& root : roots) printInstances(nameSpace, root);
}

}  // namespace

int main(int count, char** arguments) {
  try {
    EmbeddedObjectManager manager;
    manager.makeCurrent();
    MofLoader(manager.sink()).loadFiles({arguments + 1, arguments + count});
    for (const QORString& nameSpace : manager.namespaces()) printNameSpace(manager, nameSpace);
    return 0;
  } catch (const QoriBaseException& error) {
    std::cerr << error.getMessage() << "\n";
    return 1;
  }
}
