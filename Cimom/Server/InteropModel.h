// The interop namespace, in which clients find out what this server is and has.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INTEROPMODEL_H
#define QORQL_SERVER_INTEROPMODEL_H

#include "Cimom/Embedded/EmbeddedObjectManager.h"

inline constexpr const char* kInteropNameSpace = "root/interop";

// What of a server its model cannot tell.
struct ServerTraits {
  bool isWritable = false;  // clients change stored instances, and subscribe to indications
  bool asksForUsers = false;
};

// Declares the namespace with its qualifiers, CIM_Namespace, CIM_ObjectManager and
// CIM_ObjectManagerCommunicationMechanism, as far as they are not there, and serves their instances: a CIM_Namespace
// for each namespace at the time of the question, those of the outer source included, one of the others. A class of
// which there are instances already is left alone. THROWS QoriBaseException (type "CIM_Repository") when a declaration
// does not fit what is there.
void addInteropModel(EmbeddedObjectManager& manager, const ServerTraits& traits);

#endif
