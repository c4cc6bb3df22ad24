// The foundation's string: counted, shared buffer, copied on write.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORSTRING_H
#define QORQL_CMPBASE_QORSTRING_H

#include <cstddef>
#include <cstring>
#include <iosfwd>
#include <string_view>
#include <utility>

#include "cmpbase/QORAtomicInt.h"
#include "cmpbase/QORSlabs.h"
#include "cmpbase/QORTypes.h"

// A run of bytes (UTF-8 by convention; case folding is ASCII only) that may
// contain zero bytes and is always zero-terminated. Copying costs one count.
// A default-constructed string, and one made from a null char pointer, is null:
// it compares equal to the empty string, but isNull() tells it apart.
// Different threads may use copies that share a buffer; one object is not
// synchronised. Operations that build a new text may throw std::bad_alloc.
class QORString {
 public:
  // No position, and to the end.
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);

  QORString() noexcept : _rep(&nullRep()) {}
  QORString(const char* text);  // null gives a null string
  QORString(const char* text, std::size_t length);
  explicit QORString(std::string_view text) : QORString(text.data(), text.size()) {}
  // A text without data is empty here, not null. Takes memory of the slabs, which need not live longer than this call.
  QORString(std::string_view text, QORSlabs& slabs);
  QORString(const QORString& other) noexcept : _rep(other._rep) { _rep->addRef(); }
  QORString(QORString&& other) noexcept : _rep(std::exchange(other._rep, &nullRep())) {}
  ~QORString() { _rep->release(); }

  QORString& operator=(const QORString& other) noexcept {
    other._rep->addRef();
    _rep->release();
    _rep = other._rep;
    return *this;
  }
  QORString& operator=(QORString&& other) noexcept {
    std::swap(_rep, other._rep);
    return *this;
  }

  // BORROW: valid until this string is changed or goes; never null.
  const char* c_str() const noexcept { return _rep->text(); }
  const char* data() const noexcept { return _rep->text(); }
  std::size_t length() const noexcept { return _rep->_length; }
  bool isEmpty() const noexcept { return _rep->_length == 0; }
  bool isNull() const noexcept { return _rep == &nullRep(); }
  std::string_view view() const noexcept { return {data(), length()}; }
  char operator[](std::size_t index) const noexcept { return data()[index]; }

  // The shared empty string (not null), which lives as long as the process.
  static const QORString& emptyString() noexcept;

  // Zero when equal, below zero when this text comes first byte by byte. With
  // caseSensitive 0 ASCII letters compare without regard to case.
  int compareTo(const QORString& other, int caseSensitive = 1) const noexcept;
  bool isEqualCaseInsensitive(const QORString& other) const noexcept { return equalIgnoringCase(view(), other.view()); }
  static bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept;

  // Byte by byte.
  bool beginsWith(const QORString& prefix) const noexcept;
  // True when `other` occurs as a contiguous run; the empty string always does.
  bool contains(const QORString& other, bool caseSensitive = true) const noexcept;
  // Byte position of the first occurrence at or after `from`, or npos.
  std::size_t find(const QORString& other, std::size_t from = 0) const noexcept;
  // Bytes [start, start + count), clipped to the text.
  QORString subStr(std::size_t start, std::size_t count = npos) const;
  // Removes at both ends, in place, every byte that occurs in `bytes`.
  QORString& trim(const QORString& bytes);
  // ASCII letters to upper case, in place.
  QORString& toUpper();
  static QORString toUpperCase(const QORString& text);
  // An optional sign and at least one decimal digit, nothing else.
  bool isNumeric() const noexcept;
  // The leading decimal digits as a number; saturates at the greatest value; 0 without digits.
  QORuint64 atoui64() const noexcept;
  // The leading sign and digits as a number; saturates at both ends; 0 without digits.
  QORsint32 atoi() const noexcept;

  // Append.
  QORString& operator+=(const QORString& other) { return append(other.view()); }
  QORString& operator+=(const char* other);
  QORString& operator+=(char other) { return append({&other, 1}); }
  // Amortised constant time per byte while this object alone holds its buffer.
  QORString& append(std::string_view bytes);
  void reserve(std::size_t capacity);

  // Decimal digits.
  static QORString number(QORuint64 value);
  static QORString number(QORsint64 value);

  // Byte by byte; null and empty are equal.
  friend bool operator==(const QORString& a, const QORString& b) noexcept {
    return a._rep == b._rep || a.view() == b.view();
  }
  friend bool operator==(const QORString& a, const char* b) noexcept {
    return a.view() == (b == nullptr ? std::string_view() : std::string_view(b));
  }
  friend bool operator==(const QORString& a, char b) noexcept { return a.length() == 1 && a[0] == b; }
  friend bool operator<(const QORString& a, const QORString& b) noexcept { return a.view() < b.view(); }
  // Join; a null char pointer counts as empty.
  friend QORString operator+(QORString a, const QORString& b) { return std::move(a += b); }
  friend QORString operator+(QORString a, const char* b) { return std::move(a += b); }
  friend QORString operator+(const char* a, const QORString& b) {
    QORString joined(a);
    joined += b;
    return joined;
  }
  // Writes the bytes, zero bytes too.
  friend std::ostream& operator<<(std::ostream& out, const QORString& text);

 private:
  // Buffer header; the bytes follow it. A capacity of 0 marks the two static
  // ones, which are never counted nor freed.
  struct Rep {
    QORAtomicInt _shared{1};
    QORSlabs::Place _place = QORSlabs::kNowhere;  // where its memory comes from
    std::size_t _length = 0;
    std::size_t _capacity = 0;
    char _first = '\0';

    char* text() noexcept { return reinterpret_cast<char*>(this) + offsetof(Rep, _first); }
    void addRef() noexcept {
      if (_capacity != 0) _shared.atomicInc();
    }
    void release() noexcept {
      if (_capacity != 0 && _shared.dropHold()) destroy(this);
    }
    static void destroy(Rep* rep) noexcept;
  };

  struct Everlasting;

  explicit constexpr QORString(Rep& rep) noexcept : _rep(&rep) {}
  static Rep& nullRep() noexcept { return _nullRep; }
  static Rep* newRep(std::size_t length, std::size_t capacity);
  static Rep* makeRep(void* memory, std::size_t length, std::size_t capacity) noexcept;
  // Makes this object the only holder of a buffer of at least `capacity` bytes.
  void makeUnique(std::size_t capacity);

  static Rep _nullRep;
  static Rep _emptyRep;
  static constinit Everlasting _empty;

  Rep* _rep;
};

// Never destroyed: objects that are destroyed while the process ends may still use the text.
struct QORString::Everlasting {
  constexpr explicit Everlasting(Rep& rep) noexcept : _text(rep) {}
  ~Everlasting() {}
  union {
    QORString _text;
  };
};

inline const QORString& QORString::emptyString() noexcept { return _empty._text; }

// The hash of every map key in the engine: 32-bit FNV-1a over the bytes. The
// iteration order of maps, and so the order of added outer-join rows, follows it.
QORuint32 hashKeyQORString(const QORString& key) noexcept;
// The same of bytes that follow others, whose hash is given.
constexpr QORuint32 hashKeyBytes(std::string_view bytes, QORuint32 hash = 2166136261U) noexcept {
  for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
  return hash;
}

#endif
