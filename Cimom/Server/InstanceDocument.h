// Instances as documents, in which a store keeps them.
// Tested by tests/unit/Server/StoredInstanceWriterTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INSTANCEDOCUMENT_H
#define QORQL_SERVER_INSTANCEDOCUMENT_H

#include <string>
#include <string_view>

#include "Cimom/Embedded/CimDeclarations.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// The INSTANCE element, with all properties. THROWS QoriBaseException (type "CIM_Value") when objects nest too deeply.
std::string instanceDocument(const IQoriObject& object);

// The instance of such an element. THROWS CimXmlException for another text.
CimInstanceDeclaration readInstanceDocument(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                            std::string_view document);

// The instance of that name, stored or live; null when there is none.
QORSmrPtr<IQoriObject> findInstance(const EmbeddedObjectManager& manager, const QORSmrPtr<IQoriInstanceName>& name);

// The namespace that a name is in; empty without one.
QORString nameSpaceOf(const IQoriInstanceName& name);

#endif
