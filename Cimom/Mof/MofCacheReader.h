// From the bytes of a cache to what a load declared.
// Tested by tests/unit/Mof/MofCacheTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFCACHEREADER_H
#define QORQL_MOF_MOFCACHEREADER_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Mof/MofInput.h"

// BORROWS the bytes, which must outlive it.
class MofCacheReader {
 public:
  // Checks that every offset and length in the bytes lies inside them. THROWS
  // std::runtime_error when one does not.
  explicit MofCacheReader(std::string_view bytes);

  std::string key() const;
  // When it was written, by the file system's clock.
  QORsint64 written() const;
  std::vector<MofInput> inputs() const;
  // Declares what the load declared, as one transaction. THROWS
  // std::exception when the content makes no sense; nothing is stored then.
  void declare(CimDeclarationSink& sink) const;

 private:
  std::string_view _bytes;
};

#endif
