// The qualifiers of the classes that the interop namespace has by itself.
// Tested by tests/unit/Server/InteropModelTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INTEROPQUALIFIERS_H
#define QORQL_SERVER_INTEROPQUALIFIERS_H

#include "Cimom/Embedded/EmbeddedObjectManager.h"

// Key, Association or Abstract, set, with the flavors that the standard gives it. REQUIRES one of these names.
CimQualifier interopFlag(const char* name);

// Declares the three in the interop namespace, as far as they are not there. THROWS QoriBaseException (type
// "CIM_Repository") where there is no such namespace.
void declareInteropQualifiers(EmbeddedObjectManager& manager);

#endif
