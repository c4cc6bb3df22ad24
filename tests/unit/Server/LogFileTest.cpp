// A log whose reader has stopped holds up nobody.
// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <ostream>

#include "Cimom/Server/LogFile.h"

namespace {

const std::string kLine = std::string(999, 'x') + '\n';

std::string lost(std::uint64_t count) { return "lost " + std::to_string(count) + '\n'; }

// What there is to read now.
std::string read(int file) {
  fcntl(file, F_SETFL, O_NONBLOCK);
  std::string text;
  char buffer[65536];
  for (ssize_t got = 0; (got = ::read(file, buffer, sizeof buffer)) > 0;)
    text.append(buffer, static_cast<std::size_t>(got));
  return text;
}

// Writes more than fits; then the reader reads all, and one more line is written.
void expectCountOfLost(int from, int to) {
  constexpr std::size_t kCount = 2000;
  LogFile log(to, &lost);
  for (std::size_t i = 0; i < kCount; ++i) log.write(kLine);
  const std::size_t written = read(from).size() / kLine.size();
  EXPECT_GT(written, 0U);
  EXPECT_LT(written, kCount);
  log.write("more\n");
  EXPECT_EQ(read(from).substr(0, 60), lost(kCount - written) + "more\n");
  close(from);
  close(to);
}

TEST(LogFile, LinesThatAPipeDoesNotTakeAreCounted) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  expectCountOfLost(ends[0], ends[1]);
}

TEST(LogFile, LinesThatASocketDoesNotTakeAreCounted) {
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);
  expectCountOfLost(ends[0], ends[1]);
}

TEST(LogFile, ItWaitsForNoReaderThoughOthersMayWait) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const LogFile log(ends[1], &lost);
  EXPECT_EQ(fcntl(ends[1], F_GETFL) & O_NONBLOCK, 0);
  close(ends[0]);
  close(ends[1]);
}

TEST(LogBuffer, PrintsWholeLines) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  LogBuffer buffer(ends[1]);
  std::ostream out(&buffer);
  out << "one " << 1;
  EXPECT_EQ(read(ends[0]), "");
  out << '\n' << "two\nthr";
  EXPECT_EQ(read(ends[0]), "one 1\ntwo\n");
  out << "ee\n";
  EXPECT_EQ(read(ends[0]), "three\n");
  close(ends[0]);
  close(ends[1]);
}

TEST(LogBuffer, CutsLongLines) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  LogBuffer buffer(ends[1]);
  std::ostream out(&buffer);
  const std::string longest(LogFile::kLongestLine - 1, 'x');
  out << longest << "\n" << longest << "x\nnext\n";
  EXPECT_EQ(read(ends[0]), longest + '\n' + longest.substr(0, LogFile::kLongestLine - 4) + "...\nnext\n");
  close(ends[0]);
  close(ends[1]);
}

TEST(LogBuffer, CutsBetweenCharacters) {
  EXPECT_EQ(shortened("abc", 3), "abc");
  EXPECT_EQ(shortened("abcd", 3), "abc...");
  EXPECT_EQ(shortened("a\xC3\xA9\xC3\xA9", 4), "a\xC3\xA9...");
  EXPECT_EQ(shortened("\xF0\x9F\x98\x80", 2), "...");
}

}  // namespace
