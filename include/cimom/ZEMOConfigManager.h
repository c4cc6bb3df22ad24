// The object manager's configuration.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_ZEMOCONFIGMANAGER_H
#define QORQL_CIMOM_ZEMOCONFIGMANAGER_H

#include "cmpbase.h"

// One per process; any thread may call.
class ZEMOConfigManager {
 public:
  // BORROWS: never null.
  static ZEMOConfigManager* getInstance();
  // The configured text; empty when the key is not set. Section and key ignore case.
  void getString(const QORString& section, const QORString& key, QORString& value) const;

 private:
  ZEMOConfigManager() = default;
};

#endif
