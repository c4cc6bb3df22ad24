// Refuses what an operation does not know, and what it lacks.
// Tested by tests/unit/Server/ClassOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerParameters.h"

#include <algorithm>
#include <string>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/StatusCodes.h"

namespace serverparameters {

namespace {

[[noreturn]] void raiseMissing(const CimXmlRequest& request, const char* name) {
  throw CimStatusException(cimstatus::kInvalidParameter, request.operation + " needs the parameter " + name);
}

}  // namespace

void allowOnly(const CimXmlRequest& request, const std::vector<const char*>& known) {
  for (const CimXmlParameter& each : request.parameters) {
    const auto isName = [&](const char* name) { return QORString::equalIgnoringCase(each.name, name); };
    if (std::any_of(known.begin(), known.end(), isName)) continue;
    throw CimStatusException(cimstatus::kInvalidParameter, request.operation + " has no parameter " + each.name);
  }
}

QORString className(const CimXmlRequest& request, const char* name) {
  const std::optional<QORString> given = request.className(name);
  if (!given) raiseMissing(request, name);
  return *given;
}

QORString text(const CimXmlRequest& request, const char* name) {
  const std::optional<QORString> given = request.text(name);
  if (!given) raiseMissing(request, name);
  return *given;
}

QORSmrPtr<IQoriInstanceName> instanceName(const CimXmlRequest& request, const char* name) {
  QORSmrPtr<IQoriInstanceName> given = request.instanceName(name);
  if (given.IsNull()) raiseMissing(request, name);
  return given;
}

const CimXmlInstance& instance(const CimXmlRequest& request, const char* name) {
  const CimXmlInstance* const given = request.instance(name);
  if (given == nullptr) raiseMissing(request, name);
  return *given;
}

}  // namespace serverparameters
