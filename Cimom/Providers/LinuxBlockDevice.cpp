// Block devices, listed by libudev: the kernel's facts from sysfs, what was
// found on the devices from udev's database.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxBlockDevice.h"

#include <libudev.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriProviderException.h"

const char* const LinuxBlockDevice::kClassName = "Linux_BlockDevice";

namespace {

constexpr const char* kDatabase = "/run/udev/data";
constexpr QORuint64 kSector = 512;  // the unit of the kernel's counts, whatever the device's blocks

struct ReleaseUdev {
  void operator()(udev* context) const noexcept { udev_unref(context); }
  void operator()(udev_device* device) const noexcept { udev_device_unref(device); }
  void operator()(udev_enumerate* list) const noexcept { udev_enumerate_unref(list); }
};
using Context = std::unique_ptr<udev, ReleaseUdev>;
using Handle = std::unique_ptr<udev_device, ReleaseUdev>;
using List = std::unique_ptr<udev_enumerate, ReleaseUdev>;

// The device that is being read.
struct Device {
  udev_device* handle;

  const char* attribute(const char* name) const { return udev_device_get_sysattr_value(handle, name); }
  // The disk of a partition; the device itself when it is none. BORROWED from it.
  udev_device* disk() const {
    udev_device* const parent = udev_device_get_parent_with_subsystem_devtype(handle, "block", "disk");
    return parent == nullptr ? handle : parent;
  }
};

std::optional<QORuint64> numberIn(const char* text) {
  if (text == nullptr) return std::nullopt;
  const std::string_view digits(text);
  const std::size_t start = std::min(digits.find_first_not_of(' '), digits.size());
  QORuint64 number = 0;
  const auto [end, error] = std::from_chars(text + start, text + digits.size(), number);
  return error == std::errc() ? std::optional<QORuint64>(number) : std::nullopt;
}

// Hardware pads texts with blanks.
LinuxValue trimmed(const char* text) {
  std::string_view value(text == nullptr ? "" : text);
  value.remove_prefix(std::min(value.find_first_not_of(" \n"), value.size()));
  value = value.substr(0, value.find_last_not_of(" \n") + 1);
  return value.empty() ? LinuxValue() : textValue(value);
}

std::optional<QORuint64> sizeOf(const Device& device) {
  const std::optional<QORuint64> sectors = numberIn(device.attribute("size"));
  return sectors ? std::optional<QORuint64>(*sectors * kSector) : std::nullopt;
}
std::optional<QORuint64> blockSizeOf(const Device& device) {
  return numberIn(udev_device_get_sysattr_value(device.disk(), "queue/logical_block_size"));
}
LinuxValue valueOf(const std::optional<QORuint64>& number) { return number ? uint64Value(*number) : LinuxValue(); }
LinuxValue flagOf(const char* text) {
  const std::optional<QORuint64> number = numberIn(text);
  return number ? booleanValue(*number != 0) : LinuxValue();
}

LinuxValue readDeviceId(Device& device) { return textOrNull(udev_device_get_devnode(device.handle)); }
LinuxValue readName(Device& device) { return textOrNull(udev_device_get_sysname(device.handle)); }
LinuxValue readType(Device& device) {
  const char* const name = udev_device_get_sysname(device.handle);
  const char* const kind = udev_device_get_devtype(device.handle);
  if (name == nullptr || kind == nullptr) return {};
  const char* const mapping = device.attribute("dm/uuid");
  return textValue(LinuxBlockDevice::typeOf(name, kind, mapping == nullptr ? "" : mapping));
}
LinuxValue readBlockSize(Device& device) { return valueOf(blockSizeOf(device)); }
LinuxValue readSize(Device& device) { return valueOf(sizeOf(device)); }
LinuxValue readBlockCount(Device& device) {
  const std::optional<QORuint64> size = sizeOf(device);
  const std::optional<QORuint64> blockSize = blockSizeOf(device);
  return size && blockSize && *blockSize != 0 ? uint64Value(*size / *blockSize) : LinuxValue();
}
LinuxValue readIsReadOnly(Device& device) { return flagOf(device.attribute("ro")); }
LinuxValue readIsRemovable(Device& device) { return flagOf(udev_device_get_sysattr_value(device.disk(), "removable")); }
LinuxValue readIsRotational(Device& device) {
  return flagOf(udev_device_get_sysattr_value(device.disk(), "queue/rotational"));
}
LinuxValue readDisk(Device& device) {
  udev_device* const disk = device.disk();
  return disk == device.handle ? LinuxValue() : textOrNull(udev_device_get_devnode(disk));
}
LinuxValue readDeviceNumber(Device& device) { return trimmed(device.attribute("dev")); }
LinuxValue readVendor(Device& device) { return trimmed(udev_device_get_sysattr_value(device.disk(), "device/vendor")); }
LinuxValue readModel(Device& device) { return trimmed(udev_device_get_sysattr_value(device.disk(), "device/model")); }

template <const char* Property>
LinuxValue readFound(Device& device) {
  return trimmed(udev_device_get_property_value(device.handle, Property));
}
constexpr char kSerial[] = "ID_SERIAL_SHORT";
constexpr char kFileSystemType[] = "ID_FS_TYPE";
constexpr char kFileSystemLabel[] = "ID_FS_LABEL";
constexpr char kFileSystemUuid[] = "ID_FS_UUID";

// Column `index` of the kernel's counters, in sectors.
LinuxValue readCounter(Device& device, int index) {
  const char* counters = device.attribute("stat");
  if (counters == nullptr) return {};
  std::string_view rest(counters);
  for (int column = 0;; ++column) {
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    if (column == index) break;
    rest.remove_prefix(std::min(rest.find(' '), rest.size()));
  }
  const std::optional<QORuint64> sectors = numberIn(std::string(rest).c_str());
  return sectors ? uint64Value(*sectors * kSector) : LinuxValue();
}
LinuxValue readBytesRead(Device& device) { return readCounter(device, 2); }
LinuxValue readBytesWritten(Device& device) { return readCounter(device, 6); }

// The keys that tie a device to its system.
LinuxValue readClassName(Device&) { return textValue(LinuxBlockDevice::kClassName); }
LinuxValue readSystemClassName(Device&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Device&) { return textValue(hostName()); }

constexpr LinuxProperty<Device> kBlockDeviceProperties[] = {
    {"DeviceID", readDeviceId},
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"DeviceType", readType},
    {"DeviceNumber", readDeviceNumber},
    {"Disk", readDisk},
    {"Size", readSize},
    {"BlockSize", readBlockSize},
    {"NumberOfBlocks", readBlockCount},
    {"ReadOnly", readIsReadOnly},
    {"IsRemovable", readIsRemovable},
    {"IsRotational", readIsRotational},
    {"Vendor", readVendor},
    {"Model", readModel},
    {"SerialNumber", readFound<kSerial>},
    {"FileSystemType", readFound<kFileSystemType>},
    {"FileSystemLabel", readFound<kFileSystemLabel>},
    {"FileSystemUUID", readFound<kFileSystemUuid>},
    {"BytesRead", readBytesRead},
    {"BytesWritten", readBytesWritten},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

[[noreturn]] void raiseDevicesUnreadable(int error) {
  logUnreadable("the block devices", error);
  throw CQoriProviderException(LinuxBlockDevice::kClassName, "The block devices cannot be listed",
                               InstanceProvider::kUnreadable);
}

// Where the kernel's files are absent, the library reports no devices instead of an error.
void checkSources(const InstanceProvider::Request& request) {
  if (access("/sys/class", R_OK) != 0) raiseDevicesUnreadable(errno);
  const bool needsDatabase = request.needs("SerialNumber") || request.needs("FileSystemType") ||
                             request.needs("FileSystemLabel") || request.needs("FileSystemUUID");
  if (needsDatabase && access(kDatabase, R_OK) != 0) warnUnreadable(kDatabase, errno);
}

List listDevices(udev* context) {
  List list(udev_enumerate_new(context));
  if (list == nullptr) raiseDevicesUnreadable(ENOMEM);
  udev_enumerate_add_match_subsystem(list.get(), "block");
  const int result = udev_enumerate_scan_devices(list.get());
  if (result < 0) raiseDevicesUnreadable(-result);
  return list;
}

}  // namespace

void LinuxBlockDevice::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Device>>(request, kBlockDeviceProperties);
  const QORString wanted = wantedKey(request, "DeviceID");
  checkSources(request);
  const Context context(udev_new());
  if (context == nullptr) raiseDevicesUnreadable(ENOMEM);
  const List list = listDevices(context.get());
  for (udev_list_entry* entry = udev_enumerate_get_list_entry(list.get()); entry != nullptr;
       entry = udev_list_entry_get_next(entry)) {
    const char* const path = udev_list_entry_get_name(entry);
    const Handle handle(udev_device_new_from_syspath(context.get(), path));
    // The device has been unplugged since it was listed.
    if (handle == nullptr) {
      logUnreadable(path, errno);
      continue;
    }
    const char* const node = udev_device_get_devnode(handle.get());
    if (node == nullptr || (!wanted.isNull() && !(wanted == node))) continue;
    Device device{handle.get()};
    emitInstance(device, properties, emit);
  }
}

// The kernel calls disk whatever is no partition; its drivers have names of their own.
std::string LinuxBlockDevice::typeOf(std::string_view name, std::string_view kind, std::string_view mapping) {
  if (kind != "disk") return std::string(kind);
  if (name.starts_with("dm-")) {
    std::string type(mapping.substr(0, std::min(mapping.find('-'), mapping.size())));
    for (char& letter : type) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return type == "lvm" || type == "crypt" || type == "mpath" ? type : "dm";
  }
  constexpr std::pair<std::string_view, const char*> kDrivers[] = {
      {"loop", "loop"}, {"zram", "zram"}, {"ram", "ram"}, {"md", "raid"}, {"sr", "rom"}};
  for (const auto& [prefix, type] : kDrivers) {
    const bool isNumbered =
        name.size() > prefix.size() &&
        (std::isdigit(static_cast<unsigned char>(name[prefix.size()])) != 0 || name[prefix.size()] == '_');
    if (name.starts_with(prefix) && isNumbered) return type;
  }
  return "disk";
}

std::string LinuxBlockDevice::nodeOf(dev_t number) {
  const Context context(udev_new());
  if (context == nullptr) return {};
  const Handle handle(udev_device_new_from_devnum(context.get(), 'b', number));
  const char* const node = handle == nullptr ? nullptr : udev_device_get_devnode(handle.get());
  return node == nullptr ? "" : node;
}
