// How wide the engine makes its maps by text: the order in which they are walked, which results show, follows from it.
#ifndef QORQL_MAPBUCKETS_H
#define QORQL_MAPBUCKETS_H

#include "cmpbase.h"

inline constexpr QORuint32 QORQL_kMapBuckets = 150;

#endif
