// Cells lie one behind the other in chunks.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofRows.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kChunk = std::size_t{1} << 18U;

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
    _chunks.push_back(std::unique_ptr<char[]>(new char[_left]));
    _chunkSize = _left;
  }
  char* const place = _chunks.back().get() + (_chunkSize - _left);
  std::memcpy(place, cells.data(), cells.size());
  _left -= cells.size();
  return {place, cells.size()};
}
