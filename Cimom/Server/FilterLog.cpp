// Keeps the last changes.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/FilterLog.h"

#include <exception>

void FilterLog::note(const std::vector<FilterChange>& changes) noexcept {
  try {
    for (const FilterChange& change : changes) {
      _changes.push_back(change);
      if (_changes.size() > kMost) _changes.pop_front();
      ++_version;
    }
  } catch (const std::exception&) {
    // Without memory for them whoever follows asks for all.
    reset();
  }
}

void FilterLog::reset() noexcept {
  _changes.clear();
  ++_version;
}

std::optional<std::vector<FilterChange>> FilterLog::since(QORuint64 version) const {
  if (version > _version || _version - version > _changes.size()) return std::nullopt;
  return std::vector<FilterChange>(_changes.end() - static_cast<std::ptrdiff_t>(_version - version), _changes.end());
}
