// Paths as clients send them, with their keys as the classes declare them.
// Tested by tests/unit/Server/InstanceOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_DECLAREDKEYS_H
#define QORQL_SERVER_DECLAREDKEYS_H

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "cimom/IQoriInstanceName.h"

// The path with types and names of its keys where it leaves them out, and so with the paths that its keys hold; the
// given one where nothing is to be changed. `nameSpace`: the path's, where it does not tell one. A path of a class that
// is not known stays as it is. THROWS CimStatusException, status 4, when a key without a name may be each of several.
QORSmrPtr<IQoriInstanceName> withDeclaredKeys(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                                              const QORSmrPtr<IQoriInstanceName>& given);

#endif
