// The stored instances of a class, or those that refer to an instance, in the
// order in which they were created.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_EXTENT_H
#define QORQL_EMBEDDED_EXTENT_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "cimom/IQoriObject.h"
#include "cmpbase.h"

namespace embedded {

class ClassEntry;

// One stored instance. A change replaces the object; its place in the order and its path stay.
struct StoredInstance {
  QORSmrPtr<IQoriObject> object;
  ClassEntry* entry = nullptr;  // BORROWS
  QORuint64 sequence = 0;
  QORuint32 pathHash = 0;
  bool isPending = false;  // created by a load that has not been committed

  // The canonical path, which the object's keys tell.
  std::string path() const {
    std::string text;
    object->appendPath(text);
    return text;
  }
};

// An instance's place in the order of creation, which is that of every list, as
// the number that its objects have; never 0, which means that there is no number.
constexpr QORuint64 identityOf(QORuint64 sequence) noexcept { return sequence + 1; }

// Sorted by sequence. Appending is O(1), removing O(log n) and, over many
// removals, O(1) moved elements each: a removed instance leaves a gap until
// half of the slots are gaps. Not synchronised.
class Extent {
 public:
  // Does nothing when the instance is there already.
  void insert(StoredInstance& instance);
  // Does nothing when it is not there.
  void remove(const StoredInstance& instance) noexcept;
  std::size_t size() const noexcept { return _size; }

  template <class Visit>
  void forEach(Visit&& visit) const {
    for (const Slot& slot : _slots) {
      if (slot.instance != nullptr) visit(*slot.instance);
    }
  }

 private:
  struct Slot {
    QORuint64 sequence;
    StoredInstance* instance;  // BORROWS; null marks a gap
  };
  std::vector<Slot>::iterator lowerBound(QORuint64 sequence) noexcept;
  void closeGaps() noexcept;

  std::vector<Slot> _slots;
  std::size_t _size = 0;
};

}  // namespace embedded

#endif
