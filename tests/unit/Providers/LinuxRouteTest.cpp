// Routes in made-up tables, and those of this machine.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <cerrno>
#include <system_error>

#include "Cimom/Providers/LinuxRoute.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"

namespace {

using ::testing::ElementsAre;

constexpr const char* kHeading =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

// What the kernel prints on a machine of little endian.
constexpr const char* kVersion4 =
    "eth0\t00000000\t010200C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n"
    "eth0\t000200C0\t00000000\t0001\t0\t0\t70000\t00FFFFFF\t0\t0\t0\n"
    "*\t0000010A\t00000000\t0201\t0\t0\t0\t0000FFFF\t0\t0\t0\n"
    "nonsense\n";

std::string line6(const char* destination, const char* length, const char* gateway, const char* metric,
                  const char* flags, const char* interface) {
  const std::string none(32, '0');
  return std::string(destination) + ' ' + length + ' ' + none + " 00 " + gateway + ' ' + metric +
         " 00000001 00000000 " + flags + "     " + interface + '\n';
}

int refuse(LinuxRouteEntries&) { return EPERM; }

std::vector<ProvidedRow> rowsOf(const std::string& version4, const std::string& version6,
                                const std::vector<std::string>& properties) {
  const MadeUpFiles files;
  files.write("route", kHeading + version4);
  if (!version6.empty()) files.write("ipv6_route", version6);
  LinuxRoute provider(refuse, files.path());
  return enumerateRows(provider, properties);
}

std::vector<std::string> textsOf(const ProvidedRow& row) {
  std::vector<std::string> texts;
  for (const auto& value : row) texts.push_back(textOf(value));
  return texts;
}

const std::vector<std::string> kAll = {
    "InstanceID", "DestinationAddress", "DestinationMask", "PrefixLength", "AddressType", "RouteMetric", "Metric",
    "Gateway",    "InterfaceName",      "IsDefault",       "IsRejected",   "TableNumber", "Weight"};

TEST(LinuxRoute, ReadsTheTableOfVersion4) {
  const auto rows = rowsOf(kVersion4, "", kAll);
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_THAT(textsOf(rows[0]), ElementsAre("0.0.0.0/0 via 192.0.2.1 dev eth0 metric 100", "0.0.0.0", "0.0.0.0", "0",
                                            "1", "100", "100", "192.0.2.1", "eth0", "TRUE", "FALSE", "254", "(null)"));
  EXPECT_THAT(textsOf(rows[1]),
              ElementsAre("192.0.2.0/24 dev eth0 metric 70000", "192.0.2.0", "255.255.255.0", "24", "1", "(null)",
                          "70000", "(null)", "eth0", "FALSE", "FALSE", "254", "(null)"));
  EXPECT_THAT(textsOf(rows[2]), ElementsAre("10.1.0.0/16 dev * metric 0", "10.1.0.0", "255.255.0.0", "16", "1", "0",
                                            "0", "(null)", "(null)", "FALSE", "TRUE", "254", "(null)"));
  EXPECT_EQ(typeOf(rows[0][3]), "uint8");
  EXPECT_EQ(typeOf(rows[0][5]), "uint16");
  EXPECT_EQ(typeOf(rows[0][6]), "uint32");
}

TEST(LinuxRoute, ReadsTheTableOfVersion6WithoutWhatStaysHere) {
  const std::string none(32, '0');
  const char* const network = "fd000000000000000000000000000000";
  const char* const gateway = "fd000000000000000000000000000001";
  const std::string table =
      line6(network, "40", none.c_str(), "00000100", "00000001", "eth0") +
      line6(none.c_str(), "00", gateway, "00000400", "00000003", "eth0") +
      line6("fd000000000000000000000000000002", "80", none.c_str(), "00000000", "80200001", "eth0") +
      line6("fd000000000000000000000000000000", "80", none.c_str(), "00000000", "80300001", "eth0") +
      line6("ff000000000000000000000000000000", "08", none.c_str(), "00000100", "00000001", "eth0") +
      line6(none.c_str(), "00", none.c_str(), "ffffffff", "00200200", "lo") + "nonsense\n" +
      line6("fd00", "40", none.c_str(), "00000100", "00000001", "eth0");
  const auto rows = rowsOf("", table, kAll);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_THAT(textsOf(rows[0]), ElementsAre("fd00::/64 dev eth0 metric 256", "fd00::", "(null)", "64", "2", "256",
                                            "256", "(null)", "eth0", "FALSE", "FALSE", "(null)", "(null)"));
  EXPECT_THAT(textsOf(rows[1]), ElementsAre("::/0 via fd00::1 dev eth0 metric 1024", "::", "(null)", "0", "2", "1024",
                                            "1024", "fd00::1", "eth0", "TRUE", "FALSE", "(null)", "(null)"));
}

TEST(LinuxRoute, EachHasANameOfItsOwn) {
  const std::string one = "eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n";
  const auto rows = rowsOf(one + one + one, "", {"InstanceID"});
  std::vector<std::string> names;
  for (const ProvidedRow& row : rows) names.push_back(textOf(row[0]));
  const std::string name = "0.0.0.0/0 via 192.0.2.1 dev eth0 metric 0";
  EXPECT_THAT(names, ElementsAre(name, name + "#2", name + "#3"));
}

TEST(LinuxRoute, WarnsWhereTheKernelRefusesAndThereIsNoTable) {
  const MadeUpFiles files;
  const KeptWarnings warnings;
  LinuxRoute provider(refuse, files.path());
  EXPECT_TRUE(enumerateRows(provider, {"InstanceID"}).empty());
  const std::string folder = files.path();
  EXPECT_THAT(warnings.lines(),
              ElementsAre("The kernel does not list its routes: Operation not permitted; " + folder +
                              " has those of IPv4 of the main table alone, each with its first hop, and those of IPv6 "
                              "without their tables",
                          "Cannot read " + files.path("route") + ": No such file or directory"));
}

TEST(LinuxRoute, NamesTellHopsAndTablesApart) {
  LinuxRoute provider([](LinuxRouteEntries& routes) {
    LinuxRouteEntry route;
    route.destination = "10.0.0.0";
    route.prefixLength = 8;
    route.table = 7;
    for (const char* gateway : {"192.0.2.1", "192.0.2.9"}) {
      route.gateway = gateway;
      route.weight = 2;
      routes.push_back(route);
    }
    return 0;
  });
  const auto rows = enumerateRows(provider, {"InstanceID", "TableNumber", "Weight"});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_THAT(textsOf(rows[0]), ElementsAre("10.0.0.0/8 via 192.0.2.1 dev * metric 0 table 7", "7", "2"));
  EXPECT_THAT(textsOf(rows[1]), ElementsAre("10.0.0.0/8 via 192.0.2.9 dev * metric 0 table 7", "7", "2"));
}

// --- this machine
// -----------------------------------------------------------------------------------------------------

TEST(LinuxRouteSocket, TheKernelListsRoutesOrRefuses) {
  LinuxRouteEntries routes(1);
  const int error = askForRoutes(routes);
  EXPECT_TRUE(error == 0 || routes.empty()) << std::generic_category().message(error);
  for (const LinuxRouteEntry& found : routes) {
    EXPECT_FALSE(found.destination.empty());
    EXPECT_NE(found.table, 0U);
  }
}

}  // namespace
