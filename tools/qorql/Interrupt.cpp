// Ctrl-C while a statement runs in the shell.
// SPDX-License-Identifier: Apache-2.0
#include "Interrupt.h"

#include <unistd.h>

#include <atomic>

namespace {

constexpr int kInterruptsToEnd = 3;
constexpr int kExitInterrupted = 130;

std::atomic<int> theCount{0};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void countInterrupt(int /*signal*/) {
  if (theCount.fetch_add(1) + 1 >= kInterruptsToEnd) _exit(kExitInterrupted);
}

}  // namespace

// Blocking calls are not restarted, so that the line editor returns from its wait.
Interrupt::Interrupt() : _before{} {
  struct sigaction action {};
  action.sa_handler = countInterrupt;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, &_before);
}

Interrupt::~Interrupt() { sigaction(SIGINT, &_before, nullptr); }

bool Interrupt::isRequested() noexcept { return theCount.load(std::memory_order_relaxed) != 0; }
void Interrupt::clear() noexcept { theCount = 0; }
