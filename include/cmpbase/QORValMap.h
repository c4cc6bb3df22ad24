// The fixed-size chained hash map of the engine, with its iterator.
//
// Most maps hold a handful of items. Up to kUnsplit of them form one chain that
// runs through all buckets in order; only a fuller map has a chain for each.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORVALMAP_H
#define QORQL_CMPBASE_QORVALMAP_H

#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "cmpbase/QORSlabs.h"
#include "cmpbase/QORTypes.h"
#include "cmpbase/QORValSlist.h"

template <class K, class V>
class QORValMapIterator;

// A key and its value in a map, which OWNS it.
template <class K, class V>
class QORValMapItem {
 public:
  // With copies, or with the value itself.
  QORValMapItem(const K& key, const V& data) : _key(key), _data(data) {}
  QORValMapItem(const K& key, V&& data) : _key(key), _data(std::move(data)) {}
  K _key;
  V _data;
  QORValMapItem* _next = nullptr;  // in its chain
  QORuint32 _bucket = 0;
  QORSlabs::Place _place = QORSlabs::kNowhere;  // where its memory comes from
};

// Holds copies of keys and values. The number of buckets is fixed; a bucket
// keeps insertion order, so that iteration goes by bucket (hash modulo bucket
// count), then by age. An item stays where it is until it is removed or
// replaced. Threads may read one together; one that changes belongs to one thread.
template <class K, class V>
class QORValMap {
 public:
  using HashFunction = QORuint32 (*)(const K&);

  // REQUIRES a hash function and at least one bucket (0 is taken as 1).
  QORValMap(HashFunction hashFunction, QORuint32 bucketCount) : _hashFunc(hashFunction) { _create(bucketCount); }
  QORValMap(const QORValMap& other) : _hashFunc(other._hashFunc) {
    _create(other._hashSize);
    insertAll(other);
  }
  QORValMap& operator=(const QORValMap& other) {
    if (this != &other) {
      QORValMap copy(other);
      std::swap(_hashFunc, copy._hashFunc);
      std::swap(_entries, copy._entries);
      std::swap(_hashSize, copy._hashSize);
      std::swap(_unsplit, copy._unsplit);
      std::swap(_hashBuckets, copy._hashBuckets);
    }
    return *this;
  }
  ~QORValMap() { _destroy(); }

  // Copies the value out and returns true when the key is present.
  bool find(const K& key, V& out) const {
    const V* const value = peek(key);
    if (value == nullptr) return false;
    out = *value;
    return true;
  }
  // BORROWS: the value in the map; null when the key is absent.
  const V* peek(const K& key) const { return valueOf(_find(key)); }
  // The same for a key that is not available as a K: by its hash, and by a
  // predicate that recognises it.
  template <class IsKey>
  const V* peekHashed(QORuint32 hash, const IsKey& isKey) const {
    return valueOf(findIn(hash % _hashSize, isKey));
  }
  // A missing key is inserted with a default value.
  V& operator[](const K& key) {
    Item* item = _find(key);
    if (item == nullptr) item = appendItem(newItem(nullptr, key, V()), bucketOf(key));
    return item->_data;
  }
  bool contains(const K& key) const { return _find(key) != nullptr; }
  QORuint32 entries() const noexcept { return _entries; }
  bool isEmpty() const noexcept { return _entries == 0; }
  // Replaces an existing key: its item is removed and the new one goes to the tail of the bucket.
  bool insert(const K& key, const V& value) { return insertItem(newItem(nullptr, key, value)); }
  bool insert(const K& key, V&& value) { return insertItem(newItem(nullptr, key, std::move(value))); }
  // The same with memory of the slabs, which need not live longer than this call.
  bool insert(const K& key, const V& value, QORSlabs& slabs) { return insertItem(newItem(&slabs, key, value)); }
  // Returns whether the key was present.
  bool remove(const K& key) { return removeFrom(bucketOf(key), key); }
  void clear() noexcept {
    freeChain(std::exchange(_unsplit, nullptr));
    for (Item*& chain : _hashBuckets) freeChain(std::exchange(chain, nullptr));
    _entries = 0;
  }
  // Bucket statistics: buckets in use, items in the fullest, empty buckets. Null arguments are skipped.
  void examineHash(int* usedBuckets, int* longestBucket, int* emptyBuckets) const {
    int used = 0;
    int longest = 0;
    int length = 0;
    const Item* previous = nullptr;
    for (const Item* item = after(nullptr); item != nullptr; previous = item, item = after(item)) {
      const bool isFirst = previous == nullptr || previous->_bucket != item->_bucket;
      used += isFirst ? 1 : 0;
      length = isFirst ? 1 : length + 1;
      longest = length > longest ? length : longest;
    }
    if (usedBuckets != nullptr) *usedBuckets = used;
    if (longestBucket != nullptr) *longestBucket = longest;
    if (emptyBuckets != nullptr) *emptyBuckets = static_cast<int>(_hashSize) - used;
  }

 private:
  friend class QORValMapIterator<K, V>;
  using Item = QORValMapItem<K, V>;

  struct FreeItem {
    void operator()(Item* item) const noexcept {
      const QORSlabs::Place place = item->_place;
      std::destroy_at(item);
      QORSlabs::freeMemory(item, place);
    }
  };
  using ItemHolder = std::unique_ptr<Item, FreeItem>;

  static constexpr QORuint32 kUnsplit = 8;

  template <class Value>
  static ItemHolder newItem(QORSlabs* slabs, const K& key, Value&& value) {
    static_assert(alignof(Item) <= QORSlabs::kAlignment);
    QORSlabs::Place place = QORSlabs::kNowhere;
    void* const memory = slabs == nullptr ? ::operator new(sizeof(Item)) : slabs->take(sizeof(Item), place);
    try {
      ItemHolder item(::new (memory) Item(key, std::forward<Value>(value)));
      item->_place = place;
      return item;
    } catch (...) {
      QORSlabs::freeMemory(memory, place);
      throw;
    }
  }
  // Key and value may live in the removed item: the new one has been made before.
  bool insertItem(ItemHolder item) {
    const QORuint32 bucket = bucketOf(item->_key);
    removeFrom(bucket, item->_key);
    appendItem(std::move(item), bucket);
    return true;
  }

  static const V* valueOf(const Item* item) noexcept { return item == nullptr ? nullptr : &item->_data; }
  QORuint32 bucketOf(const K& key) const { return _hashFunc(key) % _hashSize; }
  // Where the chain begins that holds the bucket's items.
  Item** chainOf(QORuint32 bucket) noexcept { return _hashBuckets.empty() ? &_unsplit : &_hashBuckets[bucket]; }
  Item* firstIn(QORuint32 bucket) const noexcept { return _hashBuckets.empty() ? _unsplit : _hashBuckets[bucket]; }
  template <class IsKey>
  Item* findIn(QORuint32 bucket, const IsKey& isKey) const {
    for (Item* item = firstIn(bucket); item != nullptr; item = item->_next) {
      if (item->_bucket == bucket && isKey(item->_key)) return item;
    }
    return nullptr;
  }
  Item* _find(const K& key) const {
    if (_entries == 0) return nullptr;
    return findIn(bucketOf(key), [&key](const K& other) { return static_cast<bool>(other == key); });
  }
  // The item that follows in the map's order, the first one after null; null after the last.
  const Item* after(const Item* item) const noexcept {
    const Item* const next = item == nullptr ? _unsplit : item->_next;
    if (next != nullptr || _hashBuckets.empty()) return next;
    for (QORuint32 bucket = item == nullptr ? 0 : item->_bucket + 1; bucket < _hashSize; ++bucket) {
      if (_hashBuckets[bucket] != nullptr) return _hashBuckets[bucket];
    }
    return nullptr;
  }
  bool removeFrom(QORuint32 bucket, const K& key) {
    for (Item** link = chainOf(bucket); *link != nullptr; link = &(*link)->_next) {
      if ((*link)->_bucket != bucket || !((*link)->_key == key)) continue;
      const ItemHolder item(*link);
      *link = item->_next;
      --_entries;
      return true;
    }
    return false;
  }
  Item* appendItem(ItemHolder item, QORuint32 bucket) {
    if (_entries == kUnsplit && _hashBuckets.empty()) split();
    item->_bucket = bucket;
    linkItem(item.get());
    ++_entries;
    return item.release();
  }
  void linkItem(Item* item) noexcept {
    Item** link = chainOf(item->_bucket);
    while (*link != nullptr && (*link)->_bucket <= item->_bucket) link = &(*link)->_next;
    item->_next = *link;
    *link = item;
  }
  void split() {
    _hashBuckets.resize(_hashSize);
    Item* item = std::exchange(_unsplit, nullptr);
    while (item != nullptr) {
      Item* const next = item->_next;
      linkItem(item);
      item = next;
    }
  }
  void insertAll(const QORValMap& other) {
    try {
      for (const Item* item = other.after(nullptr); item != nullptr; item = other.after(item)) {
        appendItem(newItem(nullptr, item->_key, item->_data), item->_bucket);
      }
    } catch (...) {
      _destroy();
      throw;
    }
  }
  static void freeChain(Item* item) noexcept {
    while (item != nullptr) FreeItem()(std::exchange(item, item->_next));
  }
  void _create(QORuint32 bucketCount) noexcept { _hashSize = bucketCount == 0 ? 1 : bucketCount; }
  void _destroy() noexcept {
    clear();
    _hashBuckets.clear();
  }

  HashFunction _hashFunc;
  QORuint32 _entries = 0;
  QORuint32 _hashSize = 0;
  Item* _unsplit = nullptr;         // the one chain, while there are no others
  std::vector<Item*> _hashBuckets;  // the chain of each bucket; empty while there is only one
};

// Walks a map that outlives it and does not change meanwhile.
template <class K, class V>
class QORValMapIterator {
 public:
  // No item is current. BORROWS the map.
  explicit QORValMapIterator(const QORValMap<K, V>& map) noexcept : _map(map) {}

  // False, for good, when every item has been visited.
  bool operator++() noexcept {
    if (_reachedEnd) return false;
    _current = _map.after(_current);
    _reachedEnd = _current == nullptr;
    return !_reachedEnd;
  }
  bool operator()() noexcept { return ++*this; }
  bool operator+=(QORuint32 count) noexcept {
    bool hasCurrent = _current != nullptr;
    while (count-- != 0) hasCurrent = ++*this;
    return hasCurrent;
  }
  // Copies. THROW QORBoundsException "Out of Bounds" when no item is current.
  K key() const { return checked()->_key; }
  V value() const { return checked()->_data; }
  // BORROW: the same in the map. THROW as key().
  const K& peekKey() const { return checked()->_key; }
  const V& peekValue() const { return checked()->_data; }
  void reset() noexcept {
    _current = nullptr;
    _reachedEnd = false;
  }

 private:
  using Item = QORValMapItem<K, V>;

  const Item* checked() const {
    if (_current == nullptr) qorRaiseOutOfBounds();
    return _current;
  }

  const QORValMap<K, V>& _map;
  const Item* _current = nullptr;
  bool _reachedEnd = false;
};

#endif
