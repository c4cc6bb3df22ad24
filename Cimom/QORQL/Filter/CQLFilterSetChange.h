// The changes of a set of filters: for its own files alone.
// Tested by tests/unit/Filters/CQLFilterSetTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLFILTERSETCHANGE_H
#define QORQL_CQLFILTERSETCHANGE_H

#include "Cimom/QORQL/Filter/CQLFilterSetState.h"

namespace cqlset {

// Make the set one with the filter, or without it, for all readers at once.
// REQUIRE the state's mutex, and the filter among the state's filters. When they
// THROW std::bad_alloc, nothing has changed. The set frees a filter that is removed.
void addFilter(CQLFilterSet::State& state, Filter& filter);
void removeFilter(CQLFilterSet::State& state, Filter& filter);

}  // namespace cqlset

#endif
