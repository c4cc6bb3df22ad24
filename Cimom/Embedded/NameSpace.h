// A namespace with its classes, qualifiers, instances and live sources.
// Tested by tests/unit/Embedded/ClassRepositoryTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_NAMESPACE_H
#define QORQL_EMBEDDED_NAMESPACE_H

#include <memory>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"
#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Embedded/InstanceTable.h"
#include "Cimom/Embedded/NameMap.h"
#include "Cimom/Embedded/RowObject.h"

namespace embedded {

// A provider and the class that it serves.
struct LiveSource {
  const ClassEntry* entry = nullptr;  // BORROWS
  std::shared_ptr<InstanceProvider> provider;
};

// Rows that are no instances yet. They become instances, those of all namespaces, before anybody looks for one; only
// lists of some properties are made without that.
struct LaterRows {
  std::shared_ptr<RowSource> source;
  std::string_view rows;  // those that are left, each behind its length
  QORuint32 count = 0;
  QORuint64 sequence = 0;  // of the first of them
  bool isPending = false;  // of a load that has not been committed
};

struct NameSpace {
  QORString name;
  NameMap<CimQualifierDeclaration> qualifiers;
  std::unique_ptr<LaterClasses> laterClasses;        // of classes that are read when they are needed; null: none
  std::vector<std::unique_ptr<ClassEntry>> classes;  // in declaration order
  NameMap<ClassEntry*> classIndex;
  InstanceTable instances;
  std::vector<LaterRows> laterRows;  // in creation order; none while there are others that came after them
  std::vector<LiveSource> sources;   // in registration order
  bool isPending = false;            // created by a load that has not been committed
};

}  // namespace embedded

#endif
