// The counted shared pointer that holds every shared object of the engine.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORSMRPTR_H
#define QORQL_CMPBASE_QORSMRPTR_H

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "cmpbase/QORAtomicInt.h"
#include "cmpbase/QORSlabs.h"

// Where misuse of a counted pointer is reported; supplied by the foundation library.
class QORSmrPtrImpl {
 public:
  // Both THROW QORNullPointerException naming the operation.
  [[noreturn]] static void raise(const char* operation);
  [[noreturn]] static void raiseNullPointer(const char* operation);
};

// Shares an object of type T, deleted when the last holder lets go. A pointer
// always has a control block, even when it holds nothing: all null pointers of
// a type share one static block, which is not counted. Converting from a
// pointer to a derived class makes a new block that shares the object's count.
// Two pointers made separately from one raw pointer do not know of each other.
// Copies may be made and dropped on several threads; one pointer object is not
// synchronised.
template <class T>
class QORSmrPtr : public QORSmrPtrImpl {
 public:
  // Holds nothing.
  QORSmrPtr() noexcept : _pointee(&_nullPointee) {}
  QORSmrPtr(std::nullptr_t) noexcept : _pointee(&_nullPointee) {}
  // OWNS `pointer` from now on (null allowed), also when allocating the block fails.
  QORSmrPtr(T* pointer) : _pointee(newPointee(pointer)) {}
  QORSmrPtr(const QORSmrPtr& other) noexcept : _pointee(other._pointee) { AddRef(); }
  QORSmrPtr(QORSmrPtr&& other) noexcept : _pointee(std::exchange(other._pointee, &_nullPointee)) {}

  template <class D>
  requires(std::is_convertible_v<D*, T*> && !std::is_same_v<D, T>) QORSmrPtr(const QORSmrPtr<D>& other)
      : _pointee(sharePointee(static_cast<T*>(other.Get()), other)) {}

  // Leaves its place as it was: where the object is held once more, a thread that still
  // runs while the process ends finds it through a constant that has been destroyed.
  ~QORSmrPtr() { releasePointee(_pointee); }

  // Holds a new D made from the arguments. Object, count and block are one
  // allocation, where a pointer made from `new D` takes two. THROWS what D's
  // constructor throws.
  template <class D = T, class... Arguments>
  static QORSmrPtr Make(Arguments&&... arguments) {
    return MakeWithRoom<D>(0, std::forward<Arguments>(arguments)...);
  }
  // The same in memory of the slabs, which need not live longer than this call.
  template <class D = T, class... Arguments>
  static QORSmrPtr MakeIn(QORSlabs& slabs, Arguments&&... arguments);
  // As Make, with `room` more bytes directly after the object for its own use.
  template <class D = T, class... Arguments>
  static QORSmrPtr MakeWithRoom(std::size_t room, Arguments&&... arguments);

  QORSmrPtr& operator=(const QORSmrPtr& other) noexcept {
    if (_pointee != other._pointee) {
      other.AddRef();
      SmartPointerPointee* const old = std::exchange(_pointee, other._pointee);
      releasePointee(old);
    }
    return *this;
  }
  QORSmrPtr& operator=(QORSmrPtr&& other) noexcept {
    std::swap(_pointee, other._pointee);
    return *this;
  }
  // Takes the object into a new, independent block, even when it is already held.
  QORSmrPtr& operator=(T* pointer) {
    Set(pointer);
    return *this;
  }

  // Lets go and OWNS `pointer` (null allowed) from now on, in a new block, even when it is already held.
  void Init(T* pointer) { Set(pointer); }
  void Set(T* pointer) {
    SmartPointerPointee* const fresh = newPointee(pointer);
    releasePointee(std::exchange(_pointee, fresh));
  }
  // BORROWS: the object, or null; valid while a holder lives.
  T* Get() const noexcept { return _pointee->_pointer; }
  bool IsNull() const noexcept { return _pointee->_pointer == nullptr; }
  void AddRef() const noexcept {
    if (_pointee != &_nullPointee) _pointee->_referenceCount.atomicInc();
  }
  // Lets go; the pointer holds nothing afterwards.
  void Release() noexcept { releasePointee(std::exchange(_pointee, &_nullPointee)); }
  // True when this pointer is the object's only holder.
  bool IsUnique() const noexcept {
    return _pointee != &_nullPointee && _pointee->_referenceCount.getValue() == 1 &&
           _pointee->_sharedReferenceCount->getValue() == 1;
  }

  // The object. THROW QORNullPointerException when there is none.
  T& operator*() const {
    if (IsNull()) raiseNullPointer("operator*()");
    return *Get();
  }
  T* operator->() const {
    if (IsNull()) raiseNullPointer("operator->()");
    return Get();
  }
  // BORROWS: the object's address, or null, so that a pointer can be tested.
  operator void*() const noexcept { return rawPointer(); }

  // Same object; two null pointers are equal.
  friend int operator==(const QORSmrPtr& a, const QORSmrPtr& b) noexcept { return a.Get() == b.Get(); }

  // The objects' own order. THROWS QORNullPointerException when either is null.
  friend bool operator<(const QORSmrPtr& a, const QORSmrPtr& b) {
    if (a.IsNull() || b.IsNull()) raiseNullPointer("operator<()");
    return a.Get() != b.Get() && *a.Get() < *b.Get();
  }
  friend bool operator>(const QORSmrPtr& a, const QORSmrPtr& b) {
    if (a.IsNull() || b.IsNull()) raiseNullPointer("operator>()");
    return a.Get() != b.Get() && *a.Get() > *b.Get();
  }
  friend bool operator>=(const QORSmrPtr& a, const QORSmrPtr& b) { return !(a < b); }
  friend bool operator<=(const QORSmrPtr& a, const QORSmrPtr& b) { return !(a > b); }

  // The object as a D that shares the count, or a null pointer when it is none.
  template <class D>
  QORSmrPtr<D> DynamicCast() const {
    D* const cast = dynamic_cast<D*>(Get());
    return cast == nullptr ? QORSmrPtr<D>() : QORSmrPtr<D>(*this, cast);
  }
  template <class D>
  QORSmrPtr<D> StaticCast() const {
    D* const cast = static_cast<D*>(Get());
    return cast == nullptr ? QORSmrPtr<D>() : QORSmrPtr<D>(*this, cast);
  }
  // The same with memory of the slabs, which need not live longer than this call.
  template <class D>
  QORSmrPtr<D> StaticCastIn(QORSlabs& slabs) const {
    D* const cast = static_cast<D*>(Get());
    return cast == nullptr ? QORSmrPtr<D>() : QORSmrPtr<D>(*this, cast, &slabs);
  }

 private:
  template <class>
  friend class QORSmrPtr;

  struct SmartPointerPointee {
    constexpr SmartPointerPointee() noexcept = default;
    SmartPointerPointee(T* pointer, QORAtomicInt* shared) noexcept
        : _referenceCount(1), _sharedReferenceCount(shared), _pointer(pointer) {}
    QORAtomicInt _referenceCount;
    QORSlabs::Place _place = QORSlabs::kNowhere;  // where its memory comes from, or that of the first block's object
    QORAtomicInt* _sharedReferenceCount = nullptr;
    T* _pointer = nullptr;
  };

  // An object's first block and its shared count, in one allocation that lives
  // until the shared count is zero: a converted pointer may outlive the block.
  // The object itself may follow it, and all of it may lie in a slab.
  struct FirstPointee {
    FirstPointee(T* pointer, bool isInPlace, QORSlabs::Place place = QORSlabs::kNowhere) noexcept
        : _block(pointer, &_shared), _shared(1), _isInPlace(isInPlace) {
      _block._place = place;
    }
    SmartPointerPointee _block;
    QORAtomicInt _shared;
    bool _isInPlace;
  };
  static_assert(std::is_trivially_destructible_v<FirstPointee>);

  // A conversion that keeps the object's count: `object` is other's object seen as a T.
  template <class S>
  QORSmrPtr(const QORSmrPtr<S>& other, T* object, QORSlabs* slabs = nullptr)
      : _pointee(sharePointee(object, other, slabs)) {}

  static SmartPointerPointee* newPointee(T* pointer) {
    if (pointer == nullptr) return &_nullPointee;
    try {
      return &(new FirstPointee(pointer, false))->_block;
    } catch (...) {
      delete pointer;
      throw;
    }
  }
  template <class S>
  static SmartPointerPointee* sharePointee(T* object, const QORSmrPtr<S>& other, QORSlabs* slabs = nullptr) {
    if (object == nullptr) return &_nullPointee;
    QORAtomicInt* const shared = other._pointee->_sharedReferenceCount;
    constexpr std::size_t size = sizeof(SmartPointerPointee);
    QORSlabs::Place place = QORSlabs::kNowhere;
    void* const memory = slabs == nullptr ? ::operator new(size) : slabs->take(size, place);
    SmartPointerPointee* const block = ::new (memory) SmartPointerPointee(object, shared);
    block->_place = place;
    shared->atomicInc();
    return block;
  }
  static void releasePointee(SmartPointerPointee* block) noexcept {
    if (block != &_nullPointee && block->_referenceCount.dropHold()) destroyPointee(block);
  }
  static void destroyPointee(SmartPointerPointee* block) noexcept {
    static_assert(sizeof(T) != 0, "the last holder of an object needs its complete type");
    QORAtomicInt* const shared = block->_sharedReferenceCount;
    T* const object = block->_pointer;
    // The first block opens the allocation that the shared count closes.
    void* const first = reinterpret_cast<char*>(shared) - offsetof(FirstPointee, _shared);
    if (static_cast<void*>(block) != first) freeOtherBlock(block);
    if (!shared->dropHold()) return;
    if (static_cast<FirstPointee*>(first)->_isInPlace) {
      const QORSlabs::Place place = static_cast<FirstPointee*>(first)->_block._place;
      endObject([object] { std::destroy_at(object); });
      QORSlabs::freeMemory(first, place);
    } else {
      ::operator delete(first);
      endObject([object] { delete object; });
    }
  }
  // Of a converted pointer.
  [[gnu::noinline]] static void freeOtherBlock(SmartPointerPointee* block) noexcept {
    QORSlabs::freeMemory(block, block->_place);
  }
  // Makes the object after the room for its block.
  template <class D, class... Arguments>
  static QORSmrPtr makeInPlace(char* memory, QORSlabs::Place place, Arguments&&... arguments) {
    static_assert(std::is_same_v<D, T> || std::has_virtual_destructor_v<T>, "D could not be destroyed as a T");
    static_assert(alignof(D) <= alignof(std::max_align_t) && sizeof(FirstPointee) % alignof(std::max_align_t) == 0);
    D* object = nullptr;
    try {
      object = ::new (static_cast<void*>(memory + sizeof(FirstPointee))) D(std::forward<Arguments>(arguments)...);
    } catch (...) {
      QORSlabs::freeMemory(memory, place);
      throw;
    }
    QORSmrPtr made;
    made._pointee = &(::new (static_cast<void*>(memory)) FirstPointee(object, true, place))->_block;
    return made;
  }
  template <class End>
  static void endObject(const End& end) noexcept {
    try {
      end();
    } catch (...) {
      // A destructor that throws must not take the process down with it.
      return;
    }
  }
  void* rawPointer() const noexcept { return const_cast<void*>(static_cast<const volatile void*>(Get())); }

  inline static constinit SmartPointerPointee _nullPointee{};

  SmartPointerPointee* _pointee;
};

template <class T>
template <class D, class... Arguments>
QORSmrPtr<T> QORSmrPtr<T>::MakeWithRoom(std::size_t room, Arguments&&... arguments) {
  char* const memory = static_cast<char*>(::operator new(sizeof(FirstPointee) + sizeof(D) + room));
  return makeInPlace<D>(memory, QORSlabs::kNowhere, std::forward<Arguments>(arguments)...);
}

template <class T>
template <class D, class... Arguments>
QORSmrPtr<T> QORSmrPtr<T>::MakeIn(QORSlabs& slabs, Arguments&&... arguments) {
  static_assert(alignof(D) <= QORSlabs::kAlignment && alignof(FirstPointee) <= QORSlabs::kAlignment);
  QORSlabs::Place place = QORSlabs::kNowhere;
  char* const memory = static_cast<char*>(slabs.take(sizeof(FirstPointee) + sizeof(D), place));
  return makeInPlace<D>(memory, place, std::forward<Arguments>(arguments)...);
}

#endif
