// Numbers have three forms of place. Integers stand under their 64 bits: in a
// filter an unsigned one equals a signed one of the same bits. Reals stand under
// themselves, and a value looks at both. Ranges stand in cells: the order of
// doubles, as 64-bit numbers, is cut into cells of 2^level; a range is split at
// the greatest boundary within it, and each part stands in the smallest cell
// that holds it, which is less than twice as wide.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLFilterKeys.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "Cimom/QORQL/Filter/CQLComparison.h"
#include "Cimom/QORQL/Filter/CQLIsa.h"
#include "Cimom/QORQL/Filter/CQLPropertyPath.h"
#include "Cimom/QORQL/QORQL_TextHash.h"

namespace cqlkeys {

namespace {

// What a hash stands for; hashes of all kinds lie in one tree.
enum Subject : QORuint64 {
  kClass = 1,
  kDirectory,
  kRest,
  kPath,
  kIsaPath,
  kText,
  kTruth,
  kInteger,
  kReal,
  kIsa,
  kCell
};

constexpr double kInfinity = std::numeric_limits<double>::infinity();

QORuint64 mix(QORuint64 seed, QORuint64 subject, QORuint64 bits) noexcept {
  return QORQL_mixBits(QORQL_mixBits(seed + subject) ^ bits);
}

QORuint64 textKey(QORuint64 path, std::string_view text) noexcept { return mix(path, kText, QORQL_hashText(text)); }
QORuint64 truthKey(QORuint64 path, bool value) noexcept { return mix(path, kTruth, value ? 1 : 0); }
QORuint64 integerKey(QORuint64 path, QORuint64 bits) noexcept { return mix(path, kInteger, bits); }
// Zero has one place for both signs.
QORuint64 realKey(QORuint64 path, double value) noexcept {
  return mix(path, kReal, std::bit_cast<QORuint64>(value == 0 ? 0.0 : value));
}

// The integer that equals the real, as its bits; false when none does.
bool integerOf(double value, QORuint64& bits) noexcept {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (value != std::floor(value) || value < -kTwoTo63 || value >= 2 * kTwoTo63) return false;
  bits = value < 0 ? static_cast<QORuint64>(static_cast<QORsint64>(value)) : static_cast<QORuint64>(value);
  return true;
}

// A number of the same order as the double's. REQUIRES no NaN.
QORuint64 ordinalOf(double value) noexcept {
  constexpr QORuint64 kSign = QORuint64{1} << 63;
  const QORuint64 bits = std::bit_cast<QORuint64>(value == 0 ? 0.0 : value);
  return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

QORuint64 cellKey(QORuint64 path, unsigned level, QORuint64 ordinal) noexcept {
  return mix(path + level, kCell, ordinal >> level);
}

double realOf(const QoriScalar& number) noexcept {
  if (number.kind == QoriScalarKind::Unsigned) return static_cast<double>(number.u);
  return number.kind == QoriScalarKind::Signed ? static_cast<double>(number.s) : number.r;
}

// An unsigned number that a signed one of the same bits is taken for.
bool looksNegative(const QoriScalar& number) noexcept {
  return number.kind == QoriScalarKind::Unsigned && number.u >> 63 != 0;
}

}  // namespace

QORuint64 foldedHash(QORuint64 seed, std::string_view name) noexcept {
  QORuint64 hash = seed ^ 0xcbf29ce484222325ULL;
  for (const char letter : name) {
    const bool isUpper = letter >= 'A' && letter <= 'Z';
    hash = (hash ^ static_cast<unsigned char>(isUpper ? letter + ('a' - 'A') : letter)) * 0x100000001b3ULL;
  }
  return QORQL_mixBits(hash);
}

QORuint64 classHash(const QORString& nameSpace, std::string_view className) noexcept {
  return mix(foldedHash(0, nameSpace.view()), kClass, foldedHash(0, className));
}

QORuint64 directoryHash(QORuint64 classHash) noexcept { return mix(classHash, kDirectory, 0); }

QORuint64 restHash(QORuint64 classHash) noexcept { return mix(classHash, kRest, 0); }

QORuint64 pathHash(QORuint64 classHash, const CQLAccess& access) {
  if (access.kind == CQLAccess::Kind::Isa) {
    return mix(classHash, kIsaPath, foldedHash(0, access.isa->propertyName().view()));
  }
  return mix(classHash, kPath, foldedHash(0, access.path->text()));
}

void addEqualKeys(QORuint64 pathHash, const QoriScalar& constant, std::vector<QORuint64>& keys) {
  switch (constant.kind) {
    case QoriScalarKind::Text: {
      keys.push_back(textKey(pathHash, constant.text->view()));
      const int truth = CQLComparison::truthOf(constant.text->view());
      if (truth >= 0) keys.push_back(truthKey(pathHash, truth == 1));
      return;
    }
    case QoriScalarKind::Unsigned:
    case QoriScalarKind::Signed:
      keys.push_back(integerKey(pathHash, constant.u));
      return;
    case QoriScalarKind::Real:
      if (constant.r == constant.r) keys.push_back(realKey(pathHash, constant.r));
      return;
    default:
      return;
  }
}

QORuint64 isaKey(QORuint64 pathHash, std::string_view className) noexcept {
  return mix(pathHash, kIsa, foldedHash(0, className));
}

bool Range::isNarrowed() const noexcept { return least != -kInfinity || greatest != kInfinity; }

bool Range::isBounded() const noexcept { return least != -kInfinity && greatest != kInfinity; }

// The ends stay in the range although < and > leave them out: a candidate too many
// costs one more test, one too few a match.
void narrow(Range& range, QoriRelation relation, const QoriScalar& constant) noexcept {
  if (!constant.isNumber() || looksNegative(constant)) return;
  const double bound = realOf(constant);
  if (bound != bound) return;
  const bool isUpper = relation == QoriRelation::Less || relation == QoriRelation::LessEqual;
  const bool isLower = relation == QoriRelation::Greater || relation == QoriRelation::GreaterEqual;
  if (isUpper) range.greatest = std::min(range.greatest, bound);
  if (isLower) range.least = std::max(range.least, bound);
}

void addRangeKeys(QORuint64 pathHash, const Range& range, std::vector<QORuint64>& keys, QORuint64& levels) {
  if (range.least > range.greatest) return;
  const QORuint64 least = ordinalOf(range.least);
  const QORuint64 greatest = ordinalOf(range.greatest);
  // The bits that the ends share are the smallest cell that holds both.
  const auto addCell = [&](QORuint64 from, QORuint64 to) {
    const unsigned level = static_cast<unsigned>(std::bit_width(from ^ to));
    levels |= QORuint64{1} << level;
    keys.push_back(cellKey(pathHash, level, from));
  };
  if (least == greatest) return addCell(least, greatest);
  // The greatest boundary: the bits of the end, with all bits after the first difference cleared.
  // Neither part differs in that bit, so no level is above 63.
  const unsigned difference = static_cast<unsigned>(std::bit_width(least ^ greatest)) - 1;
  const QORuint64 middle = greatest >> difference << difference;
  addCell(least, middle - 1);
  addCell(middle, greatest);
}

Probes::Probes(QORuint64 pathHash, const QoriScalar& value, bool hasEqual, QORuint64 levels) noexcept {
  switch (value.kind) {
    case QoriScalarKind::Text:
      if (hasEqual) add(textKey(pathHash, value.text->view()));
      return;
    case QoriScalarKind::Boolean:
      if (hasEqual) add(truthKey(pathHash, value.b));
      return;
    case QoriScalarKind::Unsigned:
    case QoriScalarKind::Signed:
    case QoriScalarKind::Real:
      if (value.kind == QoriScalarKind::Real && value.r != value.r) return;
      if (hasEqual) addNumber(pathHash, value);
      if (levels == 0) return;
      addCells(pathHash, realOf(value), levels);
      // Beside a signed constant it is compared as the signed number.
      if (looksNegative(value)) addCells(pathHash, static_cast<double>(value.s), levels);
      return;
    default:
      return;
  }
}

void Probes::addNumber(QORuint64 pathHash, const QoriScalar& value) noexcept {
  add(realKey(pathHash, realOf(value)));
  QORuint64 bits = value.u;
  if (value.kind != QoriScalarKind::Real || integerOf(value.r, bits)) add(integerKey(pathHash, bits));
}

void Probes::addCells(QORuint64 pathHash, double value, QORuint64 levels) noexcept {
  const QORuint64 ordinal = ordinalOf(value);
  for (; levels != 0; levels &= levels - 1) {
    add(cellKey(pathHash, static_cast<unsigned>(std::countr_zero(levels)), ordinal));
  }
}

}  // namespace cqlkeys
