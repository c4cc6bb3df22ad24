// A folder for the store of one test.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_SERVER_STOREFOLDER_H
#define QORQL_TESTS_UNIT_SERVER_STOREFOLDER_H

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>

class StoreFolder {
 public:
  StoreFolder() {
    static std::atomic<int> count{0};
    const std::string name = "qorql-store-" + std::to_string(getpid()) + "-" + std::to_string(++count);
    _folder = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directory(_folder);
  }
  StoreFolder(const StoreFolder&) = delete;
  StoreFolder& operator=(const StoreFolder&) = delete;
  ~StoreFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(_folder, ignored);
  }

  std::string file() const { return (_folder / "store.db").string(); }
  void overwrite(long at, const std::string& bytes) const {
    std::fstream stream(file(), std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(at);
    stream << bytes;
  }

 private:
  std::filesystem::path _folder;
};

#endif
