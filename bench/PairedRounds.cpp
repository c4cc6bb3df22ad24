// The first call of each candidate warms up, the second tells how many make a turn.
// SPDX-License-Identifier: Apache-2.0
#include "bench/PairedRounds.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <ctime>

namespace bench {

namespace {

// The C library's heap puts small blocks that were freed in order only when somebody next asks for a large one. That
// work belongs to whoever freed them: a million rows that one peer sorted would cost the next one three times its time.
void settleHeap() {
  constexpr std::size_t kLarge = 65536;
  void* volatile block = std::malloc(kLarge);
  std::free(block);
}

double secondsOf(const std::function<void()>& candidate, std::size_t calls) {
  settleHeap();
  const double start = cpuSeconds();
  for (std::size_t i = 0; i < calls; ++i) candidate();
  return cpuSeconds() - start;
}

}  // namespace

double cpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

Spread spreadOf(std::vector<double> samples) {
  std::sort(samples.begin(), samples.end());
  const std::size_t middle = samples.size() / 2;
  const double upper = samples[middle];
  const double median = samples.size() % 2 != 0 ? upper : (samples[middle - 1] + upper) / 2;
  return {median, samples.front(), samples.back()};
}

PairedRounds::PairedRounds(const std::vector<std::function<void()>>& candidates, int rounds, double leastSeconds)
    : _samples(candidates.size()) {
  constexpr double kClockStep = 1e-7;
  for (const std::function<void()>& candidate : candidates) {
    candidate();
    const double once = std::max(secondsOf(candidate, 1), kClockStep);
    _calls.push_back(static_cast<std::size_t>(std::max(1.0, std::ceil(leastSeconds / once))));
  }
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t turn = 0; turn < candidates.size(); ++turn) {
      const std::size_t which = (turn + static_cast<std::size_t>(round)) % candidates.size();
      _samples[which].push_back(secondsOf(candidates[which], _calls[which]) / static_cast<double>(_calls[which]));
    }
  }
}

Spread PairedRounds::ratio(std::size_t dividend, std::size_t divisor) const {
  std::vector<double> ratios;
  for (std::size_t round = 0; round < _samples[dividend].size(); ++round) {
    ratios.push_back(_samples[dividend][round] / _samples[divisor][round]);
  }
  return spreadOf(std::move(ratios));
}

}  // namespace bench
