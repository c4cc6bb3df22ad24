// Memory for loads that need much of it.
// Tested by tests/cli/model_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LOADINGMEMORY_H
#define QORQL_TOOL_LOADINGMEMORY_H

// Asks the system to give the memory of a large load in large pages: a load of a whole schema takes thousands of small
// ones, and a third of its processor time goes into getting them. What a small load needs stays as it is. Costs some
// microseconds, once in a process; a system that has no such pages, or a memory allocator that is not the C library's,
// leaves everything as it was. Any thread.
void prepareLoadingMemory() noexcept;

#endif
