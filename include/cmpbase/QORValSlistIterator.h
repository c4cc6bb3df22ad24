// The iterator of the list. Included by QORValSlist.h, which everybody includes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORVALSLISTITERATOR_H
#define QORQL_CMPBASE_QORVALSLISTITERATOR_H

#include "cmpbase/QORTypes.h"

template <class T>
class QORValSlist;
template <class T>
class QORValSlistItem;

// Walks a list that outlives it. A fresh iterator has no current element. The
// list may be changed through the iterator's own remove() only.
template <class T>
class QORValSlistIterator {
 public:
  // No element is current. BORROWS the list.
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
