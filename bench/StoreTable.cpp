// The C library's own count, before and after: indexes and lists of classes are in it, queries' lists are not.
// SPDX-License-Identifier: Apache-2.0
#include "bench/StoreTable.h"

#include <malloc.h>

#include <iomanip>
#include <memory>
#include <ostream>
#include <string>

#include "Cimom/Mof/MofLoader.h"
#include "bench/Data.h"
#include "bench/World.h"

namespace bench {

namespace {

constexpr double kGoal = 700;
constexpr const char* kClass =
    "class Disk { [Key] string DeviceID; string Name; uint64 Size; uint32 BlockSize; uint16 Status; boolean Enabled; "
    "real64 Load; string PoolID; uint16 OperationalStatus[]; };\n";

std::size_t bytesInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

std::string quoted(const std::string& text) {
  std::string literal = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') literal += '\\';
    literal += c;
  }
  return literal + '"';
}

std::string mofOf(std::uint64_t size) {
  std::string mof = kClass;
  for (std::uint64_t i = 0; i < size; ++i) {
    const DiskRow row = diskRow(i, size / 100 + 1);
    mof += "instance of Disk { DeviceID = " + quoted(row.deviceId) + "; Name = " + quoted(row.name) +
           "; Size = " + std::to_string(row.size) + "; BlockSize = " + std::to_string(row.blockSize) +
           "; Status = " + std::to_string(row.status) + "; Enabled = " + (row.isEnabled ? "true" : "false") +
           "; Load = " + std::to_string(row.load) + "; PoolID = " + (row.hasPool ? quoted(row.poolId) : "NULL") +
           "; OperationalStatus = {";
    for (const std::uint16_t status : row.operationalStatus)
      mof += (mof.back() == '{' ? "" : ", ") + std::to_string(status);
    mof += "}; };\n";
  }
  return mof;
}

void printRow(const char* title, std::size_t bytes, std::uint64_t size, const char* goal, std::ostream& out) {
  out << "| " << title << " | " << std::fixed << std::setprecision(0)
      << static_cast<double>(bytes) / static_cast<double>(size) << " | " << goal << " |\n";
}

std::size_t loadedBytes(std::uint64_t size) {
  const std::string mof = mofOf(size);
  EmbeddedObjectManager manager;
  const std::size_t before = bytesInUse();
  MofLoader(manager.sink()).loadText(mof, "disks");
  return bytesInUse() - before;
}

std::size_t createdBytes(std::uint64_t size) {
  const std::size_t before = bytesInUse();
  const DiskWorld world(size);
  return bytesInUse() - before;
}

}  // namespace

void printStoreTable(std::uint64_t size, std::ostream& out) {
  out << "\n### Memory of the store, " << size << " instances of 9 properties\n\n"
      << "| | bytes an instance | goal |\n|---|--:|---|\n";
  const std::size_t loaded = loadedBytes(size);
  const bool isMet = static_cast<double>(loaded) <= kGoal * static_cast<double>(size);
  printRow("loaded from MOF", loaded, size, isMet ? "at most 700, met" : "at most 700, MISSED", out);
  printRow("created one by one", createdBytes(size), size, "-", out);
}

}  // namespace bench
