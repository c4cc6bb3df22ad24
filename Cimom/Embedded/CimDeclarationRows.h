// Instances as rows of bytes: the form in which many instances of one class reach the store.
// Tested by tests/unit/Embedded/InstanceRowTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_CIMDECLARATIONROWS_H
#define QORQL_EMBEDDED_CIMDECLARATIONROWS_H

#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "cmpbase.h"

// A row is one cell after the other, in the order of the properties that somebody listed. A
// cell is a byte of its kind and what that needs: 8 bytes of a number, in the byte
// order of the machine; 4 of a length and the bytes of a text; 4 of a count
// and the cells of an array's elements.
enum class CimCellKind : unsigned char { Null, False, True, Unsigned, Signed, Real, Text, Array };

// A cell that was read. BORROWS the text from the row.
struct CimCell {
  CimCellKind kind = CimCellKind::Null;
  union {
    QORuint64 u = 0;
    QORsint64 s;
    QORreal64 r;
    QORuint32 count;  // of elements, which follow as cells
  };
  std::string_view text;
};

// Appends cells to a row.
class CimRowWriter {
 public:
  // BORROWS the row.
  explicit CimRowWriter(std::string& row) noexcept : _row(row) {}

  // Null, False or True.
  void putWord(CimCellKind kind) { _row += static_cast<char>(kind); }
  void putUnsigned(QORuint64 value) { putFixed(CimCellKind::Unsigned, value); }
  void putSigned(QORsint64 value) { putFixed(CimCellKind::Signed, value); }
  void putReal(QORreal64 value) { putFixed(CimCellKind::Real, value); }
  // REQUIRES less than 4 GB.
  void putText(std::string_view text) {
    putFixed(CimCellKind::Text, static_cast<QORuint32>(text.size()));
    _row += text;
  }
  // An array whose elements are to be put next; the result goes to endArray().
  std::size_t beginArray() {
    putFixed(CimCellKind::Array, QORuint32{0});
    return _row.size();
  }
  void endArray(std::size_t begun, QORuint32 count) {
    std::memcpy(_row.data() + begun - sizeof count, &count, sizeof count);
  }

 private:
  template <class Number>
  void putFixed(CimCellKind kind, Number number) {
    char bytes[1 + sizeof number];
    bytes[0] = static_cast<char>(kind);
    std::memcpy(bytes + 1, &number, sizeof number);
    _row.append(bytes, sizeof bytes);
  }

  std::string& _row;
};

// Reads the cells of a row, whatever its bytes are.
class CimRowReader {
 public:
  // BORROWS the bytes.
  explicit CimRowReader(std::string_view row) noexcept : _rest(row) {}

  bool isAtEnd() const noexcept { return _rest.empty(); }
  const char* place() const noexcept { return _rest.data(); }
  // False when there is no whole cell; an array's elements are cells of their own.
  bool next(CimCell& cell) noexcept {
    if (_rest.empty() || static_cast<unsigned char>(_rest[0]) > static_cast<unsigned char>(CimCellKind::Array)) {
      return false;
    }
    cell.kind = static_cast<CimCellKind>(_rest[0]);
    _rest.remove_prefix(1);
    switch (cell.kind) {
      case CimCellKind::Unsigned:
      case CimCellKind::Signed:
      case CimCellKind::Real:
        return take(&cell.u, sizeof cell.u);
      case CimCellKind::Text:
        return takeText(cell);
      case CimCellKind::Array:
        return take(&cell.count, sizeof cell.count);
      default:
        return true;
    }
  }

 private:
  bool take(void* into, std::size_t size) noexcept {
    if (_rest.size() < size) return false;
    std::memcpy(into, _rest.data(), size);
    _rest.remove_prefix(size);
    return true;
  }
  bool takeText(CimCell& cell) noexcept {
    QORuint32 length = 0;
    if (!take(&length, sizeof length) || _rest.size() < length) return false;
    cell.text = _rest.substr(0, length);
    _rest.remove_prefix(length);
    return true;
  }

  std::string_view _rest;
};

// Takes the first of several rows, each behind its length, off the front; false when there is no whole one.
inline bool takeCimRow(std::string_view& rows, std::string_view& row) noexcept {
  QORuint32 length = 0;
  if (rows.size() < sizeof length) return false;
  std::memcpy(&length, rows.data(), sizeof length);
  if (rows.size() - sizeof length < length) return false;
  row = rows.substr(sizeof length, length);
  rows.remove_prefix(sizeof length + length);
  return true;
}

// Stores instances of one class that give the same properties. Belongs to the transaction in which
// it was got.
class CimInstanceMaker {
 public:
  virtual ~CimInstanceMaker() = default;
  // Stores the instance of a row whose cells are the properties' values, in the order of the properties. False, and
  // nothing is stored, when the row is not one that can be stored just so; createInstance() then does it or tells
  // what is at fault. Numbers fit by their value, not by the kind of their cell: an unsigned cell may fill a
  // signed or a real property. THROWS std::bad_alloc alone.
  virtual bool create(std::string_view row) = 0;
  // The same for so many rows, each behind its length (4 bytes), that may become instances when somebody needs them:
  // their cells are looked at now, and `owner` keeps the bytes as long as they are needed. REQUIRES that no two have
  // one path, as of rows that create() took once. False, and the load is to be rolled back, when one cannot be stored.
  virtual bool createLater(std::string_view rows, QORuint32 count, const std::shared_ptr<const void>& owner);
};

#endif
