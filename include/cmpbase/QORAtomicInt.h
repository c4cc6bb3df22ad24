// The atomic integer of every reference count.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORATOMICINT_H
#define QORQL_CMPBASE_QORATOMICINT_H

#include <atomic>

#include "cmpbase/QORTypes.h"

// Threads may share one. Increment and decrement return the new value. A
// decrement publishes what its thread did before, so that whoever reaches zero
// may destroy the counted object.
class QORAtomicInt {
 public:
  // Zero, or the value.
  constexpr QORAtomicInt() noexcept = default;
  constexpr explicit QORAtomicInt(QORsint32 value) noexcept : _value(value) {}
  QORAtomicInt(const QORAtomicInt&) = delete;
  QORAtomicInt& operator=(const QORAtomicInt&) = delete;

  // Each is one atomic step; the steps up and down give the new value.
  void setValue(QORsint32 value) noexcept { _value.store(value, std::memory_order_release); }
  QORsint32 getValue() const noexcept { return _value.load(std::memory_order_acquire); }
  QORsint32 atomicInc() noexcept { return _value.fetch_add(1, std::memory_order_relaxed) + 1; }
  QORsint32 atomicDec() noexcept { return _value.fetch_sub(1, std::memory_order_acq_rel) - 1; }
  // The new value, as a decrement gives it.
  QORsint32 atomicAdd(QORsint32 change) noexcept {
    return _value.fetch_add(change, std::memory_order_acq_rel) + change;
  }
  // Lets go of one of the holds that the integer counts; true when it was the
  // last. Nobody else can take or leave a hold when the caller's is the only
  // one, so that the last one costs no atomic step; the count may then stay at 1.
  bool dropHold() noexcept { return getValue() == 1 || atomicDec() == 0; }

 private:
  std::atomic<QORsint32> _value{0};
};

#endif
