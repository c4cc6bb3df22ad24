// Mounted file systems: the table of mounts through libmount, sizes through statvfs.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxFileSystem.h"

#include <libmount/libmount.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <memory>
#include <string>
#include <unordered_map>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriProviderException.h"

const char* const LinuxFileSystem::kClassName = "Linux_FileSystem";

namespace {

// The mount that is being read.
struct Mount {
  libmnt_fs* entry;
  struct statvfs sizes {};
  UnreadableParts& unreadable;
  bool isAsked = false;
  bool hasSizes = false;

  const char* target() const { return mnt_fs_get_target(entry); }
};

// Asking for the sizes of an automatic mount would mount it, so they are not asked for.
bool fetchSizes(Mount& mount) {
  if (mount.isAsked) return mount.hasSizes;
  mount.isAsked = true;
  const char* const type = mnt_fs_get_fstype(mount.entry);
  if (type != nullptr && std::string_view(type) == "autofs") return false;
  mount.hasSizes = statvfs(mount.target(), &mount.sizes) == 0;
  if (!mount.hasSizes) mount.unreadable.note(mount.target(), errno);
  return mount.hasSizes;
}

// A size in blocks as bytes; null when the sizes are not available.
template <class Blocks>
LinuxValue bytes(Mount& mount, Blocks blocks) {
  return fetchSizes(mount) ? uint64Value(QORuint64{blocks(mount.sizes)} * mount.sizes.f_frsize) : LinuxValue();
}

LinuxValue readName(Mount& mount) { return textValue(mount.target()); }
LinuxValue readDevice(Mount& mount) { return textOrNull(mnt_fs_get_source(mount.entry)); }
LinuxValue readType(Mount& mount) { return textOrNull(mnt_fs_get_fstype(mount.entry)); }
LinuxValue readRoot(Mount& mount) { return textOrNull(mnt_fs_get_root(mount.entry)); }
LinuxValue readOptions(Mount& mount) { return textOrNull(mnt_fs_get_options(mount.entry)); }
LinuxValue readIsReadOnly(Mount& mount) { return booleanValue(mnt_fs_match_options(mount.entry, "ro") == 1); }
LinuxValue readIsNetwork(Mount& mount) { return booleanValue(mnt_fs_is_netfs(mount.entry) == 1); }
LinuxValue readIsPseudo(Mount& mount) { return booleanValue(mnt_fs_is_pseudofs(mount.entry) == 1); }

LinuxValue readSize(Mount& mount) {
  return bytes(mount, [](const struct statvfs& sizes) { return sizes.f_blocks; });
}
LinuxValue readAvailable(Mount& mount) {
  return bytes(mount, [](const struct statvfs& sizes) { return sizes.f_bavail; });
}
LinuxValue readUsed(Mount& mount) {
  return bytes(mount, [](const struct statvfs& sizes) { return sizes.f_blocks - sizes.f_bfree; });
}
// Of the space that users may use: blocks reserved for the superuser count neither as used nor as available.
LinuxValue readPercentUsed(Mount& mount) {
  if (!fetchSizes(mount)) return {};
  const double used = static_cast<double>(mount.sizes.f_blocks - mount.sizes.f_bfree);
  const double usable = used + static_cast<double>(mount.sizes.f_bavail);
  return usable > 0 ? real64Value(100 * used / usable) : LinuxValue();
}
LinuxValue readBlockSize(Mount& mount) { return fetchSizes(mount) ? uint64Value(mount.sizes.f_bsize) : LinuxValue(); }
LinuxValue readFileCount(Mount& mount) {
  return fetchSizes(mount) ? uint64Value(mount.sizes.f_files - mount.sizes.f_ffree) : LinuxValue();
}
LinuxValue readNameLength(Mount& mount) {
  return fetchSizes(mount) ? uint32Value(static_cast<QORuint32>(mount.sizes.f_namemax)) : LinuxValue();
}

// The keys that tie a file system to its system in fuller schemas.
LinuxValue readClassName(Mount&) { return textValue(LinuxFileSystem::kClassName); }
LinuxValue readSystemClassName(Mount&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Mount&) { return textValue(hostName()); }

constexpr LinuxProperty<Mount> kFileSystemProperties[] = {
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"Device", readDevice},
    {"FileSystemType", readType},
    {"Root", readRoot},
    {"MountOptions", readOptions},
    {"ReadOnly", readIsReadOnly},
    {"IsNetwork", readIsNetwork},
    {"IsPseudo", readIsPseudo},
    {"FileSystemSize", readSize},
    {"AvailableSpace", readAvailable},
    {"UsedSpace", readUsed},
    {"PercentUsed", readPercentUsed},
    {"BlockSize", readBlockSize},
    {"NumberOfFiles", readFileCount},
    {"MaxFileNameLength", readNameLength},
    {"CreationClassName", readClassName},
    {"CSCreationClassName", readSystemClassName},
    {"CSName", readSystemName},
};

struct ReleaseTable {
  void operator()(libmnt_table* table) const noexcept { mnt_unref_table(table); }
  void operator()(libmnt_iter* position) const noexcept { mnt_free_iter(position); }
};
using Table = std::unique_ptr<libmnt_table, ReleaseTable>;
using Position = std::unique_ptr<libmnt_iter, ReleaseTable>;

Table readTable() {
  Table table(mnt_new_table());
  const int result = table == nullptr ? -ENOMEM : mnt_table_parse_file(table.get(), "/proc/self/mountinfo");
  if (result != 0) {
    logUnreadable("/proc/self/mountinfo", result < 0 ? -result : EIO);
    throw CQoriProviderException(LinuxFileSystem::kClassName, "The table of mounts cannot be read",
                                 InstanceProvider::kUnreadable);
  }
  return table;
}

// The mounts that can be seen: the last at each mount point.
std::vector<libmnt_fs*> visibleMounts(libmnt_table* table) {
  std::vector<libmnt_fs*> mounts;
  std::unordered_map<std::string, std::size_t> last;
  const Position position(mnt_new_iter(MNT_ITER_FORWARD));
  libmnt_fs* entry = nullptr;
  while (position != nullptr && mnt_table_next_fs(table, position.get(), &entry) == 0) {
    const char* const target = mnt_fs_get_target(entry);
    if (target == nullptr) continue;
    const auto [known, isNew] = last.try_emplace(target, mounts.size());
    if (!isNew) mounts[known->second] = nullptr;
    known->second = mounts.size();
    mounts.push_back(entry);
  }
  std::erase(mounts, nullptr);
  return mounts;
}

}  // namespace

void LinuxFileSystem::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Mount>>(request, kFileSystemProperties);
  const Table table = readTable();
  const QORString wanted = wantedKey(request, "Name");
  UnreadableParts unreadable;
  for (libmnt_fs* entry : visibleMounts(table.get())) {
    Mount mount{entry, {}, unreadable};
    if (wanted.isNull() || wanted == mount.target()) emitInstance(mount, properties, emit);
  }
}

std::vector<LinuxFileSystem::MountPoint> LinuxFileSystem::mountPoints() {
  std::vector<MountPoint> points;
  const Table table = readTable();
  for (libmnt_fs* entry : visibleMounts(table.get())) {
    const char* const source = mnt_fs_get_source(entry);
    points.push_back({mnt_fs_get_target(entry), source == nullptr ? "" : source, mnt_fs_get_devno(entry)});
  }
  return points;
}
