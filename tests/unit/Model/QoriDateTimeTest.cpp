// What the text of a datetime says: the moment or the length, and whether the text is whole.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>

#include "cimom/QoriDateTime.h"

namespace {

constexpr std::int64_t kSecond = 1000000;
constexpr std::int64_t kDay = 86400 * kSecond;

TEST(QoriDateTime, TimestampsCountFrom1970InUtc) {
  const auto microseconds = [](std::string_view text) {
    const QoriDateTime read = qori::readDateTime(text);
    EXPECT_TRUE(read.wellFormed && read.complete && !read.interval) << text;
    return read.microseconds;
  };
  EXPECT_EQ(microseconds("19700101000000.000000+000"), 0);
  EXPECT_EQ(microseconds("19700102030405.000006+000"), kDay + ((3 * 60 + 4) * 60 + 5) * kSecond + 6);
  EXPECT_EQ(microseconds("19700101013000.000000+090"), 0);
  EXPECT_EQ(microseconds("19691231223000.000000-090"), 0);
  EXPECT_EQ(microseconds("19691231235959.999999+000"), -1);
  EXPECT_EQ(microseconds("20000229000000.123456+000"), 11016 * kDay + 123456);
  EXPECT_EQ(microseconds("19991231235960.000000+000"), 10957 * kDay);
  EXPECT_EQ(microseconds("00010101000000.000000+000"), -719162 * kDay);
  EXPECT_EQ(microseconds("99991231000000.000000+999"), 2932896 * kDay - 999 * 60 * kSecond);
}

// As the calendar of the standard library has it.
TEST(QoriDateTime, EveryDayOfTheCalendarAndNoOther) {
  std::string text = "00000101000000.000000+000";
  const auto put = [&text](std::size_t at, int value, std::size_t width) {
    for (std::size_t i = width; i-- != 0; value /= 10) text[at + i] = static_cast<char>('0' + value % 10);
  };
  for (int year = 0; year <= 9999; year += year % 100 > 4 && year % 100 < 94 ? 7 : 1) {
    put(0, year, 4);
    for (int month = 0; month <= 13; ++month) {
      put(4, month, 2);
      for (int day = 0; day <= 32; ++day) {
        put(6, day, 2);
        const std::chrono::year_month_day date{std::chrono::year(year),
                                               std::chrono::month(static_cast<unsigned>(month)),
                                               std::chrono::day(static_cast<unsigned>(day))};
        const QoriDateTime read = qori::readDateTime(text);
        ASSERT_EQ(read.complete, date.ok()) << text;
        if (!read.complete) continue;
        ASSERT_EQ(read.microseconds, std::chrono::sys_days(date).time_since_epoch().count() * kDay) << text;
      }
    }
  }
}

// Whatever else stands where a digit is wanted.
TEST(QoriDateTime, NoOtherCharacterIsADigit) {
  for (const std::size_t place : {0, 1, 5, 7, 8, 10, 13, 15, 20, 22, 24}) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string text = "20000101000000.000000+000";
      text[place] = static_cast<char>(byte);
      const QoriDateTime read = qori::readDateTime(text);
      const bool isDigit = byte >= '0' && byte <= '9';
      if (!isDigit) {
        ASSERT_FALSE(read.complete) << place << " " << byte;
      } else if (byte == '1') {
        ASSERT_TRUE(read.wellFormed) << place;
      }
    }
  }
}

// Every digit of every field counts, whatever stands beside it.
TEST(QoriDateTime, EachDigitCountsAtItsPlace) {
  const auto microseconds = [](const std::string& text) {
    const QoriDateTime read = qori::readDateTime(text);
    EXPECT_TRUE(read.wellFormed && read.complete) << text;
    return read.microseconds;
  };
  const std::string least = "20000101000000.000000+000";
  const std::int64_t start = microseconds(least);
  const std::int64_t minute = 60 * kSecond;
  const std::pair<std::size_t, std::int64_t> worth[] = {
      {3, 366 * kDay},     {5, 31 * kDay},       {7, kDay},          {8, 600 * minute}, {9, 60 * minute},
      {10, 10 * minute},   {11, minute},         {12, 10 * kSecond}, {13, kSecond},     {15, kSecond / 10},
      {16, kSecond / 100}, {17, kSecond / 1000}, {18, 100},          {19, 10},          {20, 1},
      {22, -100 * minute}, {23, -10 * minute},   {24, -minute}};
  for (const auto& [place, one] : worth) {
    std::string text = least;
    ++text[place];
    EXPECT_EQ(microseconds(text) - start, one) << text;
    if (place < 13 || place == 22) continue;
    text[place] = '9';
    EXPECT_EQ(microseconds(text) - start, 9 * one) << text;
  }
}

TEST(QoriDateTime, IntervalsHaveALength) {
  const QoriDateTime read = qori::readDateTime("00000002010203.000004:000");
  EXPECT_TRUE(read.wellFormed && read.complete && read.interval);
  EXPECT_EQ(read.microseconds, 2 * kDay + 3723 * kSecond + 4);
  EXPECT_FALSE(qori::readDateTime("00000002010203.000004:001").wellFormed);
}

TEST(QoriDateTime, AnAsteriskLeavesATextIncomplete) {
  const std::string whole = "20240131112233.445566+060";
  for (std::size_t at = 0; at < whole.size(); ++at) {
    if (at == 14 || at == 21) continue;
    std::string text = whole;
    text[at] = '*';
    EXPECT_TRUE(qori::readDateTime(text).wellFormed) << text;
    EXPECT_FALSE(qori::readDateTime(text).complete) << text;
  }
}

// At each place, every character that no digit may be replaced by.
TEST(QoriDateTime, WhatIsNoDatetimeIsNotWellFormed) {
  const std::string whole = "20240131112233.445566+060";
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char wrong : {'/', ';', 'a', ' ', '\0', '\xff'}) {
      std::string text = whole;
      text[at] = wrong;
      EXPECT_FALSE(qori::readDateTime(text).wellFormed) << text;
      EXPECT_FALSE(qori::readDateTime(text).complete) << text;
    }
  }
  for (const char* const text : {"", "20240131", "20240131112233.445566+0600", "20240131112233.445566 060",
                                 "20240131112233,445566+060", "20241331112233.445566+060", "20240001112233.445566+060",
                                 "20230229112233.445566+060", "20240100112233.445566+060", "20240131242233.445566+060",
                                 "20240131116033.445566+060", "20240131112261.445566+060"}) {
    EXPECT_FALSE(qori::readDateTime(text).wellFormed) << text;
  }
}

}  // namespace
