// A request is a line of JSON.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/Server/RequestLog.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::system_clock;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

const system_clock::time_point kWhen{milliseconds(1700000000007)};

RequestRecord record() {
  RequestRecord made;
  made.client = "127.0.0.1";
  made.user = "anna";
  made.note = {"ExecQuery", "root/cimv2", "SELECT * FROM \"X\"", 15, "unknown class"};
  made.http = 200;
  made.bytes = 321;
  made.milliseconds = 1.2345;
  return made;
}

TEST(RequestLog, ALineTellsWhoAskedWhatAndWhatCameOfIt) {
  EXPECT_EQ(lineOf(record(), kWhen),
            "{\"time\":\"2023-11-14T22:13:20.007Z\",\"client\":\"127.0.0.1\",\"user\":\"anna\","
            "\"operation\":\"ExecQuery\",\"namespace\":\"root/cimv2\",\"subject\":\"SELECT * FROM \\\"X\\\"\","
            "\"status\":15,\"message\":\"unknown class\",\"http\":200,\"bytes\":321,\"ms\":1.234}\n");
}

TEST(RequestLog, AReplyThatDidNotLeaveWholeIsMarked) {
  RequestRecord made = record();
  made.isWhole = false;
  EXPECT_THAT(lineOf(made, kWhen), EndsWith(",\"cut\":true}\n"));
}

TEST(RequestLog, ALongTextIsCut) {
  RequestRecord made = record();
  made.note.subject.assign(1000000, 'x');
  EXPECT_THAT(lineOf(made, kWhen), SizeIs(testing::Lt(3000)));
}

TEST(RequestLog, ALineIsNotMixedWithOthersInAPipe) {
  RequestRecord made = record();
  made.note.operation.assign(5000, '\1');
  made.note.nameSpace.assign(5000, '\1');
  made.note.subject.assign(5000, '\1');
  made.note.statusText.assign(5000, '\1');
  EXPECT_THAT(lineOf(made, kWhen), SizeIs(testing::Le(LogFile::kLongestLine)));
}

TEST(RequestLog, WhatIsNoTextIsReplaced) {
  RequestRecord made = record();
  made.note.subject = "a\xff\nb";
  EXPECT_THAT(lineOf(made, kWhen), HasSubstr("\"a\xef\xbf\xbd\\nb\""));
  EXPECT_THAT(lineOf(made, kWhen), Not(HasSubstr("\xff")));
}

TEST(RequestLog, WhatEndsALineOrCommandsATerminalIsEscaped) {
  RequestRecord made = record();
  made.note.subject = "\x7f\xc2\x85\xc2\x9b\xe2\x80\xa8\xe2\x80\xa9\xe2\x80\xae\xe2\x81\xa6";
  EXPECT_THAT(lineOf(made, kWhen), HasSubstr("\"\\u007f\\u0085\\u009b\\u2028\\u2029\\u202e\\u2066\""));
}

TEST(RequestLog, TextsOfOtherLanguagesStayReadable) {
  RequestRecord made = record();
  made.note.subject = "\xc2\xa0\xc3\xa4\xe2\x80\xa6\xe2\x82\xac\xe2\x81\xaa";
  EXPECT_THAT(lineOf(made, kWhen), HasSubstr('"' + made.note.subject + '"'));
}

}  // namespace
