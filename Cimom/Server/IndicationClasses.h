// The classes of the interop namespace by which clients subscribe to indications.
// Tested by tests/unit/Server/SubscriptionRulesTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INDICATIONCLASSES_H
#define QORQL_SERVER_INDICATIONCLASSES_H

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

inline constexpr const char* kSubscriptionSpace = "root/interop";
inline constexpr const char* kFilterClass = "CIM_IndicationFilter";
inline constexpr const char* kHandlerClass = "CIM_ListenerDestinationCIMXML";
inline constexpr const char* kSubscriptionClass = "CIM_IndicationSubscription";
inline constexpr const char* kIndicationServiceClass = "CIM_IndicationService";
inline constexpr const char* kQueueClass = "QORQL_IndicationQueue";

// The class that clients and programs declare theirs below.
inline constexpr const char* kElementClass = "CIM_ManagedElement";

// How the table of subscriptions names an instance.
std::string pathOf(const IQoriObject& object);

// Declares the namespace, and those of the classes and superclasses that are not there yet, in short form. THROWS
// QoriBaseException (type "CIM_Repository") when one does not fit what is there.
void declareIndicationClasses(EmbeddedObjectManager& manager);

#endif
