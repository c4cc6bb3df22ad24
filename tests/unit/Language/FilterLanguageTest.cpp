// What a filter's WHERE means, asked of one instance at a time.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "cimom/CIMApi.h"

namespace {

const char* const kNameSpace = "root/cimv2";

const char* const kChanges = R"mof(
class EX_Change {
  [Key] uint32 Id;
  [EmbeddedInstance("EX_Disk")] string SourceInstance;
  [EmbeddedInstance("EX_Disk")] string PreviousInstance;
  string AlertingManagedElement;
  uint16 AlertingElementFormat;
  datetime Seen;
  char16 Grade;
  uint64 Bytes;
  sint64 Balance;
};
instance of EX_Change {
  Id = 1;
  SourceInstance = "instance of EX_FastDisk { Name = \"d3\"; Errors = 3; };";
  PreviousInstance = "instance of EX_FastDisk { Name = \"d3\"; Errors = 2; };";
  AlertingManagedElement = "//host/root/cimv2:EX_FastDisk.Name=\"d3\"";
  AlertingElementFormat = 2;
  Seen = "20240101120000.000000+000";
  Grade = 'a';
  Bytes = 18446744073709551615;
  Balance = 0;
};
)mof";

class FilterLanguage : public ::testing::Test {
 protected:
  FilterLanguage() {
    _manager.makeCurrent();
    MofLoader loader(_manager.sink(), kNameSpace);
    loader.loadFiles({QORQL_SOURCE_DIR "/examples/language.mof"});
    loader.loadText(kChanges, "changes");
  }

  static QORSmrPtr<IQoriObject> object(const char* className, const char* path) {
    const CIMApi::Instances all =
        CIMApi().enumerateInstances(kNameSpace, className, nullptr, -1, nullptr, nullptr, "", nullptr);
    for (QORuint32 i = 0; i < all->entries(); ++i) {
      if (all->at(i)->getInstanceName()->toString() == path) return all->at(i);
    }
    return {};
  }

  static bool matches(const char* text, const QORSmrPtr<IQoriObject>& instance) {
    CQLQueryStatement filter("DMTF:CQL", text, kNameSpace, kNameSpace);
    EXPECT_EQ(filter.validate(), QUERY_VALIDATE_SUCCESS) << text;
    return filter.isMatch(instance, kNameSpace);
  }

  bool diskMatches(const char* condition) const {
    return matches((std::string("SELECT * FROM EX_Disk WHERE ") + condition).c_str(), _disk);
  }
  bool changeMatches(const char* condition) const {
    return matches((std::string("SELECT * FROM EX_Change WHERE ") + condition).c_str(), _change);
  }

  EmbeddedObjectManager _manager;
  QORSmrPtr<IQoriObject> _disk;
  QORSmrPtr<IQoriObject> _change;

  void SetUp() override {
    _disk = object("EX_Disk", "root/cimv2:EX_FastDisk.Name=\"d3\"");
    _change = object("EX_Change", "root/cimv2:EX_Change.Id=1");
    ASSERT_FALSE(_disk.IsNull());
    ASSERT_FALSE(_change.IsNull());
  }
};

// rule: FILT-1
TEST_F(FilterLanguage, AnInstanceOfTheClassOrASubclassMatches) {
  EXPECT_TRUE(matches("SELECT * FROM EX_Disk", _disk));
  EXPECT_TRUE(matches("SELECT * FROM EX_FastDisk", _disk));
  EXPECT_FALSE(matches("SELECT * FROM EX_Host", _disk));
  EXPECT_TRUE(diskMatches("Size = 1000 AND Errors < 3"));
  EXPECT_FALSE(diskMatches("Size = 1000 AND Errors < 2"));
}

// rule: FILT-2
TEST_F(FilterLanguage, OrNotLikeAndIsNullNeverMatch) {
  EXPECT_FALSE(diskMatches("Size = 1000 OR Size = 1000"));
  EXPECT_FALSE(diskMatches("NOT Size = 1"));
  EXPECT_FALSE(diskMatches("Name LIKE 'd3'"));
  EXPECT_FALSE(diskMatches("Name IS NOT NULL"));
  EXPECT_FALSE(diskMatches("Name IS NULL"));
}

// rule: FILT-3
TEST_F(FilterLanguage, WhatCannotBeComputedDoesNotMatch) {
  EXPECT_FALSE(diskMatches("Size = 'big'"));
  EXPECT_FALSE(diskMatches("Size / 0 = 1"));
  const QORSmrPtr<IQoriObject> unset = object("EX_Disk", "root/cimv2:EX_Disk.Name=\"d2\"");
  EXPECT_FALSE(matches("SELECT * FROM EX_Disk WHERE Errors <> 1", unset));
  EXPECT_FALSE(matches("SELECT * FROM EX_Disk WHERE (Errors = 5) = FALSE", unset));
  EXPECT_TRUE(diskMatches("(Errors = 5) = FALSE"));
  EXPECT_FALSE(diskMatches("(Errors IS NULL) = FALSE"));
}

// rule: FILT-4
TEST_F(FilterLanguage, APropertyOfAnEmbeddedObjectIsReached) {
  EXPECT_TRUE(changeMatches("SourceInstance.EX_Disk::Errors <> PreviousInstance.EX_Disk::Errors"));
  EXPECT_FALSE(changeMatches("SourceInstance.EX_Disk::Name <> PreviousInstance.EX_Disk::Name"));
  EXPECT_TRUE(changeMatches("SourceInstance.Errors = 3"));
  EXPECT_FALSE(changeMatches("SourceInstance.EX_Host::Errors = 3"));
}

// rule: FILT-5
TEST_F(FilterLanguage, IsaLooksAtTheEmbeddedObjectOrThePath) {
  EXPECT_TRUE(changeMatches("SourceInstance ISA EX_Disk"));
  EXPECT_FALSE(changeMatches("SourceInstance ISA EX_Host"));
  EXPECT_TRUE(changeMatches("AlertingManagedElement ISA EX_Disk"));
  EXPECT_FALSE(changeMatches("AlertingManagedElement ISA EX_Host"));
  EXPECT_TRUE(changeMatches("'SourceInstance' ISA EX_Disk"));
  EXPECT_FALSE(changeMatches("SourceInstance.PreviousInstance ISA EX_Disk"));
  EXPECT_FALSE(changeMatches("SourceInstance.Inner ISA EX_Disk"));
  EXPECT_FALSE(changeMatches("EX_Change::SourceInstance ISA EX_Disk"));
  EXPECT_FALSE(changeMatches("SourceInstance[0] ISA EX_Disk"));
}

// rule: FILT-6
TEST_F(FilterLanguage, AnyKeepsTheWrittenOrder) {
  EXPECT_TRUE(diskMatches("ANY Ports < 2"));
  EXPECT_FALSE(diskMatches("ANY Ports > 5"));
  EXPECT_FALSE(diskMatches("ANY Ports = 'x'"));
  EXPECT_FALSE(diskMatches("Ports = 1"));
  EXPECT_TRUE(diskMatches("Ports[0] = 1"));
  EXPECT_FALSE(diskMatches("Ports[3] <> 1"));
  const QORSmrPtr<IQoriObject> empty = object("EX_Disk", "root/cimv2:EX_Disk.Name=\"d4\"");
  EXPECT_FALSE(matches("SELECT * FROM EX_Disk WHERE ANY Ports = 1", empty));
  EXPECT_FALSE(matches("SELECT * FROM EX_Disk WHERE EVERY Ports = 1", empty));
}

// rule: FILT-7
TEST_F(FilterLanguage, OtherTypesThanNumbersCompareWithTheirOwn) {
  EXPECT_TRUE(diskMatches("Size > 999.5 AND Spare = false AND Spare <> 'True'"));
  EXPECT_FALSE(diskMatches("Name = 3"));
  EXPECT_FALSE(changeMatches("Seen = '20240101120000.000000+000'"));
  EXPECT_FALSE(changeMatches("Seen <> '20240101120000.000000+000'"));
  EXPECT_TRUE(changeMatches("Seen = Seen"));
  EXPECT_FALSE(changeMatches("Grade = 'a'"));
}

// rule: FILT-8
TEST_F(FilterLanguage, AGreatUnsignedNumberIsNegativeBesideASignedOne) {
  EXPECT_TRUE(changeMatches("Bytes = 18446744073709551615 AND Bytes > 0"));
  EXPECT_TRUE(changeMatches("Bytes = -1"));
  EXPECT_TRUE(changeMatches("Bytes < Balance"));
}

// rule: FILT-9
TEST_F(FilterLanguage, AFunctionHasNoValue) {
  EXPECT_FALSE(diskMatches("MAX(Size) = 1000"));
  EXPECT_FALSE(diskMatches("MAX(Size) <> 1000"));
  EXPECT_FALSE(diskMatches("OBJECTPATH(EX_Disk) <> 'x'"));
  EXPECT_FALSE(diskMatches("Size <> 1 / 0"));
}

}  // namespace
