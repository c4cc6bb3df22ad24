// Fuzz target: replies in CIM-XML. A reply is read whole or refused with a place
// in it; what was read is written in a form that reads back as the same. Instances
// become objects of a declared class, too, or are refused.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <atomic>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlMessages.h"
#include "Cimom/CimXml/CimXmlReply.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Model/ModelMof.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Remote/RemoteObjects.h"
#include "FuzzInput.h"

namespace {

constexpr const char* kOperation = "EnumerateInstances";

// A server with a class whose properties are those that the corpus has.
class Server {
 public:
  Server() {
    MofLoader(_manager.sink())
        .loadText(
            "Qualifier Association : boolean = false, Scope(association);\n"
            "[Association] class F { [Key] string K; uint8 A[]; datetime P; sint16 X; real32 Q[]; [EmbeddedObject] "
            "string E; "
            "F REF R; F REF L; };\n",
            "fuzz");
  }

  RemoteServer::Taker taker() {
    return _objects.taker([this](CimXmlInstance& instance) {
      try {
        std::string path;
        _objects.make(instance)->appendPath(path);
      } catch (const QoriBaseException& refusal) {
        fuzzRequire(!refusal.getMessage().isEmpty(), "a refusal says why");
      }
    });
  }

 private:
  static RemoteServerOptions options() {
    RemoteServerOptions options;
    options.name = "array1";
    options.hasGivenName = true;
    return options;
  }

  EmbeddedObjectManager _manager;
  RemoteCallLog _log;
  std::atomic<bool> _isStopped{false};
  RemoteServer _server{options(), _log, _isStopped};
  RemoteClasses _classes{[](const QORString&, const QORString&) { return RemoteClasses::Fetched(); }, true};
  RemoteObjects _objects{_server, _classes, _manager.sink(), "root/cimv2", "F"};
};

// What comes of a reply when a server sends it.
void send(const std::string& document) {
  Server server;
  const RemoteServer::Taker taker = server.taker();
  CimXmlReply reply(
      [&document, at = std::size_t{0}](char* buffer, std::size_t capacity) mutable {
        const std::size_t count = document.copy(buffer, capacity, at);
        at += count;
        return count;
      },
      kOperation, "1", "root/cimv2");
  reply.setMakeClassObject(taker.makeClassObject);
  try {
    using Item = CimXmlReply::Item;
    for (Item item = reply.next(); item != Item::End; item = reply.next()) {
      if (item == Item::Instance) taker.take(reply.takeInstance());
    }
  } catch (const QoriBaseException& refusal) {
    fuzzRequire(!refusal.getMessage().isEmpty(), "a refusal says why");
  }
}

// What a reply holds, as text. Pieces of odd sizes cut tags and characters.
class Content {
 public:
  Content(const std::string& document, std::size_t piece)
      : _reply(
            [&document, piece, at = std::size_t{0}](char* buffer, std::size_t capacity) mutable {
              const std::size_t count = std::min({piece, capacity, document.size() - at});
              std::copy_n(document.data() + at, count, buffer);
              at += count;
              return count;
            },
            kOperation, "1", "root/cimv2") {}

  void read() {
    using Item = CimXmlReply::Item;
    for (Item item = _reply.next(); item != Item::End; item = _reply.next()) {
      if (item == Item::Instance) take(_reply.makeObject());
      if (item == Item::Class) CimXmlWriter(_text).writeClass(_reply.classDeclaration());
      if (item == Item::Qualifier) CimXmlWriter(_text).writeQualifierDeclaration(_reply.qualifierDeclaration());
      if (item == Item::Name) _text += _reply.name()->toString().view();
      if (item == Item::Output) _text += _reply.outputName() + '=' + _reply.outputText() + '\n';
    }
  }

  const std::string& text() const noexcept { return _text; }
  // The instances alone, and a reply that holds them.
  const std::string& instances() const noexcept { return _instances; }
  std::string writtenAgain() const {
    CimXmlResponse response("1", kOperation);
    for (const QORSmrPtr<IQoriObject>& object : _objects) {
      if (object->getInstanceName().IsNull()) {
        response.values().writeInstance(*object);
      } else {
        response.values().writeInstanceWithPath(*object, "");
      }
    }
    return response.finish();
  }

 private:
  void take(const QORSmrPtr<IQoriObject>& object) {
    _objects.push_back(object);
    std::string shown(model::mofText(*object).view());
    object->appendPath(shown);
    _text += shown + '\n';
    _instances += shown + '\n';
  }

  CimXmlReply _reply;
  std::string _text;
  std::string _instances;
  std::vector<QORSmrPtr<IQoriObject>> _objects;
};

// The content, or the fault's text.
std::string outcome(const std::string& document, std::size_t piece) {
  Content content(document, piece);
  try {
    content.read();
    return content.text();
  } catch (const CimXmlException& fault) {
    fuzzRequire(fault.getLine() > 0 && fault.getColumn() > 0, "a fault has a place");
    return std::string(fault.getMessage().view());
  } catch (const CimStatusException& status) {
    return std::string(status.getMessage().view());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string document = fuzzText(data, size);
  fuzzRequire(outcome(document, 1 << 14) == outcome(document, 7), "the same in pieces of any size");
  send(document);
  Content content(document, 1 << 14);
  try {
    content.read();
  } catch (const QoriBaseException&) {
    return 0;
  }
  const std::string written = content.writtenAgain();
  Content copy(written, 1 << 14);
  copy.read();
  fuzzRequire(copy.instances() == content.instances(), "what is written reads back, but it is\n" + written);
  return 0;
}
