// Values of the live providers.
#include "Cimom/Providers/LinuxValues.h"

#include <fcntl.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <system_error>

#include "cimom/CQoriValue.h"

LinuxValue booleanValue(bool value) { return new CQoriValue(value, CQoriType::boolean); }
LinuxValue uint16Value(QORuint16 value) { return new CQoriValue(value, CQoriType::uint16); }
LinuxValue sint16Value(QORsint16 value) { return new CQoriValue(value, CQoriType::sint16); }
LinuxValue uint32Value(QORuint32 value) { return new CQoriValue(value, CQoriType::uint32); }
LinuxValue sint32Value(QORsint32 value) { return new CQoriValue(value, CQoriType::sint32); }
LinuxValue uint64Value(QORuint64 value) { return new CQoriValue(value, CQoriType::uint64); }
LinuxValue real64Value(double value) { return new CQoriValue(value, CQoriType::real64); }
LinuxValue textValue(std::string_view text) { return new CQoriValue(QORString(text)); }

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

std::string readSmallFile(const std::string& path) {
  std::string content;
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return content;
  std::array<char, 4096> piece;
  ssize_t count = 0;
  while ((count = read(file, piece.data(), piece.size())) > 0) content.append(piece.data(), static_cast<size_t>(count));
  const int error = errno;
  close(file);
  errno = count < 0 ? error : 0;
  return content;
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

void logUnreadable(const std::string& what, int error) {
  const std::string line = "Cannot read " + what + ": " + std::generic_category().message(error);
  QORLog::log("Providers", QORString(line), QoriTraceLog::kInfo, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
}
