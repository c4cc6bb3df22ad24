// Counts the allocations of this test program.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_ALLOCATIONCOUNT_H
#define QORQL_TESTS_ALLOCATIONCOUNT_H

// Allocations by operator new on this thread since it started.
unsigned long allocationCount() noexcept;

#endif
