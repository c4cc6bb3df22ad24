// The fixed-size chained hash map of the engine, with its iterator.
#ifndef QORQL_CMPBASE_QORVALMAP_H
#define QORQL_CMPBASE_QORVALMAP_H

#include <memory>
#include <utility>
#include <vector>

#include "cmpbase/QORTypes.h"
#include "cmpbase/QORValSlist.h"

template <class K, class V>
class QORValMapIterator;

template <class K, class V>
class QORValMapItem {
 public:
  QORValMapItem(const K& key, const V& data) : _key(key), _data(data) {}
  K _key;
  V _data;
};

// Holds copies of keys and values. The number of buckets is fixed; a bucket is
// made at its first insertion and keeps insertion order, so that iteration goes
// by bucket (hash modulo bucket count), then by age. Not synchronised.
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
      std::swap(_hashBuckets, copy._hashBuckets);
    }
    return *this;
  }
  ~QORValMap() { _destroy(); }

  // Copies the value out and returns true when the key is present.
  bool find(const K& key, V& out) const {
    const Item* const item = _find(key);
    if (item == nullptr) return false;
    out = item->_data;
    return true;
  }
  // A missing key is inserted with a default value.
  V& operator[](const K& key) {
    Item* item = _find(key);
    if (item == nullptr) item = appendItem(std::make_unique<Item>(key, V()));
    return item->_data;
  }
  bool contains(const K& key) const { return _find(key) != nullptr; }
  QORuint32 entries() const noexcept { return _entries; }
  bool isEmpty() const noexcept { return _entries == 0; }
  // Replaces an existing key: its item leaves and the new one goes to the tail of the bucket.
  bool insert(const K& key, const V& value) {
    // Made first: key and value may live in the item that is about to go.
    std::unique_ptr<Item> item = std::make_unique<Item>(key, value);
    remove(item->_key);
    appendItem(std::move(item));
    return true;
  }
  // Returns whether the key was present.
  bool remove(const K& key) {
    Bucket* const bucket = bucketOf(key);
    if (bucket == nullptr) return false;
    QORValSlistIterator<Item*> items(*bucket);
    while (++items) {
      if (items.key()->_key == key) {
        delete items.remove();
        --_entries;
        return true;
      }
    }
    return false;
  }
  void clear() noexcept {
    for (std::unique_ptr<Bucket>& bucket : _hashBuckets) {
      if (bucket == nullptr) continue;
      QORValSlistIterator<Item*> items(*bucket);
      while (++items) delete items.key();
      bucket.reset();
    }
    _entries = 0;
  }
  // Bucket statistics: buckets in use, items in the fullest, empty buckets. Null arguments are skipped.
  void examineHash(int* usedBuckets, int* longestBucket, int* emptyBuckets) const {
    int used = 0;
    int longest = 0;
    for (const std::unique_ptr<Bucket>& bucket : _hashBuckets) {
      const int length = bucket == nullptr ? 0 : static_cast<int>(bucket->entries());
      used += length == 0 ? 0 : 1;
      longest = length > longest ? length : longest;
    }
    if (usedBuckets != nullptr) *usedBuckets = used;
    if (longestBucket != nullptr) *longestBucket = longest;
    if (emptyBuckets != nullptr) *emptyBuckets = static_cast<int>(_hashSize) - used;
  }

 private:
  friend class QORValMapIterator<K, V>;
  using Item = QORValMapItem<K, V>;
  using Bucket = QORValSlist<Item*>;

  Bucket* bucketOf(const K& key) const { return _hashBuckets[_hashFunc(key) % _hashSize].get(); }
  Item* _find(const K& key) const {
    const Bucket* const bucket = bucketOf(key);
    if (bucket == nullptr) return nullptr;
    QORValSlistIterator<Item*> items(*bucket);
    while (++items) {
      if (items.key()->_key == key) return items.key();
    }
    return nullptr;
  }
  Item* appendItem(std::unique_ptr<Item> item) {
    std::unique_ptr<Bucket>& bucket = _hashBuckets[_hashFunc(item->_key) % _hashSize];
    if (bucket == nullptr) bucket = std::make_unique<Bucket>();
    bucket->append(item.get());
    ++_entries;
    return item.release();
  }
  void insertAll(const QORValMap& other) {
    try {
      for (const std::unique_ptr<Bucket>& bucket : other._hashBuckets) {
        if (bucket == nullptr) continue;
        QORValSlistIterator<Item*> items(*bucket);
        while (++items) appendItem(std::make_unique<Item>(*items.key()));
      }
    } catch (...) {
      _destroy();
      throw;
    }
  }
  void _create(QORuint32 bucketCount) {
    _hashSize = bucketCount == 0 ? 1 : bucketCount;
    _hashBuckets.resize(_hashSize);
  }
  void _destroy() noexcept {
    clear();
    _hashBuckets.clear();
  }

  HashFunction _hashFunc;
  QORuint32 _entries = 0;
  QORuint32 _hashSize = 0;
  std::vector<std::unique_ptr<Bucket>> _hashBuckets;
};

// Walks a map that outlives it and does not change meanwhile.
template <class K, class V>
class QORValMapIterator {
 public:
  explicit QORValMapIterator(const QORValMap<K, V>& map) noexcept : _map(map) {}

  // False, for good, when every item has been visited.
  bool operator++() {
    while (!_reachedEnd) {
      if (_currentHashBucketIterator != nullptr && ++*_currentHashBucketIterator) {
        _current = _currentHashBucketIterator->key();
        return true;
      }
      openNextBucket();
    }
    return false;
  }
  bool operator()() { return ++*this; }
  bool operator+=(QORuint32 count) {
    bool hasCurrent = _current != nullptr;
    while (count-- != 0) hasCurrent = ++*this;
    return hasCurrent;
  }
  // Copies. THROW QORBoundsException "Out of Bounds" when no item is current.
  K key() const { return checked()->_key; }
  V value() const { return checked()->_data; }
  void reset() noexcept {
    _current = nullptr;
    _reachedEnd = false;
    _currentHashBucket = 0;
    _currentHashBucketIterator.reset();
  }

 private:
  using Item = QORValMapItem<K, V>;

  const Item* checked() const {
    if (_current == nullptr) qorRaiseOutOfBounds();
    return _current;
  }
  void openNextBucket() {
    _currentHashBucketIterator.reset();
    _current = nullptr;
    while (_currentHashBucket < _map._hashSize) {
      const auto& bucket = _map._hashBuckets[_currentHashBucket++];
      if (bucket != nullptr) {
        _currentHashBucketIterator = std::make_unique<QORValSlistIterator<Item*>>(*bucket);
        return;
      }
    }
    _reachedEnd = true;
  }

  const QORValMap<K, V>& _map;
  const Item* _current = nullptr;
  bool _reachedEnd = false;
  QORuint32 _currentHashBucket = 0;
  std::unique_ptr<QORValSlistIterator<Item*>> _currentHashBucketIterator;
};

#endif
