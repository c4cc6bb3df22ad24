// The doubly linked list that is the engine's collection, with its iterator.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORVALSLIST_H
#define QORQL_CMPBASE_QORVALSLIST_H

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "cmpbase/QORSlabs.h"
#include "cmpbase/QORTypes.h"
#include "cmpbase/QORValSlistIterator.h"

// Throw the container's errors; out of line, so that this header needs no exception class.
[[noreturn]] void qorRaiseOutOfBounds();                 // THROWS QORBoundsException, "Out of Bounds"
[[noreturn]] void qorRaiseEmptyList(const char* where);  // THROWS QORBoundsException, "Empty List"

// A value in a list, which OWNS it.
template <class T>
class QORValSlistItem {
 public:
  // With a copy, or with the value itself.
  explicit QORValSlistItem(const T& data) : _data(data) {}
  explicit QORValSlistItem(T&& data) : _data(std::move(data)) {}
  QORValSlistItem* _previous = nullptr;
  QORValSlistItem* _next = nullptr;
  T _data;
};

// Holds copies of its values. Any number of threads may read one list together,
// by every operation that leaves its items where they are: those that are const,
// at(), operator[], first() and last() of a list that is not const, copying it,
// and iterators but for remove(). A list that is changed belongs to one thread.
//
// Access by index walks from the nearest of head, tail and the item last walked
// to, so that one thread's walk by index in either direction costs constant time
// per step. When long walks have become many, as where several threads walk, the
// places of all items are recorded, and from then on access by index costs
// constant time for all threads; the record takes a pointer for each item.
template <class T>
class QORValSlist {
 public:
  enum SortOrder : QORuint8 { NotSorted = 0, Ascending = 1, Descending = 2 };

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
  // call; a list that has begun without slabs continues without them.
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
    Item* const place = index == _entries ? nullptr : toBeChanged(index);
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
  T removeAt(QORuint32 index) { return unlink(toBeChanged(index)); }
  T removeFirst() { return unlink(checked(_head)); }
  T removeLast() { return unlink(checked(_last)); }
  // Removes the first equal element; false when there is none.
  bool removeObject(const T& value) {
    Item* const item = findNode(value);
    if (item == nullptr) return false;
    unlink(item);
    return true;
  }

  // Whether an element is equal. Costs a walk.
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

  // Cost nothing.
  QORuint32 entries() const noexcept { return _entries; }
  bool isEmpty() const noexcept { return _entries == 0; }
  // Calls use(value) for each value from the head on. REQUIRES that it does not change the list.
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
    dropPlaces();
  }

  // Element by element.
  friend bool operator==(const QORValSlist& a, const QORValSlist& b) {
    if (a._entries != b._entries) return false;
    for (Item *x = a._head, *y = b._head; x != nullptr; x = x->_next, y = y->_next) {
      if (!(x->_data == y->_data)) return false;
    }
    return true;
  }
  friend bool operator!=(const QORValSlist& a, const QORValSlist& b) { return !(a == b); }

  // The order of the last sort(order) that nothing has changed since.
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

  // Where the first `_count` items are. Those that the list gets later stand
  // after them; when places are recorded again, threads may still be reading the
  // older record, which is freed when the list next changes.
  struct Places {
    Places* _older;
    QORuint32 _count;
    Item** items() noexcept { return reinterpret_cast<Item**>(this + 1); }
  };
  static constexpr QORuint32 kNear = 8;         // steps that a record would not save
  static constexpr QORuint64 kWholeList = 256;  // what long walks over as many items as the list has count
  // A place and an item's address share a word, so that threads always see both of one item.
  static constexpr unsigned kPlaceBits = 19;
  static constexpr unsigned kAddressShift = 16;
  static constexpr QORuint64 kGreatestPlace = (QORuint64{1} << kPlaceBits) - 1;
  static constexpr std::memory_order kRelaxed = std::memory_order_relaxed;

  // Before each item of a list that has taken memory from slabs: where the item's comes from.
  struct Head {
    QORSlabs::Place _place = QORSlabs::kNowhere;
  };
  static constexpr std::size_t kHeadSize = QORSlabs::kAlignment;
  static_assert(sizeof(Head) <= kHeadSize);

  template <class Data>
  Item* newItem(Data&& data) {
    if (!_hasHeads) return new Item(std::forward<Data>(data));
    return makeItem(::operator new(kHeadSize + sizeof(Item)), QORSlabs::kNowhere, std::forward<Data>(data));
  }
  template <class Data>
  Item* newItemIn(QORSlabs& slabs, Data&& data) {
    static_assert(alignof(Item) <= QORSlabs::kAlignment);
    if (_head == nullptr) _hasHeads = true;
    if (!_hasHeads) return newItem(std::forward<Data>(data));
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
    if (!_hasHeads) {
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
    Places* const places = _places.load(kRelaxed);
    _places.store(other._places.load(kRelaxed), kRelaxed);
    other._places.store(places, kRelaxed);
    const QORuint64 remembered = _remembered.load(kRelaxed);
    _remembered.store(other._remembered.load(kRelaxed), kRelaxed);
    other._remembered.store(remembered, kRelaxed);
    _walked.store(0, kRelaxed);
    other._walked.store(0, kRelaxed);
    std::swap(_hasHeads, other._hasHeads);
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
    if (place != nullptr) _remembered.store(0, kRelaxed);
    if (_places.load(kRelaxed) != nullptr) keepPlaces(place == nullptr);
  }
  T unlink(Item* item) {
    T data(std::move(item->_data));
    (item->_previous == nullptr ? _head : item->_previous->_next) = item->_next;
    (item->_next == nullptr ? _last : item->_next->_previous) = item->_previous;
    freeItem(item);
    --_entries;
    dropPlaces();
    return data;
  }
  Item* findNode(const T& value) const {
    Item* item = _head;
    while (item != nullptr && !(item->_data == value)) item = item->_next;
    return item;
  }
  Item* _advanceTo(QORuint32 index) const {
    if (index >= _entries) qorRaiseOutOfBounds();
    Places* const places = _places.load(std::memory_order_acquire);
    if (places != nullptr && index < places->_count) return places->items()[index];
    return walkTo(index, places, true);
  }
  // The same for an item that is about to be removed or to get another one before it, for which a record would be
  // useless.
  Item* toBeChanged(QORuint32 index) const {
    if (index >= _entries) qorRaiseOutOfBounds();
    return walkTo(index, nullptr, false);
  }
  Item* walkTo(QORuint32 index, Places* known, bool isNoted) const noexcept;
  void remember(Item* item, QORuint32 index) const noexcept;
  [[gnu::noinline]] void noteWalk(QORuint32 steps, Places* known) const noexcept;
  void makePlaces(Places* known) const noexcept;
  // Before items change places. Nobody else reads the list then.
  void dropPlaces() noexcept {
    _remembered.store(0, kRelaxed);
    if (_places.load(kRelaxed) != nullptr) keepPlaces(false);
  }
  [[gnu::noinline]] void keepPlaces(bool hasGrown) noexcept;
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
  mutable std::atomic<QORuint16> _walked{0};  // long walks by index; counts of several threads may be lost
  SortOrder _sortOrder = NotSorted;
  bool _hasHeads = false;                         // whether its items have heads
  mutable std::atomic<QORuint64> _remembered{0};  // the last item that was walked to and its place; 0 for none
  mutable std::atomic<Places*> _places{nullptr};  // OWNS; null until long walks have become many
};

template <class T>
QORValSlistItem<T>* QORValSlist<T>::walkTo(QORuint32 index, Places* known, bool isNoted) const noexcept {
  const QORuint64 remembered = _remembered.load(kRelaxed);
  Item* item = std::bit_cast<Item*>(static_cast<std::uintptr_t>((remembered & ~kGreatestPlace) >> kAddressShift));
  QORuint32 position = static_cast<QORuint32>(remembered & kGreatestPlace);
  if (item != nullptr && position + 1 == index) {
    item = item->_next;
  } else {
    const auto distance = [index](QORuint32 from) { return from < index ? index - from : from - index; };
    if (item == nullptr || index < distance(position)) {
      item = _head;
      position = 0;
    }
    if (_entries - 1 - index < distance(position)) {
      item = _last;
      position = _entries - 1;
    }
    if (isNoted && distance(position) > kNear) noteWalk(distance(position), known);
    for (; position < index; ++position) item = item->_next;
    for (; position > index; --position) item = item->_previous;
  }
  remember(item, index);
  return item;
}

// Only what comes out again as it went in: the address in the upper bits, whose
// lowest ones alignment makes zero, and the place in those and below them.
template <class T>
void QORValSlist<T>::remember(Item* item, QORuint32 index) const noexcept {
  static_assert(alignof(Item) >= std::size_t{1} << (kPlaceBits - kAddressShift));
  const QORuint64 address = reinterpret_cast<std::uintptr_t>(item);
  const QORuint64 word = address << kAddressShift;
  if (word >> kAddressShift == address && index <= kGreatestPlace) _remembered.store(word | index, kRelaxed);
}

template <class T>
void QORValSlist<T>::noteWalk(QORuint32 steps, Places* known) const noexcept {
  const QORuint64 walked = _walked.load(kRelaxed) + 1 + QORuint64{steps} * kWholeList / _entries;
  if (walked < kWholeList) {
    _walked.store(static_cast<QORuint16>(walked), kRelaxed);
  } else {
    makePlaces(known);
  }
}

// Several threads may come here at once: the first record made is kept, and is complete
// before any other thread finds it. Without memory for it, access by index continues to walk.
template <class T>
void QORValSlist<T>::makePlaces(Places* known) const noexcept {
  void* const memory = ::operator new(sizeof(Places) + _entries * sizeof(Item*), std::nothrow);
  if (memory == nullptr) return;
  Places* const made = ::new (memory) Places{known, _entries};
  Item** place = made->items();
  for (Item* item = _head; item != nullptr; item = item->_next) *place++ = item;
  if (!_places.compare_exchange_strong(known, made, std::memory_order_acq_rel)) ::operator delete(memory);
  _walked.store(0, kRelaxed);
}

template <class T>
void QORValSlist<T>::keepPlaces(bool hasGrown) noexcept {
  Places* places = _places.load(kRelaxed);
  Places* const older = std::exchange(places->_older, nullptr);
  if (older != nullptr) ::operator delete(static_cast<void*>(older));
  if (hasGrown) return;
  ::operator delete(static_cast<void*>(places));
  _places.store(nullptr, kRelaxed);
  _walked.store(0, kRelaxed);
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
  dropPlaces();
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

#endif
