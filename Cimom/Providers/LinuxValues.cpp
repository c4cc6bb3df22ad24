// Values of the live providers.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxValues.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <limits>
#include <system_error>

#include "cimom/CQoriValue.h"

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

bool isAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

// How many bytes the character at the front takes; 0 when it is no UTF-8.
std::size_t characterLength(std::string_view text) {
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byteAt(0);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byteAt(i) & 0xC0U) != 0x80) return 0;
  }
  // Longer than need be, a surrogate, or past the last character.
  const unsigned second = byteAt(1);
  const bool isOverlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
  const bool isNone = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
  return isOverlong || isNone ? 0 : length;
}

// The kernel's names are bytes, CIM's texts are characters.
std::string soundText(std::string_view text) {
  std::string sound;
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    sound += length == 0 ? kReplacement : text.substr(0, length);
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return sound;
}

}  // namespace

LinuxValue booleanValue(bool value) { return new CQoriValue(value, CQoriType::boolean); }
LinuxValue uint8Value(QORuint8 value) { return new CQoriValue(value, CQoriType::uint8); }
LinuxValue uint16Value(QORuint16 value) { return new CQoriValue(value, CQoriType::uint16); }
LinuxValue sint16Value(QORsint16 value) { return new CQoriValue(value, CQoriType::sint16); }
LinuxValue uint32Value(QORuint32 value) { return new CQoriValue(value, CQoriType::uint32); }
LinuxValue sint32Value(QORsint32 value) { return new CQoriValue(value, CQoriType::sint32); }
LinuxValue uint64Value(QORuint64 value) { return new CQoriValue(value, CQoriType::uint64); }
LinuxValue real64Value(double value) { return new CQoriValue(value, CQoriType::real64); }

LinuxValue textValue(std::string_view text) {
  if (std::all_of(text.begin(), text.end(), isAscii)) return new CQoriValue(QORString(text));
  return new CQoriValue(QORString(soundText(text)));
}

LinuxValue textsValue(const std::vector<std::string>& texts) {
  QORSmrPtr<IQoriValue::List> elements = new IQoriValue::List();
  for (const std::string& text : texts) elements->append(textValue(text));
  return new CQoriValue(elements, CQoriType::string);
}

LinuxValue textOrNull(const char* text) { return text == nullptr || *text == '\0' ? LinuxValue() : textValue(text); }

LinuxValue dateTimeValue(QORsint64 secondsSinceEpoch, QORsint64 microseconds) {
  constexpr QORsint64 kMicroseconds = 1000000;
  const QORsint64 carried =
      microseconds >= 0 ? microseconds / kMicroseconds : -((kMicroseconds - 1 - microseconds) / kMicroseconds);
  const time_t seconds = static_cast<time_t>(secondsSinceEpoch + carried);
  std::tm local = {};
  if (localtime_r(&seconds, &local) == nullptr || local.tm_year > 9999 - 1900 || local.tm_year < -1900) return {};
  const int offset = static_cast<int>(local.tm_gmtoff / 60);
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), "%04d%02d%02d%02d%02d%02d.%06d%c%03d", local.tm_year + 1900, local.tm_mon + 1,
                local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                static_cast<int>(microseconds - carried * kMicroseconds), offset < 0 ? '-' : '+',
                offset < 0 ? -offset : offset);
  return new CQoriValue(QORString(text.data()), CQoriType::datetime);
}

std::string hostName() {
  utsname names{};
  return uname(&names) == 0 ? names.nodename : "";
}

// A pipe would wait for somebody who writes, and a device may never end. 0 for what is a file, as those of the kernel
// are, else an errno.
static int faultOfKind(int file) {
  struct stat state {};
  if (fstat(file, &state) != 0) return errno;
  if (S_ISDIR(state.st_mode)) return EISDIR;
  return S_ISREG(state.st_mode) ? 0 : EINVAL;
}

// Reads to the end, or until there is more than `greatest`. Returns 0 or an errno.
static int readToEnd(int file, std::size_t greatest, std::string& content) {
  std::array<char, 4096> piece;
  ssize_t count = 0;
  while ((count = read(file, piece.data(), piece.size())) > 0) {
    content.append(piece.data(), static_cast<size_t>(count));
    if (content.size() > greatest) return EFBIG;
  }
  return count < 0 ? errno : 0;
}

static std::string readFile(const std::string& path, std::size_t greatest) {
  std::string content;
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return content;
  int error = faultOfKind(file);
  if (error == 0) error = readToEnd(file, greatest, content);
  close(file);
  if (error == EFBIG) content.clear();
  errno = error;
  return content;
}

std::string readSmallFile(const std::string& path) { return readFile(path, std::size_t{16} << 20U); }

std::string readKernelTable(const std::string& path) { return readFile(path, std::numeric_limits<std::size_t>::max()); }

std::string readLine(const std::string& path) {
  std::string line = readSmallFile(path);
  while (line.ends_with('\n')) line.pop_back();
  return line;
}

static QORsint64 readBootTime() {
  static constexpr std::string_view kLine = "\nbtime ";
  const std::string statistics = readSmallFile("/proc/stat");
  const std::size_t line = statistics.find(kLine);
  if (line == std::string::npos) return 0;
  const std::size_t number = line + kLine.size();
  return static_cast<QORsint64>(QORString(std::string_view(statistics).substr(number)).atoui64()) * 1000000;
}

QORsint64 bootTimeMicroseconds() {
  static const QORsint64 bootTime = readBootTime();
  return bootTime;
}

static void logLine(const std::string& line, QoriTraceLog::Severity severity) {
  QORLog::log("Providers", QORString(line), severity, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
}

static std::string unreadableText(const std::string& what, int error) {
  return "Cannot read " + what + ": " + std::generic_category().message(error);
}

void logUnreadable(const std::string& what, int error) { logLine(unreadableText(what, error), QoriTraceLog::kInfo); }

void warn(const std::string& line) { logLine(line, QoriTraceLog::kWarning); }

void warnUnreadable(const std::string& what, int error) { warn(unreadableText(what, error)); }

UnreadableParts::~UnreadableParts() {
  if (_count == 0) return;
  const std::string others = _count == 1 ? "" : ", and " + std::to_string(_count - 1) + " more";
  logLine(unreadableText(_first, _error) + others, QoriTraceLog::kWarning);
}

void UnreadableParts::note(const std::string& what, int error) {
  logUnreadable(what, error);
  if (_count++ != 0) return;
  _first = what;
  _error = error;
}
