// Replaces operator new for the whole test program, the libraries included.
// SPDX-License-Identifier: Apache-2.0
#include "AllocationFaults.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

std::atomic<long> liveBlocks{0};

struct ThreadState {
  unsigned long count = 0;
  unsigned long bytes = 0;
  unsigned long failing = 0;  // allocations until the one that fails
  bool isArmed = false;
  bool isLasting = false;
  bool hasFailed = false;
};
thread_local ThreadState thread;

bool fails() noexcept {
  if (!thread.isArmed) return false;
  if (thread.failing > 1) {
    --thread.failing;
    return false;
  }
  thread.hasFailed = true;
  thread.isArmed = thread.isLasting;
  return true;
}

void* allocate(std::size_t size, std::size_t alignment) noexcept {
  ++thread.count;
  thread.bytes += size;
  if (fails()) return nullptr;
  const std::size_t room = (size + alignment - 1) / alignment * alignment;
  void* const memory =
      alignment <= alignof(std::max_align_t) ? std::malloc(size == 0 ? 1 : size) : std::aligned_alloc(alignment, room);
  if (memory != nullptr) ++liveBlocks;
  return memory;
}

void* allocateOrThrow(std::size_t size, std::size_t alignment) {
  if (void* const memory = allocate(size, alignment)) return memory;
  throw std::bad_alloc();
}

void release(void* memory) noexcept {
  if (memory != nullptr) --liveBlocks;
  std::free(memory);
}

constexpr std::size_t kPlain = alignof(std::max_align_t);

}  // namespace

void AllocationFaults::arm(unsigned long first, bool isLasting) noexcept {
  thread.failing = first;
  thread.isLasting = isLasting;
  thread.hasFailed = false;
  thread.isArmed = true;
}
void AllocationFaults::disarm() noexcept { thread.isArmed = false; }
bool AllocationFaults::hasFailed() noexcept { return thread.hasFailed; }
unsigned long AllocationFaults::count() noexcept { return thread.count; }
unsigned long AllocationFaults::bytes() noexcept { return thread.bytes; }
long AllocationFaults::live() noexcept { return liveBlocks; }

bool AllocationFaults::Pause::exchangeArmed(bool isArmed) noexcept { return std::exchange(thread.isArmed, isArmed); }

void* operator new(std::size_t size) { return allocateOrThrow(size, kPlain); }
void* operator new[](std::size_t size) { return allocateOrThrow(size, kPlain); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size, kPlain); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size, kPlain); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return allocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }
