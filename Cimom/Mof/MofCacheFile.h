// The file around a cache: with a checksum, written piece by piece, replaced as a whole.
// Tested by tests/unit/Mof/MofCacheTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFCACHEFILE_H
#define QORQL_MOF_MOFCACHEFILE_H

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "cmpbase.h"

// Of the format of file and content; another version's files are not read.
inline constexpr unsigned kMofCacheVersion = 4;

// A file of this version that is whole: its content. THROWS
// std::runtime_error that says what is wrong with it.
std::string readMofCacheFile(const std::string& path);

// A new content, which takes the place of what is there when it is finished, so that readers see the old file or the
// new one and nothing between. Until then it stands in a file beside it, of which nothing is left when it is not
// finished.
class MofCacheOutput {
 public:
  explicit MofCacheOutput(std::string path);
  MofCacheOutput(const MofCacheOutput&) = delete;
  MofCacheOutput& operator=(const MofCacheOutput&) = delete;
  ~MofCacheOutput();

  // What goes wrong is told by finish().
  void append(std::string_view bytes);
  // Bytes that were appended.
  QORuint64 size() const noexcept { return _size; }
  // Puts the file in its place. THROWS std::runtime_error with the reason when it cannot, and when
  // what is there is neither empty nor a cache: that stays as it is. Nothing is appended afterwards.
  void finish();

 private:
  struct Checksum;

  void open();
  void flush();
  void replace();

  const std::string _path;
  std::filesystem::path _temporary;  // empty: it does not exist
  std::ofstream _out;
  std::string _buffer;
  std::unique_ptr<Checksum> _checksum;
  QORuint64 _size = 0;
};

#endif
