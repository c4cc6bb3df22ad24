// A namespace with its classes, qualifiers, instances and live sources.
// Tested by tests/unit/Embedded/ClassRepositoryTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_NAMESPACE_H
#define QORQL_EMBEDDED_NAMESPACE_H

#include <memory>
#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"
#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Embedded/InstanceTable.h"
#include "Cimom/Embedded/NameMap.h"

namespace embedded {

// A provider and the class that it serves.
struct LiveSource {
  const ClassEntry* entry = nullptr;  // BORROWS
  std::shared_ptr<InstanceProvider> provider;
};

struct NameSpace {
  QORString name;
  NameMap<CimQualifierDeclaration> qualifiers;
  std::vector<std::unique_ptr<ClassEntry>> classes;  // in declaration order
  NameMap<ClassEntry*> classIndex;
  InstanceTable instances;
  std::vector<LiveSource> sources;  // in registration order
  bool isPending = false;           // created by a load that has not been committed
};

}  // namespace embedded

#endif
