// Files and folders of MOF.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofInput.h"

#include <xxhash.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "Cimom/Mof/MofSyntax.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaximumFileSize = 512U << 20U;  // a device has no end of its own
constexpr const char* kTooLarge = "it is larger than 512 MB";
// File systems count time in steps; a second change within one step leaves the time as it is.
constexpr std::chrono::seconds kClockStep(2);

QORsint64 countOf(fs::file_time_type time) { return static_cast<QORsint64>(time.time_since_epoch().count()); }

QORsint64 changeOf(const fs::path& path) {
  std::error_code error;
  const fs::file_time_type time = fs::last_write_time(path, error);
  return error ? 0 : countOf(time);
}

// Whether the path is as lexically_normal() gives it: no part is empty, "." or "..".
bool isNormal(std::string_view path) {
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string_view part = path.substr(0, end);
    if (part.empty() || part == "." || part == ".." || end + 1 == path.size()) return false;
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return true;
}

std::string absolute(const std::string& path) {
  if (path.starts_with('/') && isNormal(std::string_view(path).substr(1))) return path;
  std::error_code error;
  const fs::path whole = fs::absolute(path, error);
  return error ? path : whole.lexically_normal().string();
}

// A file that is read without a buffer in between: what is read goes where it belongs.
class OpenFile {
 public:
  explicit OpenFile(const std::string& path) {
    _file.pubsetbuf(nullptr, 0);
    errno = 0;
    if (_file.open(path, std::ios::in | std::ios::binary) == nullptr) {
      _fault = errno == 0 ? "it cannot be opened" : std::generic_category().message(errno);
    }
  }

  // Empty as long as nothing has gone wrong.
  const std::string& fault() const noexcept { return _fault; }
  // The number of bytes; less than `size` only at the end, or with a fault.
  std::size_t read(char* to, std::size_t size) {
    try {
      return static_cast<std::size_t>(_file.sgetn(to, static_cast<std::streamsize>(size)));
    } catch (const std::ios_base::failure&) {
      _fault = "reading it fails";
      return 0;
    }
  }

 private:
  std::filebuf _file;
  std::string _fault;
};

// Why a file was not read: what the path means, if that says it, else `problem`.
std::string reasonOf(const std::string& path, const std::string& problem) {
  std::error_code error;
  const fs::file_type type = fs::status(path, error).type();
  if (type == fs::file_type::not_found) return "there is no such file";
  if (type == fs::file_type::none) return error.message();
  return type == fs::file_type::directory ? "it is a folder" : problem;
}

// The rest of a large file, as far as its size is told: in one piece. False when it is too large.
bool readAsTold(OpenFile& file, const std::string& path, std::string& text) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(path, error);
  if (error || size <= text.size()) return true;
  if (size > kMaximumFileSize) return false;
  const std::size_t start = text.size();
  text.resize(static_cast<std::size_t>(size));
  text.resize(start + file.read(text.data() + start, text.size() - start));
  return true;
}

// The content counts, not the size that is told: a pipe has none, and a file may grow. Most files fit the first chunk,
// and nobody has to ask for their size.
std::string readToEnd(OpenFile& file, const std::string& path, std::string& text) {
  std::array<char, 64U << 10U> chunk;
  std::size_t count = 0;
  do {
    count = file.read(chunk.data(), chunk.size());
    text.append(chunk.data(), count);
    const bool isLarge = text.size() == chunk.size();
    if ((isLarge && !readAsTold(file, path, text)) || text.size() > kMaximumFileSize) return kTooLarge;
  } while (count == chunk.size());
  return file.fault();
}

QORuint64 hashOfNames(const std::vector<std::string>& files) {
  std::string names;
  for (const std::string& file : files) names += fs::path(file).filename().string() + '\n';
  return XXH3_64bits(names.data(), names.size());
}

bool isMofFile(const fs::directory_entry& entry) {
  std::error_code error;
  return entry.is_regular_file(error) && isMofWord(entry.path().extension().string(), ".mof");
}

bool isFolderUnchanged(const MofInput& input) {
  std::vector<std::string> files;
  return listMofFolder(input.path, files).empty() && hashOfNames(files) == input.hash;
}

}  // namespace

QORsint64 changeOfMofFile(const std::string& path) { return changeOf(path); }

MofInput describeMofFile(const std::string& path, std::string_view text, QORsint64 modified) {
  return {absolute(path), false, text.size(), modified, XXH3_64bits(text.data(), text.size())};
}

MofInput describeMofFolder(const std::string& path, const std::vector<std::string>& files) {
  return {absolute(path), true, files.size(), 0, hashOfNames(files)};
}

std::string listMofFolder(const std::string& path, std::vector<std::string>& files) {
  std::error_code error;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
    if (isMofFile(*entry)) files.push_back(entry->path().string());
  }
  if (error) return "the folder cannot be read: " + error.message();
  if (files.empty()) return "the folder holds no .mof file";
  std::sort(files.begin(), files.end());
  return {};
}

std::string readMofFile(const std::string& path, std::string& text) {
  text.clear();
  OpenFile file(path);
  const std::string problem = file.fault().empty() ? readToEnd(file, path, text) : file.fault();
  return problem.empty() ? problem : reasonOf(path, problem);
}

bool isMofInputUnchanged(const MofInput& input, QORsint64 written) {
  if (input.isFolder) return isFolderUnchanged(input);
  std::error_code error;
  const fs::path place(input.path);
  const std::uintmax_t size = fs::file_size(place, error);
  if (error || size != input.size) return false;
  const QORsint64 step = std::chrono::duration_cast<fs::file_time_type::duration>(kClockStep).count();
  const QORsint64 change = changeOf(place);
  if (change == input.modified && change < written - step) return true;
  std::string text;
  return readMofFile(input.path, text).empty() && XXH3_64bits(text.data(), text.size()) == input.hash;
}

QORsint64 mofClockNow() { return countOf(fs::file_time_type::clock::now()); }
