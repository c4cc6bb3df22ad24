// The refusal of a class declaration.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/CimDeclarationRefusal.h"

#include <utility>

CimDeclarationRefusal::CimDeclarationRefusal(std::vector<CimDeclarationFault> faults)
    : QoriBaseException("CIM_Repository", "CIMOM", QORString(), faults.front().message, faults.front().code),
      _faults(std::move(faults)) {}

CimDeclarationRefusal::~CimDeclarationRefusal() = default;
