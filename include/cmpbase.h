// The foundation in one include: string, counted pointer, list, map, atomic,
// exceptions, log. It uses the standard library only; its out-of-line code is
// supplied by the object manager that loads the engine.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_H
#define QORQL_CMPBASE_H

#include "cmpbase/QORAtomicInt.h"
#include "cmpbase/QORBoundsException.h"
#include "cmpbase/QORLog.h"
#include "cmpbase/QORModule.h"
#include "cmpbase/QORNullPointerException.h"
#include "cmpbase/QORSlabs.h"
#include "cmpbase/QORSmrPtr.h"
#include "cmpbase/QORString.h"
#include "cmpbase/QORTypes.h"
#include "cmpbase/QORValMap.h"
#include "cmpbase/QORValSlist.h"
#include "cmpbase/QoriBaseException.h"

#endif
