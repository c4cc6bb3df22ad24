// The document that answers a request, made piece by piece while it leaves.
// Tested by tests/unit/Server/ServerOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVERREPLY_H
#define QORQL_SERVER_SERVERREPLY_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

// Belongs to the thread that sends it. Once the first piece is made nothing can
// fail any more that the client has to be told of: whoever makes a reply has
// found out before. A client that goes away ends it between two pieces.
class ServerReply {
 public:
  virtual ~ServerReply() = default;
  // Appends the next piece, about as many bytes as given; nothing at the end.
  // What it throws breaks the connection, since the client must not take what
  // it has for the whole.
  virtual void append(std::string& out, std::size_t about) = 0;
};

// A document that is there as a whole.
class WholeReply : public ServerReply {
 public:
  explicit WholeReply(std::string text) : _text(std::move(text)) {}
  void append(std::string& out, std::size_t about) override {
    const std::size_t count = std::min(about, _text.size() - _sent);
    out.append(_text, _sent, count);
    _sent += count;
  }
  // What has not been sent yet.
  std::size_t size() const noexcept { return _text.size() - _sent; }

 private:
  const std::string _text;
  std::size_t _sent = 0;
};

#endif
