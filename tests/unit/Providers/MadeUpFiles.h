// Made-up sources of the providers: files in a folder of their own, and what is logged meanwhile.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_MADEUPFILES_H
#define QORQL_TESTS_MADEUPFILES_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"

// A folder that goes with the object.
class MadeUpFiles {
 public:
  MadeUpFiles() {
    std::string pattern = std::filesystem::temp_directory_path() / "qorql-made-up-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("there is no room for made-up files");
    _folder = pattern;
  }
  MadeUpFiles(const MadeUpFiles&) = delete;
  MadeUpFiles& operator=(const MadeUpFiles&) = delete;
  ~MadeUpFiles() {
    std::error_code ignored;
    std::filesystem::remove_all(_folder, ignored);
  }

  std::string path(const std::string& name = "") const { return name.empty() ? _folder : _folder + '/' + name; }
  // Writes a file, with the folders that lead to it. Returns its path.
  std::string write(const std::string& name, const std::string& content) const {
    std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

 private:
  std::string _folder;
};

// Keeps the warnings of the providers while it lives.
class KeptWarnings {
 public:
  KeptWarnings() {
    _manager.makeCurrent();
    _manager.setLogSink(
        [this](const QORString&, const QORString& message, QORuint32) { _lines.emplace_back(message.view()); },
        QoriTraceLog::kWarning);
  }
  KeptWarnings(const KeptWarnings&) = delete;
  KeptWarnings& operator=(const KeptWarnings&) = delete;
  ~KeptWarnings() { _manager.setLogSink({}, QoriTraceLog::kFatal); }

  const std::vector<std::string>& lines() const { return _lines; }

 private:
  EmbeddedObjectManager _manager;
  std::vector<std::string> _lines;
};

#endif
