// The foundation's string: buffer management and text operations.
// SPDX-License-Identifier: Apache-2.0
#include "cmpbase/QORString.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <new>
#include <ostream>

namespace {

constexpr char foldCase(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
constexpr bool isSign(char c) noexcept { return c == '+' || c == '-'; }

// The leading digits as a number, `limit` when they exceed it.
QORuint64 leadingDigits(std::string_view text, QORuint64 limit) noexcept {
  QORuint64 number = 0;
  for (const char c : text) {
    if (!isDigit(c)) break;
    const QORuint64 digit = static_cast<QORuint64>(c - '0');
    if (number > (limit - digit) / 10) return limit;
    number = number * 10 + digit;
  }
  return number;
}

template <class Number>
QORString formatNumber(Number value) {
  char buffer[24];
  const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return QORString(buffer, static_cast<std::size_t>(result.ptr - buffer));
}

}  // namespace

constinit QORString::Rep QORString::_nullRep{};
constinit QORString::Rep QORString::_emptyRep{};
constinit QORString::Everlasting QORString::_empty{QORString::_emptyRep};

QORString::Rep* QORString::makeRep(void* memory, std::size_t length, std::size_t capacity) noexcept {
  Rep* const rep = ::new (memory) Rep;
  rep->_length = length;
  rep->_capacity = capacity;
  rep->text()[length] = '\0';
  return rep;
}

QORString::Rep* QORString::newRep(std::size_t length, std::size_t capacity) {
  if (capacity > std::numeric_limits<std::ptrdiff_t>::max() - sizeof(Rep)) throw std::bad_alloc();
  // sizeof(Rep) covers the terminating zero: _first is one byte of it.
  return makeRep(::operator new(sizeof(Rep) + capacity), length, capacity);
}

void QORString::Rep::destroy(Rep* rep) noexcept { QORSlabs::freeMemory(rep, rep->_place); }

QORString::QORString(const char* text) : QORString(text, text == nullptr ? 0 : std::strlen(text)) {}

QORString::QORString(const char* text, std::size_t length) : _rep(text == nullptr ? &_nullRep : &_emptyRep) {
  if (text == nullptr || length == 0) return;
  _rep = newRep(length, length);
  std::memcpy(_rep->text(), text, length);
}

QORString::QORString(std::string_view text, QORSlabs& slabs) : _rep(&_emptyRep) {
  if (text.empty()) return;
  QORSlabs::Place place = QORSlabs::kNowhere;
  // Slabs round up, so that a Rep fits in with the shortest text.
  static_assert(sizeof(Rep) - offsetof(Rep, _first) <= QORSlabs::kAlignment);
  void* const memory = slabs.take(offsetof(Rep, _first) + text.size() + 1, place);
  _rep = makeRep(memory, text.size(), text.size());
  _rep->_place = place;
  std::memcpy(_rep->text(), text.data(), text.size());
}

bool QORString::equalIgnoringCase(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) return false;
  if (a.data() == b.data()) return true;  // of one buffer
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i] && foldCase(a[i]) != foldCase(b[i])) return false;
  }
  return true;
}

int QORString::compareTo(const QORString& other, int caseSensitive) const noexcept {
  if (_rep == other._rep) return 0;
  if (caseSensitive != 0) return view().compare(other.view());
  const std::size_t common = std::min(length(), other.length());
  for (std::size_t i = 0; i < common; ++i) {
    const int difference =
        static_cast<unsigned char>(foldCase((*this)[i])) - static_cast<unsigned char>(foldCase(other[i]));
    if (difference != 0) return difference;
  }
  return length() == other.length() ? 0 : (length() < other.length() ? -1 : 1);
}

bool QORString::beginsWith(const QORString& prefix) const noexcept { return view().starts_with(prefix.view()); }

bool QORString::contains(const QORString& other, bool caseSensitive) const noexcept {
  if (caseSensitive) return find(other) != npos;
  const std::string_view text = view();
  const std::string_view wanted = other.view();
  const auto equal = [](char a, char b) { return foldCase(a) == foldCase(b); };
  return wanted.empty() || std::search(text.begin(), text.end(), wanted.begin(), wanted.end(), equal) != text.end();
}

std::size_t QORString::find(const QORString& other, std::size_t from) const noexcept {
  if (from > length()) return npos;
  // memmem takes linear time for all texts, which a naive search does not;
  // but it prepares the search, which takes longer than searching a short text.
  constexpr std::size_t kShort = 128;
  if (length() <= kShort) return view().find(other.view(), from);
  const void* const found = memmem(data() + from, length() - from, other.data(), other.length());
  return found == nullptr ? npos : static_cast<std::size_t>(static_cast<const char*>(found) - data());
}

QORString QORString::subStr(std::size_t start, std::size_t count) const {
  if (start == 0 && count >= length()) return *this;
  if (start >= length()) return emptyString();
  return QORString(data() + start, std::min(count, length() - start));
}

QORString& QORString::trim(const QORString& bytes) {
  const std::size_t first = view().find_first_not_of(bytes.view());
  if (first == npos) return isEmpty() ? *this : *this = emptyString();
  const std::size_t last = view().find_last_not_of(bytes.view());
  if (first != 0 || last + 1 != length()) *this = subStr(first, last + 1 - first);
  return *this;
}

QORString& QORString::toUpper() {
  const auto isLower = [](char c) { return c >= 'a' && c <= 'z'; };
  if (std::none_of(data(), data() + length(), isLower)) return *this;
  makeUnique(length());
  char* const text = _rep->text();
  std::transform(text, text + length(), text,
                 [isLower](char c) { return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c; });
  return *this;
}

QORString QORString::toUpperCase(const QORString& text) {
  QORString upper(text);
  upper.toUpper();
  return upper;
}

bool QORString::isNumeric() const noexcept {
  const std::string_view text = view();
  const std::string_view digits = !text.empty() && isSign(text.front()) ? text.substr(1) : text;
  return !digits.empty() && std::all_of(digits.begin(), digits.end(), isDigit);
}

QORuint64 QORString::atoui64() const noexcept { return leadingDigits(view(), std::numeric_limits<QORuint64>::max()); }

QORsint32 QORString::atoi() const noexcept {
  constexpr QORuint64 kGreatest = std::numeric_limits<QORsint32>::max();
  const std::string_view text = view();
  const std::string_view digits = !text.empty() && isSign(text.front()) ? text.substr(1) : text;
  if (!text.empty() && text.front() == '-') {
    return static_cast<QORsint32>(-static_cast<QORsint64>(leadingDigits(digits, kGreatest + 1)));
  }
  return static_cast<QORsint32>(leadingDigits(digits, kGreatest));
}

QORString& QORString::operator+=(const char* other) {
  return other == nullptr ? *this : append(std::string_view(other));
}

QORString& QORString::append(std::string_view bytes) {
  if (bytes.empty()) return *this;
  const std::size_t oldLength = length();
  const std::size_t newLength = oldLength + bytes.size();
  if (newLength < oldLength) throw std::bad_alloc();
  if (newLength > _rep->_capacity || _rep->_shared.getValue() != 1) {
    // The old buffer stays until `bytes`, which may lie in it, are copied.
    Rep* const grown = newRep(oldLength, std::max(newLength, oldLength + oldLength / 2));
    std::memcpy(grown->text(), data(), oldLength);
    std::memcpy(grown->text() + oldLength, bytes.data(), bytes.size());
    _rep->release();
    _rep = grown;
  } else {
    std::memcpy(_rep->text() + oldLength, bytes.data(), bytes.size());
  }
  _rep->_length = newLength;
  _rep->text()[newLength] = '\0';
  return *this;
}

void QORString::reserve(std::size_t capacity) {
  if (capacity > _rep->_capacity) makeUnique(capacity);
}

void QORString::makeUnique(std::size_t capacity) {
  if (_rep->_capacity != 0 && _rep->_capacity >= capacity && _rep->_shared.getValue() == 1) return;
  Rep* const copy = newRep(length(), std::max(capacity, length()));
  std::memcpy(copy->text(), data(), length());
  _rep->release();
  _rep = copy;
}

QORString QORString::number(QORuint64 value) { return formatNumber(value); }
QORString QORString::number(QORsint64 value) { return formatNumber(value); }

std::ostream& operator<<(std::ostream& out, const QORString& text) { return out << text.view(); }

QORuint32 hashKeyQORString(const QORString& key) noexcept { return hashKeyBytes(key.view()); }
