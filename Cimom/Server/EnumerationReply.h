// The reply to an open or a pull: elements while they are taken, then how it goes on.
// Tested by tests/unit/Server/PullOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_ENUMERATIONREPLY_H
#define QORQL_SERVER_ENUMERATIONREPLY_H

#include <memory>
#include <optional>
#include <utility>

#include "Cimom/CimXml/CimXmlMessages.h"
#include "Cimom/Server/EnumerationContexts.h"
#include "Cimom/Server/ServerReply.h"

// Holds the object manager, which may be asked while it is made.
class EnumerationReply final : public ServerReply {
 public:
  // Of at most `most` elements.
  EnumerationReply(const ServerCall& call, EnumerationContexts::Turn turn, QORuint64 most)
      : _manager(call.manager),
        _response(call.request.messageId, call.request.operation),
        _turn(std::move(turn)),
        _left(most) {
    _response.values();
  }

  // The class that the elements are instances of, for a client that asked for it.
  void setResultClass(CimClassDeclaration declaration) { _resultClass = std::move(declaration); }

  void append(std::string& out, std::size_t about) override {
    if (_isFinished) return;
    out += _response.take();
    CimXmlWriter writer(out);
    EnumerationItems& items = _turn.items();
    for (const std::size_t begin = out.size(); _left > 0 && items.hasNext(); --_left) {
      if (out.size() - begin >= about) return;
      items.writeNext(writer);
    }
    finish(out);
  }

 private:
  void finish(std::string& out) {
    const std::string name = _turn.end();
    _response.addOutput("EnumerationContext", name);
    _response.addOutputFlag("EndOfSequence", name.empty());
    if (_resultClass) _response.addOutputClass("QueryResultClass", *_resultClass);
    out += _response.finish();
    _isFinished = true;
  }

  const std::shared_ptr<EmbeddedObjectManager> _manager;
  CimXmlResponse _response;
  EnumerationContexts::Turn _turn;
  QORuint64 _left;
  std::optional<CimClassDeclaration> _resultClass;
  bool _isFinished = false;
};

#endif
