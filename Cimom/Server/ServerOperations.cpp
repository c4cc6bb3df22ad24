// Finds the operation that a message asks for.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerOperations.h"

#include <string>
#include <unordered_map>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlMessages.h"

namespace {

constexpr QORuint32 kFailed = 1;
constexpr QORuint32 kNotSupported = 7;
constexpr QORuint32 kMethodNotAvailable = 16;
constexpr QORuint32 kGreatestStatus = 28;

std::unique_ptr<ServerReply> refuse(const ServerCall& call, QORuint32 status, std::string_view description) {
  call.note.status = status;
  call.note.statusText = description;
  CimXmlResponse response(call.request.messageId, call.request.operation);
  response.setError(status, description);
  return std::make_unique<WholeReply>(response.finish());
}

}  // namespace

struct ServerOperations::State {
  std::unordered_map<std::string, Operation> operations;
};

ServerOperations::ServerOperations() : _state(std::make_unique<State>()) {}
ServerOperations::~ServerOperations() = default;

void ServerOperations::add(const char* name, Operation operation) {
  _state->operations.insert_or_assign(name, std::move(operation));
}

std::unique_ptr<ServerReply> ServerOperations::answer(const ServerCall& call) const {
  call.note.operation = call.request.operation;
  call.note.nameSpace = call.request.nameSpace.view();
  if (call.request.kind != CimXmlRequest::Kind::Operation) {
    return refuse(call, kMethodNotAvailable, "methods cannot be called here");
  }
  const auto found = _state->operations.find(call.request.operation);
  if (found == _state->operations.end()) {
    return refuse(call, kNotSupported, "there is no operation " + call.request.operation);
  }
  try {
    return found->second(call);
  } catch (const CimStatusException& refusal) {
    return refuse(call, refusal.getCode(), refusal.getDescription().view());
  } catch (const QoriBaseException& failure) {
    const bool isStatus = failure.getCode() >= kFailed && failure.getCode() <= kGreatestStatus;
    return refuse(call, isStatus ? failure.getCode() : kFailed, failure.getMessage().view());
  }
}
