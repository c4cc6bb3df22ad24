// What a peer made of a workload, small enough to compare: rows and a checksum of the cells.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_ANSWER_H
#define QORQL_BENCH_ANSWER_H

#include <cstdint>
#include <cstring>
#include <string_view>

namespace bench {

// Peers hand each cell of each row to an answer, so that none can leave one out.
// Rows count in any order, cells within a row in theirs. A thorough answer looks
// at every byte; the other kind, which is the one that is timed, at both ends.
class Answer {
 public:
  explicit Answer(bool isThorough = false) noexcept : _isThorough(isThorough) {}

  void text(std::string_view cell) noexcept { add(_isThorough ? allOf(cell) : endsOf(cell)); }
  void number(std::uint64_t cell) noexcept { add(cell); }
  void real(double cell) noexcept {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &cell, sizeof bits);
    add(bits);
  }
  void null() noexcept { add(kNull); }
  // Sort keys count in the order in which they come.
  void sortKey(std::uint64_t key) noexcept { _order = _order * kPrime + key; }
  void endRow() noexcept {
    ++_rows;
    _cells += _row ^ (_row >> 29);
    _row = kSeed;
  }
  // A whole document.
  void document(std::string_view bytes) noexcept {
    _rows += 1;
    _cells += _isThorough ? allOf(bytes) : bytes.size();
  }
  void documentSize(std::uint64_t bytes) noexcept {
    _rows += 1;
    _cells += bytes;
  }

  bool isThorough() const noexcept { return _isThorough; }
  std::uint64_t rows() const noexcept { return _rows; }
  // One number for everything that was handed over.
  std::uint64_t checksum() const noexcept { return (_cells * kPrime + _order) * kPrime + _rows; }
  friend bool operator==(const Answer& a, const Answer& b) noexcept {
    return a._rows == b._rows && a._cells == b._cells && a._order == b._order;
  }

 private:
  static constexpr std::uint64_t kSeed = 0x9E3779B97F4A7C15u;
  static constexpr std::uint64_t kPrime = 0x100000001B3u;
  static constexpr std::uint64_t kNull = 0xD1B54A32D192ED03u;

  static std::uint64_t allOf(std::string_view bytes) noexcept {
    std::uint64_t hash = kSeed;
    for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * kPrime;
    return hash;
  }
  static std::uint64_t endsOf(std::string_view bytes) noexcept {
    if (bytes.empty()) return kSeed;
    const auto byteAt = [&](std::size_t at) {
      return static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[at]));
    };
    return bytes.size() * kSeed + byteAt(0) * 131 + byteAt(bytes.size() - 1);
  }
  void add(std::uint64_t cell) noexcept { _row = (_row ^ cell) * kSeed; }

  bool _isThorough;
  std::uint64_t _rows = 0;
  std::uint64_t _cells = 0;
  std::uint64_t _row = kSeed;
  std::uint64_t _order = 0;
};

}  // namespace bench

#endif
