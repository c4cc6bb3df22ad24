// 8 bytes of name, then, lowest byte first, version (4), size of the content
// (8) and its checksum (8); then the content. It is read, not mapped: a mapped file that somebody
// truncates ends the process.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofCacheFile.h"

#include <xxhash.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <new>
#include <random>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kName = "QORQLMOF";
constexpr std::size_t kHeadSize = 28;
constexpr std::uint64_t kGreatestContent = std::uint64_t{1} << 31U;  // what offsets inside it can span
constexpr std::size_t kBuffer = std::size_t{1} << 18U;

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

std::string headOf(std::uint64_t size, std::uint64_t checksum) {
  std::string head(kName);
  putNumber(head, kMofCacheVersion, 4);
  putNumber(head, size, 8);
  putNumber(head, checksum, 8);
  return head;
}

}  // namespace

std::string readMofCacheFile(const std::string& path) {
  std::ifstream in = openPlainFile(path);
  const std::string head = readBytes(in, kHeadSize);
  if (head.size() < kHeadSize || !head.starts_with(kName)) throw std::runtime_error("it is not a cache");
  if (numberAt(head, 8, 4) != kMofCacheVersion) throw std::runtime_error("it is of another version");
  const std::uint64_t size = numberAt(head, 12, 8);
  if (size > kGreatestContent || size != fs::file_size(path) - kHeadSize) throw std::runtime_error("it is damaged");
  std::string content = readBytes(in, static_cast<std::size_t>(size));
  if (content.size() != size || XXH3_64bits(content.data(), content.size()) != numberAt(head, 20, 8)) {
    throw std::runtime_error("it is damaged");
  }
  return content;
}

struct MofCacheOutput::Checksum {
  Checksum() : state(XXH3_createState()) {
    if (state == nullptr) throw std::bad_alloc();
    XXH3_64bits_reset(state);
  }
  Checksum(const Checksum&) = delete;
  Checksum& operator=(const Checksum&) = delete;
  ~Checksum() { XXH3_freeState(state); }
  XXH3_state_t* const state;  // OWNS
};

MofCacheOutput::MofCacheOutput(std::string path) : _path(std::move(path)), _checksum(new Checksum) {}

MofCacheOutput::~MofCacheOutput() {
  if (_temporary.empty()) return;
  std::error_code error;
  _out.close();
  fs::remove(_temporary, error);
}

void MofCacheOutput::append(std::string_view bytes) {
  _buffer += bytes;
  _size += bytes.size();
  if (_buffer.size() >= kBuffer) flush();
}

void MofCacheOutput::open() {
  std::error_code error;
  const fs::path folder = fs::path(_path).parent_path();
  if (!folder.empty()) fs::create_directories(folder, error);
  _temporary = temporaryBeside(_path);
  _out.open(_temporary, std::ios::binary | std::ios::trunc);
  const std::string head = headOf(0, 0);
  _out.write(head.data(), static_cast<std::streamsize>(head.size()));
}

void MofCacheOutput::flush() {
  if (_temporary.empty()) open();
  XXH3_64bits_update(_checksum->state, _buffer.data(), _buffer.size());
  _out.write(_buffer.data(), static_cast<std::streamsize>(_buffer.size()));
  _buffer.clear();
}

void MofCacheOutput::finish() {
  checkReplaceable(_path);
  flush();
  if (_size > kGreatestContent) throw std::runtime_error("there is too much of it");
  const std::string head = headOf(_size, XXH3_64bits_digest(_checksum->state));
  _out.seekp(0);
  _out.write(head.data(), static_cast<std::streamsize>(head.size()));
  _out.close();
  if (!_out) throw std::runtime_error("it cannot be written");
  replace();
}

void MofCacheOutput::replace() {
  std::error_code error;
  fs::rename(_temporary, _path, error);
  if (error) throw std::runtime_error(error.message());
  _temporary.clear();
}
