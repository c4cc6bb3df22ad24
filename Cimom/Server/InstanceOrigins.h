// The classes that the properties of instances come from.
// Tested by tests/unit/Server/InstanceOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INSTANCEORIGINS_H
#define QORQL_SERVER_INSTANCEORIGINS_H

#include <unordered_map>
#include <vector>

#include "Cimom/CimXml/CimXmlWriter.h"
#include "Cimom/Server/ServerClasses.h"

// Worked out once for each layout. One thread at a time.
class InstanceOrigins final : public CimXmlOrigins {
 public:
  // REQUIRES that the classes' object manager outlives it.
  explicit InstanceOrigins(const ServerClasses& space) : _space(space) {}

  const std::vector<CimXmlFeatureMarks>& marksOf(const IQoriObject& object) const override;

 private:
  const ServerClasses _space;
  mutable std::unordered_map<const IQoriLayout*, std::vector<CimXmlFeatureMarks>> _byLayout;
};

#endif
