// Checks the fields of timestamps and intervals.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofDateTime.h"

#include <cstddef>
#include <iterator>

#include "Cimom/Mof/MofBytes.h"

namespace {

constexpr std::size_t kLength = 25;
constexpr std::size_t kPoint = 14;
constexpr std::size_t kSign = 21;
constexpr int kUnknown = -1;  // a field of asterisks
constexpr int kMalformed = -2;

// A field is all digits or all asterisks.
int readField(std::string_view text, std::size_t start, std::size_t length) {
  int value = 0;
  for (const char c : text.substr(start, length)) {
    if (c == '*' && text[start] == '*') {
      value = kUnknown;
    } else if (isMofDigit(c) && isMofDigit(text[start])) {
      value = value * 10 + (c - '0');
    } else {
      return kMalformed;
    }
  }
  return value;
}

// Microseconds may be unknown from any digit on.
bool hasMicroseconds(std::string_view text) {
  bool isUnknown = false;
  for (const char c : text.substr(kPoint + 1, kSign - kPoint - 1)) {
    if (c == '*') {
      isUnknown = true;
    } else if (!isMofDigit(c) || isUnknown) {
      return false;
    }
  }
  return true;
}

int daysOf(int year, int month) {
  if (month == 2) {
    const bool isLeap = year == kUnknown || (year % 4 == 0 && (year % 100 != 0 || year % 400 == 0));
    return isLeap ? 29 : 28;
  }
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

struct Field {
  std::size_t start;
  std::size_t length;
  int least;
  int greatest;
  const char* fault;
};

constexpr Field kTimestamp[] = {
    {0, 4, 0, 9999, "its year is not 4 digits"},  {4, 2, 1, 12, "its month is not 01 to 12"},
    {6, 2, 1, 31, "its day does not exist"},      {8, 2, 0, 23, "its hour is not 00 to 23"},
    {10, 2, 0, 59, "its minute is not 00 to 59"}, {12, 2, 0, 59, "its second is not 00 to 59"}};
constexpr Field kInterval[] = {{0, 8, 0, 99999999, "its days are not 8 digits"},
                               {8, 2, 0, 23, "its hours are not 00 to 23"},
                               {10, 2, 0, 59, "its minutes are not 00 to 59"},
                               {12, 2, 0, 59, "its seconds are not 00 to 59"}};

// The first fault of the fields; after the first asterisk all digits must be asterisks.
template <std::size_t N>
const char* faultOfFields(std::string_view text, const Field (&fields)[N], int (&values)[N]) {
  bool isUnknown = false;
  for (std::size_t i = 0; i < N; ++i) {
    const int value = readField(text, fields[i].start, fields[i].length);
    const bool isInRange = value >= fields[i].least && value <= fields[i].greatest;
    if (value == kMalformed || (value != kUnknown && !isInRange)) return fields[i].fault;
    if (isUnknown && value != kUnknown) return "digits follow asterisks";
    isUnknown = value == kUnknown;
    values[i] = value;
  }
  if (!hasMicroseconds(text)) return "its microseconds are not 6 digits";
  return isUnknown && text[kPoint + 1] != '*' ? "digits follow asterisks" : nullptr;
}

}  // namespace

const char* faultOfMofDateTime(std::string_view text) noexcept {
  if (text.size() != kLength) return "it is not 25 characters long";
  if (text[kPoint] != '.') return "it has no \".\" before the microseconds";
  if (text[kSign] == ':') {
    int values[std::size(kInterval)];
    const char* const fault = faultOfFields(text, kInterval, values);
    if (fault != nullptr) return fault;
    return text.substr(kSign + 1) == "000" ? nullptr : "an interval ends with \":000\"";
  }
  if (text[kSign] != '+' && text[kSign] != '-') return "it has no \"+\", \"-\" or \":\" after the microseconds";
  int values[std::size(kTimestamp)];
  const char* const fault = faultOfFields(text, kTimestamp, values);
  if (fault != nullptr) return fault;
  if (values[1] > 0 && values[2] > daysOf(values[0], values[1])) return "its day does not exist";
  return readField(text, kSign + 1, 3) == kMalformed ? "its offset from UTC is not 3 digits" : nullptr;
}
