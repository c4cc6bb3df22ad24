// The faults of one load, collected until it ends.
// Tested by tests/unit/Mof/MofLoaderTest.cpp, tests/unit/Mof/MofLenientTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFREPORT_H
#define QORQL_MOF_MOFREPORT_H

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Cimom/Mof/MofError.h"
#include "Cimom/Mof/MofSource.h"

// Belongs to one load. A strict load stops reading when the report is full. A
// lenient one goes on: what is at fault is left out, further faults are counted.
class MofReport {
 public:
  explicit MofReport(bool isLenient = false) : _isLenient(isLenient) {}

  // Whether the load passes over what is at fault. What only follows from another fault is a fault then, too,
  // so that everything that is left out has been told.
  bool isLenient() const noexcept { return _isLenient; }

  void add(const MofLocation& at, const std::string& message) { add(MofFault{at, message}); }
  // Does nothing for a fault that has been recorded already.
  void add(const MofFault& fault);
  // A fault of a file as a whole.
  void addFile(const std::string& file, const std::string& message);

  bool isEmpty() const noexcept { return _count == 0; }
  bool isFull() const noexcept { return !_isLenient && _count >= MofException::kMaximumFaults; }
  // THROWS MofException when a strict load has faults; those of a text in the order of its lines.
  void raise() const;
  // Those of a lenient load, in the same order.
  MofFaults faults() const { return {inOrder(), _count}; }

 private:
  struct Fault {
    MofDiagnostic diagnostic;
    std::size_t offset = 0;  // in the outermost text
    std::size_t places = 1;
  };

  bool isKnown(const MofFault& fault);
  void addPlace(Fault& first, const MofFault& fault);
  std::size_t limit() const noexcept { return _isLenient ? MofFaults::kMaximumShown : MofException::kMaximumFaults; }
  std::vector<MofDiagnostic> inOrder() const;

  const bool _isLenient;
  std::size_t _count = 0;
  std::vector<Fault> _faults;  // as many as are shown
  std::unordered_set<std::string> _known;
  std::unordered_map<std::string, std::size_t> _subjects;  // index of the fault; past the last: it is not shown
};

#endif
