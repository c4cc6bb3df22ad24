// What every call that opens an enumeration may say of how it goes on.
// Tested by tests/unit/Server/PullOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_ENUMERATIONPARAMETERS_H
#define QORQL_SERVER_ENUMERATIONPARAMETERS_H

#include <chrono>

#include "Cimom/CimXml/CimXmlRequest.h"
#include "Cimom/Server/ServerLimits.h"

struct EnumerationParameters {
  // THROWS CimStatusException: a time that is 0 or longer than the limit 22, going on after an error 26, a parameter
  // that is none 4.
  EnumerationParameters(const CimXmlRequest& request, const ServerLimits& limits);

  std::chrono::milliseconds betweenPulls;
  QORuint32 most;  // elements of the first reply
};

// Of an open that may filter: filters are refused, with 25; one in a language that nobody knows with 14, one that is no
// query with 15, and half of one with 4.
void refuseFilter(const CimXmlRequest& request);

#endif
