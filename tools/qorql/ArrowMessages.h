// The messages of an Arrow IPC stream.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_ARROWMESSAGES_H
#define QORQL_TOOL_ARROWMESSAGES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ArrowType.h"

struct ArrowField {
  std::string name;
  ArrowType type;
  std::string cimType;  // told as metadata "cim:type"; empty: not told
};

// The content of rows: arrays with their buffers, in the format's order. One object is filled again and again.
class ArrowBatch {
 public:
  struct Array {
    std::int64_t length = 0;
    std::int64_t nulls = 0;
  };
  struct Buffer {
    std::int64_t offset = 0;
    std::int64_t length = 0;
  };

  void addArray(std::int64_t length, std::int64_t nulls) { _arrays.push_back({length, nulls}); }
  void addBuffer(std::string_view bytes);
  void clear();

  const std::vector<Array>& arrays() const noexcept { return _arrays; }
  const std::vector<Buffer>& buffers() const noexcept { return _buffers; }
  // The buffers, each of them padded.
  const std::string& body() const noexcept { return _body; }

 private:
  std::vector<Array> _arrays;
  std::vector<Buffer> _buffers;
  std::string _body;
};

// A schema, and the rows of a batch but for its body, which follows.
std::string arrowSchemaMessage(const std::vector<ArrowField>& fields);
std::string arrowBatchMessage(std::int64_t rowCount, const ArrowBatch& batch);
// What stands behind the last batch.
std::string_view arrowEndOfStream() noexcept;
// A message that is cut: a stream that ends so is not whole, and readers say so.
std::string_view arrowBrokenStream() noexcept;

#endif
