// Ports on which programs wait, and who holds them.
// SPDX-License-Identifier: Apache-2.0
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Cimom/Providers/LinuxListeningPort.h"
#include "Cimom/Providers/LinuxSocket.h"
#include "Cimom/Providers/LinuxSockets.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

constexpr const char* kHead =
    "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n";

std::vector<std::string> namesIn(const std::string& table, const char* protocol, bool isVersion6) {
  LinuxSocketEntries sockets;
  parseSocketTable(table, protocol, isVersion6, LinuxSocketChoice::Waiting, sockets);
  std::vector<std::string> names;
  for (const LinuxSocketEntry& socket : sockets) names.push_back(socket.name);
  return names;
}

std::string line(const std::string& local, const char* state, const char* inode) {
  const std::string none(local.size() > 32 ? 32 : 8, '0');
  return "   0: " + local + ' ' + none + ":0000 " + state + " 00000000:00000000 00:00000000 00000000  1000        0 " +
         inode + " 1 0000000000000000 100 0 0 10 0\n";
}

TEST(LinuxSockets, TellsAddressesPortsAndStates) {
  const std::string table =
      kHead + line("0100007F:1F90", "0A", "11") + line("00000000:0016", "0A", "12") + line("0100007F:1F91", "01", "13");
  EXPECT_THAT(namesIn(table, "tcp", false), ElementsAre("tcp:127.0.0.1:8080", "tcp:0.0.0.0:22"));
  const std::string datagrams = kHead + line("00000000:0044", "07", "14") + line("00000000:0045", "01", "15");
  EXPECT_THAT(namesIn(datagrams, "udp", false), ElementsAre("udp:0.0.0.0:68"));
  const std::string wide = line("00000000000000000000000001000000:0050", "0A", "16") +
                           line("000080FE00000000FF005450BEEFCAFE:0051", "0A", "17");
  EXPECT_THAT(namesIn(wide, "tcp", true), ElementsAre("tcp:[::1]:80", "tcp:[fe80::5054:ff:feca:efbe]:81"));
}

TEST(LinuxSockets, ASecondSocketOfOneAddressHasItsInodeInTheName) {
  const std::string table = line("00000000:0016", "0A", "11") + line("00000000:0016", "0A", "12");
  EXPECT_THAT(namesIn(table, "tcp", false), ElementsAre("tcp:0.0.0.0:22", "tcp:0.0.0.0:22#12"));
}

TEST(LinuxSockets, WhatStandsInATableSeveralTimesIsOneSocket) {
  const std::string gone = line("0100007F:1F90", "06", "0");
  LinuxSocketEntries sockets;
  parseSocketTable(gone + line("0100007F:1F91", "0A", "11") + gone + gone, "tcp", false, LinuxSocketChoice::All,
                   sockets);
  // What was read before counts, too.
  parseSocketTable(gone + line("0100007F:1F91", "0A", "11") + line("0100007F:1F91", "0A", "12"), "tcp", false,
                   LinuxSocketChoice::All, sockets);
  std::vector<std::string> names;
  for (const LinuxSocketEntry& socket : sockets) names.push_back(socket.name);
  EXPECT_THAT(names, ElementsAre("tcp:127.0.0.1:8080-0.0.0.0:0", "tcp:127.0.0.1:8081", "tcp:127.0.0.1:8081#12"));
}

TEST(LinuxSockets, PassesOverLinesThatAreNone) {
  EXPECT_THAT(namesIn("", "tcp", false), ElementsAre());
  EXPECT_THAT(namesIn("\n\n   \n0: 1 2 0A\n", "tcp", false), ElementsAre());
  for (const char* local : {"0100007F", "0100007F:", "0100007:1F90", "01000Z7F:1F90", "0100007F:11F90", ":"}) {
    EXPECT_THAT(namesIn(line(local, "0A", "11"), "tcp", false), ElementsAre()) << local;
  }
  EXPECT_THAT(namesIn(line("0100007F:1F90", "0A", "x"), "tcp", false), ElementsAre());
  EXPECT_THAT(namesIn(line("0100007F:1F90", "0A", "11"), "tcp", true), ElementsAre());
  const std::string cut = line("0100007F:1F90", "0A", "11");
  EXPECT_THAT(namesIn(cut.substr(0, cut.find(" 11 ")), "tcp", false), ElementsAre());
}

// A socket of this process that waits on a port which the kernel chose.
class Waiting {
 public:
  explicit Waiting(int type, std::uint16_t port = 0) : _socket(socket(AF_INET, type, 0)) {
    const int isShared = 1;
    setsockopt(_socket, SOL_SOCKET, SO_REUSEPORT, &isShared, sizeof isShared);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    socklen_t length = sizeof address;
    EXPECT_EQ(bind(_socket, reinterpret_cast<const sockaddr*>(&address), length), 0);
    if (type == SOCK_STREAM) {
      EXPECT_EQ(listen(_socket, 1), 0);
    }
    EXPECT_EQ(getsockname(_socket, reinterpret_cast<sockaddr*>(&address), &length), 0);
    _port = ntohs(address.sin_port);
  }
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;
  ~Waiting() { close(_socket); }

  std::uint16_t port() const { return _port; }
  std::string name(const char* protocol) const { return std::string(protocol) + ":127.0.0.1:" + std::to_string(_port); }

 private:
  int _socket;
  std::uint16_t _port = 0;
};

TEST(LinuxListeningPort, ShowsPortsOfThisProcess) {
  const Waiting stream(SOCK_STREAM);
  const Waiting datagram(SOCK_DGRAM);
  LinuxListeningPort provider;
  const auto rows = enumerateRows(provider, {"Name", "Protocol", "LocalAddress", "PortNumber", "IsIPv6", "UserNumber",
                                             "ProcessID", "ProtocolIFType"});
  const ProvidedRow tcp = findRow(rows, stream.name("tcp"));
  ASSERT_EQ(tcp.size(), 8U);
  EXPECT_EQ(textOf(tcp[1]), "tcp");
  EXPECT_EQ(textOf(tcp[2]), "127.0.0.1");
  EXPECT_EQ(textOf(tcp[3]), std::to_string(stream.port()));
  EXPECT_EQ(textOf(tcp[4]), "FALSE");
  EXPECT_EQ(textOf(tcp[5]), std::to_string(getuid()));
  EXPECT_EQ(textOf(tcp[6]), std::to_string(getpid()));
  EXPECT_EQ(textOf(tcp[7]), "4111");
  const ProvidedRow udp = findRow(rows, datagram.name("udp"));
  ASSERT_EQ(udp.size(), 8U);
  EXPECT_EQ(textOf(udp[6]), std::to_string(getpid()));
  EXPECT_EQ(textOf(udp[7]), "4112");
}

TEST(LinuxListeningPort, TwoSocketsOnOnePortAreTwoInstances) {
  const Waiting first(SOCK_STREAM);
  const Waiting second(SOCK_STREAM, first.port());
  LinuxListeningPort provider;
  std::size_t count = 0;
  for (const ProvidedRow& row : enumerateRows(provider, {"Name"})) {
    count += textOf(row[0]).rfind(first.name("tcp"), 0) == 0 ? 1U : 0U;
  }
  EXPECT_EQ(count, 2U);
}

TEST(LinuxListeningPort, GivesTheOneThatIsWanted) {
  const Waiting stream(SOCK_STREAM);
  LinuxListeningPort provider;
  const auto rows = enumerateRows(provider, {"Name"}, nameOf(provider, "Name", stream.name("tcp")));
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(textOf(rows[0][0]), stream.name("tcp"));
}

TEST(LinuxSockets, HoldersAreFoundByInode) {
  const Waiting stream(SOCK_STREAM);
  LinuxSocketEntries sockets = readSockets(LinuxSocketChoice::Waiting);
  LinuxSocketEntry unknown;
  unknown.inode = 1;  // of no socket
  sockets.push_back(unknown);
  const auto holders = readSocketHolders(sockets);
  EXPECT_TRUE(holders.at(1).empty());
  for (const LinuxSocketEntry& socket : sockets) {
    if (socket.name == stream.name("tcp")) {
      EXPECT_THAT(holders.at(socket.inode), Contains(getpid()));
    }
  }
}

std::string connection(const char* local, const char* remote, const char* state, const char* inode) {
  return std::string("   0: ") + local + ' ' + remote + ' ' + state +
         " 00000000:00000000 00:00000000 00000000  1000        0 " + inode + " 1 0000000000000000 100 0 0 10 0\n";
}

TEST(LinuxSocket, ShowsAllSocketsOfTheTables) {
  const MadeUpFiles files;
  files.write("tcp", kHead + line("00000000:0016", "0A", "11") +
                         connection("0100000A:0016", "0200000A:9C40", "01", "12") +
                         connection("0100007F:0016", "0100007F:9C41", "06", "0"));
  files.write("udp",
              kHead + line("00000000:0044", "07", "13") + connection("0100000A:0044", "0200000A:0035", "01", "14"));
  LinuxSocket provider(files.path());
  const auto rows = enumerateRows(provider, {"Name", "Protocol", "State", "LocalAddress", "LocalPort", "RemoteAddress",
                                             "RemotePort", "IsRemote", "IsIPv6", "UserNumber", "ProcessID"});
  std::vector<std::vector<std::string>> found;
  for (const ProvidedRow& row : rows) {
    found.emplace_back();
    for (const auto& value : row) found.back().push_back(textOf(value));
  }
  using Texts = std::vector<std::string>;
  EXPECT_THAT(found, ElementsAre(Texts{"tcp:0.0.0.0:22", "tcp", "Listening", "0.0.0.0", "22", "(null)", "(null)",
                                       "FALSE", "FALSE", "1000", "(null)"},
                                 Texts{"tcp:10.0.0.1:22-10.0.0.2:40000", "tcp", "Established", "10.0.0.1", "22",
                                       "10.0.0.2", "40000", "TRUE", "FALSE", "1000", "(null)"},
                                 Texts{"tcp:127.0.0.1:22-127.0.0.1:40001", "tcp", "TimeWait", "127.0.0.1", "22",
                                       "127.0.0.1", "40001", "FALSE", "FALSE", "1000", "(null)"},
                                 Texts{"udp:0.0.0.0:68", "udp", "Unconnected", "0.0.0.0", "68", "(null)", "(null)",
                                       "FALSE", "FALSE", "1000", "(null)"},
                                 Texts{"udp:10.0.0.1:68-10.0.0.2:53", "udp", "Established", "10.0.0.1", "68",
                                       "10.0.0.2", "53", "TRUE", "FALSE", "1000", "(null)"}));
}

TEST(LinuxSocket, NamesEveryState) {
  const MadeUpFiles files;
  std::string table = kHead;
  int inode = 10;
  for (const char* state : {"01", "02", "03", "04", "05", "06", "07", "08", "09", "0B", "0C", "0D"}) {
    table += connection("0100000A:0016", "0200000A:9C40", state, std::to_string(++inode).c_str());
  }
  files.write("tcp", table);
  LinuxSocket provider(files.path());
  std::vector<std::string> states;
  for (const ProvidedRow& row : enumerateRows(provider, {"State"})) states.push_back(textOf(row[0]));
  EXPECT_THAT(states, ElementsAre("Established", "SynSent", "SynReceived", "FinWait1", "FinWait2", "TimeWait", "Closed",
                                  "CloseWait", "LastAck", "Closing", "SynReceived", "Unknown"));
}

TEST(LinuxSocket, AVersion4AddressInVersion6IsToldApartFromOthers) {
  const MadeUpFiles files;
  files.write(
      "tcp6",
      kHead + connection("0000000000000000FFFF00000100007F:0016", "0000000000000000FFFF00000100007F:9C40", "01", "12") +
          connection("0000000000000000FFFF00000100000A:0016", "0000000000000000FFFF00000200000A:9C40", "01", "13"));
  LinuxSocket provider(files.path());
  const auto rows = enumerateRows(provider, {"RemoteAddress", "IsRemote"});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(textOf(rows[0][0]) + ' ' + textOf(rows[0][1]), "::ffff:127.0.0.1 FALSE");
  EXPECT_EQ(textOf(rows[1][0]) + ' ' + textOf(rows[1][1]), "::ffff:10.0.0.2 TRUE");
}

// Leaves this process no room for another open file while it lives.
class NoMoreFiles {
 public:
  NoMoreFiles() {
    getrlimit(RLIMIT_NOFILE, &_before);
    const rlimit none{0, _before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
  }
  NoMoreFiles(const NoMoreFiles&) = delete;
  NoMoreFiles& operator=(const NoMoreFiles&) = delete;
  ~NoMoreFiles() { setrlimit(RLIMIT_NOFILE, &_before); }

 private:
  rlimit _before{};
};

TEST(LinuxSocket, WithoutTheOwnAddressesItIsNotToldWhatIsRemote) {
  const MadeUpFiles files;
  files.write("tcp", kHead + line("00000000:0016", "0A", "11") +
                         connection("0100000A:0016", "0200000A:9C40", "01", "12") +
                         connection("0100000A:0016", "0200000A:9C41", "01", "13") +
                         connection("0100007F:0016", "0100007F:9C41", "01", "14"));
  const KeptWarnings warnings;
  LinuxSocket provider(files.path());
  std::optional<NoMoreFiles> limit;
  std::vector<std::string> told;
  provider.enumerate(requestFor(provider, {"IsRemote"}), [&](ProvidedRow&& row) {
    if (!limit) limit.emplace();
    told.push_back(textOf(row[0]));
  });
  limit.reset();
  EXPECT_THAT(told, ElementsAre("FALSE", "(null)", "(null)", "FALSE"));
  EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read the addresses of this machine: Too many open files"));
}

TEST(LinuxSocket, NamesTheProcessOfThisOne) {
  const Waiting stream(SOCK_STREAM);
  LinuxSocket sockets;
  LinuxListeningPort ports;
  for (InstanceProvider* provider : std::initializer_list<InstanceProvider*>{&sockets, &ports}) {
    const auto rows = enumerateRows(*provider, {"Name", "ProcessID", "ProcessName"});
    const ProvidedRow row = findRow(rows, stream.name("tcp"));
    EXPECT_EQ(textOf(row[1]), std::to_string(getpid()));
    EXPECT_EQ(textOf(row[2]).substr(0, 5), "unit_");
  }
}

}  // namespace
