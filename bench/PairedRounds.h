// Timing of several candidates in turn, so that what disturbs the machine disturbs all of them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_PAIREDROUNDS_H
#define QORQL_BENCH_PAIREDROUNDS_H

#include <functional>
#include <vector>

namespace bench {

// The processor time of this process so far. Everything measured runs on one
// thread, and other programs on the machine do not lengthen it.
double cpuSeconds();

// A median with the range that it comes from.
struct Spread {
  double median = 0;
  double low = 0;
  double high = 0;
};
// REQUIRES at least one sample.
Spread spreadOf(std::vector<double> samples);

// Seconds per call of each candidate, one sample per round. A call that is
// shorter than `leastSeconds` is repeated within its turn. The order of turns
// rotates from round to round.
class PairedRounds {
 public:
  PairedRounds(const std::vector<std::function<void()>>& candidates, int rounds, double leastSeconds);

  // Calls that make one sample of a candidate.
  std::size_t callsPerTurn(std::size_t candidate) const { return _calls[candidate]; }
  Spread seconds(std::size_t candidate) const { return spreadOf(_samples[candidate]); }
  // How often one candidate's time fits into another's, round by round.
  Spread ratio(std::size_t dividend, std::size_t divisor) const;

 private:
  std::vector<std::size_t> _calls;
  std::vector<std::vector<double>> _samples;
};

}  // namespace bench

#endif
