// Timestamps are spread over the days from 2010 on, in no order.
// SPDX-License-Identifier: Apache-2.0
#include "bench/MixedData.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cinttypes>
#include <cstdio>

#include "bench/Data.h"

namespace bench {

namespace {

std::string timestampText(std::uint64_t bits) {
  using std::chrono::sys_days;
  using std::chrono::year_month_day;
  constexpr std::uint64_t kDays = 5000;
  constexpr std::chrono::year_month_day kFirstDay{std::chrono::year(2010), std::chrono::month(1), std::chrono::day(1)};
  const year_month_day date(sys_days(kFirstDay) + std::chrono::days(bits % kDays));
  const std::uint64_t second = (bits >> 16) % 86400;
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%04d%02u%02u%02u%02u%02u.%06u+000", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<unsigned>(second / 3600), static_cast<unsigned>(second / 60 % 60),
                static_cast<unsigned>(second % 60), static_cast<unsigned>((bits >> 36) % 1000000));
  return text.data();
}

std::int64_t digits(std::string_view text, std::size_t from, std::size_t count) {
  std::int64_t number = 0;
  for (const char digit : text.substr(from, count)) number = number * 10 + (digit - '0');
  return number;
}

}  // namespace

DeviceRow deviceRow(std::uint64_t index, std::uint64_t trays) {
  DeviceRow row;
  row.isSolidState = mixed(index, 41) % 3 == 0;
  row.deviceId = numbered("device%08" PRIu64, index);
  row.name = numbered("Device #%" PRIu64, mixed(index, 42) >> 24);
  row.size = mixed(index, 43) % kSizeRange;
  row.installDate = timestampText(mixed(index, 44));
  const std::uint64_t state = mixed(index, 45);
  for (std::uint64_t i = 0; i <= state % 3; ++i) {
    row.state.push_back(static_cast<std::uint16_t>((state >> (8 * (i + 1))) % 6));
  }
  row.hasTemperature = mixed(index, 46) % 2 == 0;
  row.temperature = static_cast<std::int32_t>(mixed(index, 47) % 100) - 10;
  row.tray = mixed(index, 48) % trays;
  return row;
}

std::string trayId(std::uint64_t index) { return numbered("tray%06" PRIu64, index); }

std::uint64_t trayCount(std::uint64_t devices) { return std::max<std::uint64_t>(devices / 100, 10); }

std::int64_t microsecondsOf(std::string_view timestamp) {
  const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(digits(timestamp, 0, 4))),
                                         std::chrono::month(static_cast<unsigned>(digits(timestamp, 4, 2))),
                                         std::chrono::day(static_cast<unsigned>(digits(timestamp, 6, 2)))};
  const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
  const std::int64_t seconds =
      ((days * 24 + digits(timestamp, 8, 2)) * 60 + digits(timestamp, 10, 2)) * 60 + digits(timestamp, 12, 2);
  return seconds * 1000000 + digits(timestamp, 15, 6);
}

}  // namespace bench
