// Order of CIM datetime texts.
//
// Both forms have 25 characters with "." at 14 and one of "+", "-" (timestamp)
// or ":" (interval) at 21. A text is read into fields; a field that contains a
// `*` makes it incomplete. A complete text becomes one number of microseconds:
// since 1970 in UTC, or of the interval.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelDateTime.h"

#include <chrono>
#include <cstdint>

namespace model {

namespace {

constexpr std::size_t kLength = 25;
constexpr std::size_t kPoint = 14;
constexpr std::size_t kSign = 21;
constexpr std::int64_t kMicrosecondsPerSecond = 1000000;

struct Reader {
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
};

struct DateTime {
  bool wellFormed = false;
  bool complete = false;
  bool interval = false;
  std::int64_t microseconds = 0;  // when complete
};

std::int64_t dayNumber(Reader& reader) noexcept {
  const std::int64_t year = reader.field(0, 4, 0, 9999);
  const std::int64_t month = reader.field(4, 2, 1, 12);
  const std::int64_t day = reader.field(6, 2, 1, 31);
  if (!reader.complete || !reader.wellFormed) return 0;
  const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(year)),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  reader.wellFormed = date.ok();
  return std::chrono::sys_days(date).time_since_epoch().count();
}

DateTime readDateTime(std::string_view text) noexcept {
  DateTime read;
  if (text.size() != kLength || text[kPoint] != '.') return read;
  const char sign = text[kSign];
  if (sign != '+' && sign != '-' && sign != ':') return read;
  read.interval = sign == ':';

  Reader reader{text};
  const std::int64_t days = read.interval ? reader.field(0, 8, 0, 99999999) : dayNumber(reader);
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

}  // namespace

bool isDateTime(std::string_view text) noexcept { return readDateTime(text).wellFormed; }

std::strong_ordering compareDateTimes(std::string_view a, std::string_view b) noexcept {
  const DateTime x = readDateTime(a);
  const DateTime y = readDateTime(b);
  if (x.complete && y.complete && x.interval == y.interval) return x.microseconds <=> y.microseconds;
  return a <=> b;
}

}  // namespace model
