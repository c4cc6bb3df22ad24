// A reply of any number of elements, written one after the other while it leaves.
// Tested by tests/unit/Server/ClassOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_ELEMENTSREPLY_H
#define QORQL_SERVER_ELEMENTSREPLY_H

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "Cimom/CimXml/CimXmlMessages.h"
#include "Cimom/CimXml/CimXmlWriter.h"
#include "Cimom/Server/ServerReply.h"

class ElementsReply final : public ServerReply {
 public:
  // Writes the next element; false, with nothing written, at the end. It holds what it writes of.
  using WriteNext = std::function<bool(CimXmlWriter& writer)>;

  ElementsReply(const CimXmlRequest& request, WriteNext next)
      : _response(request.messageId, request.operation, request.kind), _next(std::move(next)) {
    _response.values();
  }

  void append(std::string& out, std::size_t about) override {
    if (_isFinished) return;
    out += _response.take();
    CimXmlWriter writer(out);
    for (const std::size_t begin = out.size(); out.size() - begin < about;) {
      if (_next(writer)) continue;
      out += _response.finish();
      _isFinished = true;
      return;
    }
  }

 private:
  CimXmlResponse _response;
  const WriteNext _next;
  bool _isFinished = false;
};

// The reply that writes each of the items, which it holds.
template <class Item, class Write>
std::unique_ptr<ServerReply> replyWithEach(const CimXmlRequest& request, std::vector<Item> items, Write write) {
  return std::make_unique<ElementsReply>(
      request, [items = std::move(items), write = std::move(write), at = std::size_t{0}](CimXmlWriter& writer) mutable {
        if (at == items.size()) return false;
        write(writer, items[at++]);
        return true;
      });
}

#endif
