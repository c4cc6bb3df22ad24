// The number of buckets of the engine's maps by text. Their iteration order, which results show, depends on it.
// Tested by tests/unit/QORQL/OuterJoinTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MAPBUCKETS_H
#define QORQL_MAPBUCKETS_H

#include "cmpbase.h"

inline constexpr QORuint32 QORQL_kMapBuckets = 150;

#endif
