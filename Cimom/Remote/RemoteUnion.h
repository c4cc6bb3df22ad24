// One class of what several servers declare under its name.
// Tested by tests/unit/Remote/RemoteUnionTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTEUNION_H
#define QORQL_REMOTE_REMOTEUNION_H

#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Embedded/CimDeclarations.h"

// Where servers have different versions of a class it has the properties of all
// of them. What they tell of a property in different ways is as the first of
// them has it; only of numbers is the type one for those of all.
struct RemoteUnion {
  CimClassDeclaration declaration;      // with the first one's superclass
  std::vector<QORString> superClasses;  // of all of them, each once, in any case; none for those without
};

namespace remote {

// BORROWS: the declaration's own property of that name; null when there is none.
CimPropertyDeclaration* findProperty(CimClassDeclaration& declaration, const QORString& name);

// REQUIRES a declaration.
RemoteUnion unionOf(std::vector<CimClassDeclaration>&& declarations);

// Gives the declaration the superclass that derives from the others; of one that does not, the properties
// become the class's own. What is inherited in another type keeps that type. REQUIRES that the sink has the
// superclasses.
void settleInheritance(const CimDeclarationSink& sink, const QORString& nameSpace,
                       const std::vector<QORString>& superClasses, CimClassDeclaration& declaration);

}  // namespace remote

#endif
