// Where the engine finds the class repository.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_QORIPROVIDERPLUGINMANAGER_H
#define QORQL_CIMOM_QORIPROVIDERPLUGINMANAGER_H

#include "cimom/IQoriRepository.h"
#include "cmpbase.h"

// One per process; any thread may call.
class QoriProviderPluginManager {
 public:
  // BORROWS: never null.
  static QoriProviderPluginManager* getQoriProviderPluginManager();
  // Null while no object manager runs.
  QORSmrPtr<IQoriRepository> getRepository() const;
  // The namespaces in the order in which they were created; never null.
  QORSmrPtr<QORValSlist<QORString>> getNamespaceList() const;

 private:
  QoriProviderPluginManager() = default;
};

#endif
