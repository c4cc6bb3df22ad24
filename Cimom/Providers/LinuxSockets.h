// Sockets of TCP and UDP, and the processes that hold them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXSOCKETS_H
#define QORQL_PROVIDERS_LINUXSOCKETS_H

#include <sys/types.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cmpbase.h"

// One end of a socket.
struct LinuxSocketEnd {
  std::string address;
  QORuint16 port = 0;
};

struct LinuxSocketEntry {
  // "tcp:0.0.0.0:22", "udp:[::]:53", "tcp:10.0.0.1:22-10.0.0.2:40000"; a second one of the same name ends with
  // "#" and its inode.
  std::string name;
  const char* protocol = "";  // "tcp", "udp"
  bool isVersion6 = false;
  LinuxSocketEnd local;
  LinuxSocketEnd remote;  // address 0.0.0.0 or :: and port 0 when there is none
  int state = 0;          // the kernel's number
  uid_t user = 0;
  QORuint64 inode = 0;  // 0 for one that no process holds any more

  // Whether it listens: a program waits on it for somebody to connect or to send.
  bool isWaiting() const;
  bool hasRemote() const { return remote.port != 0; }
  // "Established", "Listening", "TimeWait", ...; "Unconnected" for a UDP socket without remote end.
  const char* stateName() const;
};

using LinuxSocketEntries = std::vector<LinuxSocketEntry>;

enum class LinuxSocketChoice { Waiting, All };

// Reads a table of the kernel: adds its sockets, or those that listen; lines that
// are no entries are skipped.
void parseSocketTable(std::string_view table, const char* protocol, bool isVersion6, LinuxSocketChoice choice,
                      LinuxSocketEntries& out);
// Those of TCP and UDP, in the order of the tables tcp, tcp6, udp and udp6 of
// the folder. THROWS CQoriProviderException when there is no table.
LinuxSocketEntries readSockets(LinuxSocketChoice choice, const std::string& folder = "/proc/self/net");

// The processes that hold each of the sockets, in ascending order, by inode.
// Processes that the caller may not inspect are left out, which is logged.
std::unordered_map<QORuint64, std::vector<int>> readSocketHolders(const LinuxSocketEntries& sockets);

#endif
