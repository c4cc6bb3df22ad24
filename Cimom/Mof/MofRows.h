// Instances of a document as rows of bytes.
// Tested by tests/unit/Mof/MofRowTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFROWS_H
#define QORQL_MOF_MOFROWS_H

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Cimom/Mof/MofSource.h"
#include "cmpbase.h"

// A plain instance: what its form's properties hold, as CimRowReader reads it. BORROWS the bytes and the source.
struct MofRow {
  const MofSource* source = nullptr;
  std::size_t offset = 0;  // of the word "instance"
  std::string_view cells;
  QORuint32 form = 0;
  QORuint32 scope = 0;  // of aliases
};

// What instances that are written alike have in common.
struct MofRowForm {
  QORString nameSpace;
  QORString className;
  std::vector<QORString> names;  // of the properties, as they are written
};

// The forms of a document's rows, and the memory of their cells.
class MofRows {
 public:
  // Instances of more forms than that are no rows.
  static constexpr std::size_t kMaximumForms = 1024;

  const std::vector<MofRowForm>& forms() const noexcept { return _forms; }
  // The form's number; kMaximumForms when there are too many.
  QORuint32 form(const QORString& nameSpace, std::string_view className, const std::vector<std::string_view>& names);
  // A copy of the cells that lives as long as this does, or until it is released.
  std::string_view keep(std::string_view cells);
  // What was kept before these cells is needed no more: its memory goes back. To be called in the order of keeping.
  void releaseBefore(std::string_view cells) noexcept;

 private:
  struct Chunk {
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
  };

  std::vector<MofRowForm> _forms;
  std::unordered_map<std::string, QORuint32> _numbers;  // of the forms, by what they hold
  std::vector<Chunk> _chunks;
  std::size_t _released = 0;  // so many of the chunks
  std::size_t _left = 0;      // unused bytes of the last one
};

#endif
