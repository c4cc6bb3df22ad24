// Counts allocations, and makes them fail where a test wants it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_ALLOCATIONFAULTS_H
#define QORQL_TESTS_ALLOCATIONFAULTS_H

// A test program that links AllocationFaults.cpp replaces operator new with one
// that counts, and that throws std::bad_alloc when told to.
class AllocationFaults {
 public:
  // Allocation number `first` (from 1) of this thread from now on fails; with
  // isLasting all after it do too, until disarm().
  static void arm(unsigned long first, bool isLasting) noexcept;
  static void disarm() noexcept;
  // Whether any has failed since arm().
  static bool hasFailed() noexcept;
  // Allocations of this thread so far.
  static unsigned long count() noexcept;
  // Bytes asked for by this thread so far.
  static unsigned long bytes() noexcept;
  // Blocks of all threads that have not been freed.
  static long live() noexcept;

  // While one lives, allocations of this thread neither fail nor count towards arm().
  class Pause {
   public:
    Pause() noexcept : _wasArmed(exchangeArmed(false)) {}
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    ~Pause() { exchangeArmed(_wasArmed); }

    // Runs the action with the pause suspended.
    template <class Action>
    void interrupt(Action action) {
      struct Again {
        bool& wasArmed;
        ~Again() { wasArmed = exchangeArmed(false); }
      } again{_wasArmed};
      exchangeArmed(_wasArmed);
      action();
    }

   private:
    static bool exchangeArmed(bool isArmed) noexcept;

    bool _wasArmed;
  };
};

#endif
