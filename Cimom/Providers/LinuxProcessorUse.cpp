// Two readings of the processor time of processes.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxProcessorUse.h"

#include <thread>

void LinuxProcessorUse::waitForEnd() const { std::this_thread::sleep_until(_start + kWindow); }

double LinuxProcessorUse::percent(int pid, const Reading& second) const {
  Reading first;
  first.time = _start;
  const auto found = _first.find(pid);
  if (found != _first.end() && found->second.began == second.began) first = found->second;
  const std::chrono::duration<double> passed = second.time - first.time;
  if (passed.count() <= 0 || second.ticks < first.ticks || _ticksPerSecond == 0) return 0;
  const double used = static_cast<double>(second.ticks - first.ticks) / static_cast<double>(_ticksPerSecond);
  return 100 * used / passed.count();
}
