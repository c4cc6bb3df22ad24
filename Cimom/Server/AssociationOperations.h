// Operations that go from an object along its associations.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_ASSOCIATIONOPERATIONS_H
#define QORQL_SERVER_ASSOCIATIONOPERATIONS_H

#include "Cimom/Server/ServerOperations.h"

// Associators, AssociatorNames, References and ReferenceNames, of an instance or of a class. A class is tied to those
// that an association may tie its instances to: what its references declare, inherited ones included.
void addAssociationOperations(ServerOperations& operations);

#endif
