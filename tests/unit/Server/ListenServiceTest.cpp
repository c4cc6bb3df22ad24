// A listener takes indications and refuses everything else.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/ExportMessages.h"
#include "Cimom/Server/ListenService.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Taker : public IndicationTaker {
 public:
  void take(const CimXmlInstance& indication, const ServerClient& /*sender*/) override {
    if (isFull) throw CimStatusException(1, "no room");
    taken.emplace_back(indication.className.view());
  }
  void complain(const ServerClient& sender, const std::string& reason) override {
    complaints.push_back(sender.address + ": " + reason);
  }

  bool isFull = false;
  std::vector<std::string> taken;
  std::vector<std::string> complaints;
};

struct Listening : ::testing::Test {
  std::string answer(const std::string& body, unsigned status = 200) {
    HttpRequest request;
    request.method = "POST";
    request.path = "/";
    request.headers = {{"CIMExport", "MethodRequest"}, {"CIMExportMethod", "ExportIndication"}};
    request.body = body;
    request.client = {"10.0.0.1", ""};
    const HttpReply reply = service.serve(request);
    EXPECT_EQ(reply.status, status);
    std::string text;
    reply.body->append(text, 100000);
    return text;
  }

  Taker taker;
  ListenService service{taker};
};

TEST_F(Listening, AnIndicationIsTakenAndAnswered) {
  const std::string reply = answer(exportMessage("7", "<INSTANCE CLASSNAME=\"CIM_InstCreation\"/>"));
  EXPECT_THAT(reply, HasSubstr("<MESSAGE ID=\"7\""));
  readExportReply(reply, "7");
  EXPECT_THAT(taker.taken, ElementsAre("CIM_InstCreation"));
  EXPECT_THAT(taker.complaints, IsEmpty());
}

TEST_F(Listening, WhatIsNotTakenIsAnError) {
  taker.isFull = true;
  EXPECT_THROW(readExportReply(answer(exportMessage("7", "<INSTANCE CLASSNAME=\"A\"/>")), "7"), CimStatusException);
  EXPECT_THAT(taker.complaints, ElementsAre("10.0.0.1: no room"));
}

TEST_F(Listening, WhatIsMalformedIsRefusedAndTold) {
  EXPECT_THAT(answer("<CIM", 400), HasSubstr("line 1"));
  EXPECT_THAT(taker.complaints, ElementsAre(HasSubstr("10.0.0.1: ")));
  EXPECT_THAT(answer(exportMessage("7", "")), HasSubstr("CODE=\"4\""));
  EXPECT_THAT(taker.taken, IsEmpty());
}

TEST_F(Listening, OtherOperationsAreNotSupported) {
  HttpRequest request;
  request.method = "POST";
  request.body =
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>"
      "<IMETHODCALL NAME=\"ExportIndication\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/></LOCALNAMESPACEPATH>"
      "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
  request.client = {"10.0.0.1", ""};
  const HttpReply reply = service.serve(request);
  std::string text;
  reply.body->append(text, 100000);
  EXPECT_THAT(text, HasSubstr("CODE=\"7\""));
}

}  // namespace
