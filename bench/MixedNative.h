// The workloads on the mixed world, written by hand.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_MIXEDNATIVE_H
#define QORQL_BENCH_MIXEDNATIVE_H

#include "bench/Answer.h"
#include "bench/Workloads.h"

namespace bench {

// REQUIRES a task of that field and a MixedWorld that is current.
void runMixedByHand(Task task, Answer& answer);

}  // namespace bench

#endif
