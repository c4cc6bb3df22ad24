// Walks a database of the C library with a buffer that grows as its entries need it.
// Tested by tests/unit/Providers/LinuxAccountsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXENTRYREADER_H
#define QORQL_PROVIDERS_LINUXENTRYREADER_H

#include <cerrno>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

// Of the entries of getpwent_r, getgrent_r and their kin. These read an entry once more when the buffer was too small
// for it. One thread at a time; where the database has one position for the whole process, the caller keeps others from
// it.
template <class Entry>
class LinuxEntryReader {
 public:
  using Read = std::function<int(Entry*, char*, std::size_t, Entry**)>;

  // An entry that needs more than this is none of a sound database.
  static constexpr std::size_t kGreatestBuffer = std::size_t{64} << 20;

  explicit LinuxEntryReader(Read read, std::size_t buffer = 4096) : _read(std::move(read)), _buffer(buffer) {}

  // BORROWS: good until the next call. Null at the end, and where the database cannot be read any further.
  const Entry* next() {
    for (;;) {
      Entry* found = nullptr;
      errno = 0;
      const int code = _read(&_entry, _buffer.data(), _buffer.size(), &found);
      if (code == 0 && found != nullptr) return found;
      // The code of a database that cannot be opened is that of the end; errno tells the one from the other.
      _error = errno != 0 ? errno : code;
      if (code != ERANGE || _buffer.size() >= kGreatestBuffer) return nullptr;
      _buffer.resize(_buffer.size() * 2);
    }
  }
  // Why next() gave null; 0 or ENOENT at the end.
  int error() const noexcept { return _error; }

 private:
  const Read _read;
  std::vector<char> _buffer;
  Entry _entry{};
  int _error = 0;
};

#endif
