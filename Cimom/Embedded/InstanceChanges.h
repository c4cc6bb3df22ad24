// What became of the instances of a class between two looks at them.
// Tested by tests/unit/Server/LiveEventsTest.cpp, tests/cli/watch_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_INSTANCECHANGES_H
#define QORQL_EMBEDDED_INSTANCECHANGES_H

#include <string>
#include <unordered_map>
#include <vector>

#include "cimom/CIMApi.h"

// The instances of one look, by path.
class InstanceSnapshot {
 public:
  InstanceSnapshot() = default;
  // Takes the instances of exactly that class that have a path. A null list is an empty one.
  InstanceSnapshot(const QORString& className, const CIMApi::Instances& instances);

  const std::vector<QORSmrPtr<IQoriObject>>& instances() const noexcept { return _instances; }
  const std::string& pathOf(std::size_t instance) const { return _paths[instance]; }
  // Null when there was none.
  QORSmrPtr<IQoriObject> find(const std::string& path) const;

 private:
  std::vector<QORSmrPtr<IQoriObject>> _instances;
  std::vector<std::string> _paths;
  std::unordered_map<std::string, std::size_t> _index;
};

struct InstanceChange {
  QORSmrPtr<IQoriObject> before;  // null: it came into being
  QORSmrPtr<IQoriObject> after;   // null: it is gone
};

// First what is gone, in the old order, then what is new or changed, in the new one.
std::vector<InstanceChange> changesBetween(const InstanceSnapshot& before, const InstanceSnapshot& after);

// The same where the two looks were at different properties: what changed of those that both have.
std::vector<InstanceChange> commonChangesBetween(const InstanceSnapshot& before, const InstanceSnapshot& after);

// Whether two instances have the same properties with the same values.
bool haveSameValues(const IQoriObject& a, const IQoriObject& b);

#endif
