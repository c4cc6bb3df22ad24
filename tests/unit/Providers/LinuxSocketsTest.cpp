// Ports on which programs wait, and who holds them.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Cimom/Providers/LinuxListeningPort.h"
#include "Cimom/Providers/LinuxSockets.h"
#include "ProviderFixture.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

constexpr const char* kHead =
    "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n";

std::vector<std::string> namesIn(const std::string& table, const char* protocol, bool isVersion6) {
  std::vector<LinuxSocket> sockets;
  parseSocketTable(table, protocol, isVersion6, sockets);
  std::vector<std::string> names;
  for (const LinuxSocket& socket : sockets) names.push_back(socket.name);
  return names;
}

std::string line(const char* local, const char* state, const char* inode) {
  return std::string("   0: ") + local + " 00000000:0000 " + state +
         " 00000000:00000000 00:00000000 00000000  1000        0 " + inode + " 1 0000000000000000 100 0 0 10 0\n";
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
  std::vector<LinuxSocket> sockets = readWaitingSockets();
  LinuxSocket unknown;
  unknown.inode = 1;  // of no socket
  sockets.push_back(unknown);
  const auto holders = readSocketHolders(sockets);
  EXPECT_TRUE(holders.at(1).empty());
  for (const LinuxSocket& socket : sockets) {
    if (socket.name == stream.name("tcp")) {
      EXPECT_THAT(holders.at(socket.inode), Contains(getpid()));
    }
  }
}

}  // namespace
