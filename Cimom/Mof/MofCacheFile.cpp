// 8 bytes of name, then, lowest byte first, version (4), size of the content
// (8), checksum of the rest (8); then the content, compressed.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofCacheFile.h"

#include <xxhash.h>
#include <zstd.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kName = "QORQLMOF";
constexpr std::size_t kHeadSize = 28;
constexpr std::uint64_t kGreatestContent = std::uint64_t{1} << 31U;  // what offsets inside it can span
constexpr int kCompression = 3;

void putNumber(std::string& out, std::uint64_t number, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; ++i) out += static_cast<char>(number >> (8 * i) & 0xFFU);
}

std::uint64_t numberAt(std::string_view bytes, std::size_t offset, std::size_t count) {
  std::uint64_t number = 0;
  for (std::size_t i = count; i-- > 0;) number = number << 8U | static_cast<unsigned char>(bytes[offset + i]);
  return number;
}

// Opening a pipe would block, and a device has no end.
std::ifstream openPlainFile(const std::string& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) throw std::runtime_error("it is not a regular file");
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("it cannot be opened");
  return in;
}

// Fewer bytes than asked for when there are no more.
std::string readBytes(std::ifstream& in, std::size_t count) {
  std::string bytes(count, '\0');
  in.read(bytes.data(), static_cast<std::streamsize>(count));
  if (in.bad()) throw std::runtime_error("reading it fails");
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  return bytes;
}

// A file that is no cache is left alone: its name may be a mistake. A cache is replaced, damaged or not.
void checkReplaceable(const std::string& path) {
  std::error_code error;
  if (!fs::exists(path, error)) return;
  std::ifstream in = openPlainFile(path);
  if (!kName.starts_with(readBytes(in, kName.size()))) throw std::runtime_error("the file in its place is not a cache");
}

// A name in the same folder that no other writer uses.
fs::path temporaryBeside(const fs::path& path) {
  std::random_device random;
  return fs::path(path.string() + '.' + std::to_string(random()) + ".new");
}

void writeWhole(const fs::path& path, std::string_view head, std::string_view rest) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(head.data(), static_cast<std::streamsize>(head.size()));
  out.write(rest.data(), static_cast<std::streamsize>(rest.size()));
  out.close();
  if (!out) throw std::runtime_error("it cannot be written");
}

}  // namespace

std::string readMofCacheFile(const std::string& path) {
  std::ifstream in = openPlainFile(path);
  const std::string head = readBytes(in, kHeadSize);
  if (head.size() < kHeadSize || !head.starts_with(kName)) throw std::runtime_error("it is not a cache");
  if (numberAt(head, 8, 4) != kMofCacheVersion) throw std::runtime_error("it is of another version");
  const std::uint64_t size = numberAt(head, 12, 8);
  const std::uintmax_t left = fs::file_size(path) - kHeadSize;
  if (size > kGreatestContent || left > ZSTD_compressBound(size)) throw std::runtime_error("it is damaged");
  const std::string rest = readBytes(in, left);
  if (XXH3_64bits(rest.data(), rest.size()) != numberAt(head, 20, 8) ||
      ZSTD_getFrameContentSize(rest.data(), rest.size()) != size) {
    throw std::runtime_error("it is damaged");
  }
  std::string content(static_cast<std::size_t>(size), '\0');
  const std::size_t got = ZSTD_decompress(content.data(), content.size(), rest.data(), rest.size());
  if (got != content.size()) throw std::runtime_error("it is damaged");
  return content;
}

void writeMofCacheFile(const std::string& path, const std::string& content) {
  checkReplaceable(path);
  std::string rest(ZSTD_compressBound(content.size()), '\0');
  const std::size_t used = ZSTD_compress(rest.data(), rest.size(), content.data(), content.size(), kCompression);
  if (ZSTD_isError(used) != 0) throw std::runtime_error("it cannot be compressed");
  rest.resize(used);
  std::string head(kName);
  putNumber(head, kMofCacheVersion, 4);
  putNumber(head, content.size(), 8);
  putNumber(head, XXH3_64bits(rest.data(), rest.size()), 8);

  std::error_code error;
  const fs::path folder = fs::path(path).parent_path();
  if (!folder.empty()) fs::create_directories(folder, error);
  const fs::path temporary = temporaryBeside(path);
  try {
    writeWhole(temporary, head, rest);
    fs::rename(temporary, path, error);
    if (error) throw std::runtime_error(error.message());
  } catch (...) {
    fs::remove(temporary, error);
    throw;
  }
}
