// The peak of the resident memory, from the kernel.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_RESIDENTPEAK_H
#define QORQL_BENCH_RESIDENTPEAK_H

namespace bench {

inline constexpr double kMebibyte = 1024.0 * 1024.0;

// From its making on; one at a time.
class ResidentPeak {
 public:
  ResidentPeak();
  // Bytes beyond what was there at the beginning.
  double bytes() const;

 private:
  double _before = 0;
};

}  // namespace bench

#endif
