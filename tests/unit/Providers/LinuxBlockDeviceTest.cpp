// Block devices, beside what the kernel's folder of them shows.
// SPDX-License-Identifier: Apache-2.0
#include <filesystem>
#include <fstream>

#include "Cimom/Providers/LinuxBlockDevice.h"
#include "ProviderFixture.h"

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path) {
  std::ifstream in(path);
  std::string word;
  in >> word;
  return word;
}

class LinuxBlockDevices : public testing::Test {
 protected:
  // Those that the kernel lists and that have a node.
  static std::vector<fs::path> folders() {
    std::vector<fs::path> found;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator("/sys/class/block", error))
      found.push_back(entry.path());
    return found;
  }
};

TEST_F(LinuxBlockDevices, ShowsEveryDeviceOfTheKernel) {
  LinuxBlockDevice provider;
  const auto rows = enumerateRows(provider, {"Name", "DeviceID", "Size", "DeviceNumber", "ReadOnly", "DeviceType",
                                             "Disk", "BlockSize", "NumberOfBlocks", "BytesRead"});
  EXPECT_EQ(rows.size(), folders().size());
  for (const fs::path& folder : folders()) {
    const ProvidedRow row = findRow(rows, folder.filename().string());
    ASSERT_EQ(row.size(), 10U) << folder;
    EXPECT_EQ(textOf(row[1]).rfind("/dev/", 0), 0U);
    EXPECT_EQ(textOf(row[2]), std::to_string(std::stoull(contentOf(folder / "size")) * 512));
    EXPECT_EQ(textOf(row[3]), contentOf(folder / "dev"));
    EXPECT_EQ(textOf(row[4]), contentOf(folder / "ro") == "1" ? "TRUE" : "FALSE");
    const bool isPartition = fs::exists(folder / "partition");
    EXPECT_EQ(textOf(row[5]) == "partition", isPartition);
    EXPECT_EQ(row[6].IsNull(), !isPartition);
    ASSERT_FALSE(row[7].IsNull());
    EXPECT_EQ(row[8]->getUint64(), row[2]->getUint64() / row[7]->getUint64());
    EXPECT_FALSE(row[9].IsNull());
  }
}

TEST_F(LinuxBlockDevices, GivesTheOneThatIsWanted) {
  LinuxBlockDevice provider;
  for (const ProvidedRow& row : enumerateRows(provider, {"DeviceID", "Name"})) {
    const auto found = enumerateRows(provider, {"Name"}, nameOf(provider, "DeviceID", textOf(row[0])));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(textOf(found[0][0]), textOf(row[1]));
  }
  EXPECT_TRUE(enumerateRows(provider, {"Name"}, nameOf(provider, "DeviceID", "/dev/nothing")).empty());
}

TEST_F(LinuxBlockDevices, ANumberOfNoDeviceHasNoNode) { EXPECT_EQ(LinuxBlockDevice::nodeOf(0), ""); }

TEST(LinuxBlockDevice, TellsWhatADeviceIs) {
  EXPECT_EQ(LinuxBlockDevice::typeOf("sda", "disk", ""), "disk");
  EXPECT_EQ(LinuxBlockDevice::typeOf("sda1", "partition", ""), "partition");
  EXPECT_EQ(LinuxBlockDevice::typeOf("loop0", "disk", ""), "loop");
  EXPECT_EQ(LinuxBlockDevice::typeOf("loop0p1", "partition", ""), "partition");
  EXPECT_EQ(LinuxBlockDevice::typeOf("zram0", "disk", ""), "zram");
  EXPECT_EQ(LinuxBlockDevice::typeOf("ram3", "disk", ""), "ram");
  EXPECT_EQ(LinuxBlockDevice::typeOf("md127", "disk", ""), "raid");
  EXPECT_EQ(LinuxBlockDevice::typeOf("md_d0", "disk", ""), "raid");
  EXPECT_EQ(LinuxBlockDevice::typeOf("sr0", "disk", ""), "rom");
  EXPECT_EQ(LinuxBlockDevice::typeOf("dm-0", "disk", "LVM-0123"), "lvm");
  EXPECT_EQ(LinuxBlockDevice::typeOf("dm-1", "disk", "CRYPT-LUKS2-0123"), "crypt");
  EXPECT_EQ(LinuxBlockDevice::typeOf("dm-2", "disk", "mpath-0123"), "mpath");
  EXPECT_EQ(LinuxBlockDevice::typeOf("dm-3", "disk", ""), "dm");
  EXPECT_EQ(LinuxBlockDevice::typeOf("srdisk", "disk", ""), "disk");
  EXPECT_EQ(LinuxBlockDevice::typeOf("nvme0n1", "disk", ""), "disk");
}

}  // namespace
