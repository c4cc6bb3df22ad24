// The operation of a listener.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ListenService.h"

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/ExportMessages.h"
#include "Cimom/Server/StatusCodes.h"

ListenService::ListenService(IndicationTaker& taker)
    : _taker(taker),
      _manager(std::make_shared<EmbeddedObjectManager>()),
      _service(_operations, [this] { return _manager; }) {
  _operations.addExport(kExportOperation, [this](const ServerCall& call) { return take(call); });
}

HttpReply ListenService::serve(const HttpRequest& request) {
  HttpReply reply = _service.serve(request);
  if (reply.status != httpstatus::kOk || reply.note.status != 0) _taker.complain(request.client, reply.note.statusText);
  return reply;
}

std::unique_ptr<ServerReply> ListenService::take(const ServerCall& call) {
  const CimXmlInstance* const indication = call.request.instance("NewIndication");
  if (indication == nullptr)
    throw CimStatusException(cimstatus::kInvalidParameter, "the parameter NewIndication is missing");
  call.note.subject = indication->className.view();
  _taker.take(*indication, call.client);
  return std::make_unique<WholeReply>(exportResponse(call.request.messageId));
}
