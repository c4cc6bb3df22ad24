// A pipe is opened once more, since its other users may want to wait. Where that cannot be had, as for a terminal, it
// is asked for room first. SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/LogFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <exception>
#include <utility>

namespace {

std::string plainLostLine(std::uint64_t count) {
  return "qorql: warning: " + std::to_string(count) + " lines were not written, since nobody read them\n";
}

}  // namespace

LogFile::LogFile(int file, LostLine lostLine) : _given(file), _lostLine(std::move(lostLine)) {
  struct stat status {};
  if (fstat(_given, &status) != 0) return;
  if (S_ISSOCK(status.st_mode)) _kind = Kind::Socket;
  if (!S_ISFIFO(status.st_mode)) return;
  _kind = Kind::Pipe;
  const std::string name = "/proc/self/fd/" + std::to_string(_given);
  _own = open(name.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
}

LogFile::~LogFile() {
  if (_own >= 0) close(_own);
}

void LogFile::write(std::string_view line) noexcept {
  const std::lock_guard lock(_mutex);
  try {
    if (_lost == 0 ? put(line) : putAfterLost(line)) return;
  } catch (const std::exception&) {
    // There is no memory to tell with.
  }
  ++_lost;
}

// Both at once, or each line that does not fit would leave another count.
bool LogFile::putAfterLost(std::string_view line) {
  if (!put(_lostLine(_lost).append(line))) return false;
  _lost = 0;
  return true;
}

bool LogFile::hasRoom() const {
  pollfd watched{_given, POLLOUT, 0};
  return poll(&watched, 1, 0) > 0 && (watched.revents & POLLOUT) != 0;
}

bool LogFile::put(std::string_view text) {
  if (std::exchange(_isTorn, false) && !put("\n")) {
    _isTorn = true;
    return false;
  }
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view piece = text.substr(at, kLongestLine);
    ssize_t count = -1;
    if (_kind == Kind::Socket) {
      count = send(_given, piece.data(), piece.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    } else if (_own >= 0 || hasRoom()) {
      count = ::write(_own >= 0 ? _own : _given, piece.data(), piece.size());
    }
    if (count <= 0) {
      _isTorn = at > 0;
      return false;
    }
    at += static_cast<std::size_t>(count);
  }
  return true;
}

std::string shortened(std::string_view text, std::size_t longest) {
  const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
  if (text.size() <= longest) return std::string(text);
  while (longest > 0 && continues(text[longest])) --longest;
  return std::string(text.substr(0, longest)) + "...";
}

LogBuffer::LogBuffer(int file) : _file(file, &plainLostLine) {}

LogBuffer::int_type LogBuffer::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
  const char text = traits_type::to_char_type(character);
  add({&text, 1});
  return character;
}

std::streamsize LogBuffer::xsputn(const char* text, std::streamsize count) {
  add({text, static_cast<std::size_t>(count)});
  return count;
}

void LogBuffer::add(std::string_view text) {
  const std::lock_guard lock(_mutex);
  const auto begun = _begun.try_emplace(std::this_thread::get_id()).first;
  begun->second += text;
  const std::size_t end = begun->second.rfind('\n');
  if (end == std::string::npos) return;
  std::string_view lines = std::string_view(begun->second).substr(0, end + 1);
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n') + 1);
    if (line.size() <= LogFile::kLongestLine) {
      _file.write(line);
    } else {
      _file.write(shortened(line, LogFile::kLongestLine - 4) + '\n');
    }
    lines.remove_prefix(line.size());
  }
  begun->second.erase(0, end + 1);
  if (begun->second.empty()) _begun.erase(begun);
}
