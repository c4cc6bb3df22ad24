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

// What the file holds as it is told, without asking for it by its path again; 0 where that cannot be said, as of a
// pipe.
std::size_t sizeOf(std::ifstream& in) {
  const std::streamoff size = in.seekg(0, std::ios::end).tellg();
  in.clear();
  in.seekg(0);
  in.clear();
  return size < 0 ? 0 : static_cast<std::size_t>(size);
}

// `size`: of the file as it is told; its end tells how much there is: a pipe has no size, and a file may grow.
std::string readToEnd(std::ifstream& in, std::size_t size, std::string& content) {
  if (size > kMaximumFileSize) return kTooLarge;
  content.resize(size);
  in.read(content.data(), static_cast<std::streamsize>(content.size()));
  content.resize(static_cast<std::size_t>(in.gcount()));
  std::array<char, 4096> chunk;
  while (in && content.size() <= kMaximumFileSize) {
    in.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    content.append(chunk.data(), static_cast<std::size_t>(in.gcount()));
  }
  if (content.size() > kMaximumFileSize) return kTooLarge;
  return in.bad() ? "reading it fails" : "";
}

std::string faultOf(int fault) { return fault == 0 ? "it cannot be opened" : std::generic_category().message(fault); }

// Why a file was not read: what the path means, if that says it, else `problem`.
std::string reasonOf(const std::string& path, const std::string& problem) {
  std::error_code error;
  const fs::file_type type = fs::status(path, error).type();
  if (type == fs::file_type::not_found) return "there is no such file";
  if (type == fs::file_type::none) return error.message();
  return type == fs::file_type::directory ? "it is a folder" : problem;
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

MofInput describeMofFile(const std::string& path, const MofContent& content) {
  const std::string& text = content.text;
  return {absolute(path), false, text.size(), content.modified, XXH3_64bits(text.data(), text.size())};
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

// The time is taken before the content: of a file that changes meanwhile the older one counts.
std::string readMofFile(const std::string& path, MofContent& content) {
  content.modified = changeOf(path);
  errno = 0;
  std::ifstream in;
  in.rdbuf()->pubsetbuf(nullptr, 0);  // what is read goes where it belongs
  in.open(path, std::ios::binary);
  const int fault = errno;
  const std::string problem = in ? readToEnd(in, sizeOf(in), content.text) : faultOf(fault);
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
  MofContent content;
  return readMofFile(input.path, content).empty() &&
         XXH3_64bits(content.text.data(), content.text.size()) == input.hash;
}

QORsint64 mofClockNow() { return countOf(fs::file_time_type::clock::now()); }
