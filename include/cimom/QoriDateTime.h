// What the text of a CIM datetime says, read once for any number of comparisons.
//
// Both forms have 25 characters with "." at 14 and one of "+", "-" (timestamp)
// or ":" (interval) at 21. A text is read into fields; a field that contains a
// `*` makes it incomplete. A complete text becomes one number of microseconds:
// since 1970 in UTC, or of the interval.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_QORIDATETIME_H
#define QORQL_CIMOM_QORIDATETIME_H

#include <bit>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// Two complete timestamps, and two complete intervals, stand in the order of their microseconds; all other pairs in
// that of their texts, byte by byte.
struct QoriDateTime {
  bool wellFormed = false;  // a timestamp (yyyymmddhhmmss.mmmmmmsutc) or an interval (ddddddddhhmmss.mmmmmm:000), with
                            // `*` allowed for any field's digits and every field that is given in its range
  bool complete = false;    // and without a `*`
  bool interval = false;
  std::int64_t microseconds = 0;  // when complete
};

namespace qori {

namespace detail {

inline constexpr std::size_t kSign = 21;  // where "+", "-" or ":" stands

// Reads digits eight at a time, without a branch for each: what most texts consist of.
struct DigitReader {
  static constexpr std::uint64_t kHigh = 0xf0f0f0f0f0f0f0f0;  // the high halves of eight bytes

  const char* text;
  std::uint64_t read = 0;  // what the high halves of its bytes tell of all characters so far

  // The numbers that each two of the eight characters there write, for pair(). The first few characters may be left
  // out: they count as zeros, whatever they are.
  // Never beyond what text holds: REQUIRES eight places in it.
  std::uint64_t eight(std::size_t at, unsigned leftOut = 0) noexcept {
    constexpr std::uint64_t kZeros = 0x3030303030303030;
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text + at, sizeof bytes);
    if constexpr (std::endian::native == std::endian::big) bytes = __builtin_bswap64(bytes);
    const std::uint64_t digits = (bytes ^ kZeros) & ~std::uint64_t{0} << (8 * leftOut);
    // A digit is 0 to 9 now, which neither alone nor with 6 reaches the high half of its byte.
    read |= digits | (digits + 0x0606060606060606);
    return (digits * 10 + (digits >> 8U)) & 0x00ff00ff00ff00ff;
  }
  bool areDigits() const noexcept { return (read & kHigh) == 0; }
  // The first of these numbers has the number 0.
  static unsigned pair(std::uint64_t pairs, unsigned number) noexcept {
    return static_cast<unsigned>(pairs >> (16 * number)) & 0xffU;
  }
};

// The days from 1970 to a date of the years 0 to 9999, by years that begin with March, so that a leap day is a year's
// last. REQUIRES a month from 1 to 12.
inline std::int64_t daysSince1970(unsigned year, unsigned month, unsigned day) noexcept {
  constexpr unsigned kDaysBefore[] = {0, 306, 337, 0, 31, 61, 92, 122, 153, 184, 214, 245, 275};
  constexpr std::int64_t kFrom400YearsBefore = 146097 + 719469;  // to 1970 from the day before 1 March of the year -400
  const unsigned begun = year + 400 - (month <= 2 ? 1 : 0);
  const unsigned centuries = begun / 100;
  const std::int64_t days = begun * 365 + begun / 4 - centuries + centuries / 4 + kDaysBefore[month] + day;
  return days - kFrom400YearsBefore;
}

// Every month has the first 28 days.
inline bool isDate(unsigned year, unsigned month, unsigned day) noexcept {
  if (month - 1 < 12 && day - 1 < 28) return true;
  return std::chrono::year_month_day(std::chrono::year(static_cast<int>(year)), std::chrono::month(month),
                                     std::chrono::day(day))
      .ok();
}

// The microseconds since 1970 of a timestamp whose fields are all digits within their ranges; false for every other
// text. REQUIRES the length of a datetime and the signs at their places.
inline bool readTimestamp(std::string_view text, std::int64_t& microseconds) noexcept {
  DigitReader digits{text.data()};
  const std::uint64_t date = digits.eight(0);
  const std::uint64_t time = digits.eight(6);
  const std::uint64_t part = digits.eight(13, 2);
  const std::uint64_t zone = digits.eight(17, 5);
  const auto pair = DigitReader::pair;
  const unsigned year = pair(date, 0) * 100 + pair(date, 1);
  const unsigned month = pair(date, 2);
  const unsigned day = pair(date, 3);
  const unsigned hours = pair(time, 1);
  const unsigned minutes = pair(time, 2);
  const unsigned seconds = pair(time, 3);
  const unsigned fraction = (pair(part, 1) * 100 + pair(part, 2)) * 100 + pair(part, 3);
  const unsigned offset = pair(zone, 2) * 100 + pair(zone, 3);
  if (!digits.areDigits() || hours > 23 || minutes > 59 || seconds > 60 || !isDate(year, month, day)) {
    return false;
  }
  const std::int64_t days = daysSince1970(year, month, day);
  const std::int64_t east = text[21] == '-' ? -std::int64_t{offset} : std::int64_t{offset};
  microseconds = (((days * 24 + hours) * 60 + minutes - east) * 60 + seconds) * 1000000 + fraction;
  return true;
}

// Reads the fields of any datetime one by one.
struct DateTimeReader {
  std::string_view text;
  bool wellFormed = true;
  bool complete = true;

  // The digits at [from, from + count); outside [least, greatest] the text is malformed.
  std::int64_t field(std::size_t from, std::size_t count, std::int64_t least, std::int64_t greatest) noexcept {
    std::int64_t value = 0;
    bool hasWildcard = false;
    for (const char c : text.substr(from, count)) {
      if (c == '*') {
        hasWildcard = true;
      } else if (c < '0' || c > '9') {
        wellFormed = false;
      } else {
        value = value * 10 + (c - '0');
      }
    }
    if (hasWildcard) {
      complete = false;
    } else if (value < least || value > greatest) {
      wellFormed = false;
    }
    return value;
  }

  // The days since 1970 of the date at the front.
  std::int64_t dayNumber() noexcept {
    const std::int64_t year = field(0, 4, 0, 9999);
    const std::int64_t month = field(4, 2, 1, 12);
    const std::int64_t day = field(6, 2, 1, 31);
    if (!complete || !wellFormed) return 0;
    const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(year)),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    wellFormed = date.ok();
    return std::chrono::sys_days(date).time_since_epoch().count();
  }
};

// Any datetime, field by field. REQUIRES the length of a datetime and the signs at their places.
[[gnu::noinline]] inline QoriDateTime readFields(std::string_view text) noexcept {
  constexpr std::int64_t kMicrosecondsPerSecond = 1000000;
  const char sign = text[kSign];
  QoriDateTime read;
  read.interval = sign == ':';
  DateTimeReader reader{text};
  const std::int64_t days = read.interval ? reader.field(0, 8, 0, 99999999) : reader.dayNumber();
  const std::int64_t hours = reader.field(8, 2, 0, 23);
  const std::int64_t minutes = reader.field(10, 2, 0, 59);
  const std::int64_t seconds = reader.field(12, 2, 0, 60);  // a leap second is one
  const std::int64_t fraction = reader.field(15, 6, 0, kMicrosecondsPerSecond - 1);
  const std::int64_t offset = reader.field(22, 3, 0, read.interval ? 0 : 999);

  read.wellFormed = reader.wellFormed;
  read.complete = reader.complete && reader.wellFormed;
  const std::int64_t localMinutes = (days * 24 + hours) * 60 + minutes;
  const std::int64_t utcMinutes = sign == '-' ? localMinutes + offset : localMinutes - offset;
  read.microseconds = (utcMinutes * 60 + seconds) * kMicrosecondsPerSecond + fraction;
  return read;
}

}  // namespace detail

// Any text may be read; one that is no datetime is not well-formed.
inline QoriDateTime readDateTime(std::string_view text) noexcept {
  constexpr std::size_t kLength = 25;
  constexpr std::size_t kPoint = 14;
  QoriDateTime read;
  if (text.size() != kLength || text[kPoint] != '.') return read;
  const char sign = text[detail::kSign];
  if (sign != '+' && sign != '-' && sign != ':') return read;
  if (sign == ':' || !detail::readTimestamp(text, read.microseconds)) return detail::readFields(text);
  read.wellFormed = read.complete = true;
  return read;
}

}  // namespace qori

#endif
