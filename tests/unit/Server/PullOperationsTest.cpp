// What opens and pulls answer: all instances once, in order, in portions of the asked size.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlReply.h"
#include "Cimom/Server/PullOperations.h"
#include "ServerFixture.h"

using namespace embeddedtest;
using servertest::Asked;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// What a client reads of a reply.
struct Portion {
  std::vector<std::string> paths;
  std::string context;
  std::string isEnd;
};

class Pulls : public ServerTest {
 protected:
  Pulls() {
    addPullOperations(operations, contexts, limits);
    for (const char* id : {"a", "b", "c"}) createDisk(id, 7);
  }

  std::string textFor(Asked& asked) {
    ServerCall call = asked.on(held);
    call.host = "example:5988";
    const std::unique_ptr<ServerReply> reply = operations.answer(call);
    return servertest::textOf(*reply);
  }
  // The status that a call is refused with.
  QORuint32 refused(Asked& asked) {
    textFor(asked);
    return asked.note.status;
  }
  Portion portionFor(Asked& asked) {
    Portion portion;
    const std::string text = textFor(asked);
    std::size_t at = 0;
    CimXmlReply reply(
        [&](char* buffer, std::size_t capacity) {
          const std::size_t count = text.copy(buffer, capacity, at);
          at += count;
          return count;
        },
        asked.request.operation, "17", "root/cimv2");
    for (CimXmlReply::Item item = reply.next(); item != CimXmlReply::Item::End; item = reply.next()) {
      if (item == CimXmlReply::Item::Instance) portion.paths.emplace_back(reply.instance().name->toString().view());
      if (item == CimXmlReply::Item::Name) portion.paths.emplace_back(reply.name()->toString().view());
      if (item != CimXmlReply::Item::Output) continue;
      (reply.outputName() == "EndOfSequence" ? portion.isEnd : portion.context) = reply.outputText();
    }
    return portion;
  }
  static Asked opening(const char* operation = "OpenEnumerateInstances", const char* most = "2") {
    return std::move(Asked(operation).className("ClassName", "CIM_Disk").text("MaxObjectCount", most));
  }
  Portion pull(const std::string& context, const char* operation = "PullInstancesWithPath", const char* most = "2") {
    Asked asked(operation);
    return portionFor(asked.text("EnumerationContext", context).text("MaxObjectCount", most));
  }
  static std::string disk(const char* id) { return "root/cimv2:CIM_Disk.DeviceID=\"" + std::string(id) + '"'; }

  ServerLimits limits;
  const std::shared_ptr<EnumerationContexts> contexts = std::make_shared<EnumerationContexts>(limits);
  ServerOperations operations;
};

TEST_F(Pulls, GiveAllInstancesInPortions) {
  Asked asked = opening();
  const Portion first = portionFor(asked);
  EXPECT_THAT(first.paths, ElementsAre(disk("a"), disk("b")));
  EXPECT_EQ(first.isEnd, "FALSE");
  const Portion second = pull(first.context);
  EXPECT_THAT(second.paths, ElementsAre(disk("c")));
  EXPECT_EQ(second.isEnd, "TRUE");
  EXPECT_EQ(second.context, "");
}

TEST_F(Pulls, AnOpenThatAsksForNoneGivesAContextAlone) {
  Asked asked("OpenEnumerateInstancePaths");
  const Portion first = portionFor(asked.className("ClassName", "CIM_Disk"));
  EXPECT_THAT(first.paths, IsEmpty());
  EXPECT_EQ(first.isEnd, "FALSE");
  EXPECT_THAT(pull(first.context, "PullInstancePaths", "9").paths, ElementsAre(disk("a"), disk("b"), disk("c")));
}

TEST_F(Pulls, AnEnumerationOfNothingHasEndedAtOnce) {
  Asked asked("OpenEnumerateInstances");
  EXPECT_EQ(portionFor(asked.className("ClassName", "CIM_FastDisk")).isEnd, "TRUE");
  EXPECT_EQ(contexts->count(), 0U);
}

TEST_F(Pulls, ShowThePropertiesThatTheOpenAskedFor) {
  Asked asked = opening();
  asked.texts("PropertyList", {"Size"});
  const std::string text = textFor(asked);
  EXPECT_THAT(text, HasSubstr("<VALUE.INSTANCEWITHPATH><INSTANCEPATH><NAMESPACEPATH><HOST>example:5988</HOST>"));
  EXPECT_THAT(text, HasSubstr("<INSTANCE CLASSNAME=\"CIM_Disk\"><PROPERTY NAME=\"Size\" TYPE=\"uint64\">"
                              "<VALUE>7</VALUE></PROPERTY></INSTANCE></VALUE.INSTANCEWITHPATH>"));
}

TEST_F(Pulls, TellTheHostByWhichTheClientCallsTheServer) {
  const std::string host = "<NAMESPACEPATH><HOST>example:5988</HOST>";
  for (const auto& [open, pullOperation] : {std::pair("OpenEnumerateInstances", "PullInstancesWithPath"),
                                            std::pair("OpenEnumerateInstancePaths", "PullInstancePaths")}) {
    Asked asked = opening(open, "1");
    const std::string text = textFor(asked);
    EXPECT_THAT(text, HasSubstr(host));
    const std::size_t at = text.find("<VALUE>", text.find("EnumerationContext")) + 7;
    Asked next(pullOperation);
    next.text("EnumerationContext", text.substr(at, text.find('<', at) - at)).text("MaxObjectCount", "1");
    EXPECT_THAT(textFor(next), HasSubstr(host));
  }
}

TEST_F(Pulls, TellTheClassesOfPropertiesWhereTheyAreAskedFor) {
  Asked asked = opening();
  const std::string text = textFor(asked.text("IncludeClassOrigin", "TRUE"));
  EXPECT_THAT(text,
              HasSubstr("<PROPERTY NAME=\"DeviceID\" TYPE=\"string\" CLASSORIGIN=\"CIM_Device\" PROPAGATED=\"true\">"));
  EXPECT_THAT(text, HasSubstr("<PROPERTY NAME=\"Size\" TYPE=\"uint64\" CLASSORIGIN=\"CIM_Disk\">"));
}

TEST_F(Pulls, ParametersThatAnOperationDoesNotHaveAreRefused) {
  const Name source = nameOf("root/cimv2", "CIM_Disk", {{"DeviceID", text("a")}});
  for (const char* operation : {"OpenEnumerateInstances", "OpenEnumerateInstancePaths"}) {
    Asked asked(operation);
    EXPECT_EQ(refused(asked.className("ClassName", "CIM_Disk").text("OperationTimout", "9")), 4U) << operation;
  }
  for (const char* operation : {"OpenAssociatorInstances", "OpenAssociatorInstancePaths", "OpenReferenceInstances",
                                "OpenReferenceInstancePaths"}) {
    Asked asked(operation);
    EXPECT_EQ(refused(asked.path("InstanceName", source).text("Rolle", "x")), 4U) << operation;
  }
  for (const char* operation : {"PullInstancesWithPath", "PullInstancePaths", "PullInstances", "CloseEnumeration"}) {
    Asked asked(operation);
    EXPECT_EQ(refused(asked.text("EnumerationContext", "x").text("Bogus", "true")), 4U) << operation;
  }
  Asked paths("OpenEnumerateInstancePaths");
  EXPECT_EQ(refused(paths.className("ClassName", "CIM_Disk").texts("PropertyList", {"Size"})), 4U);
  for (const char* operation : {"OpenAssociatorInstances", "OpenReferenceInstances"}) {
    Asked asked(operation);
    EXPECT_EQ(refused(asked.path("InstanceName", source).text("LocalOnly", "true")), 4U) << "not cut down in silence";
  }
}

TEST_F(Pulls, EveryParameterOfTheirsIsTaken) {
  const Name source = nameOf("root/cimv2", "CIM_Disk", {{"DeviceID", text("a")}});
  Asked enumerating = opening();
  enumerating.text("DeepInheritance", "true").text("LocalOnly", "false").text("IncludeQualifiers", "true");
  EXPECT_EQ(refused(enumerating.text("IncludeClassOrigin", "true").text("OperationTimeout", "9")), 0U);
  Asked associators("OpenAssociatorInstances");
  associators.path("InstanceName", source).className("AssocClass", "CIM_Uses").className("ResultClass", "CIM_Disk");
  associators.text("Role", "x").text("ResultRole", "y").text("IncludeClassOrigin", "true");
  EXPECT_EQ(refused(associators.texts("PropertyList", {}).text("ContinueOnError", "false")), 0U);
  Asked references("OpenReferenceInstancePaths");
  EXPECT_EQ(refused(references.path("InstanceName", source).className("ResultClass", "CIM_Uses").text("Role", "x")),
            0U);
}

TEST_F(Pulls, CountsBeyond32BitsAreRefused) {
  Asked most = opening("OpenEnumerateInstances", "4294967295");
  EXPECT_EQ(refused(most), 0U);
  for (const char* count : {"4294967296", "10000000000000000000"}) {
    Asked opened = opening("OpenEnumerateInstances", count);
    EXPECT_EQ(refused(opened), 4U) << count;
    Asked timed = opening();
    EXPECT_EQ(refused(timed.text("OperationTimeout", count)), 4U) << count;
  }
}

TEST_F(Pulls, FollowAssociations) {
  const Name source = nameOf("root/cimv2", "CIM_Disk", {{"DeviceID", text("a")}});
  createUses(source, nameOf("root/cimv2", "CIM_Disk", {{"DeviceID", text("b")}}));
  for (const char* operation : {"OpenAssociatorInstances", "OpenAssociatorInstancePaths"}) {
    Asked asked(operation);
    EXPECT_THAT(portionFor(asked.path("InstanceName", source).text("MaxObjectCount", "5")).paths,
                ElementsAre(disk("b")));
  }
  for (const char* operation : {"OpenReferenceInstances", "OpenReferenceInstancePaths"}) {
    Asked asked(operation);
    const Portion portion = portionFor(asked.path("InstanceName", source).text("MaxObjectCount", "5"));
    ASSERT_EQ(portion.paths.size(), 1U);
    EXPECT_THAT(portion.paths.front(), HasSubstr(":CIM_Uses."));
  }
}

TEST_F(Pulls, AreRefusedWithoutTheirParameters) {
  Asked nameless("PullInstancePaths");
  EXPECT_EQ(refused(nameless.text("MaxObjectCount", "1")), 4U);
  Asked opened = opening();
  const Portion first = portionFor(opened);
  Asked countless("PullInstancesWithPath");
  EXPECT_EQ(refused(countless.text("EnumerationContext", first.context)), 4U);
  Asked other("PullInstances");
  EXPECT_EQ(refused(other.text("EnumerationContext", first.context).text("MaxObjectCount", "1")), 4U);
  EXPECT_THAT(pull(first.context).paths, ElementsAre(disk("c"))) << "it goes on after refusals";
}

TEST_F(Pulls, CloseEndsAnEnumeration) {
  Asked opened = opening();
  const Portion first = portionFor(opened);
  Asked closing("CloseEnumeration");
  closing.text("EnumerationContext", first.context);
  EXPECT_THAT(textFor(closing), HasSubstr("<IMETHODRESPONSE NAME=\"CloseEnumeration\"></IMETHODRESPONSE>"));
  EXPECT_EQ(refused(closing), 21U);
  Asked pulling("PullInstancesWithPath");
  EXPECT_EQ(refused(pulling.text("EnumerationContext", first.context).text("MaxObjectCount", "1")), 21U);
}

TEST_F(Pulls, ATimeThatCannotBeKeptIsRefused) {
  for (const auto& [time, status] : {std::pair{"0", 22U}, {"3601", 22U}, {"-1", 4U}, {"1", 0U}, {"3600", 0U}}) {
    Asked asked = opening();
    EXPECT_EQ(refused(asked.text("OperationTimeout", time)), status) << time;
  }
}

TEST_F(Pulls, GoingOnAfterErrorsIsRefused) {
  Asked asked = opening();
  EXPECT_EQ(refused(asked.text("ContinueOnError", "TRUE")), 26U);
  Asked without = opening();
  EXPECT_EQ(refused(without.text("ContinueOnError", "FALSE")), 0U);
}

TEST_F(Pulls, FiltersAreRefusedWithTheReason) {
  Asked half = opening();
  EXPECT_EQ(refused(half.text("FilterQuery", "SELECT * FROM CIM_Disk")), 4U);
  Asked foreign = opening();
  EXPECT_EQ(refused(foreign.text("FilterQuery", "Size > 1").text("FilterQueryLanguage", "DMTF:FQL")), 14U);
  Asked wrong = opening();
  const std::string told = textFor(wrong.text("FilterQuery", "Size >").text("FilterQueryLanguage", "CQL"));
  EXPECT_EQ(wrong.note.status, 15U);
  EXPECT_THAT(told, ::testing::HasSubstr("(line 1, column 1)"));
  Asked right = opening();
  EXPECT_EQ(refused(right.text("FilterQuery", "SELECT * FROM CIM_Disk").text("FilterQueryLanguage", "CQL")), 25U);
}

TEST_F(Pulls, WhatNobodyHasIsRefusedAndLeavesNothingOpen) {
  Asked unknown("OpenEnumerateInstances");
  EXPECT_EQ(refused(unknown.className("ClassName", "CIM_None")), 5U);
  Asked gone("OpenReferenceInstances");
  EXPECT_EQ(refused(gone.path("InstanceName", nameOf("root/cimv2", "CIM_Disk", {{"DeviceID", text("x")}}))), 6U);
  Asked count("EnumerationCount");
  EXPECT_EQ(refused(count.text("EnumerationContext", "x")), 7U);
  EXPECT_EQ(contexts->count(), 0U);
}

TEST_F(Pulls, AReplyThatIsNotSentToItsEndEndsTheEnumeration) {
  Asked asked = opening();
  {
    const std::unique_ptr<ServerReply> reply = operations.answer(asked.on(held));
    std::string piece;
    reply->append(piece, 1);
    EXPECT_THAT(piece, HasSubstr("VALUE.INSTANCEWITHPATH"));
    EXPECT_EQ(contexts->count(), 1U);
  }
  EXPECT_EQ(contexts->count(), 0U);
}

}  // namespace
