// Parameters of a call are what they ought to be, or the call is refused.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlRequest.h"

namespace {

CimXmlParameter textParameter(const char* name, const char* text) {
  CimXmlParameter parameter;
  parameter.name = name;
  parameter.kind = CimXmlParameter::Kind::Text;
  parameter.text = text;
  return parameter;
}

CimXmlRequest requestWith(CimXmlParameter parameter) {
  CimXmlRequest request;
  request.parameters.push_back(std::move(parameter));
  return request;
}

template <typename Read>
std::string refusalOf(Read read) {
  try {
    read();
  } catch (const CimStatusException& refusal) {
    EXPECT_EQ(refusal.getCode(), 4U);
    return std::string(refusal.getDescription().view());
  }
  return "none";
}

TEST(CimXmlRequest, BooleansAreReadInAnyCase) {
  EXPECT_TRUE(requestWith(textParameter("LocalOnly", "TRUE")).flag("localonly", false));
  EXPECT_FALSE(requestWith(textParameter("LocalOnly", " False\n")).flag("LocalOnly", true));
  const CimXmlRequest request = requestWith(textParameter("LocalOnly", "yes"));
  EXPECT_EQ(refusalOf([&] { request.flag("LocalOnly", true); }), "LocalOnly is not a boolean");
}

TEST(CimXmlRequest, WhatIsLeftOutOrNullIsWhatTheCallerSays) {
  CimXmlRequest request;
  EXPECT_TRUE(request.flag("LocalOnly", true));
  EXPECT_FALSE(request.number("MaxObjectCount").has_value());
  request.parameters.emplace_back().name = "MaxObjectCount";
  EXPECT_FALSE(request.number("MaxObjectCount").has_value());
  EXPECT_FALSE(request.texts("PropertyList").has_value());
  EXPECT_TRUE(request.instanceName("InstanceName").IsNull());
  EXPECT_EQ(request.instance("NewInstance"), nullptr);
}

TEST(CimXmlRequest, NumbersAreDigitsAlone) {
  EXPECT_EQ(requestWith(textParameter("MaxObjectCount", "100")).number("MaxObjectCount"), 100U);
  EXPECT_EQ(requestWith(textParameter("MaxObjectCount", "\n 7 ")).number("MaxObjectCount"), 7U);
  for (const char* wrong : {"", " ", "-1", "1 2", "0x10", "4294967296", "18446744073709551616"}) {
    const CimXmlRequest request = requestWith(textParameter("MaxObjectCount", wrong));
    EXPECT_EQ(refusalOf([&] { request.number("MaxObjectCount"); }),
              "MaxObjectCount is not an unsigned number of 32 bits");
  }
}

TEST(CimXmlRequest, AParameterOfAnotherKindIsRefused) {
  const CimXmlRequest request = requestWith(textParameter("P", "text"));
  EXPECT_EQ(refusalOf([&] { request.texts("P"); }), "P is not an array of texts");
  EXPECT_EQ(refusalOf([&] { request.className("P"); }), "P is not the name of a class");
  EXPECT_EQ(refusalOf([&] { request.instanceName("P"); }), "P is not the name of an instance");
  EXPECT_EQ(refusalOf([&] { request.instance("P"); }), "P is not an instance");
}

}  // namespace
