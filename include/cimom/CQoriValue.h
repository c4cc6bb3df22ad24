// The values that the engine and the object manager create: declared beside the
// interface, whose own forms of its operations use them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_CQORIVALUE_H
#define QORQL_CIMOM_CQORIVALUE_H

#include "cimom/CQoriType.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

#endif
