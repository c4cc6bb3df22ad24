// The file that the lines of a log go to, which nobody may be reading.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_LOGFILE_H
#define QORQL_SERVER_LOGFILE_H

#include <climits>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <streambuf>
#include <string>
#include <string_view>
#include <thread>

// Waits for no reader: a line that a full pipe or socket does not take is dropped and counted, and the next one that
// fits is preceded by a line about those. Any thread may call.
class LogFile {
 public:
  // What a pipe takes without mixing it with what others write.
  static constexpr std::size_t kLongestLine = PIPE_BUF;
  // Makes the line that tells how many were dropped, with its end.
  using LostLine = std::function<std::string(std::uint64_t count)>;

  // BORROWS the file.
  LogFile(int file, LostLine lostLine);
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;
  ~LogFile();

  // The end included. One that is longer than the longest may be mixed with others.
  void write(std::string_view line) noexcept;

 private:
  enum class Kind { Pipe, Socket, Other };

  bool putAfterLost(std::string_view line);
  bool put(std::string_view text);
  bool hasRoom() const;

  const int _given;
  const LostLine _lostLine;
  Kind _kind = Kind::Other;
  int _own = -1;  // the pipe, opened so that writing to it does not wait
  std::mutex _mutex;
  std::uint64_t _lost = 0;
  bool _isTorn = false;  // the last line lacks its end
};

// The text, or so many of its bytes with dots behind them; characters of UTF-8 are not torn.
std::string shortened(std::string_view text, std::size_t longest);

// What is printed by many threads, in whole lines. Long ones are cut to the longest that a file takes.
class LogBuffer : public std::streambuf {
 public:
  explicit LogBuffer(int file);

 protected:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;

 private:
  void add(std::string_view text);

  LogFile _file;
  std::mutex _mutex;
  std::map<std::thread::id, std::string> _begun;  // lines without their ends
};

#endif
