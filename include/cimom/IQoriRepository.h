// The class repository of the object manager.
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
};

#endif
