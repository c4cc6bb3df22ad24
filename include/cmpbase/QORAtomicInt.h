// The atomic integer behind every reference count.
#ifndef QORQL_CMPBASE_QORATOMICINT_H
#define QORQL_CMPBASE_QORATOMICINT_H

#include <atomic>

#include "cmpbase/QORTypes.h"

// Threads may share one. Increment and decrement return the new value. A
// decrement publishes what its thread did before, so that whoever reaches zero
// may destroy the counted object.
class QORAtomicInt {
 public:
  constexpr QORAtomicInt() noexcept = default;
  constexpr explicit QORAtomicInt(QORsint32 value) noexcept : _value(value) {}
  QORAtomicInt(const QORAtomicInt&) = delete;
  QORAtomicInt& operator=(const QORAtomicInt&) = delete;

  void setValue(QORsint32 value) noexcept { _value.store(value, std::memory_order_release); }
  QORsint32 getValue() const noexcept { return _value.load(std::memory_order_acquire); }
  QORsint32 atomicInc() noexcept { return _value.fetch_add(1, std::memory_order_relaxed) + 1; }
  QORsint32 atomicDec() noexcept { return _value.fetch_sub(1, std::memory_order_acq_rel) - 1; }

 private:
  std::atomic<QORsint32> _value{0};
};

#endif
