// Packages of dpkg and of rpm, each read by a library that is loaded for it.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxPackage.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <limits>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxPackageReader.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriProviderException.h"

const char* const LinuxPackage::kClassName = "Linux_Package";

namespace {

using Package = const LinuxPackageRecord;

LinuxValue readId(Package& package) { return textValue(package.id); }
LinuxValue readSystem(Package& package) { return textValue(package.id.substr(0, package.id.find(':'))); }
LinuxValue readName(Package& package) { return textValue(package.name); }
LinuxValue readVersion(Package& package) { return textOrNull(package.version.c_str()); }
LinuxValue readArchitecture(Package& package) { return textOrNull(package.architecture.c_str()); }
LinuxValue readSection(Package& package) { return textOrNull(package.section.c_str()); }
LinuxValue readPriority(Package& package) { return textOrNull(package.priority.c_str()); }
LinuxValue readDescription(Package& package) { return textOrNull(package.description.c_str()); }
LinuxValue readMaintainer(Package& package) { return textOrNull(package.maintainer.c_str()); }
// The source is called like the package where nothing else is said; its version, where that differs, stands after it.
LinuxValue readSource(Package& package) {
  const std::string& source = package.source.empty() ? package.name : package.source;
  return textValue(source.substr(0, source.find(' ')));
}
// What is wanted, whether something is wrong, and the state.
LinuxValue readState(Package& package) {
  const std::size_t blank = package.status.rfind(' ');
  return textOrNull(package.status.substr(blank == std::string::npos ? 0 : blank + 1).c_str());
}
// What is no number, or too great a one in bytes, is not told.
LinuxValue readSize(Package& package) {
  const char* const end = package.size.data() + package.size.size();
  QORuint64 size = 0;
  const auto [rest, error] = std::from_chars(package.size.data(), end, size);
  const QORuint64 unit = package.sizeUnit;
  const bool isSize = error == std::errc() && rest == end && size <= std::numeric_limits<QORuint64>::max() / unit;
  return isSize ? uint64Value(size * unit) : LinuxValue();
}

constexpr LinuxProperty<Package> kPackageProperties[] = {
    {"InstanceID", readId},
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"Description", readDescription},
    {"VersionString", readVersion},
    {"Manufacturer", readMaintainer},
    {"Architecture", readArchitecture},
    {"PackageSystem", readSystem},
    {"State", readState},
    {"Section", readSection},
    {"Priority", readPriority},
    {"SourceName", readSource},
    {"InstalledSize", readSize},
};

[[noreturn]] void raise(const std::string& reason, QORuint32 code) {
  throw CQoriProviderException(LinuxPackage::kClassName, QORString("The packages cannot be listed: " + reason), code);
}

std::string loadingError() {
  // The C library of Linux keeps the message for each thread by itself.
  const char* const error = dlerror();
  return error == nullptr ? "unknown reason" : error;
}

// The folder of the library that this code is in, with the slash.
std::string ownFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&ownFolder), &info) == 0 || info.dli_fname == nullptr) return {};
  const std::string path = info.dli_fname;
  return path.substr(0, path.rfind('/') + 1);
}

// Loaded and kept. Null when it cannot be loaded, which `wrong` then tells.
LinuxPackageReader loadReader(const std::string& path, std::string& wrong) {
  void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* const found = library == nullptr ? nullptr : dlsym(library, kLinuxPackageFunction);
  if (found == nullptr) wrong = loadingError();
  return reinterpret_cast<LinuxPackageReader>(found);
}

// Without it this installation has no source of packages; the other classes do without it.
LinuxPackageReader aptReader() {
  std::string wrong;
  const LinuxPackageReader reader = loadReader(ownFolder() + kLinuxAptLibrary, wrong);
  if (reader == nullptr) raise(wrong, InstanceProvider::kNoSource);
  return reader;
}

// Null where it was not built, and where it lacks rpm's own library: such a machine hardly has packages of rpm, so it
// is told without failing those of dpkg.
LinuxPackageReader rpmReader() {
  const std::string path = ownFolder() + kLinuxRpmLibrary;
  if (access(path.c_str(), F_OK) != 0) return nullptr;
  std::string wrong;
  const LinuxPackageReader reader = loadReader(path, wrong);
  if (reader == nullptr) warn("The packages of rpm cannot be listed: " + wrong);
  return reader;
}

}  // namespace

void LinuxPackage::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Package>>(request, kPackageProperties);
  const QORString wanted = wantedKey(request, "InstanceID");
  bool hasPackages = false;
  std::string wrong;
  const auto take = [&](Package& package) {
    hasPackages = true;
    if (package.name.empty() || package.status.ends_with(" not-installed")) return;
    if (wanted.isNull() || wanted == package.id.c_str()) emitInstance(package, properties, emit);
  };
  const int unreadable = access(_list.c_str(), R_OK) == 0 ? 0 : errno;
  if (unreadable == 0) {
    static const LinuxPackageReader readApt = aptReader();
    readApt(_list.c_str(), take, wrong);
    if (!wrong.empty()) raise(wrong, InstanceProvider::kUnreadable);
  }
  if (const LinuxPackageReader readRpm = rpmReader()) readRpm(_rpmDatabase.c_str(), take, wrong);
  if (!wrong.empty()) raise(wrong, InstanceProvider::kUnreadable);
  // A machine of rpm has no list of dpkg.
  if (unreadable != 0 && !(unreadable == ENOENT && hasPackages)) warnUnreadable(_list, unreadable);
}
