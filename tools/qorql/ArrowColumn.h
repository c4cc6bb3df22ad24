// The values of one column as the arrays of an Arrow batch.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_ARROWCOLUMN_H
#define QORQL_TOOL_ARROWCOLUMN_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ArrowMessages.h"
#include "ArrowType.h"
#include "cimom/CQoriType.h"
#include "cimom/IQoriValue.h"

// One array while it is filled.
class ArrowArray {
 public:
  void appendNull() { mark(false); }
  template <class Value>
  void appendFixed(Value value) {
    mark(true);
    _bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  // A place for the value of a NULL.
  void appendZeros(std::size_t count) { _bytes.append(count, '\0'); }
  void appendBit(bool isSet) { appendBit(_bytes, _length, isSet); }
  void appendText(std::string_view text);
  // Where the values of the row end in another array, or its text in this one.
  void appendOffset(std::size_t offset);

  // Marks a value that is there, or NULL.
  void mark(bool isValid);
  std::int64_t length() const noexcept { return _length; }
  std::size_t byteCount() const noexcept { return _bytes.size() + _offsets.size() * sizeof(std::int32_t); }
  std::size_t textSize() const noexcept { return _bytes.size(); }

  // Hands the array over and empties it. Which buffers it has, its type says.
  void take(ArrowBatch& batch, bool hasOffsets, bool hasBytes);
  // Of an array of the type Null, which has none.
  void takeWithoutBuffers(ArrowBatch& batch);

 private:
  static void appendBit(std::string& bits, std::int64_t index, bool isSet);
  void clear();

  std::int64_t _length = 0;
  std::int64_t _nulls = 0;
  std::string _validity;
  std::vector<std::int32_t> _offsets = {0};
  std::string _bytes;
};

class ArrowColumn {
 public:
  ArrowColumn(const ResultColumn& column, std::string name);

  const ArrowField& field() const noexcept { return _field; }
  // Null for NULL. A value that the column's type does not hold exactly THROWS QoriBaseException (type "tool"), which
  // names the column.
  void append(const IQoriValue* value);
  // About as much as is held.
  std::size_t byteCount() const noexcept { return _array.byteCount() + _elements.byteCount(); }
  void take(ArrowBatch& batch);

 private:
  void appendList(const IQoriValue& value);
  void appendScalar(ArrowArray& array, const IQoriValue* value);
  void appendNull(ArrowArray& array) const;
  void appendNumber(ArrowArray& array, const IQoriValue& value);
  void appendInteger(ArrowArray& array, const IQoriValue& value);
  void appendReal(ArrowArray& array, const IQoriValue& value);
  void appendMoment(ArrowArray& array, const IQoriValue& value);
  void appendText(ArrowArray& array, const IQoriValue& value);
  void takeArray(ArrowArray& array, ArrowBatch& batch) const;
  bool holdsText(const IQoriValue& value) const;
  [[noreturn]] void refuse(const IQoriValue& value) const;

  ArrowField _field;
  const bool _hasValueTexts;
  const DateTimes _dateTimes;
  const CQoriType::Code _code;
  ArrowArray _array;     // of the column
  ArrowArray _elements;  // of lists
};

#endif
