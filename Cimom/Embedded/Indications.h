// Makes the indications of changes of instances.
// Tested by tests/cli/watch_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_INDICATIONS_H
#define QORQL_EMBEDDED_INDICATIONS_H

#include <atomic>
#include <functional>
#include <string>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Embedded/InstanceChanges.h"

inline constexpr const char* kInstCreation = "CIM_InstCreation";
inline constexpr const char* kInstDeletion = "CIM_InstDeletion";
inline constexpr const char* kInstModification = "CIM_InstModification";

// What indications say of the place where they are made.
struct IndicationOrigin {
  std::string host;
  std::function<QORSmrPtr<IQoriValue>()> now;  // the time, as a datetime
  std::string series;                          // what the identifiers begin with: no other process has the same
};

// CIM_InstCreation, CIM_InstDeletion or CIM_InstModification with the instance
// and, for a modification, as it was before; each with an identifier of its own
// and the time. Properties that the namespace's class lacks are left out.
// BORROWS the object manager. Threads may share one.
class Indications {
 public:
  Indications(EmbeddedObjectManager& manager, const QORString& nameSpace, IndicationOrigin origin);

  static const char* classOf(const InstanceChange& change) noexcept;
  // THROWS QoriBaseException when the class does not take the values.
  QORSmrPtr<IQoriObject> make(const InstanceChange& change);

 private:
  void add(CimInstanceDeclaration& indication, const char* property, const QORSmrPtr<IQoriValue>& value) const;

  EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  const IndicationOrigin _origin;
  std::atomic<QORuint64> _count{0};
};

#endif
