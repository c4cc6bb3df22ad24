// Superclasses are declared before their subclasses, so what a superclass lacks is known when its subclasses come.
// SPDX-License-Identifier: Apache-2.0
#include "IndicationSink.h"

#include <iostream>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Providers/IndicationSchema.h"
#include "DisplayText.h"

namespace {

std::string upperCased(const QORString& name) { return std::string(QORString::toUpperCase(name).view()); }

}  // namespace

void IndicationSink::declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration) {
  Properties lacking = lackingFrom(nameSpace, declaration);
  if (!findClass(nameSpace, declaration.name).IsNull()) {
    _lacking[upperCased(declaration.name)] = std::move(lacking);
    return;
  }
  CimClassDeclaration whole = declaration;
  whole.properties.insert(whole.properties.begin(), lacking.begin(), lacking.end());
  LinuxSchemaSink::declareClass(nameSpace, whole);
}

// What a class that is not declared would inherit from a fuller superclass.
IndicationSink::Properties IndicationSink::lackingFrom(const QORString& nameSpace,
                                                       const CimClassDeclaration& declaration) const {
  const auto above = _lacking.find(upperCased(declaration.superClass));
  Properties common = above == _lacking.end() ? Properties() : above->second;
  const bool isThere = !findClass(nameSpace, declaration.name).IsNull();
  if (isThere) common.insert(common.end(), declaration.properties.begin(), declaration.properties.end());
  const QORString& looked = isThere ? declaration.name : declaration.superClass;
  std::erase_if(common, [&](const CimPropertyDeclaration& property) {
    CimPropertyDeclaration existing;
    return describeProperty(nameSpace, looked, property.name, existing);
  });
  return common;
}

void declareIndications(EmbeddedObjectManager& manager, const QORString& nameSpace, bool isQuiet) {
  IndicationSink sink(manager.sink());
  try {
    MofLoader(sink, nameSpace).loadText(indicationSchemaMof(), "indications");
  } catch (const QoriBaseException& error) {
    const std::string_view message = error.getMessage().view();
    if (isQuiet) return;
    std::cerr << "qorql: warning: Without indications, which do not fit the MOF files: "
              << printableText(message.substr(0, message.find('\n'))) << '\n';
  }
}
