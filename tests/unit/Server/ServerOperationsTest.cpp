// A message finds its operation, and what fails becomes the reply's error.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <new>
#include <stdexcept>
#include <thread>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/ServerOperations.h"
#include "cimom/CQoriProviderException.h"
#include "qorql.h"

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

TEST(ServerOperations, ALackOfMemoryIsAReplyAndIsNoted) {
  ServerOperations operations;
  operations.add("GetClass", [](const ServerCall& call) -> std::unique_ptr<ServerReply> {
    call.note.subject = "CIM_Disk";
    throw std::bad_alloc();
  });
  operations.add("GetInstance",
                 [](const ServerCall&) -> std::unique_ptr<ServerReply> { throw std::length_error("vector"); });
  operations.add("GetQualifier",
                 [](const ServerCall&) -> std::unique_ptr<ServerReply> { throw std::runtime_error("no file"); });
  Asked asked("GetClass");
  EXPECT_THAT(asked.answerOf(operations), HasSubstr("CODE=\"27\""));
  EXPECT_EQ(asked.note.subject, "CIM_Disk");
  EXPECT_EQ(asked.note.statusText, "there is not enough memory for this operation");
  EXPECT_THAT(Asked("GetInstance").answerOf(operations), HasSubstr("CODE=\"27\""));
  EXPECT_THAT(Asked("GetQualifier").answerOf(operations), HasSubstr("CODE=\"1\" DESCRIPTION=\"no file\""));
}

// An operation that asks others until it is stopped, and fails as they do then.
std::unique_ptr<ServerReply> askOthers(const ServerCall&) {
  for (int i = 0; i < 500 && !QORQL_currentMonitor()->isStopRequested(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  throw CQoriProviderException("array1", "the call was stopped", 1);
}

TEST(ServerOperations, AnOperationIsStoppedByItsLimit) {
  ServerOperations operations(std::chrono::milliseconds(20));
  operations.add("EnumerateInstances", &askOthers);
  Asked asked("EnumerateInstances");
  EXPECT_THAT(asked.answerOf(operations), HasSubstr("CODE=\"27\""));
  EXPECT_EQ(asked.note.statusText, "the operation was stopped: it took more than 0 seconds");
}

TEST(ServerOperations, AnOperationIsStoppedWithItsClientAndItsServer) {
  ServerOperations operations;
  operations.add("EnumerateInstances", &askOthers);
  Asked asked("EnumerateInstances");
  asked.client.stopReason = [] { return StopReason::ClientGone; };
  asked.answerOf(operations);
  EXPECT_EQ(asked.note.statusText, "the client has gone");
  asked.client.stopReason = [] { return StopReason::ShuttingDown; };
  EXPECT_THAT(asked.answerOf(operations), HasSubstr("CODE=\"28\""));
}

TEST(HttpRequest, HeadersAreFoundIgnoringCase) {
  HttpRequest request;
  request.headers = {{"Content-Type", "text/xml"}, {"content-type", "application/xml"}};
  ASSERT_NE(request.header("CONTENT-TYPE"), nullptr);
  EXPECT_EQ(*request.header("CONTENT-TYPE"), "text/xml");
  EXPECT_EQ(request.header("Content"), nullptr);
}

}  // namespace
