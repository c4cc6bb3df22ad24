// Collection and order of the faults of a load.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofReport.h"

#include <algorithm>
#include <utility>

void MofReport::add(const MofLocation& at, const std::string& message) {
  if (isFull()) return;
  MofDiagnostic diagnostic = at.source->diagnose(at.offset, message);
  // The keys of an instance are read once for each alias that is used before it, so a fault may be found twice.
  for (const MofDiagnostic& known : _faults) {
    const bool isSamePlace = known.line == diagnostic.line && known.column == diagnostic.column;
    if (isSamePlace && known.file == diagnostic.file && known.message == diagnostic.message) return;
  }
  _faults.push_back(std::move(diagnostic));
}

void MofReport::addFile(const std::string& file, const std::string& message) {
  if (isFull()) return;
  MofDiagnostic diagnostic;
  diagnostic.file = file;
  diagnostic.message = message;
  _faults.push_back(std::move(diagnostic));
}

void MofReport::raise() const {
  if (_faults.empty()) return;
  // Reading and declaring are two passes: bring the faults of a file together,
  // files in the order of their first fault.
  std::vector<std::string> files;
  for (const MofDiagnostic& fault : _faults) {
    if (std::find(files.begin(), files.end(), fault.file) == files.end()) {
      files.push_back(fault.file);
    }
  }
  std::vector<MofDiagnostic> ordered;
  for (const std::string& file : files) {
    const std::size_t first = ordered.size();
    for (const MofDiagnostic& fault : _faults) {
      if (fault.file == file) ordered.push_back(fault);
    }
    std::stable_sort(ordered.begin() + static_cast<std::ptrdiff_t>(first), ordered.end(),
                     [](const MofDiagnostic& a, const MofDiagnostic& b) {
                       return a.line != b.line ? a.line < b.line : a.column < b.column;
                     });
  }
  throw MofException(std::move(ordered));
}
