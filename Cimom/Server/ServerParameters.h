// What every operation asks of the parameters of its calls.
// Tested by tests/unit/Server/ClassOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVERPARAMETERS_H
#define QORQL_SERVER_SERVERPARAMETERS_H

#include <vector>

#include "Cimom/CimXml/CimXmlRequest.h"
#include "Cimom/Server/ServerOperations.h"

// All THROW CimStatusException, status 4.
namespace serverparameters {

// Refuses a call that has a parameter besides these, or one whose value is not of its type, also where nobody asks for
// the value later. What is in an unknown namespace is refused for that: 3.
void allowOnly(const ServerCall& call, const std::vector<const char*>& known);

// Parameters that must be there.
QORString className(const CimXmlRequest& request, const char* name);
QORString text(const CimXmlRequest& request, const char* name);
QORSmrPtr<IQoriInstanceName> instanceName(const CimXmlRequest& request, const char* name);
const CimXmlInstance& instance(const CimXmlRequest& request, const char* name);

}  // namespace serverparameters

#endif
