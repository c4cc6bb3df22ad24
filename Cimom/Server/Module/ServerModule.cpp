// Hands out what the library is made of.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerModule.h"

#include <utility>

#include "Cimom/CimXml/CimXmlMessages.h"

namespace {

// Answers each request with a refusal.
class EmptyService : public HttpService {
 public:
  HttpReply serve(const HttpRequest& /*request*/) override {
    constexpr QORuint32 kNotSupported = 7;
    CimXmlResponse response("0", "GetClass");
    response.setError(kNotSupported, "there is no such operation");
    HttpReply reply;
    reply.headers.emplace_back("Content-Type", "application/xml; charset=\"utf-8\"");
    reply.headers.emplace_back("CIMOperation", "MethodResponse");
    reply.note.status = kNotSupported;
    reply.body = std::make_unique<WholeReply>(response.finish());
    return reply;
  }
};

class Module : public ServerModule {
 public:
  std::unique_ptr<HttpServer> startHttp(const HttpOptions& options, std::shared_ptr<HttpService> service) override {
    return startHttpServer(options, std::move(service));
  }
  std::shared_ptr<HttpService> makeCimService(const CimServiceOptions& /*options*/) override {
    return std::make_shared<EmptyService>();
  }
  std::shared_ptr<ServerModel> makeModel(ServerModel::Manager manager) override {
    return std::make_shared<ServerModel>(std::move(manager));
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) ServerModule& qorqlServerModule() {
  static Module module;
  return module;
}
