// What a person says about a server, taken apart.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <stdexcept>

#include "ServerAddress.h"

namespace {

std::string urlOf(const char* text) { return readServerAddress(text).url; }

std::string refusalOf(const std::string& text) {
  try {
    readServerAddress(text);
  } catch (const std::runtime_error& refusal) {
    return refusal.what();
  }
  return {};
}

TEST(ServerAddress, PortAndPathAreTheUsualOnesUnlessGiven) {
  EXPECT_EQ("https://host:5989/cimom", urlOf("https://host"));
  EXPECT_EQ("http://host:5988/cimom", urlOf("http://host/"));
  EXPECT_EQ("https://host:443/wbem?x=1", urlOf("HTTPS://host:443/wbem?x=1"));
  EXPECT_EQ("https://[fe80::1]:5989/cimom", urlOf("https://[fe80::1]"));
  EXPECT_EQ("https://[fe80::1]:65535/cimom", urlOf("https://[fe80::1]:65535"));
}

TEST(ServerAddress, UserLeavesTheUrl) {
  const ServerAddress address = readServerAddress("array1=https://ada%40plant@host");
  EXPECT_EQ("ada@plant", address.user);
  EXPECT_EQ("https://host:5989/cimom", address.url);
  EXPECT_EQ("", readServerAddress("https://host").user);
  EXPECT_EQ("100%", readServerAddress("https://100%@host").user);
}

TEST(ServerAddress, NameIsTheGivenOneOrHostAndPort) {
  EXPECT_EQ("array1", readServerAddress("array1=https://host").name);
  EXPECT_TRUE(readServerAddress("array1=https://host").hasGivenName);
  EXPECT_EQ("host:99", readServerAddress("https://ada@host:99/x").name);
  EXPECT_FALSE(readServerAddress("https://host").hasGivenName);
  EXPECT_EQ("host", readServerAddress("https://host/a=b").name);
}

TEST(ServerAddress, NoPartOfAPasswordIsShown) {
  for (const char* const end : {"", "/x", "#x", "?x", "@x"}) {
    const std::string refusal = refusalOf(std::string("https://ada:hidden") + end + "@host");
    EXPECT_NE("", refusal) << end;
    EXPECT_EQ(std::string::npos, refusal.find("hidden")) << refusal;
  }
}

TEST(ServerAddress, WhatIsNoAddressIsRefused) {
  for (const char* const text : {"", "=https://host", "a b=https://host", "ftp://host", "https://", "https://:1",
                                 "https:///x", "https://host:", "https://host:0", "https://host:65536",
                                 "https://host:8x", "https://[::1]:-1", "name=host", "a/b"}) {
    EXPECT_NE("", refusalOf(text)) << text;
  }
}

}  // namespace
