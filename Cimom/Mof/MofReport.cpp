// Collection and order of the faults of a load.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofReport.h"

#include <algorithm>
#include <utility>

// The keys of an instance are read once for each alias that is used before it, and a file once for each namespace,
// so a fault may be found twice.
bool MofReport::isKnown(const MofFault& fault) {
  const MofSource& source = *fault.at.source;
  const std::size_t outer = source.outermostOffset(fault.at.offset);
  const std::string& what = fault.subject.empty() ? fault.message : fault.subject;
  const std::string inner = &source.outermost() == &source ? "" : '@' + std::to_string(fault.at.offset);
  return !_known.insert(source.getName() + '\n' + std::to_string(outer) + inner + '\n' + what).second;
}

void MofReport::add(const MofFault& fault) {
  if (fault.at.source == nullptr || isFull() || isKnown(fault)) return;
  if (!fault.subject.empty()) {
    const auto [known, isNew] = _subjects.try_emplace(fault.subject, _faults.size());
    if (!isNew && known->second < _faults.size()) return addPlace(_faults[known->second], fault);
    if (!isNew) return;
    if (_faults.size() >= limit()) known->second = std::string::npos;
  }
  ++_count;
  if (_faults.size() >= limit()) return;
  const std::size_t offset = fault.at.source->outermostOffset(fault.at.offset);
  _faults.push_back({fault.at.source->diagnose(fault.at.offset, fault.message), offset, 1});
}

// The first place is the one that is shown.
void MofReport::addPlace(Fault& first, const MofFault& fault) {
  ++first.places;
  const std::size_t offset = fault.at.source->outermostOffset(fault.at.offset);
  if (fault.at.source->getName() != first.diagnostic.file || offset >= first.offset) return;
  first.diagnostic = fault.at.source->diagnose(fault.at.offset, fault.message);
  first.offset = offset;
}

void MofReport::addFile(const std::string& file, const std::string& message) {
  if (isFull()) return;
  ++_count;
  if (_faults.size() >= limit()) return;
  MofDiagnostic diagnostic;
  diagnostic.file = file;
  diagnostic.message = message;
  _faults.push_back({std::move(diagnostic), 0, 1});
}

void MofReport::raise() const {
  if (!_isLenient && !_faults.empty()) throw MofException(inOrder());
}

std::vector<MofDiagnostic> MofReport::inOrder() const {
  // Reading and declaring are two passes: bring the faults of a file together,
  // files in the order of their first fault.
  std::unordered_map<std::string, std::size_t> files;
  for (const Fault& fault : _faults) files.try_emplace(fault.diagnostic.file, files.size());
  std::vector<MofDiagnostic> ordered;
  for (const Fault& fault : _faults) {
    ordered.push_back(fault.diagnostic);
    if (fault.places == 1) continue;
    const char* const least = isFull() ? "at least " : "";
    ordered.back().message += " (first of " + (least + std::to_string(fault.places)) + " places)";
  }
  std::stable_sort(ordered.begin(), ordered.end(), [&files](const MofDiagnostic& a, const MofDiagnostic& b) {
    const std::size_t left = files[a.file];
    const std::size_t right = files[b.file];
    return left != right ? left < right : a.line != b.line ? a.line < b.line : a.column < b.column;
  });
  return ordered;
}
