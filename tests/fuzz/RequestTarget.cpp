// Fuzz target: requests to a server. Each is answered, by HTTP's refusal or by a well-formed reply; a request that is
// answered once is answered the same again.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/XmlPull.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Server/AssociationOperations.h"
#include "Cimom/Server/CimXmlService.h"
#include "Cimom/Server/ClassOperations.h"
#include "Cimom/Server/InstanceOperations.h"
#include "FuzzInput.h"

namespace {

// Takes every change and keeps none, so that no input depends on those before it.
class ForgetfulWriter final : public InstanceWriter {
 public:
  QORSmrPtr<IQoriInstanceName> create(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                      const CimInstanceDeclaration& declaration) override {
    const QORSmrPtr<IQoriInstanceName> name(manager.sink().makeObject(nameSpace, declaration)->getInstanceName());
    if (name.IsNull()) throw CimStatusException(4, "it has no name");
    return name;
  }
  void modify(EmbeddedObjectManager&, const QORSmrPtr<IQoriInstanceName>&,
              const std::vector<CimInstanceProperty>&) override {}
  void remove(EmbeddedObjectManager&, const QORSmrPtr<IQoriInstanceName>&) override {}
};

class World {
 public:
  World() {
    MofLoader(_manager->sink()).loadText(fuzzFile("tests/remote/plant.mof"), "plant.mof");
    _manager->makeCurrent();
    addClassOperations(_operations);
    addInstanceOperations(_operations, &_writer);
    addAssociationOperations(_operations);
  }

  // Status and body.
  std::string answerTo(const HttpRequest& request) {
    const HttpReply reply = _service.serve(request);
    std::string text = std::to_string(reply.status) + '\n';
    const std::size_t head = text.size();
    for (std::size_t before = 0; before != text.size();) {
      before = text.size();
      reply.body->append(text, 1000);
    }
    fuzzRequire(reply.status == 200 || reply.status == 400, "no other status is answered");
    if (reply.status == 200) requireWellFormed(std::string_view(text).substr(head));
    return text;
  }

 private:
  static void requireWellFormed(std::string_view document) {
    try {
      cimxml::XmlPull xml(document, cimxml::XmlPull::Limits());
      if (xml.peek() == cimxml::Element::Cim) xml.skip();
      xml.finish();
    } catch (const CimXmlException& fault) {
      fuzzRequire(false, std::string(fault.getMessage().view()) + " of the reply\n" + std::string(document));
    }
  }

  const std::shared_ptr<EmbeddedObjectManager> _manager = std::make_shared<EmbeddedObjectManager>();
  ForgetfulWriter _writer;
  ServerOperations _operations;
  CimXmlService _service{_operations, [this] { return _manager; }};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static World* const world = new World;
  const HttpRequest request{"POST", "/cimom", {{"Host", "here"}}, fuzzText(data, size), {"127.0.0.1", ""}};
  fuzzRequire(world->answerTo(request) == world->answerTo(request), "the same request has the same reply");
  return 0;
}
