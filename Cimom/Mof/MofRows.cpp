// Cells lie one behind the other in chunks.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofRows.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace {

// Small enough for the memory of released ones to serve what is made of the rows.
constexpr std::size_t kChunk = 60000;

}  // namespace

QORuint32 MofRows::form(const QORString& nameSpace, std::string_view className,
                        const std::vector<std::string_view>& names) {
  std::string key(nameSpace.view());
  key.append(1, ':').append(className);
  for (const std::string_view name : names) key.append(1, ' ').append(name);
  const auto known = _numbers.find(key);
  if (known != _numbers.end()) return known->second;
  if (_forms.size() >= kMaximumForms) return kMaximumForms;
  MofRowForm added{nameSpace, QORString(className), {}};
  for (const std::string_view name : names) added.names.emplace_back(name);
  const QORuint32 number = static_cast<QORuint32>(_forms.size());
  _forms.push_back(std::move(added));
  _numbers.emplace(std::move(key), number);
  return number;
}

std::string_view MofRows::keep(std::string_view cells) {
  if (_chunks.empty() || cells.size() > _left) {
    _left = std::max(kChunk, cells.size());
    _chunks.push_back({std::unique_ptr<char[]>(new char[_left]), _left});
  }
  const Chunk& last = _chunks.back();
  char* const place = last.bytes.get() + (last.size - _left);
  std::memcpy(place, cells.data(), cells.size());
  _left -= cells.size();
  return {place, cells.size()};
}

void MofRows::releaseBefore(std::string_view cells) noexcept {
  const std::less_equal<const char*> isAtMost;
  while (_released + 1 < _chunks.size()) {
    Chunk& oldest = _chunks[_released];
    const char* const begin = oldest.bytes.get();
    if (isAtMost(begin, cells.data()) && isAtMost(cells.data() + cells.size(), begin + oldest.size)) return;
    oldest.bytes.reset();
    ++_released;
  }
}
