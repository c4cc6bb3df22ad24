// Counts the allocations of this test program, by replacing operator new.
// SPDX-License-Identifier: Apache-2.0
#include "AllocationCount.h"

#include <cstdlib>
#include <new>

namespace {
thread_local unsigned long allocations = 0;
}

unsigned long allocationCount() noexcept { return allocations; }

void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return std::malloc(size == 0 ? 1 : size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  ++allocations;
  const std::size_t unit = static_cast<std::size_t>(alignment);
  if (void* const memory = std::aligned_alloc(unit, (size + unit - 1) / unit * unit)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
