// The provider of Linux_NetworkPort agrees with the kernel.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <net/if.h>

#include <fstream>
#include <set>

#include "Cimom/Providers/LinuxNetworkPort.h"
#include "ProviderFixture.h"

namespace {

std::set<std::string> kernelNames() {
  std::set<std::string> names;
  struct if_nameindex* const all = if_nameindex();
  for (const struct if_nameindex* entry = all; entry != nullptr && entry->if_index != 0; ++entry) {
    names.insert(entry->if_name);
  }
  if_freenameindex(all);
  return names;
}

TEST(LinuxNetworkPort, ServesItsClass) { EXPECT_EQ(LinuxNetworkPort().getClassName(), "Linux_NetworkPort"); }

TEST(LinuxNetworkPort, ShowsEachInterfaceOnceInTheOrderOfNames) {
  LinuxNetworkPort provider;
  std::vector<std::string> names;
  for (const ProvidedRow& row : enumerateRows(provider, {"DeviceID"})) names.push_back(textOf(row.at(0)));
  const std::set<std::string> expected = kernelNames();
  EXPECT_EQ(names, std::vector<std::string>(expected.begin(), expected.end()));
}

TEST(LinuxNetworkPort, KnowsTheLoopback) {
  LinuxNetworkPort provider;
  const auto rows = enumerateRows(provider,
                                  {"DeviceID", "IsLoopback", "ActiveMaximumTransmissionUnit", "BytesReceived",
                                   "NetworkAddresses", "PermanentAddress", "Speed", "Errors", "IsUp"},
                                  nameOf(provider, "DeviceID", "lo"));
  ASSERT_EQ(rows.size(), kernelNames().count("lo"));
  for (const ProvidedRow& row : rows) {
    EXPECT_EQ(textOf(row[1]), "TRUE");
    EXPECT_GT(row[2]->getUint64(), 1000u);
    EXPECT_EQ(typeOf(row[3]), "uint64");
    EXPECT_TRUE(row[4]->isArray());
    EXPECT_EQ(textOf(row[5]), "00:00:00:00:00:00");
    EXPECT_EQ(textOf(row[6]), "(null)");
    EXPECT_EQ(typeOf(row[7]), "uint64");
    const bool hasAddress = textOf(row[4]).find("127.0.0.1") != std::string::npos;
    EXPECT_EQ(textOf(row[8]) == "TRUE", hasAddress);
  }
}

TEST(LinuxNetworkPort, AgreesWithTheKernelOnHardwareAddresses) {
  LinuxNetworkPort provider;
  for (const ProvidedRow& row : enumerateRows(provider, {"DeviceID", "PermanentAddress", "IsLoopback"})) {
    std::ifstream file("/sys/class/net/" + textOf(row[0]) + "/address");
    std::string expected;
    std::getline(file, expected);
    EXPECT_EQ(textOf(row[1]), expected.empty() ? "(null)" : expected);
    EXPECT_EQ(textOf(row[2]), textOf(row[0]) == "lo" ? "TRUE" : "FALSE");
  }
}

TEST(LinuxNetworkPort, EachAddressHasAPrefixLength) {
  LinuxNetworkPort provider;
  for (const ProvidedRow& row : enumerateRows(provider, {"DeviceID", "NetworkAddresses", "PrefixLengths"})) {
    EXPECT_EQ(row[1]->getArray()->entries(), row[2]->getArray()->entries());
    if (textOf(row[0]) == "lo" && textOf(row[1]) == "127.0.0.1,::1") {
      EXPECT_EQ(textOf(row[2]), "8,128");
    }
  }
}

TEST(LinuxNetworkPort, ReadsNoneWhenTheOneWantedIsNotThere) {
  LinuxNetworkPort provider;
  EXPECT_EQ(enumerateRows(provider, {"DeviceID"}, nameOf(provider, "DeviceID", "none0")).size(), 0u);
}

}  // namespace
