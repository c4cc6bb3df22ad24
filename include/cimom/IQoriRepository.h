// The class repository of the object manager.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_IQORIREPOSITORY_H
#define QORQL_CIMOM_IQORIREPOSITORY_H

#include "cimom/IQoriClass.h"
#include "cmpbase.h"

// Threads may share one.
class IQoriRepository {
 public:
  virtual ~IQoriRepository() = default;
  // Names ignore case; null when the namespace or the class does not exist.
  virtual QORSmrPtr<IQoriClass> getClass(const QORString& nameSpace, const QORString& className) const = 0;
  // A number for the classes as they are, which no other state of this repository, nor
  // another repository of the process, has or had; getClass() called after it gives that
  // state or a newer one. While it is the same, what was found of superclasses may be
  // remembered. 0 tells nothing, so that each question is asked. Asked at each match of
  // a filter that needs superclasses: it is cheap.
  virtual QORuint64 getVersion() const { return 0; }
};

#endif
