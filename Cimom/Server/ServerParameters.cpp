// Refuses what an operation does not know, and what it lacks.
// Tested by tests/unit/Server/ClassOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerParameters.h"

#include <algorithm>
#include <string>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/ServerClasses.h"
#include "Cimom/Server/StatusCodes.h"

namespace serverparameters {

namespace {

[[noreturn]] void raiseMissing(const CimXmlRequest& request, const char* name) {
  throw CimStatusException(cimstatus::kInvalidParameter, request.operation + " needs the parameter " + name);
}

// Reads a parameter to see that it is of its type, which it has in all operations.
struct Typed {
  const char* name;
  void (*read)(const CimXmlRequest& request, const char* name);
};

void readFlag(const CimXmlRequest& request, const char* name) { request.flag(name, false); }
void readNumber(const CimXmlRequest& request, const char* name) { request.number(name); }
void readText(const CimXmlRequest& request, const char* name) { request.text(name); }
void readTexts(const CimXmlRequest& request, const char* name) { request.texts(name); }
void readClassName(const CimXmlRequest& request, const char* name) { request.className(name); }

constexpr Typed kTyped[] = {
    {"LocalOnly", &readFlag},          {"DeepInheritance", &readFlag},    {"IncludeQualifiers", &readFlag},
    {"IncludeClassOrigin", &readFlag}, {"ContinueOnError", &readFlag},    {"ReturnQueryResultClass", &readFlag},
    {"MaxObjectCount", &readNumber},   {"OperationTimeout", &readNumber}, {"Role", &readText},
    {"ResultRole", &readText},         {"PropertyList", &readTexts},      {"AssocClass", &readClassName},
    {"ResultClass", &readClassName}};

void requireType(const CimXmlRequest& request, const std::string& name) {
  for (const Typed& each : kTyped) {
    if (QORString::equalIgnoringCase(name, each.name)) return each.read(request, each.name);
  }
}

void requireKnown(const CimXmlRequest& request, const std::vector<const char*>& known) {
  for (const CimXmlParameter& each : request.parameters) {
    const auto isName = [&](const char* name) { return QORString::equalIgnoringCase(each.name, name); };
    if (std::any_of(known.begin(), known.end(), isName)) {
      requireType(request, each.name);
      continue;
    }
    throw CimStatusException(cimstatus::kInvalidParameter, request.operation + " has no parameter " + each.name);
  }
}

}  // namespace

void allowOnly(const ServerCall& call, const std::vector<const char*>& known) {
  try {
    requireKnown(call.request, known);
  } catch (const CimStatusException&) {
    requireNameSpace(*call.manager, call.request.nameSpace);
    throw;
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
