// The doubly linked list that is the engine's collection, with its iterator.
#ifndef QORQL_CMPBASE_QORVALSLIST_H
#define QORQL_CMPBASE_QORVALSLIST_H

#include <memory>
#include <new>
#include <utility>

#include "cmpbase/QORSlabs.h"
#include "cmpbase/QORTypes.h"

template <class T>
class QORValSlistIterator;

// Throw the container's errors; out of line, so that this header needs no exception class.
[[noreturn]] void qorRaiseOutOfBounds();                 // THROWS QORBoundsException, "Out of Bounds"
[[noreturn]] void qorRaiseEmptyList(const char* where);  // THROWS QORBoundsException, "Empty List"

template <class T>
class QORValSlistItem {
 public:
  explicit QORValSlistItem(const T& data) : _data(data) {}
  explicit QORValSlistItem(T&& data) : _data(std::move(data)) {}
  QORValSlistItem* _previous = nullptr;
  QORValSlistItem* _next = nullptr;
  T _data;
};

// Holds copies of its values. Not synchronised: one thread at a time. Access by
// index walks from the nearest of head, tail and the last position asked for,
// so that walking by index in either direction costs constant time per step;
// because of that remembered position even const access must not be shared
// between threads, except iteration and first/last.
template <class T>
class QORValSlist {
 public:
  enum SortOrder { NotSorted = 0, Ascending = 1, Descending = 2 };

  QORValSlist() noexcept = default;
  QORValSlist(const QORValSlist& other) { appendCopies(other); }
  QORValSlist(QORValSlist&& other) noexcept { swap(other); }
  ~QORValSlist() { clear(); }
  QORValSlist& operator=(const QORValSlist& other) {
    if (this != &other) {
      QORValSlist copy(other);
      swap(copy);
    }
    return *this;
  }
  QORValSlist& operator=(QORValSlist&& other) noexcept {
    swap(other);
    return *this;
  }

  // Appending to a non-empty list makes it NotSorted.
  void append(const T& value) { linkBefore(nullptr, newItem(value)); }
  void append(T&& value) { linkBefore(nullptr, newItem(std::move(value))); }
  // The same with memory of the slabs, which need not live longer than this
  // call; a list that has begun without slabs goes on without them.
  void append(const T& value, QORSlabs& slabs) { linkBefore(nullptr, newItemIn(slabs, value)); }
  void append(T&& value, QORSlabs& slabs) { linkBefore(nullptr, newItemIn(slabs, std::move(value))); }
  void append(const QORValSlist& other) {
    const QORuint32 count = other._entries;  // the list may be appended to itself
    Item* item = other._head;
    for (QORuint32 i = 0; i < count; ++i, item = item->_next) append(item->_data);
  }
  void prepend(const T& value) { linkBefore(_head, newItem(value)); }
  // `index` equal to entries() appends. THROWS QORBoundsException past that.
  void insertAt(QORuint32 index, const T& value) {
    Item* const place = index == _entries ? nullptr : _advanceTo(index);
    linkBefore(place, newItem(value));
  }
  // Inserts before the first value that must follow it in the list's order; appends when unsorted.
  void addSorted(const T& value) {
    const SortOrder order = _sortOrder;
    Item* item = order == NotSorted ? nullptr : _head;
    while (item != nullptr && !precedes(value, item->_data, order)) item = item->_next;
    linkBefore(item, newItem(value));
    _sortOrder = order;
  }

  // THROWS QORBoundsException "Out of Bounds" when index >= entries().
  T& at(QORuint32 index) { return _advanceTo(index)->_data; }
  const T& at(QORuint32 index) const { return _advanceTo(index)->_data; }
  T& operator[](QORuint32 index) { return at(index); }
  const T& operator[](QORuint32 index) const { return at(index); }
  // THROW QORBoundsException "Out of Bounds" on an empty list.
  T& first() { return checked(_head)->_data; }
  const T& first() const { return checked(_head)->_data; }
  T& last() { return checked(_last)->_data; }
  const T& last() const { return checked(_last)->_data; }

  // Remove and return a copy. THROW QORBoundsException "Out of Bounds" when there is no such element.
  T removeAt(QORuint32 index) { return unlink(_advanceTo(index)); }
  T removeFirst() { return unlink(checked(_head)); }
  T removeLast() { return unlink(checked(_last)); }
  // Removes the first equal element; false when there is none.
  bool removeObject(const T& value) {
    Item* const item = findNode(value);
    if (item == nullptr) return false;
    unlink(item);
    return true;
  }

  bool contains(const T& value) const { return findNode(value) != nullptr; }
  // Index of the first equal element, -1 when absent.
  QORsint32 getIndex(const T& value) const {
    QORsint32 index = 0;
    for (Item* item = _head; item != nullptr; item = item->_next, ++index) {
      if (item->_data == value) return index;
    }
    return -1;
  }
  // BORROWS: the stored value, or null.
  T* findItem(const T& value) const {
    Item* const item = findNode(value);
    return item == nullptr ? nullptr : &item->_data;
  }

  QORuint32 entries() const noexcept { return _entries; }
  bool isEmpty() const noexcept { return _entries == 0; }
  // Calls use(value) for each value from the head on. REQUIRES that it leaves the list alone.
  template <class Use>
  void forEach(const Use& use) const {
    for (const Item* item = _head; item != nullptr; item = item->_next) use(item->_data);
  }
  void clear() noexcept {
    while (_head != nullptr) {
      Item* const next = _head->_next;
      freeItem(_head);
      _head = next;
    }
    _last = nullptr;
    _entries = 0;
    _remembered = nullptr;
  }

  friend bool operator==(const QORValSlist& a, const QORValSlist& b) {
    if (a._entries != b._entries) return false;
    for (Item *x = a._head, *y = b._head; x != nullptr; x = x->_next, y = y->_next) {
      if (!(x->_data == y->_data)) return false;
    }
    return true;
  }
  friend bool operator!=(const QORValSlist& a, const QORValSlist& b) { return !(a == b); }

  SortOrder sort() const noexcept { return _sortOrder; }
  // Bottom-up merge sort that relinks items. On equal values the right run's
  // element is taken first, so equal values do not keep their order. Any other
  // order value marks the list NotSorted and leaves it as it is. When a
  // comparison throws, the list keeps all its elements, in unspecified order.
  void sort(SortOrder order);

  // The first of equal extremes. THROW QORBoundsException "Empty List".
  const T& Min() const { return extreme("QORValSlist::Min", Ascending); }
  const T& Max() const { return extreme("QORValSlist::Max", Descending); }

 private:
  friend class QORValSlistIterator<T>;
  using Item = QORValSlistItem<T>;

  // Before each item of a list that has taken memory from slabs: where the item's comes from.
  struct Head {
    QORSlabs::Place _place = QORSlabs::kNowhere;
  };
  static constexpr std::size_t kHeadSize = QORSlabs::kAlignment;
  static_assert(sizeof(Head) <= kHeadSize);

  template <class Data>
  Item* newItem(Data&& data) {
    if (!_hasPlaces) return new Item(std::forward<Data>(data));
    return makeItem(::operator new(kHeadSize + sizeof(Item)), QORSlabs::kNowhere, std::forward<Data>(data));
  }
  template <class Data>
  Item* newItemIn(QORSlabs& slabs, Data&& data) {
    static_assert(alignof(Item) <= QORSlabs::kAlignment);
    if (_head == nullptr) _hasPlaces = true;
    if (!_hasPlaces) return newItem(std::forward<Data>(data));
    QORSlabs::Place place = QORSlabs::kNowhere;
    void* const memory = slabs.take(kHeadSize + sizeof(Item), place);
    return makeItem(memory, place, std::forward<Data>(data));
  }
  template <class Data>
  static Item* makeItem(void* memory, QORSlabs::Place place, Data&& data) {
    ::new (memory) Head{place};
    try {
      return ::new (static_cast<void*>(static_cast<char*>(memory) + kHeadSize)) Item(std::forward<Data>(data));
    } catch (...) {
      QORSlabs::freeMemory(memory, place);
      throw;
    }
  }
  void freeItem(Item* item) noexcept {
    if (!_hasPlaces) {
      delete item;
      return;
    }
    void* const memory = reinterpret_cast<char*>(item) - kHeadSize;
    const QORSlabs::Place place = static_cast<const Head*>(memory)->_place;
    std::destroy_at(item);
    QORSlabs::freeMemory(memory, place);
  }

  static Item* checked(Item* item) {
    if (item == nullptr) qorRaiseOutOfBounds();
    return item;
  }
  static bool precedes(const T& a, const T& b, SortOrder order) {
    return order == Descending ? static_cast<bool>(a > b) : static_cast<bool>(a < b);
  }
  void swap(QORValSlist& other) noexcept {
    std::swap(_head, other._head);
    std::swap(_last, other._last);
    std::swap(_entries, other._entries);
    std::swap(_sortOrder, other._sortOrder);
    std::swap(_remembered, other._remembered);
    std::swap(_rememberedIndex, other._rememberedIndex);
    std::swap(_hasPlaces, other._hasPlaces);
  }
  void appendCopies(const QORValSlist& other) {
    try {
      append(other);
      _sortOrder = other._sortOrder;
    } catch (...) {
      clear();
      throw;
    }
  }
  // Links a new item before `place`, at the tail when that is null.
  void linkBefore(Item* place, Item* item) noexcept {
    Item* const previous = place == nullptr ? _last : place->_previous;
    item->_previous = previous;
    item->_next = place;
    (previous == nullptr ? _head : previous->_next) = item;
    (place == nullptr ? _last : place->_previous) = item;
    if (_entries++ != 0) _sortOrder = NotSorted;
    if (place != nullptr) _remembered = nullptr;
  }
  T unlink(Item* item) {
    T data(std::move(item->_data));
    (item->_previous == nullptr ? _head : item->_previous->_next) = item->_next;
    (item->_next == nullptr ? _last : item->_next->_previous) = item->_previous;
    freeItem(item);
    --_entries;
    _remembered = nullptr;
    return data;
  }
  Item* findNode(const T& value) const {
    Item* item = _head;
    while (item != nullptr && !(item->_data == value)) item = item->_next;
    return item;
  }
  Item* _advanceTo(QORuint32 index) const;
  const T& extreme(const char* where, SortOrder order) const {
    if (_head == nullptr) qorRaiseEmptyList(where);
    const Item* best = _head;
    for (const Item* item = _head->_next; item != nullptr; item = item->_next) {
      if (precedes(item->_data, best->_data, order)) best = item;
    }
    return best->_data;
  }
  // Takes `width` items off the front of the rest and returns the run.
  static Item* cutRun(Item*& rest, QORuint32 width) noexcept;
  void appendChain(Item* chain) noexcept;

  Item* _head = nullptr;
  Item* _last = nullptr;
  QORuint32 _entries = 0;
  SortOrder _sortOrder = NotSorted;
  mutable Item* _remembered = nullptr;
  mutable QORuint32 _rememberedIndex = 0;
  bool _hasPlaces = false;  // whether its items have heads
};

template <class T>
QORValSlistItem<T>* QORValSlist<T>::_advanceTo(QORuint32 index) const {
  if (index >= _entries) qorRaiseOutOfBounds();
  Item* item = _head;
  QORuint32 position = 0;
  if (_entries - 1 - index < index) {
    item = _last;
    position = _entries - 1;
  }
  if (_remembered != nullptr) {
    const auto distance = [index](QORuint32 from) { return from < index ? index - from : from - index; };
    if (distance(_rememberedIndex) < distance(position)) {
      item = _remembered;
      position = _rememberedIndex;
    }
  }
  for (; position < index; ++position) item = item->_next;
  for (; position > index; --position) item = item->_previous;
  _remembered = item;
  _rememberedIndex = index;
  return item;
}

template <class T>
QORValSlistItem<T>* QORValSlist<T>::cutRun(Item*& rest, QORuint32 width) noexcept {
  Item* const run = rest;
  Item* last = run;
  for (QORuint32 i = 1; i < width && last != nullptr; ++i) last = last->_next;
  if (last == nullptr) {
    rest = nullptr;
  } else {
    rest = last->_next;
    last->_next = nullptr;
  }
  return run;
}

template <class T>
void QORValSlist<T>::appendChain(Item* chain) noexcept {
  while (chain != nullptr) {
    Item* const next = chain->_next;
    chain->_previous = _last;
    chain->_next = nullptr;
    (_last == nullptr ? _head : _last->_next) = chain;
    _last = chain;
    chain = next;
  }
}

template <class T>
void QORValSlist<T>::sort(SortOrder order) {
  if (order != Ascending && order != Descending) {
    _sortOrder = NotSorted;
    return;
  }
  _remembered = nullptr;
  for (QORuint64 width = 1; width < _entries; width *= 2) {
    Item* rest = _head;
    _head = _last = nullptr;
    const QORuint32 length = static_cast<QORuint32>(width);
    while (rest != nullptr) {
      Item* left = cutRun(rest, length);
      Item* right = cutRun(rest, length);
      try {
        while (left != nullptr && right != nullptr) {
          Item*& taken = precedes(left->_data, right->_data, order) ? left : right;
          Item* const item = taken;
          taken = item->_next;
          item->_next = nullptr;
          appendChain(item);
        }
      } catch (...) {
        appendChain(left);
        appendChain(right);
        appendChain(rest);
        _sortOrder = NotSorted;
        throw;
      }
      appendChain(left);
      appendChain(right);
    }
  }
  _sortOrder = order;
}

// Walks a list that outlives it. A fresh iterator has no current element. The
// list may be changed through the iterator's own remove() only.
template <class T>
class QORValSlistIterator {
 public:
  explicit QORValSlistIterator(const QORValSlist<T>& list) noexcept : _list(const_cast<QORValSlist<T>&>(list)) {}

  // Moves to the head first, then to the next element; false, for good, past the last.
  bool operator++() noexcept {
    if (_reachedEnd) return false;
    _current = _removed ? _afterRemoved : (_current == nullptr ? _list._head : _current->_next);
    _removed = false;
    _reachedEnd = _current == nullptr;
    return !_reachedEnd;
  }
  bool operator()() noexcept { return ++*this; }
  bool operator+=(QORuint32 count) noexcept {
    bool hasCurrent = _current != nullptr;
    while (count-- != 0) hasCurrent = ++*this;
    return hasCurrent;
  }
  // THROWS QORBoundsException "Out of Bounds" when no element is current.
  T& key() const { return QORValSlist<T>::checked(_current)->_data; }
  void reset() noexcept {
    _current = nullptr;
    _removed = false;
    _reachedEnd = false;
  }
  bool hasNext() const noexcept {
    if (_reachedEnd) return false;
    if (_removed) return _afterRemoved != nullptr;
    return (_current == nullptr ? _list._head : _current->_next) != nullptr;
  }
  // Takes the current element out of the list and returns it; the next step
  // moves to the element after it. THROWS as key().
  T remove() {
    QORValSlistItem<T>* const item = QORValSlist<T>::checked(_current);
    _afterRemoved = item->_next;
    _removed = true;
    _current = nullptr;
    return _list.unlink(item);
  }

 private:
  QORValSlist<T>& _list;
  QORValSlistItem<T>* _current = nullptr;
  QORValSlistItem<T>* _afterRemoved = nullptr;
  bool _removed = false;
  bool _reachedEnd = false;
};

#endif
