// The live instances that one client object has read for its association calls.
// Tested by tests/unit/Embedded/ProviderTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_LIVESNAPSHOT_H
#define QORQL_EMBEDDED_LIVESNAPSHOT_H

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Cimom/Embedded/LiveReader.h"

namespace embedded {

// Walking an association asks once per source instance; without this each of
// those calls would run every provider again. Belongs to one thread at a time.
class LiveSnapshot {
 public:
  // BORROW: valid while the snapshot lives. THROW as readLive().
  // The live associations of the source that refer to the path; null when there
  // are none. The flag as in LiveRequest.
  const std::vector<QORSmrPtr<IQoriObject>>* referringTo(const ObjectStore& store, const LiveSource& source,
                                                         std::string_view path, bool isOneOfMany);
  // The live instance of that canonical path with the named properties; null when there is none.
  QORSmrPtr<IQoriObject> find(const ObjectStore& store, const LiveSource& source, const CIMApi::PropertyNames& names,
                              std::string_view path);

 private:
  template <class V>
  using PathMap = std::unordered_map<std::string, V, PathHash, std::equal_to<>>;

  std::map<const ClassEntry*, PathMap<std::vector<QORSmrPtr<IQoriObject>>>> _associations;
  std::map<std::pair<const ClassEntry*, std::string>, PathMap<QORSmrPtr<IQoriObject>>> _instances;
};

}  // namespace embedded

#endif
