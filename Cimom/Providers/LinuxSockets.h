// Sockets that listen, and the processes that hold them.
#ifndef QORQL_PROVIDERS_LINUXSOCKETS_H
#define QORQL_PROVIDERS_LINUXSOCKETS_H

#include <sys/types.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cmpbase.h"

struct LinuxSocket {
  std::string name;  // "tcp:0.0.0.0:22", "udp:[::]:53"; a second one of the same address ends with "#" and its inode
  const char* protocol = "";  // "tcp", "udp"
  bool isVersion6 = false;
  std::string address;
  QORuint16 port = 0;
  uid_t user = 0;
  QORuint64 inode = 0;
};

// Reads a table of the kernel: adds those of its sockets that listen; lines that are
// no entries are skipped.
void parseSocketTable(std::string_view table, const char* protocol, bool isVersion6, std::vector<LinuxSocket>& out);
// Those of TCP and UDP, in the order of the kernel's tables. THROWS
// CQoriProviderException when there is no table.
std::vector<LinuxSocket> readWaitingSockets();

// The processes that hold each of the sockets, in ascending order, by inode.
// Processes that the caller may not inspect are left out, which is logged.
std::unordered_map<QORuint64, std::vector<int>> readSocketHolders(const std::vector<LinuxSocket>& sockets);

#endif
