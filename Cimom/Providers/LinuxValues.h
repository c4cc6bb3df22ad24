// The values that the live providers hand out, and the facts of the system that several of them need.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXVALUES_H
#define QORQL_PROVIDERS_LINUXVALUES_H

#include <string>
#include <string_view>
#include <vector>

#include "cimom/IQoriValue.h"
#include "cmpbase.h"

using LinuxValue = QORSmrPtr<IQoriValue>;

// The class name that instances give for the machine they run on.
inline constexpr const char* kLinuxComputerSystem = "Linux_ComputerSystem";

// Stateless; any thread may call.
LinuxValue booleanValue(bool value);
LinuxValue uint8Value(QORuint8 value);
LinuxValue uint16Value(QORuint16 value);
LinuxValue sint16Value(QORsint16 value);
LinuxValue uint32Value(QORuint32 value);
LinuxValue sint32Value(QORsint32 value);
LinuxValue uint64Value(QORuint64 value);
LinuxValue real64Value(double value);
// Bytes that are no UTF-8 become U+FFFD.
LinuxValue textValue(std::string_view text);
// An array; each element as textValue makes it.
LinuxValue textsValue(const std::vector<std::string>& texts);
// A null pointer for a null or empty text.
LinuxValue textOrNull(const char* text);
// A point in time as a datetime in the local time zone; microseconds may be
// below zero or above a second. A null pointer when the calendar cannot hold it.
LinuxValue dateTimeValue(QORsint64 secondsSinceEpoch, QORsint64 microseconds);

// The node's name in the network.
std::string hostName();
// The content of a small file such as those of /proc; empty when it cannot be read; errno then has the reason: EINVAL
// for a pipe or a device, EFBIG for more than 16 MB.
std::string readSmallFile(const std::string& path);
// The same without its line ends, for files of one line. errno as above.
std::string readLine(const std::string& path);
// The same of a table of the kernel, which is as long as what the machine has: sockets, routes. errno as above, but for
// EFBIG.
std::string readKernelTable(const std::string& path);
// When the kernel was started, in microseconds since the epoch. Fixed at the
// first call, so that times counted from it are equal each time they are asked
// for; 0 when the kernel does not tell.
QORsint64 bootTimeMicroseconds();

// A line of the providers' log: what could not be read, and why (an errno).
void logUnreadable(const std::string& what, int error);
// A warning of the providers.
void warn(const std::string& line);
// A warning in place of that line of the log, for what makes an answer incomplete.
void warnUnreadable(const std::string& what, int error);

// Parts of one answer that could not be read: a line of the log for each, and
// one warning for all when the answer ends. Belongs to one thread.
class UnreadableParts {
 public:
  UnreadableParts() = default;
  UnreadableParts(const UnreadableParts&) = delete;
  UnreadableParts& operator=(const UnreadableParts&) = delete;
  ~UnreadableParts();

  void note(const std::string& what, int error);
  // The parts that failed made no difference to the answer.
  void forget() noexcept { _count = 0; }

 private:
  std::string _first;
  int _error = 0;
  std::size_t _count = 0;
};

#endif
