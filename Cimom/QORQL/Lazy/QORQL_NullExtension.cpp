// Paths are written one after the other into the same text; what two neighbours
// share at the front is hashed once.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_NullExtension.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string>
#include <string_view>

#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_MapBuckets.h"
#include "Cimom/QORQL/QORQL_OuterJoin.h"
#include "Cimom/QORQL/QORQL_TextHash.h"

namespace {

// The map's hash of texts, each of which shares much of its beginning with the one before.
class MapHash {
 public:
  QORuint32 of(const std::string& text) {
    const std::size_t common = std::min(text.size(), _text.size());
    const std::size_t same = static_cast<std::size_t>(
        std::mismatch(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(common), _text.begin()).first -
        text.begin());
    _states.resize(text.size() + 1);
    for (std::size_t i = same; i < text.size(); ++i) {
      _states[i + 1] = hashKeyBytes(std::string_view(text).substr(i, 1), _states[i]);
    }
    _text = text;
    return _states[text.size()];
  }

 private:
  std::string _text;
  std::vector<QORuint32> _states{hashKeyBytes({})};  // of each front part of the text
};

// The paths seen so far, by hash: two paths with one hash, which are very
// rare, count as the same.
class PathSet {
 public:
  explicit PathSet(QORuint64 greatestCount) {
    std::size_t size = 16;
    while (size < greatestCount * 2) size *= 2;
    _places.resize(size);
  }
  // Returns false when the path is known already.
  bool add(std::string_view path) {
    const QORuint64 hash = QORQL_hashText(path) | 1U;
    std::size_t place = (hash >> 1U) & (_places.size() - 1);
    for (; _places[place] != 0; place = (place + 1) & (_places.size() - 1)) {
      if (_places[place] == hash) return false;
    }
    _places[place] = hash;
    return true;
  }

 private:
  std::vector<QORuint64> _places;  // open addressing; 0 marks a free place
};

// Whether the objects' numbers prove that no two of them share a path.
bool haveDistinctNumbers(const QORQL_LazyRows& rows, const QORQL_RowBlock& block) {
  QORuint64 last = 0;
  for (QORuint64 row = 0; row < block.rowCount; ++row) {
    const IQoriObject* const object = rows.object(block.columns.front(), block.index(row, 0));
    if (object == nullptr) continue;
    const QORuint64 identity = object->getIdentity();
    if (identity <= last) return false;
    last = identity;
  }
  return true;
}

// Sorts the extensions from `start` on by bucket; those of one bucket keep their order.
void sortByBucket(std::vector<QORQL_NullExtension>& extensions, std::size_t start) {
  std::array<std::size_t, QORQL_kMapBuckets + 1> places{};
  for (std::size_t i = start; i < extensions.size(); ++i) ++places[extensions[i].bucket + 1];
  std::partial_sum(places.begin(), places.end(), places.begin());
  std::vector<QORQL_NullExtension> sorted(extensions.size() - start);
  for (std::size_t i = start; i < extensions.size(); ++i) sorted[places[extensions[i].bucket]++] = extensions[i];
  std::copy(sorted.begin(), sorted.end(), extensions.begin() + static_cast<std::ptrdiff_t>(start));
}

}  // namespace

bool QORQL_collectExtensions(const QORQL_LazyRows& rows, const QORQL_RowBlock& block,
                             const std::vector<bool>& isUnmatched, std::vector<QORQL_NullExtension>& extensions) {
  if (std::find(isUnmatched.begin(), isUnmatched.end(), true) == isUnmatched.end()) return true;
  const std::size_t start = extensions.size();
  extensions.reserve(start + static_cast<std::size_t>(std::count(isUnmatched.begin(), isUnmatched.end(), true)));
  const QORuint32 column = block.columns.front();
  const bool areDistinct = haveDistinctNumbers(rows, block);
  PathSet seen(areDistinct ? 0 : block.rowCount);
  MapHash hash;
  std::string path;
  const auto bucketOf = [&](const IQoriObject& object) {
    return (areDistinct ? object.getPathHash() : hash.of(path)) % QORQL_kMapBuckets;
  };
  QORQL_StopCheck stopCheck;
  for (QORuint64 row = 0; row < block.rowCount; ++row) {
    stopCheck.count();
    const QORuint32 index = block.index(row, 0);
    if (index == QORQL_kNoObject || (areDistinct && !isUnmatched[row])) continue;
    const IQoriObject& object = *rows.object(column, index);
    if (!areDistinct) {
      path.clear();
      object.appendPath(path);
      if (!seen.add(path)) return false;
    }
    if (isUnmatched[row]) extensions.push_back({bucketOf(object), column, index});
  }
  sortByBucket(extensions, start);
  return true;
}

namespace {

// Gives the block tuples for its rows.
void makeTuples(QORQL_RowBlock& block) {
  if (!block.isWholeExtent) return;
  block.isWholeExtent = false;
  block.tuples.resize(block.rowCount);
  std::iota(block.tuples.begin(), block.tuples.end(), QORuint32{0});
}

}  // namespace

void QORQL_appendExtendedRow(QORQL_LazyRows& rows, QORuint32 column, QORuint32 index) {
  QORQL_RowBlock& block = rows.blocks().front();
  makeTuples(block);
  for (const QORuint32 present : block.columns) block.tuples.push_back(present == column ? index : QORQL_kNoObject);
  ++block.rowCount;
}

void QORQL_appendExtendedRows(QORQL_LazyRows& rows, const std::vector<QORQL_NullExtension>& extensions) {
  if (extensions.empty()) return;
  QORQL_RowBlock& block = rows.blocks().front();
  makeTuples(block);
  const std::size_t width = block.columns.size();
  const std::size_t start = block.tuples.size();
  block.tuples.resize(start + extensions.size() * width, QORQL_kNoObject);
  QORuint32* tuple = block.tuples.data() + start;
  for (const QORQL_NullExtension& extension : extensions) {
    tuple[extension.column] = extension.index;  // the block has all columns, in their order
    tuple += width;
  }
  block.rowCount += extensions.size();
}
