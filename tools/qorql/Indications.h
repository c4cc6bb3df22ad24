// Makes the indications of changes of instances.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_INDICATIONS_H
#define QORQL_TOOL_INDICATIONS_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "InstanceChanges.h"

inline constexpr const char* kInstCreation = "CIM_InstCreation";
inline constexpr const char* kInstDeletion = "CIM_InstDeletion";
inline constexpr const char* kInstModification = "CIM_InstModification";

// CIM_InstCreation, CIM_InstDeletion or CIM_InstModification with the instance
// and, for a modification, as it was before; each with an identifier of its own
// and the time. Properties that the namespace's class lacks are left out.
// BORROWS the object manager.
class Indications {
 public:
  Indications(EmbeddedObjectManager& manager, const QORString& nameSpace);

  static const char* classOf(const InstanceChange& change) noexcept;
  // THROWS QoriBaseException when the class does not take the values.
  QORSmrPtr<IQoriObject> make(const InstanceChange& change);

 private:
  void add(CimInstanceDeclaration& indication, const char* property, const QORSmrPtr<IQoriValue>& value) const;

  EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  std::string _series;  // what the identifiers begin with
  QORuint64 _count = 0;
};

#endif
