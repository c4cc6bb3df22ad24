// The faults of one load, collected until it ends.
// Tested by tests/unit/Mof/MofLoaderTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFREPORT_H
#define QORQL_MOF_MOFREPORT_H

#include <cstddef>
#include <string>
#include <vector>

#include "Cimom/Mof/MofError.h"
#include "Cimom/Mof/MofSource.h"

// Belongs to one load. Past the limit further faults are dropped and the
// load stops reading.
class MofReport {
 public:
  void add(const MofLocation& at, const std::string& message);
  // Does nothing for a fault that has been recorded already.
  void add(const MofFault& fault) {
    if (fault.at.source != nullptr) add(fault.at, fault.message);
  }
  // A fault of a file as a whole.
  void addFile(const std::string& file, const std::string& message);

  bool isEmpty() const noexcept { return _faults.empty(); }
  bool isFull() const noexcept { return _faults.size() >= MofException::kMaximumFaults; }
  // THROWS MofException when faults were added; those of a text in the order of its lines.
  void raise() const;

 private:
  std::vector<MofDiagnostic> _faults;
};

#endif
