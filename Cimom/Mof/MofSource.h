// A MOF text with its name, and places in it.
// Tested by tests/unit/Mof/MofSyntaxTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFSOURCE_H
#define QORQL_MOF_MOFSOURCE_H

#include <cstddef>
#include <string>
#include <string_view>

#include "Cimom/Mof/MofError.h"

class MofSource;

// A place in a text. REQUIRES that the text outlives it.
struct MofLocation {
  const MofSource* source = nullptr;
  std::size_t offset = 0;
};

// A text that is read; immutable. Line and column are counted when they are
// asked for: only diagnostics need them.
class MofSource {
 public:
  // A file or the caller's text. A UTF-8 byte order mark is skipped.
  MofSource(std::string name, std::string text);
  // The text of an embedded instance: the value of the string at `origin`.
  MofSource(std::string text, MofLocation origin);
  MofSource(const MofSource&) = delete;
  MofSource& operator=(const MofSource&) = delete;

  const std::string& getName() const noexcept { return _name; }
  std::string_view getText() const noexcept { return _text; }
  // Where scanning starts: after the byte order mark.
  std::size_t getStart() const noexcept { return _start; }

  // The fault at `offset` of this text. A fault in an embedded text is shown
  // where that text stands, the message tells the place inside.
  MofDiagnostic diagnose(std::size_t offset, const std::string& message) const;
  // BORROWS: the text that an embedded text stands in, at last; this one when it is none.
  const MofSource& outermost() const noexcept;
  // Where `offset` lies in the outermost text: where the embedded text stands.
  std::size_t outermostOffset(std::size_t offset) const noexcept;

 private:
  std::string _name;
  std::string _text;
  std::size_t _start = 0;
  MofLocation _origin;
};

// A fault on its way from where it is found to where it is recorded. One without a
// source has been recorded already, or follows from a fault that has.
struct MofFault {
  MofLocation at;
  std::string message;
  // Faults about one subject are one fault, with the number of its places. Empty: a fault of its own.
  std::string subject = {};
};

// A place as messages name it: "file:line:column".
std::string describeMofPlace(const MofLocation& at);

#endif
