// Requests as HTTP brings them, and what HTTP is told to answer.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/ManagerScope.h"
#include "Cimom/Server/ClassOperations.h"
#include "Cimom/Server/ServerModel.h"
#include "MessageFixture.h"

namespace {

using namespace messagetest;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Pair;

class Service : public MessageTest {
 protected:
  Service() {
    addClassOperations(operations());
    load("class A { uint32 Run(); };");
  }

  HttpReply answerTo(std::vector<std::pair<std::string, std::string>> headers,
                     const std::string& body = operationCall("EnumerateClassNames", "")) {
    HttpRequest request = post(body);
    request.headers = std::move(headers);
    return serve(request);
  }
  static std::string errorOf(const HttpReply& reply) {
    for (const auto& [name, value] : reply.headers) {
      if (name == "CIMError") return std::to_string(reply.status) + " " + value;
    }
    return std::to_string(reply.status);
  }
};

TEST_F(Service, AReplySaysWhatItIs) {
  const HttpReply reply =
      answerTo({{"CIMOperation", "MethodCall"}, {"CIMMethod", "EnumerateClassNames"}, {"CIMObject", "root%2fCIMv2"}});
  EXPECT_EQ(reply.status, 200U);
  EXPECT_THAT(reply.headers, Contains(Pair("Content-Type", "application/xml; charset=\"utf-8\"")));
  EXPECT_THAT(reply.headers, Contains(Pair("CIMOperation", "MethodResponse")));
  EXPECT_THAT(bodyOf(*reply.body), HasSubstr("<CLASSNAME NAME=\"A\"/>"));
  EXPECT_EQ(reply.note.operation, "EnumerateClassNames");
  EXPECT_EQ(reply.note.status, 0U);
}

TEST_F(Service, HeadersMustSayWhatTheMessageSays) {
  EXPECT_EQ(errorOf(answerTo({{"CIMMethod", "GetClass"}})), "400 header-mismatch");
  EXPECT_EQ(errorOf(answerTo({{"CIMObject", "root/interop"}})), "400 header-mismatch");
  EXPECT_EQ(errorOf(answerTo({{"CIMExport", "MethodRequest"}})), "400 header-mismatch");
  EXPECT_EQ(errorOf(answerTo({{"CIMOperation", "Reboot"}})), "400 unsupported-operation");
  EXPECT_EQ(errorOf(answerTo({{"CIMOperation", "MethodCall"}, {"CIMBatch", ""}})), "400 multiple-requests-unsupported");
  EXPECT_EQ(errorOf(answerTo({{"cimobject", "/root/cimv2/"}, {"cimmethod", "enumerateclassnames"}})), "200");
}

TEST_F(Service, TheObjectOfTheHeadersMayTellAHost) {
  for (const char* const object :
       {"//host/root/cimv2", "%2F%2Fhost:5988%2Froot%2FCIMv2", "http://host/root/cimv2",
        "https://[::1]:5989/root/cimv2/", "//root/cimv2", "//host/root/cimv2:A.Id=\"//x/y\""}) {
    EXPECT_EQ(errorOf(answerTo({{"CIMObject", object}})), "200") << object;
  }
  for (const char* const object :
       {"//host/root/interop", "http://root/cimv2", "//host", "//", "root", "root/other:A.Id=\"//x/root/cimv2\""}) {
    EXPECT_EQ(errorOf(answerTo({{"CIMObject", object}})), "400 header-mismatch") << object;
  }
}

TEST_F(Service, AnotherVersionOfTheProtocolIsRefused) {
  EXPECT_EQ(errorOf(answerTo({{"CIMProtocolVersion", "1.4"}})), "200");
  EXPECT_EQ(errorOf(answerTo({{"CIMProtocolVersion", "2.0"}})), "400 unsupported-protocol-version");
}

TEST_F(Service, AMessageThatIsNoneIsRefusedByHttp) {
  EXPECT_EQ(errorOf(answerTo({}, "<CIM>")), "400 request-not-well-formed");
  const HttpReply reply = answerTo({}, "<MIC/>");
  EXPECT_EQ(errorOf(reply), "400 request-not-valid");
  EXPECT_EQ(bodyOf(*reply.body), "found MIC, expected CIM at line 1, column 1\n");
}

TEST_F(Service, MPostHasNumberedHeaders) {
  HttpRequest request = post(operationCall("EnumerateClassNames", ""));
  request.method = "M-POST";
  EXPECT_EQ(serve(request).status, 501U);
  request.headers = {{"Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=73"},
                     {"73-CIMOperation", "MethodCall"},
                     {"73-CIMMethod", "EnumerateClassNames"}};
  HttpReply reply = serve(request);
  EXPECT_EQ(reply.status, 200U);
  EXPECT_THAT(reply.headers, Contains(Pair("73-CIMOperation", "MethodResponse")));
  EXPECT_THAT(reply.headers, Contains(Pair("Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=73")));
  request.headers[2].second = "GetClass";
  EXPECT_EQ(errorOf(serve(request)), "400 header-mismatch");
}

TEST_F(Service, AChangeIsMadeInTheOneThatTookThePlaceMeanwhile) {
  const auto next = std::make_shared<EmbeddedObjectManager>();
  CountedModel model(sharedManager());
  CimXmlService service(
      operations(), [&] { return model.lease(); }, [&] { return model.leaseForChange(); });
  std::vector<const EmbeddedObjectManager*> asked;
  bool isReplaced = true;
  operations().add("DeleteInstance", [&](const ServerCall& call) {
    asked.push_back(call.manager.get());
    // As long as it changes nothing, nobody waits for it.
    if (asked.size() == 1)
      isReplaced = model.replace(
          next, [] {}, std::chrono::milliseconds(0));
    const ServerModel::Manager lease = call.leaseForChange();
    EXPECT_FALSE(model.replace(
        sharedManager(), [] {}, std::chrono::milliseconds(0)));
    const bool isOwn = ManagerScope::innermost()->state() == lease->state();
    return std::make_unique<WholeReply>(isOwn ? "own" : "other");
  });
  HttpReply reply =
      service.serve(post(operationCall("DeleteInstance", parameter("InstanceName", path("A", "K", "1")))));
  EXPECT_EQ(bodyOf(*reply.body), "own");
  EXPECT_TRUE(isReplaced);
  EXPECT_EQ(asked, (std::vector<const EmbeddedObjectManager*>{sharedManager().get(), next.get()}));
}

TEST_F(Service, WhereNothingTakesThePlaceAChangeNeedsNoLease) {
  operations().add("DeleteInstance", [&](const ServerCall& call) {
    return std::make_unique<WholeReply>(call.leaseForChange() == sharedManager() ? "own" : "other");
  });
  HttpReply reply = serve(post(operationCall("DeleteInstance", parameter("InstanceName", path("A", "K", "1")))));
  EXPECT_EQ(bodyOf(*reply.body), "own");
}

TEST_F(Service, OtherMethodsOfHttpAreNotAllowed) {
  HttpRequest request = post("");
  request.method = "PUT";
  const HttpReply reply = serve(request);
  EXPECT_EQ(reply.status, 405U);
  EXPECT_THAT(reply.headers, Contains(Pair("Allow", "POST, M-POST")));
}

TEST_F(Service, AnUnreadableParameterIsAStatus) {
  EXPECT_EQ(refusalOf("GetClass", className("A") + className("A")), "4: ClassName is given twice");
  EXPECT_EQ(refusalOf("Reboot", ""), "7: there is no operation Reboot");
}

TEST_F(Service, TheLogLearnsWhatACallIsAbout) {
  EXPECT_EQ(answerTo({}, operationCall("GetClass", className("A"))).note.subject, "A");
  const HttpReply reply = answerTo({}, operationCall("GetInstance", parameter("InstanceName", path("A", "K", "1"))));
  EXPECT_EQ(reply.note.subject, "root/cimv2:A.K=\"1\"");
  EXPECT_EQ(reply.note.status, 7U);
  EXPECT_EQ(reply.note.statusText, "there is no operation GetInstance");
}

TEST_F(Service, MethodsAreRefusedByWhetherTheyAreDeclared) {
  const auto callOf = [](const std::string& method, const std::string& className) {
    return message("<SIMPLEREQ><METHODCALL NAME=\"" + method +
                   "\"><LOCALCLASSPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/>"
                   "</LOCALNAMESPACEPATH><CLASSNAME NAME=\"" +
                   className + "\"/></LOCALCLASSPATH></METHODCALL></SIMPLEREQ>");
  };
  const auto bodyTo = [&](const std::string& method, const std::string& className) {
    const HttpReply reply = answerTo({{"CIMObject", "root/cimv2:A"}}, callOf(method, className));
    const std::string body = bodyOf(*reply.body);
    EXPECT_EQ(judge().verdict(body), "");
    return body;
  };
  EXPECT_THAT(bodyTo("run", "a"), HasSubstr("<METHODRESPONSE NAME=\"run\"><ERROR CODE=\"16\""));
  EXPECT_THAT(bodyTo("Stop", "A"), HasSubstr("<ERROR CODE=\"17\" DESCRIPTION=\"there is no method A.Stop\"/>"));
  EXPECT_THAT(bodyTo("Run", "B"), HasSubstr("<ERROR CODE=\"5\" DESCRIPTION=\"there is no class B\"/>"));
}

TEST_F(Service, AMethodOfAnInstanceThatIsNotThereIsRefusedForThat) {
  load("class C { [Key] string Id; uint32 Run(); }; instance of C { Id = \"x\"; };");
  const auto errorTo = [&](const std::string& method, const std::string& id) {
    const HttpReply reply = answerTo(
        {}, message("<SIMPLEREQ><METHODCALL NAME=\"" + method +
                    "\"><LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/>"
                    "</LOCALNAMESPACEPATH>" +
                    path("C", "Id", id) + "</LOCALINSTANCEPATH></METHODCALL></SIMPLEREQ>"));
    return between(bodyOf(*reply.body), "<ERROR CODE=\"", "\"");
  };
  EXPECT_EQ(errorTo("Run", "x"), "16");
  EXPECT_EQ(errorTo("Stop", "x"), "17");
  EXPECT_EQ(errorTo("Run", "y"), "6");
}

TEST_F(Service, AnExportThatNobodyTakesIsRefusedAsOne) {
  const HttpReply reply = answerTo({{"CIMExport", "MethodRequest"}, {"CIMExportMethod", "ExportIndication"}},
                                   message("<SIMPLEEXPREQ><EXPMETHODCALL NAME=\"ExportIndication\"/></SIMPLEEXPREQ>"));
  EXPECT_THAT(reply.headers, Contains(Pair("CIMExport", "MethodResponse")));
  const std::string body = bodyOf(*reply.body);
  EXPECT_EQ(judge().verdict(body), "");
  EXPECT_THAT(body, HasSubstr("<EXPMETHODRESPONSE NAME=\"ExportIndication\"><ERROR CODE=\"7\""));
}

}  // namespace
