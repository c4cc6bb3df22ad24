// A message finds its operation, and what fails becomes the reply's error.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/ServerOperations.h"

namespace {

using ::testing::HasSubstr;

// A call of a message with that operation, and what is answered.
struct Asked {
  explicit Asked(const char* operation, CimXmlRequest::Kind kind = CimXmlRequest::Kind::Operation) {
    request.kind = kind;
    request.messageId = "17";
    request.operation = operation;
    request.nameSpace = "root/cimv2";
  }
  std::string answerOf(const ServerOperations& operations) {
    std::string text;
    const std::unique_ptr<ServerReply> reply = operations.answer({request, client, manager, note});
    for (std::size_t before = 1; before != text.size();) {
      before = text.size();
      reply->append(text, 7);
    }
    return text;
  }

  CimXmlRequest request;
  ServerClient client{"127.0.0.1", ""};
  std::shared_ptr<EmbeddedObjectManager> manager;
  ServerNote note;
};

TEST(ServerOperations, AnOperationAnswersTheMessagesOfItsName) {
  ServerOperations operations;
  operations.add("GetClass", [](const ServerCall& call) {
    return std::make_unique<WholeReply>("<" + call.request.messageId + "/>");
  });
  Asked asked("GetClass");
  EXPECT_EQ(asked.answerOf(operations), "<17/>");
  EXPECT_EQ(asked.note.operation, "GetClass");
  EXPECT_EQ(asked.note.nameSpace, "root/cimv2");
  EXPECT_EQ(asked.note.status, 0U);
}

TEST(ServerOperations, AnOperationThatNobodyHasIsNotSupported) {
  Asked asked("SetProperty");
  EXPECT_THAT(asked.answerOf(ServerOperations()), HasSubstr("CODE=\"7\""));
  EXPECT_EQ(asked.note.status, 7U);
}

TEST(ServerOperations, AMethodIsNotAvailable) {
  Asked asked("Reboot", CimXmlRequest::Kind::Method);
  EXPECT_THAT(asked.answerOf(ServerOperations()), HasSubstr("CODE=\"16\""));
}

TEST(ServerOperations, ARefusalIsTheReply) {
  ServerOperations operations;
  operations.add("GetClass", [](const ServerCall&) -> std::unique_ptr<ServerReply> {
    throw CimStatusException(5, "there is no class X");
  });
  Asked asked("GetClass");
  EXPECT_THAT(asked.answerOf(operations), HasSubstr("<ERROR CODE=\"5\" DESCRIPTION=\"there is no class X\"/>"));
  EXPECT_EQ(asked.note.statusText, "there is no class X");
}

TEST(ServerOperations, AFailureWithoutStatusIsOneOfTheServer) {
  ServerOperations operations;
  operations.add("GetClass", [](const ServerCall&) -> std::unique_ptr<ServerReply> {
    throw QoriBaseException("CIM_Value", "writer", "write", "too deep", 4711);
  });
  Asked asked("GetClass");
  EXPECT_THAT(asked.answerOf(operations), HasSubstr("<ERROR CODE=\"1\" DESCRIPTION=\"too deep\"/>"));
}

TEST(HttpRequest, HeadersAreFoundIgnoringCase) {
  HttpRequest request;
  request.headers = {{"Content-Type", "text/xml"}, {"content-type", "application/xml"}};
  ASSERT_NE(request.header("CONTENT-TYPE"), nullptr);
  EXPECT_EQ(*request.header("CONTENT-TYPE"), "text/xml");
  EXPECT_EQ(request.header("Content"), nullptr);
}

}  // namespace
