// The refusal of a class declaration, with every fault that was found in it.
// Tested by tests/unit/Embedded/ClassRepositoryTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_CIMDECLARATIONREFUSAL_H
#define QORQL_EMBEDDED_CIMDECLARATIONREFUSAL_H

#include <vector>

#include "cmpbase.h"

// One fault of a declaration.
struct CimDeclarationFault {
  QORString feature;  // the property or method at fault; empty: the class as a whole
  QORString message;
  QORuint32 code = 0;  // CIM status
};

// Type "CIM_Repository"; message and code are those of the first fault. A
// loader that knows the places of the features shows each fault in its place.
class CimDeclarationRefusal : public QoriBaseException {
 public:
  // REQUIRES at least one fault.
  explicit CimDeclarationRefusal(std::vector<CimDeclarationFault> faults);
  CimDeclarationRefusal(const CimDeclarationRefusal&) = default;
  CimDeclarationRefusal& operator=(const CimDeclarationRefusal&) = default;
  ~CimDeclarationRefusal() override;

  // In the order in which they were found; never empty.
  const std::vector<CimDeclarationFault>& getFaults() const noexcept { return _faults; }

 private:
  std::vector<CimDeclarationFault> _faults;
};

#endif
