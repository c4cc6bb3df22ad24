// Calls providers and makes instances of what they emit.
// Tested by tests/unit/Embedded/ProviderTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_LIVEREADER_H
#define QORQL_EMBEDDED_LIVEREADER_H

#include <vector>

#include "Cimom/Embedded/ObjectStore.h"
#include "cimom/CIMApi.h"

namespace embedded {

// What one call wants of live instances.
struct LiveRequest {
  CIMApi::PropertyNames names;  // null: all properties
  QORSmrPtr<QoriTransactionInfo> transaction;
  QORSmrPtr<IQoriInstanceName> only;  // null: every instance
  bool isOneOfMany = false;           // other classes are asked as well
};

// The class's live instances, complete in shape: properties that are neither
// asked for nor keys are NULL. Instances without a value for each key, and
// those whose path is stored or came before, are left out and logged,
// except for stored ones. REQUIRES that the caller does not hold the store's lock. THROWS CQoriProviderException,
// also for whatever else a provider throws but std::bad_alloc; of one class among many a source that is not there is a
// warning in the log instead.
std::vector<QORSmrPtr<IQoriObject>> readLive(const ObjectStore& store, const LiveSource& source,
                                             const LiveRequest& request);

}  // namespace embedded

#endif
