// What is wrong with MOF text: one diagnostic for each fault, and the
// exception that carries all of a load.
// Tested by tests/unit/Mof/MofSyntaxTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFERROR_H
#define QORQL_MOF_MOFERROR_H

#include <cstddef>
#include <string>
#include <vector>

#include "cmpbase.h"

// One fault. Lines and columns count from 1; a column is one character of the
// UTF-8 text, a tab included.
struct MofDiagnostic {
  std::string file;
  QORuint32 line = 0;  // 0: the fault concerns the file as a whole
  QORuint32 column = 0;
  std::string message;
  std::string sourceLine;  // a long line is cut around the fault, "..." marks the cuts
  QORuint32 caret = 0;     // characters of sourceLine before the fault

  // "file:line:column: message", the source line and a caret under the fault.
  std::string toText() const;
};

// The refusal of a load: nothing of it was stored. Type "MOF", code 4 (CIM
// status "invalid parameter"); the message is the text of all diagnostics.
class MofException : public QoriBaseException {
 public:
  // A load ends early when it has that many faults.
  static constexpr std::size_t kMaximumFaults = 20;

  // REQUIRES at least one fault.
  explicit MofException(std::vector<MofDiagnostic> diagnostics);
  MofException(const MofException&) = default;
  MofException& operator=(const MofException&) = default;
  ~MofException() override;

  // In the order of files and lines; never empty, at most kMaximumFaults.
  const std::vector<MofDiagnostic>& getDiagnostics() const noexcept { return _diagnostics; }

 private:
  std::vector<MofDiagnostic> _diagnostics;
};

// The faults of a load that passed over what they concern.
struct MofFaults {
  // Further faults are only counted.
  static constexpr std::size_t kMaximumShown = 100;

  std::vector<MofDiagnostic> shown;  // in the order of files and lines
  std::size_t count = 0;             // with those that are not shown
};

#endif
