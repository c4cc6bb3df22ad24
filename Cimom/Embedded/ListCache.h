// Lists of instances that were made for earlier calls and are still valid.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_LISTCACHE_H
#define QORQL_EMBEDDED_LISTCACHE_H

#include <list>
#include <mutex>
#include <string>

#include "Cimom/Embedded/InstanceTable.h"
#include "cimom/CIMApi.h"

namespace embedded {

// Keeps the most recently used lists, by class and property list, within a
// bound on lists and instances. Threads may share one.
class ListCache {
 public:
  static constexpr std::size_t kMaximumLists = 32;
  static constexpr std::size_t kMaximumInstances = 1 << 21;

  // Null when there is no list, or it was made from an older version of the extent.
  CIMApi::Instances find(const ClassEntry& entry, const std::string& names, QORuint64 version);
  // A list that alone exceeds the bound is not kept.
  void put(const ClassEntry& entry, const std::string& names, QORuint64 version, const CIMApi::Instances& instances);

 private:
  struct Kept {
    const ClassEntry* entry;  // compared, never dereferenced
    std::string names;
    QORuint64 version;
    CIMApi::Instances instances;
  };

  std::list<Kept>::iterator locate(const ClassEntry& entry, const std::string& names);

  std::mutex _mutex;      // guards what follows
  std::list<Kept> _kept;  // the last used first
  std::size_t _instances = 0;
};

}  // namespace embedded

#endif
