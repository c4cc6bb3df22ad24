// What paths tell clients of the machine that they come from.
// Tested by tests/unit/Server/PullOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVERHOST_H
#define QORQL_SERVER_SERVERHOST_H

#include "cmpbase.h"

// The machine's name, as it was at the first call; any thread may call.
const QORString& serverHost();

#endif
