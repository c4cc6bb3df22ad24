// The C library's allocator takes small blocks from one range of addresses that grows at its end. That range is made
// long at once, which costs addresses and no memory, and its part behind the first megabytes is marked for large pages.
// SPDX-License-Identifier: Apache-2.0
#include "LoadingMemory.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr int kMegabyte = 1 << 20;
constexpr std::size_t kRange = std::size_t{64} * kMegabyte;
constexpr std::uintptr_t kLargePage = std::uintptr_t{2} * kMegabyte;
// What a small load takes comes in small pages: a large one has to be cleared as a whole.
constexpr std::uintptr_t kSmallLoad = std::uintptr_t{2} * kMegabyte;

// Sizes of blocks, and of free memory at the end, up to which the range keeps them: those that the allocator comes to
// by itself as large blocks are freed. Setting any of its numbers ends that adaptation, so they are set as well.
bool setAllocator() noexcept {
  return mallopt(M_MMAP_THRESHOLD, 32 * kMegabyte) == 1 &&
         mallopt(M_TRIM_THRESHOLD, 2 * static_cast<int>(kRange)) == 1 &&
         mallopt(M_TOP_PAD, static_cast<int>(kRange)) == 1;
}

bool prepareOnce() noexcept {
  const auto begin = reinterpret_cast<std::uintptr_t>(sbrk(0));
  if (!setAllocator()) return false;
  // Larger than what is free at the end, so that the range grows; volatile, so that it is not optimised away.
  void* volatile const grown = std::malloc(kMegabyte);
  std::free(grown);
  mallopt(M_TOP_PAD, kMegabyte / 8);
  const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0));
  const std::uintptr_t from = (begin + kSmallLoad + kLargePage - 1) / kLargePage * kLargePage;
  return begin != UINTPTR_MAX && end > from && madvise(reinterpret_cast<void*>(from), end - from, MADV_HUGEPAGE) == 0;
}

}  // namespace

void prepareLoadingMemory() noexcept {
  static const bool isPrepared = prepareOnce();
  static_cast<void>(isPrepared);
}
