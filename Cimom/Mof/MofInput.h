// A file or folder that a load read, and whether it is still the same.
// Tested by tests/unit/Mof/MofCacheTest.cpp, tests/unit/Mof/MofLoaderTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFINPUT_H
#define QORQL_MOF_MOFINPUT_H

#include <string>
#include <string_view>
#include <vector>

#include "cmpbase.h"

// Two that are equal in everything stand for the same content.
struct MofInput {
  std::string path;       // absolute
  bool isFolder = false;  // one whose .mof files were read
  QORuint64 size = 0;     // bytes of a file, .mof files of a folder
  QORsint64 modified = 0;
  QORuint64 hash = 0;  // of the content, or of the names in the folder
};

// When a file last changed. Asked before its content is read: of a file that
// changes meanwhile the older time counts.
QORsint64 changeOfMofFile(const std::string& path);
// As it was when its content was read; `modified`: as changeOfMofFile() told it.
MofInput describeMofFile(const std::string& path, std::string_view text, QORsint64 modified);
// `files`: its .mof files, sorted.
MofInput describeMofFolder(const std::string& path, const std::vector<std::string>& files);

// The .mof files of a folder in the order of their names; the fault otherwise.
std::string listMofFolder(const std::string& path, std::vector<std::string>& files);
// The content of a file; the fault otherwise.
std::string readMofFile(const std::string& path, std::string& text);

// Whether reading it again would give the same. A file that has size and time
// of change as before is taken for the same, unless it changed so shortly
// before `written` (the clock's count when the cache was written) that the file
// system's clock may not tell; then, and when the time alone differs, its
// content is compared.
bool isMofInputUnchanged(const MofInput& input, QORsint64 written);

// The file system's clock.
QORsint64 mofClockNow();

#endif
