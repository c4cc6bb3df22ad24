// CIM datetimes as people write them.
// SPDX-License-Identifier: Apache-2.0
#include "ReadableTime.h"

#include <charconv>

#include "Cimom/Model/ModelDateTime.h"

namespace {

constexpr std::size_t kPoint = 14;
constexpr std::size_t kFraction = 15;
constexpr std::size_t kFractionLength = 6;
constexpr std::size_t kSign = 21;
constexpr std::size_t kOffset = 22;

struct TimestampField {
  const char* before;
  std::size_t place;
  std::size_t length;
};
// What is readable as far as it goes: a time needs its minutes.
constexpr TimestampField kTimestampFields[] = {{"", 0, 4},  {"-", 4, 2},  {"-", 6, 2},
                                               {" ", 8, 2}, {":", 10, 2}, {":", 12, 2}};
constexpr std::size_t kDateFields = 3;
constexpr std::size_t kTimeFields = 5;

bool isGiven(std::string_view digits) { return digits.find('*') == std::string_view::npos; }

int numberOf(std::string_view digits) {
  int number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

// UTC+5:30 for +330.
std::string zoneText(std::string_view signedMinutes) {
  const int minutes = numberOf(signedMinutes.substr(1));
  if (minutes == 0) return "UTC";
  std::string text = std::string("UTC") + signedMinutes[0] + std::to_string(minutes / 60);
  if (minutes % 60 == 0) return text;
  return text + (minutes % 60 < 10 ? ":0" : ":") + std::to_string(minutes % 60);
}

std::string timestampText(std::string_view datetime) {
  std::string text;
  std::size_t count = 0;
  for (const TimestampField& field : kTimestampFields) {
    const std::string_view digits = datetime.substr(field.place, field.length);
    if (!isGiven(digits)) break;
    text.append(field.before).append(digits);
    ++count;
  }
  if (count > kDateFields && count < kTimeFields) text.resize(text.size() - 3);
  if (count >= kTimeFields && isGiven(datetime.substr(kOffset))) text += ' ' + zoneText(datetime.substr(kSign));
  return text;
}

std::string intervalText(std::string_view datetime) {
  if (!isGiven(datetime.substr(0, kPoint))) return {};
  const int days = numberOf(datetime.substr(0, 8));
  std::string text = days == 0 ? "" : std::to_string(days) + (days == 1 ? " day " : " days ");
  text.append(datetime.substr(8, 2))
      .append(":")
      .append(datetime.substr(10, 2))
      .append(":")
      .append(datetime.substr(12, 2));
  std::string_view fraction = datetime.substr(kFraction, kFractionLength);
  fraction = fraction.substr(0, isGiven(fraction) ? fraction.find_last_not_of('0') + 1 : 0);
  return fraction.empty() ? text : text.append(".").append(fraction);
}

}  // namespace

std::string readableTime(std::string_view datetime) {
  if (!model::isDateTime(datetime)) return {};
  return datetime[kSign] == ':' ? intervalText(datetime) : timestampText(datetime);
}
