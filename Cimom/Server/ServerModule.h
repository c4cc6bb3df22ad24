// What the library that serves has for the program that loads it.
// Tested by tests/server/http_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVERMODULE_H
#define QORQL_SERVER_SERVERMODULE_H

#include <exception>
#include <memory>
#include <streambuf>
#include <string>

#include "Cimom/Server/HttpServer.h"
#include "Cimom/Server/HttpService.h"
#include "Cimom/Server/InteropModel.h"
#include "Cimom/Server/ServerEvents.h"
#include "Cimom/Server/ServerLimits.h"
#include "Cimom/Server/ServerModel.h"

struct CimServiceOptions {
  std::shared_ptr<ServerModel> model;
  std::shared_ptr<ServerEvents> events;  // null: nothing can be written, and nobody subscribes
  bool isWritable = false;
  ServerLimits limits{};
};

struct EventOptions {
  std::string storeFile;  // empty: in memory
  IndicationOptions indications;
};

// Any thread may call.
class ServerModule {
 public:
  virtual ~ServerModule() = default;
  virtual std::unique_ptr<HttpServer> startHttp(const HttpOptions& options, std::shared_ptr<HttpService> service) = 0;
  // Answers operations on the object manager.
  virtual std::shared_ptr<HttpService> makeCimService(const CimServiceOptions& options) = 0;
  // Declares what a server has besides, and lets many threads ask the outer servers. For each object manager, before
  // others know it. THROWS QoriBaseException when something of it does not fit what is declared.
  virtual void prepare(EmbeddedObjectManager& manager, const ServerTraits& traits) = 0;
  // THROWS QoriBaseException (type "CIM_Store") when the store cannot be used.
  virtual std::shared_ptr<ServerEvents> makeEvents(const EventOptions& options) = 0;
  // Takes indications that are sent. BORROWS the taker.
  virtual std::shared_ptr<HttpService> makeListenService(IndicationTaker& taker) = 0;
  // An indication as an object; and the CimStatusException with which a taker refuses one.
  virtual QORSmrPtr<IQoriObject> makeObject(const CimXmlInstance& indication) = 0;
  virtual std::exception_ptr makeRefusal(QORuint32 status, const std::string& reason) = 0;
  virtual std::shared_ptr<ServerModel> makeModel(ServerModel::Manager manager) = 0;
  // As UserFile.h says.
  virtual void setPassword(const std::string& file, const std::string& user, const std::string& password) = 0;
  virtual void removeUser(const std::string& file, const std::string& user) = 0;
  // What writes lines to a log without waiting for whoever reads it.
  virtual std::unique_ptr<std::streambuf> makeLogBuffer(int file) = 0;
  // Tells the program that has started this one, where it wants to be told: "READY=1", as systemd has it.
  virtual void tellSupervisor(const std::string& state) = 0;
};

// Made by a library of its own, which is loaded when a server is started, since what it needs would slow down every
// start. It stays loaded.
using ServerModuleGetter = ServerModule* (*)();

// From the folder of the library of the object manager on.
inline constexpr const char* kServerLibrary = "qorql/libqorqlserver.so";
inline constexpr const char* kServerFunction = "qorqlServerModule";

#endif
