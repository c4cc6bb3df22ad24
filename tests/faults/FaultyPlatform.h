// The platform's services as this test program has them: each asks the plan,
// then the library.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_FAULTYPLATFORM_H
#define QORQL_TESTS_FAULTYPLATFORM_H

#include <functional>

#include "cimom/CIMApi.h"

class FaultyPlatform {
 public:
  enum class Objects { kAsTheyAre, kWithLayout, kWithoutLayout };
  // What instances the engine gets from now on: the object manager's, or proxies.
  static void setObjects(Objects objects);

  // Changes the answers of enumerations and of associators; an empty function leaves them.
  using Filter = std::function<CIMApi::Instances(const CIMApi::Instances&)>;
  static void setEnumerations(Filter filter);
  static void setAssociators(Filter filter);
  using InstanceFilter = std::function<QORSmrPtr<IQoriObject>(const QORSmrPtr<IQoriObject>&)>;
  static void setInstances(InstanceFilter filter);
  // Instances as the engine would get them.
  static QORSmrPtr<IQoriObject> proxyOf(const QORSmrPtr<IQoriObject>& object);
};

#endif
