// How much of a processor each process uses now, measured over a short window of time.
// Tested by tests/unit/Providers/LinuxProcessFilesTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPROCESSORUSE_H
#define QORQL_PROVIDERS_LINUXPROCESSORUSE_H

#include <chrono>
#include <unordered_map>

#include "cmpbase.h"

// The kernel keeps what a process has used since it began, in ticks of 10 ms.
// What it uses now is the difference of two readings: `note` takes the first
// one, `waitForEnd` lets the window pass, `percent` compares with the second.
// Belongs to one enumeration.
class LinuxProcessorUse {
 public:
  using Clock = std::chrono::steady_clock;
  // Long enough for steps of 2 %, short enough to wait for.
  static constexpr std::chrono::milliseconds kWindow{500};

  struct Reading {
    QORuint64 ticks = 0;  // used since the process began
    QORuint64 began = 0;  // when it began, which tells it from a later process of the same id
    Clock::time_point time{};
  };

  LinuxProcessorUse(QORuint64 ticksPerSecond, Clock::time_point start)
      : _ticksPerSecond(ticksPerSecond), _start(start) {}

  void note(int pid, const Reading& reading) { _first[pid] = reading; }
  void waitForEnd() const;
  // Of one processor: a process of several threads may use more than 100. One
  // that began meanwhile counts from the start of the window.
  double percent(int pid, const Reading& second) const;

 private:
  QORuint64 _ticksPerSecond;
  Clock::time_point _start;
  std::unordered_map<int, Reading> _first;
};

#endif
