// Operations that read classes and qualifiers.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_CLASSOPERATIONS_H
#define QORQL_SERVER_CLASSOPERATIONS_H

#include "Cimom/Server/ServerOperations.h"

// GetClass, EnumerateClasses, EnumerateClassNames, GetQualifier and EnumerateQualifiers; and the refusal of all
// methods: 17 for one that the class does not declare, 16 for one that it does.
void addClassOperations(ServerOperations& operations);

#endif
