// A list of mostly few values, which need no memory of their own then.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_FEWLIST_H
#define QORQL_FEWLIST_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

// The names are those of std::vector. A statement makes dozens of lists of one or two values: a column's blocks, a
// condition's columns. Up to kFew values lie in the list itself, more in a vector. Pointers and iterators are valid
// until values are added or dropped, or the list is moved. append() and resize() may stop half-way for want of memory.
template <class T, std::size_t kFew>
class QORQL_FewList {
 public:
  using value_type = T;
  using iterator = T*;
  using const_iterator = const T*;

  QORQL_FewList() = default;
  QORQL_FewList(std::initializer_list<T> values) { append(values.begin(), values.end()); }
  QORQL_FewList(const QORQL_FewList& other) { append(other.begin(), other.end()); }
  QORQL_FewList(QORQL_FewList&& other) noexcept { take(other); }
  QORQL_FewList& operator=(const QORQL_FewList& other) {
    if (this != &other) *this = QORQL_FewList(other);
    return *this;
  }
  QORQL_FewList& operator=(QORQL_FewList&& other) noexcept {
    if (this != &other) take(other);
    return *this;
  }
  ~QORQL_FewList() = default;

  std::size_t size() const noexcept { return _size; }
  bool empty() const noexcept { return _size == 0; }
  T* data() noexcept { return _size > kFew ? _many.data() : _few.data(); }
  const T* data() const noexcept { return _size > kFew ? _many.data() : _few.data(); }
  T* begin() noexcept { return data(); }
  T* end() noexcept { return data() + _size; }
  const T* begin() const noexcept { return data(); }
  const T* end() const noexcept { return data() + _size; }
  // REQUIRE that there is such a value.
  T& operator[](std::size_t index) noexcept { return data()[index]; }
  const T& operator[](std::size_t index) const noexcept { return data()[index]; }
  T& front() noexcept { return *data(); }
  const T& front() const noexcept { return *data(); }
  T& back() noexcept { return data()[_size - 1]; }
  const T& back() const noexcept { return data()[_size - 1]; }

  // Afterwards adding up to so many values takes no further memory.
  void reserve(std::size_t size) {
    if (size > kFew) _many.reserve(std::max(size, kLeast));
  }
  void push_back(T value) {
    if (_size < kFew) {
      _few[_size] = std::move(value);
    } else {
      if (_size == kFew) spill();
      _many.push_back(std::move(value));
    }
    ++_size;
  }
  // REQUIRES values of another list.
  template <class Iterator>
  void append(Iterator first, Iterator last) {
    for (; first != last; ++first) push_back(*first);
  }
  // Adds values as T() gives them, or drops the last ones.
  void resize(std::size_t size) {
    while (_size > size) dropLast();
    while (_size < size) push_back(T());
  }

  void clear() noexcept { *this = QORQL_FewList(); }

  friend bool operator==(const QORQL_FewList& a, const QORQL_FewList& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
  }

 private:
  static constexpr std::size_t kLeast = 2 * kFew;  // of what more than a few values take

  // Moves the first kFew values to where there is room for more.
  void spill() {
    _many.reserve(kLeast);
    _many.assign(std::make_move_iterator(_few.begin()), std::make_move_iterator(_few.end()));
  }
  void dropLast() noexcept {
    --_size;
    if (_size < kFew) {
      _few[_size] = T();
    } else if (_size == kFew) {
      std::move(_many.begin(), _many.end() - 1, _few.begin());
      _many.clear();
    } else {
      _many.pop_back();
    }
  }
  // The other one is empty afterwards.
  void take(QORQL_FewList& other) noexcept {
    _few = std::move(other._few);
    _many = std::move(other._many);
    other._many.clear();
    _size = std::exchange(other._size, 0);
  }

  std::size_t _size = 0;
  std::array<T, kFew> _few{};
  std::vector<T> _many;  // all of them, when they are more
};

#endif
