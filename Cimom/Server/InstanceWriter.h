// Changes of stored instances that clients ask for.
// Tested by tests/unit/Server/StoredInstanceWriterTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INSTANCEWRITER_H
#define QORQL_SERVER_INSTANCEWRITER_H

#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "cimom/IQoriInstanceName.h"

// What an operation returns of is done: it survives the process where there is a
// store on disk. Refusals THROW CimStatusException. Threads may share one.
class InstanceWriter {
 public:
  virtual ~InstanceWriter() = default;
  virtual QORSmrPtr<IQoriInstanceName> create(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                              const CimInstanceDeclaration& declaration) = 0;
  // Sets the given properties; the others stay.
  virtual void modify(EmbeddedObjectManager& manager, const QORSmrPtr<IQoriInstanceName>& name,
                      const std::vector<CimInstanceProperty>& properties) = 0;
  virtual void remove(EmbeddedObjectManager& manager, const QORSmrPtr<IQoriInstanceName>& name) = 0;
};

#endif
