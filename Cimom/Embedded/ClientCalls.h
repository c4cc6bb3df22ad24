// Enumeration and single look-up, as the client interface asks for them.
// Tested by tests/unit/Embedded/EnumerationTest.cpp, tests/unit/Embedded/AssociationTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_CLIENTCALLS_H
#define QORQL_EMBEDDED_CLIENTCALLS_H

#include "Cimom/Embedded/ListCache.h"
#include "Cimom/Embedded/LiveReader.h"
#include "Cimom/Embedded/ObjectStore.h"
#include "cimom/CIMApi.h"

namespace embedded {

// Null for an unknown namespace or class. Costs one allocation per instance and
// two more when properties are left out; nothing per instance while the cache
// holds the list. The list may be shared with other callers.
CIMApi::Instances enumerateInstances(const ObjectStore& store, ListCache& cache, const QORString& nameSpace,
                                     const QORString& className, const LiveRequest& request);

// The same without the instances of derived classes, and without the cache: one allocation per stored instance.
CIMApi::Instances ownInstances(const ObjectStore& store, const QORString& nameSpace, const QORString& className,
                               const CIMApi::PropertyNames& names);

// Null when there is none. An empty namespace stands for the name's own.
QORSmrPtr<IQoriObject> getInstance(const ObjectStore& store, const QORString& nameSpace,
                                   const QORSmrPtr<IQoriInstanceName>& name, const CIMApi::PropertyNames& names);

}  // namespace embedded

#endif
