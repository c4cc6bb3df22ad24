// Declares the common indications beside what MOF files have declared.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_INDICATIONSINK_H
#define QORQL_TOOL_INDICATIONSINK_H

#include <map>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Providers/LinuxProviders.h"

// A class that is declared already stays as it is. Properties of the common class
// that it lacks are declared by its new common subclasses: a short CIM_Indication
// does not take PerceivedSeverity from CIM_AlertIndication. BORROWS the sink.
class IndicationSink : public LinuxSchemaSink {
 public:
  explicit IndicationSink(CimDeclarationSink& target) : LinuxSchemaSink(target) {}

  void declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration) override;

 private:
  using Properties = std::vector<CimPropertyDeclaration>;

  Properties lackingFrom(const QORString& nameSpace, const CimClassDeclaration& declaration) const;

  std::map<std::string, Properties> _lacking;  // by class, in upper case: common properties that it does not have
};

// Declares the common indications in a namespace, and warns where they do not fit it.
void declareIndications(EmbeddedObjectManager& manager, const QORString& nameSpace, bool isQuiet);

#endif
