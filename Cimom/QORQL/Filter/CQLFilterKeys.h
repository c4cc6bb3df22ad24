// The places of an index: those that a filter can hang on, and those where an
// instance finds the filters that may match it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLFILTERKEYS_H
#define QORQL_CQLFILTERKEYS_H

#include <limits>
#include <span>
#include <vector>

#include "Cimom/QORQL/Filter/CQLAccess.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// Hashes stand for names and values. Two may share one: an index holds candidates,
// each of which is asked in the end.
namespace cqlkeys {

// The hash of a name without regard to the case of ASCII letters, joined to another.
QORuint64 foldedHash(QORuint64 seed, std::string_view name) noexcept;

// Of the filters of one FROM class in one namespace.
QORuint64 classHash(const QORString& nameSpace, std::string_view className) noexcept;
// Where the directory of a class's paths stands, and its filters that hang on nothing else.
QORuint64 directoryHash(QORuint64 classHash) noexcept;
QORuint64 restHash(QORuint64 classHash) noexcept;

// Where an instance is read, below a class: by a path, or for the test of a class.
QORuint64 pathHash(QORuint64 classHash, const CQLAccess& access);

// The place of `path = constant`: one, or two for the texts TRUE and FALSE, which
// booleans equal. Empty for a constant that has no such place.
void addEqualKeys(QORuint64 pathHash, const QoriScalar& constant, std::vector<QORuint64>& keys);
// The place of `path ISA className`.
QORuint64 isaKey(QORuint64 pathHash, std::string_view className) noexcept;

// A range of numbers, its ends included.
struct Range {
  double least = -std::numeric_limits<double>::infinity();
  double greatest = std::numeric_limits<double>::infinity();
  bool isNarrowed() const noexcept;
  bool isBounded() const noexcept;
};
// Narrows a range by a condition that says something of numbers.
void narrow(Range& range, QoriRelation relation, const QoriScalar& constant) noexcept;
// The places of a range: the cells of a ladder of powers of two that cover it.
// `levels` gains a bit for each level of the ladder in use.
void addRangeKeys(QORuint64 pathHash, const Range& range, std::vector<QORuint64>& keys, QORuint64& levels);

// The places where filters stand that an instance with the value may match; an
// array of them at most, so that nothing is allocated.
class Probes {
 public:
  Probes(QORuint64 pathHash, const QoriScalar& value, bool hasEqual, QORuint64 levels) noexcept;
  std::span<const QORuint64> keys() const noexcept { return {_keys, _count}; }

 private:
  void addNumber(QORuint64 pathHash, const QoriScalar& value) noexcept;
  void addCells(QORuint64 pathHash, double value, QORuint64 levels) noexcept;
  void add(QORuint64 key) noexcept { _keys[_count++] = key; }

  static constexpr std::size_t kMost = 2 * 64 + 4;
  QORuint64 _keys[kMost];
  std::size_t _count = 0;
};

}  // namespace cqlkeys

#endif
