// Counts the calls and throws at the one that is due.
// SPDX-License-Identifier: Apache-2.0
#include "FaultPlan.h"

#include <stdexcept>

#include "cimom/CQoriProviderException.h"

namespace {

struct Plan {
  FaultPlan::Kind kind = FaultPlan::kNull;
  unsigned long calls = 0;  // until the one that goes wrong; 0 when none does
  bool hasStruck = false;
};
Plan plan;

}  // namespace

void FaultPlan::arm(unsigned long first, Kind kind) { plan = {kind, first, false}; }
void FaultPlan::disarm() { plan.calls = 0; }
bool FaultPlan::hasStruck() { return plan.hasStruck; }

bool FaultPlan::isDue() noexcept {
  if (plan.calls == 0 || --plan.calls != 0) return false;
  plan.hasStruck = true;
  return true;
}

bool FaultPlan::strikes() {
  if (plan.kind == kGarbage || !isDue()) return false;
  switch (plan.kind) {
    case kPlatformError:
      throw QoriBaseException("platform", "test", "call", "the platform failed", 7);
    case kProviderError:
      throw CQoriProviderException("test", "the provider failed", 1);
    case kStandardError:
      throw std::runtime_error("the library failed");
    case kNumber:
      throw 42;
    default:
      return true;
  }
}

bool FaultPlan::strikesQuietly() noexcept { return plan.kind == kNull && isDue(); }
bool FaultPlan::strikesWithGarbage() noexcept { return plan.kind == kGarbage && isDue(); }
