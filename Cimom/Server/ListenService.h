// Takes the indications that servers send.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_LISTENSERVICE_H
#define QORQL_SERVER_LISTENSERVICE_H

#include <memory>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Server/CimXmlService.h"
#include "Cimom/Server/HttpService.h"
#include "Cimom/Server/ServerEvents.h"
#include "Cimom/Server/ServerOperations.h"

// Answers ExportIndication, and refuses everything else as a server does. BORROWS the taker.
class ListenService final : public HttpService {
 public:
  explicit ListenService(IndicationTaker& taker);

  HttpReply serve(const HttpRequest& request) override;

 private:
  std::unique_ptr<ServerReply> take(const ServerCall& call);

  IndicationTaker& _taker;
  const std::shared_ptr<EmbeddedObjectManager> _manager;  // without classes, for what a reader asks it
  ServerOperations _operations;
  CimXmlService _service;
};

#endif
