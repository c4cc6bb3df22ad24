// The provider of Linux_FileSystem agrees with the kernel.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include "Cimom/Providers/LinuxFileSystem.h"
#include "ProviderFixture.h"

namespace {

struct MountLine {
  std::string device, target, type, options;
};

// The kernel's older table; octal escapes stay, so only plain mount points are compared.
std::vector<MountLine> kernelMounts() {
  std::vector<MountLine> mounts;
  std::ifstream file("/proc/self/mounts");
  for (std::string line; std::getline(file, line);) {
    MountLine mount;
    std::istringstream(line) >> mount.device >> mount.target >> mount.type >> mount.options;
    mounts.push_back(mount);
  }
  return mounts;
}

struct statvfs sizesOf(const std::string& mount) {
  struct statvfs sizes {};
  if (statvfs(mount.c_str(), &sizes) != 0) sizes.f_blocks = 0;
  return sizes;
}

// The root, or where it is no mount, as in a changed root, the largest that there is.
std::string someMount() {
  std::string found;
  fsblkcnt_t most = 0;
  for (const MountLine& mount : kernelMounts()) {
    if (mount.target == "/") return mount.target;
    const fsblkcnt_t blocks = mount.target.find('\\') == std::string::npos ? sizesOf(mount.target).f_blocks : 0;
    if (found.empty() || blocks > most) found = mount.target;
    most = std::max(most, blocks);
  }
  return found;
}

ProvidedRow someRow(const std::vector<std::string>& properties) {
  LinuxFileSystem provider;
  std::vector<std::string> all = {"Name"};
  all.insert(all.end(), properties.begin(), properties.end());
  return findRow(enumerateRows(provider, all), someMount());
}

TEST(LinuxFileSystem, ServesItsClass) { EXPECT_EQ(LinuxFileSystem().getClassName(), "Linux_FileSystem"); }

TEST(LinuxFileSystem, MeasuresAFileSystemInBytes) {
  const struct statvfs sizes = sizesOf(someMount());
  ASSERT_NE(sizes.f_blocks, 0u) << "there is no file system with a size";
  const ProvidedRow row = someRow({"FileSystemSize", "AvailableSpace", "UsedSpace", "PercentUsed", "BlockSize"});
  ASSERT_EQ(row.size(), 6u);
  EXPECT_EQ(row[1]->getUint64(), QORuint64{sizes.f_blocks} * sizes.f_frsize);
  EXPECT_EQ(typeOf(row[1]), "uint64");
  EXPECT_LE(row[2]->getUint64(), row[1]->getUint64());
  EXPECT_LE(row[3]->getUint64(), row[1]->getUint64());
  const double used = row[3]->getReal64();
  EXPECT_NEAR(row[4]->getReal64(), 100 * used / (used + row[2]->getReal64()), 0.1);
  EXPECT_EQ(row[5]->getUint64(), sizes.f_bsize);
}

TEST(LinuxFileSystem, DescribesAFileSystem) {
  const std::string mount = someMount();
  const struct statvfs sizes = sizesOf(mount);
  const ProvidedRow row = someRow({"ReadOnly", "MaxFileNameLength", "NumberOfFiles", "ElementName"});
  EXPECT_EQ(textOf(row[1]), (sizes.f_flag & ST_RDONLY) != 0 ? "TRUE" : "FALSE");
  EXPECT_EQ(row[2]->getUint32(), sizes.f_namemax);
  EXPECT_EQ(typeOf(row[3]), "uint64");
  EXPECT_EQ(textOf(row[4]), mount);
}

TEST(LinuxFileSystem, AgreesWithTheKernelOnDeviceTypeAndPseudoFileSystems) {
  LinuxFileSystem provider;
  const auto rows = enumerateRows(provider, {"Name", "Device", "FileSystemType", "IsPseudo", "IsNetwork"});
  std::size_t compared = 0;
  const std::vector<MountLine> mounts = kernelMounts();
  for (std::size_t i = 0; i < mounts.size(); ++i) {
    const auto isSamePoint = [&](const MountLine& other) { return other.target == mounts[i].target; };
    const bool isHidden = std::any_of(mounts.begin() + static_cast<std::ptrdiff_t>(i) + 1, mounts.end(), isSamePoint);
    const ProvidedRow row = findRowIfAny(rows, mounts[i].target);
    if (isHidden || row.empty()) continue;
    ++compared;
    EXPECT_EQ(textOf(row[2]), mounts[i].type) << mounts[i].target;
    if (mounts[i].type == "proc" || mounts[i].type == "sysfs") {
      EXPECT_EQ(textOf(row[3]), "TRUE");
    } else if (mounts[i].type == "ext4") {
      EXPECT_EQ(textOf(row[3]), "FALSE");
    }
  }
  EXPECT_GE(compared, 1u);
}

TEST(LinuxFileSystem, ShowsReadOnlyMountsAsSuch) {
  LinuxFileSystem provider;
  for (const ProvidedRow& row : enumerateRows(provider, {"Name", "MountOptions", "ReadOnly"})) {
    const std::string options = "," + textOf(row[1]) + ",";
    EXPECT_EQ(textOf(row[2]), options.find(",ro,") != std::string::npos ? "TRUE" : "FALSE") << textOf(row[0]);
  }
}

TEST(LinuxFileSystem, EmitsEachMountPointOnce) {
  LinuxFileSystem provider;
  std::set<std::string> names;
  const auto rows = enumerateRows(provider, {"Name"});
  for (const ProvidedRow& row : rows) names.insert(textOf(row.at(0)));
  EXPECT_EQ(names.size(), rows.size());
  EXPECT_GE(rows.size(), 1u);
}

TEST(LinuxFileSystem, GivesAPercentageWhereThereIsSpace) {
  LinuxFileSystem provider;
  for (const ProvidedRow& row : enumerateRows(provider, {"Name", "FileSystemSize", "PercentUsed"})) {
    const bool hasSpace = !row[1].IsNull() && row[1]->getUint64() != 0;
    EXPECT_EQ(textOf(row[2]) != "(null)", hasSpace) << textOf(row[0]);
  }
}

TEST(LinuxFileSystem, ReadsOneMountAloneWhenOneIsWanted) {
  LinuxFileSystem provider;
  const std::string mount = someMount();
  const auto rows = enumerateRows(provider, {"Name"}, nameOf(provider, "Name", mount));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(textOf(rows[0][0]), mount);
  EXPECT_EQ(enumerateRows(provider, {"Name"}, nameOf(provider, "Name", "/no/such/mount")).size(), 0u);
}

TEST(LinuxFileSystem, GivesNullForAPropertyItDoesNotKnow) {
  const ProvidedRow row = someRow({"EncryptionMethod", "CreationClassName"});
  EXPECT_EQ(textOf(row[1]), "(null)");
  EXPECT_EQ(textOf(row[2]), "Linux_FileSystem");
}

}  // namespace
