// How every peer reads the cells that are no plain scalars.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_CELLREADING_H
#define QORQL_BENCH_CELLREADING_H

#include "bench/Answer.h"
#include "bench/MixedData.h"
#include "cimom/IQoriObject.h"

namespace bench {

// An instance: its class, how many properties it has, and the first of them, a text.
inline void readInstance(const IQoriObject& object, Answer& answer) {
  answer.text(object.getClassName().view());
  answer.number(object.getPropertyCount());
  answer.text(object.getScalarAt(0).text->view());
}

// The order of timestamps is looked at in a thorough run alone: working out the instant is no part of reading a cell.
inline void readTimestamp(std::string_view text, bool isSortKey, Answer& answer) {
  answer.text(text);
  if (isSortKey && answer.isThorough()) answer.sortKey(static_cast<std::uint64_t>(microsecondsOf(text)));
}

}  // namespace bench

#endif
