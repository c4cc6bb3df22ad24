// CIM operations over HTTP: a request's headers and message in, a reply's out.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_CIMXMLSERVICE_H
#define QORQL_SERVER_CIMXMLSERVICE_H

#include <functional>
#include <memory>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Server/HttpService.h"
#include "Cimom/Server/ServerOperations.h"

// Takes POST, and M-POST with the mapping's numbered headers, at any path. The headers
// CIMOperation (or CIMExport), CIMMethod and CIMObject may be left out; what they say must be
// what the message says.
class CimXmlService final : public HttpService {
 public:
  // The object manager that answers from now on; a reply holds it until it is sent. Called by any thread.
  using Manager = std::function<std::shared_ptr<EmbeddedObjectManager>()>;

  // BORROWS the operations. `forChange` gives the same object manager, which another one does not replace while it is
  // held, to operations that change something. Null: it is never replaced.
  CimXmlService(const ServerOperations& operations, Manager manager, Manager forChange = {});

  HttpReply serve(const HttpRequest& request) override;

 private:
  const ServerOperations& _operations;
  const Manager _manager;
  const Manager _forChange;
};

#endif
