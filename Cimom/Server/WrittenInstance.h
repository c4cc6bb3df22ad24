// Instances as clients send them, brought into the form of their classes.
// Tested by tests/unit/Server/WrittenInstanceTest.cpp, tests/unit/Server/InstanceOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_WRITTENINSTANCE_H
#define QORQL_SERVER_WRITTENINSTANCE_H

#include <vector>

#include "Cimom/CimXml/CimXmlInstance.h"
#include "Cimom/Embedded/CimDeclarations.h"
#include "Cimom/Server/ServerClasses.h"

// The properties with values of their declared types: those whose type the client did not give are read as it, embedded
// instances become objects of their classes. THROWS CimStatusException: a property that the class does not
// have 12, or that is given twice 4, a value of another type 13, NULL too, also an array that is too long or an
// instance of another class in it, a reference to no instance, to one of another class, or of a class that is not
// there, 4; and as makeObject() for embedded instances.
std::vector<CimInstanceProperty> writtenProperties(EmbeddedObjectManager& manager, const ServerClasses& space,
                                                   const CQoriClass& model, const CimXmlInstance& instance);

// Refuse, with 4, NULL in a property that the class requires: of an instance, which has the class's defaults where it
// is not given a value; and of a change. Keys are for others to look at.
void requireValues(const CQoriClass& model, const std::vector<CimInstanceProperty>& instance);
void requireChangedValues(const CQoriClass& model, const std::vector<CimInstanceProperty>& changes);

// The changes without those that leave a property as it is that the class says is not written, Write(false). THROWS
// CimStatusException, status 4, where one would have another value than `now`.
std::vector<CimInstanceProperty> allowedChanges(const CQoriClass& model, const IQoriObject& now,
                                                std::vector<CimInstanceProperty> changes);

#endif
