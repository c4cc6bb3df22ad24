// Which call of the platform goes wrong, and how.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_FAULTPLAN_H
#define QORQL_TESTS_FAULTPLAN_H

// The platform of these tests (FaultyPlatform.cpp, FaultyModel.h) asks the plan
// at each call. One thread.
class FaultPlan {
 public:
  enum Kind {
    kNull,           // a null pointer where the operation returns one, an empty text, NULL
    kGarbage,        // a value of another type than declared
    kPlatformError,  // QoriBaseException
    kProviderError,  // CQoriProviderException
    kStandardError,  // std::runtime_error
    kNumber          // an int
  };

  // Call number `first` (from 1) goes wrong.
  static void arm(unsigned long first, Kind kind);
  static void disarm();
  static bool hasStruck();

  // For an operation that may throw: whether it shall return nothing. THROWS what the plan says.
  static bool strikes();
  // For one that does not.
  static bool strikesQuietly() noexcept;
  // Whether a value of another type shall be returned.
  static bool strikesWithGarbage() noexcept;

 private:
  static bool isDue() noexcept;
};

#endif
