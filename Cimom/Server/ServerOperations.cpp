// Finds the operation that a message asks for.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerOperations.h"

#include <string>
#include <unordered_map>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlMessages.h"
#include "Cimom/Server/StatusCodes.h"

namespace {

constexpr QORuint32 kGreatestStatus = 28;

// A refusal's text without its status; that of a failure as it is.
std::string_view descriptionOf(const QoriBaseException& failure) noexcept {
  const auto* const refusal = dynamic_cast<const CimStatusException*>(&failure);
  return refusal == nullptr ? failure.getMessage().view() : refusal->getDescription().view();
}

}  // namespace

struct ServerOperations::State {
  // THROWS CimStatusException when nobody answers such a call.
  const Operation& find(const CimXmlRequest& request) const;

  std::unordered_map<std::string, Operation> operations;
  std::unordered_map<std::string, Operation> exports;
  Operation methods;
};

ServerOperations::ServerOperations() : _state(std::make_unique<State>()) {}
ServerOperations::~ServerOperations() = default;

void ServerOperations::add(const char* name, Operation operation) {
  _state->operations.insert_or_assign(name, std::move(operation));
}

void ServerOperations::addExport(const char* name, Operation operation) {
  _state->exports.insert_or_assign(name, std::move(operation));
}

void ServerOperations::setMethods(Operation operation) { _state->methods = std::move(operation); }

std::unique_ptr<ServerReply> ServerOperations::refuse(const ServerCall& call, const QoriBaseException& failure) {
  const bool isStatus = failure.getCode() >= cimstatus::kFailed && failure.getCode() <= kGreatestStatus;
  call.note.operation = call.request.operation;
  call.note.nameSpace = call.request.nameSpace.view();
  call.note.status = isStatus ? failure.getCode() : cimstatus::kFailed;
  call.note.statusText = descriptionOf(failure);
  CimXmlResponse response(call.request.messageId, call.request.operation, call.request.kind);
  response.setError(call.note.status, call.note.statusText);
  return std::make_unique<WholeReply>(response.finish());
}

const ServerOperations::Operation& ServerOperations::State::find(const CimXmlRequest& request) const {
  if (request.kind == CimXmlRequest::Kind::Method) {
    if (methods) return methods;
    throw CimStatusException(cimstatus::kMethodNotAvailable, "methods cannot be called here");
  }
  const auto& known = request.kind == CimXmlRequest::Kind::Export ? exports : operations;
  const auto found = known.find(request.operation);
  if (found == known.end()) {
    throw CimStatusException(cimstatus::kNotSupported, "there is no operation " + request.operation);
  }
  return found->second;
}

std::unique_ptr<ServerReply> ServerOperations::answer(const ServerCall& call) const {
  call.note.operation = call.request.operation;
  call.note.nameSpace = call.request.nameSpace.view();
  try {
    return _state->find(call.request)(call);
  } catch (const QoriBaseException& failure) {
    return refuse(call, failure);
  }
}
