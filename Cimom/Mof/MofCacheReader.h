// From the bytes of a cache to what a load declared.
// Tested by tests/unit/Mof/MofCacheTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFCACHEREADER_H
#define QORQL_MOF_MOFCACHEREADER_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Mof/MofInput.h"

// The bytes are rows of instances, each behind its length (4); the tables of each class; the tables of what else was
// declared, which tell where those of a class lie; and the sizes of the last two (8 each). Each part and each class
// begins at a place that 8 divides. Numbers are in the byte order of the machine that wrote them. BORROWS the bytes,
// which must outlive it.
class MofCacheReader {
 public:
  // A class of the load by namespace and name, from its text. THROWS QoriBaseException when it cannot be had.
  using Text = std::function<CimClassDeclaration(const QORString& nameSpace, const QORString& className)>;

  // Checks that every offset and length in the tables lies inside them, but for those of the classes, which are checked
  // when a class is read. THROWS std::runtime_error when one does not.
  explicit MofCacheReader(std::string_view bytes);

  std::string key() const;
  // When it was written, by the file system's clock.
  QORsint64 written() const;
  std::vector<MofInput> inputs() const;
  // Declares what the load declared, as one transaction. THROWS
  // std::exception when the content makes no sense; nothing is stored then.
  void declare(CimDeclarationSink& sink) const { declare(sink, nullptr, {}); }
  // The same, where rows may become instances, and classes be read, when they are needed: `owner` keeps the bytes. A
  // class that turns out to be damaged is taken from the text; without one whoever asks for it gets a
  // QoriBaseException.
  void declare(CimDeclarationSink& sink, const std::shared_ptr<const void>& owner, const Text& text) const;

 private:
  std::string_view _rows;
  std::string_view _classes;
  std::string_view _tables;
};

#endif
