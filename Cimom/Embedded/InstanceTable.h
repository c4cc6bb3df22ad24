// The stored instances of one namespace, by path, by class and by what they refer to.
// Tested by tests/unit/Embedded/InstanceStoreTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_INSTANCETABLE_H
#define QORQL_EMBEDDED_INSTANCETABLE_H

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Cimom/Embedded/ClassEntry.h"
#include "Cimom/Embedded/Extent.h"
#include "Cimom/Embedded/PathIndex.h"

namespace embedded {

// Lets maps with text keys be searched by a view.
struct PathHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view path) const noexcept { return std::hash<std::string_view>()(path); }
};

// Not synchronised; the object store's lock guards it.
class InstanceTable {
 public:
  // BORROWS: null when there is none of that canonical path.
  StoredInstance* find(std::string_view path) const;
  // BORROWS: null when there is an instance of that canonical path already, which is the object's. Leaves everything
  // as it was when it throws.
  StoredInstance* insert(ClassEntry& entry, const QORSmrPtr<IQoriObject>& object, std::string_view path,
                         QORuint64 sequence, bool isPending);
  // Puts another object of the same class and path in the place of the old one.
  void replace(StoredInstance& instance, const QORSmrPtr<IQoriObject>& object);
  void remove(StoredInstance& instance) noexcept;
  bool isEmpty() const noexcept { return _instances.size() == _free.size(); }
  // What queries see of the class and its superclasses has changed.
  static void touch(ClassEntry* entry) noexcept;
  // Makes a pending instance visible to queries.
  static void publish(StoredInstance& instance) noexcept;
  // BORROWS: the associations that refer to the path; null when there are none.
  const Extent* referringTo(std::string_view path) const noexcept;

 private:
  void addReferences(StoredInstance& instance);
  void removeReferences(const StoredInstance& instance) noexcept;

  StoredInstance& takePlace();

  std::deque<StoredInstance> _instances;  // at fixed addresses; those that were removed hold no object
  std::vector<StoredInstance*> _free;     // removed ones, for the next
  PathIndex _byPath;
  std::unordered_map<std::string, Extent, PathHash, std::equal_to<>> _referring;
};

}  // namespace embedded

#endif
