// Calls providers and makes instances of what they emit.
// Tested by tests/unit/Embedded/ProviderTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_LIVEREADER_H
#define QORQL_EMBEDDED_LIVEREADER_H

#include <vector>

#include "Cimom/Embedded/ObjectStore.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriProviderException.h"

namespace embedded {

// What one call wants of live instances.
struct LiveRequest {
  CIMApi::PropertyNames names;  // null: all properties
  QORSmrPtr<QoriTransactionInfo> transaction;
  QORSmrPtr<IQoriInstanceName> only;  // null: every instance
  bool isOneOfMany = false;           // other classes are asked as well
  // BORROWS; what is thrown where a source of one class among many is not there. Null: it is logged.
  std::vector<CQoriProviderException>* absences = nullptr;
};

// The names of its references: what a walk over associations wants of them.
CIMApi::PropertyNames referenceNames(const CQoriClass& model);

// The class's live instances, complete in shape: properties that are neither
// asked for nor keys are NULL. Instances without a value for each key, and
// those whose path is stored or came before, are left out and logged,
// except for stored ones. Asks the thread's StopScope before each. REQUIRES that the caller does not hold the store's
// lock. THROWS CQoriProviderException, also for whatever else a provider throws but std::bad_alloc; of one class among
// many a source that is not there is kept or logged instead.
std::vector<QORSmrPtr<IQoriObject>> readLive(const ObjectStore& store, const LiveSource& source,
                                             const LiveRequest& request);

// A warning in the log.
void tellOfAbsence(const CQoriProviderException& absence);

}  // namespace embedded

#endif
