// The kernel counts resident pages, and its peak can be reset.
// SPDX-License-Identifier: Apache-2.0
#include "bench/ResidentPeak.h"

#include <malloc.h>

#include <fstream>
#include <string>

namespace bench {

namespace {

// A value of /proc/self/status in bytes.
double statusBytes(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kibibytes = 0;
    if (word == name + ":" && status >> kibibytes) return kibibytes * 1024;
  }
  return 0;
}

}  // namespace

ResidentPeak::ResidentPeak() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << 5;
  _before = statusBytes("VmRSS");
}

double ResidentPeak::bytes() const { return statusBytes("VmHWM") - _before; }

}  // namespace bench
