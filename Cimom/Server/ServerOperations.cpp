// Finds the operation that a message asks for.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerOperations.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <unordered_map>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlMessages.h"
#include "Cimom/Embedded/StopScope.h"
#include "Cimom/Server/QueryMonitor.h"
#include "Cimom/Server/StatusCodes.h"

namespace {

constexpr QORuint32 kGreatestStatus = 28;

// A refusal's text without its status; that of a failure as it is.
std::string_view descriptionOf(const QoriBaseException& failure) noexcept {
  const auto* const refusal = dynamic_cast<const CimStatusException*>(&failure);
  return refusal == nullptr ? failure.getMessage().view() : refusal->getDescription().view();
}

}  // namespace

std::shared_ptr<EmbeddedObjectManager> ServerCall::leaseForChange() const {
  if (!forChange) return manager;
  std::shared_ptr<EmbeddedObjectManager> held = forChange();
  if (held != manager) throw ReplacedManager();
  return held;
}

struct ServerOperations::State {
  // THROWS CimStatusException when nobody answers such a call.
  const Operation& find(const CimXmlRequest& request) const;
  std::unique_ptr<ServerReply> answer(const ServerCall& call) const;

  const std::chrono::milliseconds limit;
  std::unordered_map<std::string, Operation> operations;
  std::unordered_map<std::string, Operation> exports;
  Operation methods;
};

ServerOperations::ServerOperations(std::chrono::milliseconds limit) : _state(new State{limit, {}, {}, {}}) {}
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

// What was asked on behalf of an operation that is stopped fails, and does not say why.
std::unique_ptr<ServerReply> ServerOperations::State::answer(const ServerCall& call) const {
  const Operation& operation = find(call.request);
  QueryMonitor monitor(call.client, limit);
  const QORQL_MonitorScope scope(monitor);
  const StopScope stop(&isCallStopped);
  try {
    return operation(call);
  } catch (const CimStatusException&) {
    throw;
  } catch (const QoriBaseException&) {
    if (monitor.isStopRequested()) monitor.raiseStopped("operation");
    throw;
  }
}

std::unique_ptr<ServerReply> ServerOperations::answer(const ServerCall& call) const {
  call.note.operation = call.request.operation;
  call.note.nameSpace = call.request.nameSpace.view();
  const auto refuseWith = [&call](QORuint32 status, const char* text) {
    return refuse(call, CimStatusException(status, text));
  };
  try {
    return _state->answer(call);
  } catch (const QoriBaseException& failure) {
    return refuse(call, failure);
  } catch (const std::bad_alloc&) {
    return refuseWith(cimstatus::kServerLimitsExceeded, "there is not enough memory for this operation");
  } catch (const std::length_error&) {
    return refuseWith(cimstatus::kServerLimitsExceeded, "this operation needs more memory than there can be");
  } catch (const std::exception& failure) {
    return refuseWith(cimstatus::kFailed, failure.what());
  }
}
