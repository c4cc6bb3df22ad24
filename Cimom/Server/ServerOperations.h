// The operations of a server by their names, and how a message finds its own.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVEROPERATIONS_H
#define QORQL_SERVER_SERVEROPERATIONS_H

#include <chrono>
#include <functional>
#include <memory>
#include <string_view>

#include "Cimom/CimXml/CimXmlRequest.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Server/HttpService.h"
#include "Cimom/Server/ServerLimits.h"
#include "Cimom/Server/ServerReply.h"

// One call while it is answered.
struct ServerCall {
  const CimXmlRequest& request;
  const ServerClient& client;
  // The one that the services ask on the thread that answers. It lives while anybody holds this.
  std::shared_ptr<EmbeddedObjectManager> manager;
  ServerNote& note;
  // What paths that are told say of where they are.
  QORString host = "localhost";
  // The object manager that answers now, which no other one replaces while it is held. Null: it is never replaced.
  std::function<std::shared_ptr<EmbeddedObjectManager>()> forChange{};

  // Held around what changes something, and around that alone, since others wait for its end: no other object manager
  // takes the place of the call's. THROWS ReplacedManager where one has done so.
  std::shared_ptr<EmbeddedObjectManager> leaseForChange() const;
};

// Another object manager answers than when the call was read: it is to be read and answered anew. No failure of the
// call, and so no exception of the standard library.
struct ReplacedManager {};

// Any number of threads call answer() at once; add() only before.
class ServerOperations {
 public:
  // The reply, which begins when all that can fail is done. What it THROWS becomes the reply's error:
  // CimStatusException as it is, each other QoriBaseException by its code, a lack of memory as 27, anything else as 1;
  // ReplacedManager goes through.
  using Operation = std::function<std::unique_ptr<ServerReply>(const ServerCall& call)>;

  // An operation that runs for longer than the limit, whose client goes away, or that the server ends is stopped, as
  // soon as it asks the thread's monitor.
  explicit ServerOperations(std::chrono::milliseconds limit = ServerLimits().query);
  ServerOperations(const ServerOperations&) = delete;
  ServerOperations& operator=(const ServerOperations&) = delete;
  ~ServerOperations();

  // An intrinsic operation, by its name in the standard's spelling.
  void add(const char* name, Operation operation);
  // One of those who send indications.
  void addExport(const char* name, Operation operation);
  // What answers the calls of methods; without it, all are refused with 16.
  void setMethods(Operation operation);
  // Answers a call of any kind; one that nobody has added with 7.
  std::unique_ptr<ServerReply> answer(const ServerCall& call) const;
  // The reply that tells of the failure.
  static std::unique_ptr<ServerReply> refuse(const ServerCall& call, const QoriBaseException& failure);

 private:
  struct State;
  std::unique_ptr<State> _state;
};

#endif
