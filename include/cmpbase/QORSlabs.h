// Memory for many small objects that are made together and, as a rule,
// freed together: the nodes of a statement.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORSLABS_H
#define QORQL_CMPBASE_QORSLABS_H

#include <cstddef>
#include <new>

#include "cmpbase/QORAtomicInt.h"
#include "cmpbase/QORTypes.h"

#if defined(__SANITIZE_ADDRESS__)
#define QORQL_ADDRESSES_ARE_WATCHED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QORQL_ADDRESSES_ARE_WATCHED 1
#endif
#endif
#ifndef QORQL_ADDRESSES_ARE_WATCHED
#define QORQL_ADDRESSES_ARE_WATCHED 0
#endif

// Cuts memory for objects off slabs: taking it needs no search, giving it
// back only a count. A slab is freed with the last of its objects, so that objects may
// outlive the maker and one another, and may be freed on other threads; taking memory
// belongs to one thread.
//
// The address sanitizer watches whole allocations, so in its builds each
// object is an allocation of its own.
class QORSlabs {
 public:
  QORSlabs() noexcept = default;
  // To be called when about so many bytes of objects are expected: the first slab is made to hold them, up to the
  // greatest size. A guess is good enough.
  explicit QORSlabs(std::size_t expected) noexcept {
    if (expected > kFirstSize) _nextSize = expected < kGreatestSize ? expected : kGreatestSize;
  }
  QORSlabs(const QORSlabs&) = delete;
  QORSlabs& operator=(const QORSlabs&) = delete;
  ~QORSlabs() { closeSlab(); }

  // What an object must remember of its memory to give it back.
  using Place = QORuint16;
  // Marks memory that comes from no slab.
  static constexpr Place kNowhere = 0;

  // What the memory is aligned for.
  static constexpr std::size_t kAlignment = 8;
  // Memory for an object, and its place. THROWS std::bad_alloc.
  void* take(std::size_t size, Place& place);
  // Any thread may call, also when the maker no longer lives.
  static void giveBack(void* memory, Place place) noexcept {
    Slab* const slab = reinterpret_cast<Slab*>(static_cast<char*>(memory) - place * kUnit);
    if (_returning == nullptr) {
      slab->drop(1);
    } else {
      _returning->add(slab);
    }
  }
  // The same, also for memory from operator new, which its place tells.
  static void freeMemory(void* memory, Place place) noexcept {
    if (place == kNowhere) {
      ::operator delete(memory);
    } else {
      giveBack(memory, place);
    }
  }

 private:
  struct Slab;

 public:
  // While one lives, its thread's returns are added up, slab by slab, so that
  // many objects that are freed together cost one atomic step for each slab instead of
  // one for each object. They may nest. Belongs to the thread that made it.
  class Returning {
   public:
    Returning() noexcept : _before(_returning) { _returning = this; }
    Returning(const Returning&) = delete;
    Returning& operator=(const Returning&) = delete;
    ~Returning() {
      _returning = _before;
      if (_slab != nullptr) _slab->drop(_objects);
    }

   private:
    friend class QORSlabs;
    void add(Slab* slab) noexcept {
      if (slab != _slab) {
        if (_slab != nullptr) _slab->drop(_objects);
        _slab = slab;
        _objects = 0;
      }
      ++_objects;
    }
    Returning* const _before;
    Slab* _slab = nullptr;
    QORsint32 _objects = 0;  // freed of the slab that was used last
  };

 private:
  // Stands before a slab's objects. While the slab is open its count is far too
  // high, so that the objects taken need no atomic step: closing corrects it.
  struct Slab {
    // Lets go of so many objects; nobody else has one when these are all.
    void drop(QORsint32 objects) noexcept {
      if (_objects.getValue() == objects || _objects.atomicAdd(-objects) == 0) {
        ::operator delete(static_cast<void*>(this));
      }
    }
    QORAtomicInt _objects{kOpen};
  };

  static constexpr QORsint32 kOpen = 1 << 30;
  static constexpr std::size_t kUnit = kAlignment;  // the unit of places
  // Allocators keep small blocks ready, so that a few small slabs are allocated
  // faster than a large one; many objects take larger and larger ones.
  static constexpr std::size_t kFirstSize = 1024;
  static constexpr QORuint32 kFirstSlabs = 7;
  static constexpr std::size_t kGreatestSize = 65536;  // of a slab of several objects
  static constexpr bool kIsWatched = QORQL_ADDRESSES_ARE_WATCHED == 1;
  static_assert(sizeof(Slab) <= kUnit && kGreatestSize / kUnit <= 0xFFFF);
  static_assert(kUnit <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

  // An object that is larger than a slab has a slab of its own.
  [[gnu::noinline]] void openSlab(std::size_t room) {
    const std::size_t least = kUnit + room;
    const std::size_t size = kIsWatched || least > _nextSize ? least : _nextSize;
    char* const memory = static_cast<char*>(::operator new(size));
    closeSlab();
    ::new (static_cast<void*>(memory)) Slab;
    _slab = memory;
    _used = kUnit;
    _size = size;
    ++_slabs;
    if (_nextSize < kGreatestSize) _nextSize = _slabs < kFirstSlabs ? kFirstSize : 2 * _nextSize;
  }
  void closeSlab() noexcept;

  // The innermost one of the thread. Its place is fixed when the library is loaded, so that access costs a single step.
  [[gnu::tls_model("initial-exec")]] inline static constinit thread_local Returning* _returning = nullptr;

  char* _slab = nullptr;
  std::size_t _used = 0;  // bytes of the slab, its head included
  std::size_t _size = 0;
  std::size_t _nextSize = kFirstSize;
  QORuint32 _slabs = 0;
  QORsint32 _taken = 0;  // objects of the slab
};

inline void* QORSlabs::take(std::size_t size, Place& place) {
  const std::size_t room = (size + kUnit - 1) / kUnit * kUnit;
  if (room > _size - _used || kIsWatched) openSlab(room);
  char* const memory = _slab + _used;
  place = static_cast<Place>(_used / kUnit);
  _used += room;
  ++_taken;
  return memory;
}

inline void QORSlabs::closeSlab() noexcept {
  if (_slab == nullptr) return;
  Slab* const slab = reinterpret_cast<Slab*>(_slab);
  if (slab->_objects.atomicAdd(_taken - kOpen) == 0) ::operator delete(static_cast<void*>(slab));
  _slab = nullptr;
  _used = _size = 0;
  _taken = 0;
}

#endif
