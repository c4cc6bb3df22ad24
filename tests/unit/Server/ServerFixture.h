// A small model behind an object manager, and calls of it as a client's message would give them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_SERVER_SERVERFIXTURE_H
#define QORQL_TESTS_UNIT_SERVER_SERVERFIXTURE_H

#include <memory>
#include <string>
#include <vector>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/ServerOperations.h"
#include "tests/unit/Embedded/EmbeddedFixture.h"

namespace servertest {

// One call with its parameters.
struct Asked {
  explicit Asked(const char* operation, const char* nameSpace = "root/cimv2") {
    request.messageId = "17";
    request.operation = operation;
    request.nameSpace = nameSpace;
  }
  Asked& className(const char* name, const char* value) {
    add(name, CimXmlParameter::Kind::ClassName).text = value;
    return *this;
  }
  Asked& text(const char* name, const std::string& value) {
    add(name, CimXmlParameter::Kind::Text).text = QORString(std::string_view(value));
    return *this;
  }
  Asked& texts(const char* name, std::vector<QORString> values) {
    add(name, CimXmlParameter::Kind::Texts).texts = std::move(values);
    return *this;
  }
  Asked& path(const char* name, const embeddedtest::Name& value) {
    add(name, CimXmlParameter::Kind::InstanceName).path = value;
    return *this;
  }

  CimXmlParameter& add(const char* name, CimXmlParameter::Kind kind) {
    CimXmlParameter& parameter = request.parameters.emplace_back();
    parameter.name = name;
    parameter.kind = kind;
    return parameter;
  }

  ServerCall on(const std::shared_ptr<EmbeddedObjectManager>& manager) { return {request, client, manager, note}; }

  CimXmlRequest request;
  ServerClient client{"127.0.0.1", ""};
  ServerNote note;
};

// All of a reply, in pieces of about that many bytes.
inline std::string textOf(ServerReply& reply, std::size_t about = 100) {
  std::string text;
  std::string piece;
  do {
    piece.clear();
    reply.append(piece, about);
    text += piece;
  } while (!piece.empty());
  return text;
}

// The status that an action is refused with; 0: it is not.
template <class Action>
QORuint32 statusOf(Action&& action) {
  try {
    action();
  } catch (const CimStatusException& refusal) {
    return refusal.getCode();
  }
  return 0;
}

}  // namespace servertest

// The model of the tests of the object manager, as a server holds it.
class ServerTest : public EmbeddedTest {
 protected:
  // Not the owner: the fixture is.
  const std::shared_ptr<EmbeddedObjectManager> held{std::shared_ptr<void>(), &manager};
};

#endif
