// From the bytes of a cache to what a load declared.
// Tested by tests/unit/Mof/MofCacheTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFCACHEREADER_H
#define QORQL_MOF_MOFCACHEREADER_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Mof/MofInput.h"

// The bytes are rows of instances, each behind its length (4); from a place that 8 divides on the
// tables of what else was declared; at the end the tables' size (8). Numbers are in the byte order of the machine
// that wrote them. BORROWS the bytes, which must outlive it.
class MofCacheReader {
 public:
  // Checks that every offset and length in the tables lies inside them. THROWS
  // std::runtime_error when one does not.
  explicit MofCacheReader(std::string_view bytes);

  std::string key() const;
  // When it was written, by the file system's clock.
  QORsint64 written() const;
  std::vector<MofInput> inputs() const;
  // Declares what the load declared, as one transaction. THROWS
  // std::exception when the content makes no sense; nothing is stored then.
  void declare(CimDeclarationSink& sink) const { declare(sink, nullptr); }
  // The same, where rows may become instances when they are needed: `owner` keeps the bytes.
  void declare(CimDeclarationSink& sink, const std::shared_ptr<const void>& owner) const;

 private:
  std::string_view _rows;
  std::string_view _bytes;  // of the tables
};

#endif
