// The test of a class: the texts, values and paths in which it finds one.
// SPDX-License-Identifier: Apache-2.0
#include "ForeignObject.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;

using FilterIsa = ModificationFilter;

TEST_F(FilterIsa, IsaWithTextAndComputedSides) {
  const Object changed(world.indication(
      "instance of CIM_InstModification { SourceInstance = \"instance of CIM_FCPort { Id = \\\"p\\\"; };\"; };"));
  EXPECT_TRUE(modificationMatches("'SourceInstance' ISA CIM_FCPort", changed));
  EXPECT_TRUE(modificationMatches("(SourceInstance) ISA CIM_FCPort", changed));
  EXPECT_TRUE(modificationMatches("'Source' + 'Instance' ISA CIM_FCPort", changed));
  EXPECT_FALSE(modificationMatches("'PreviousInstance' ISA CIM_FCPort", changed));
  EXPECT_FALSE(modificationMatches("5 ISA CIM_FCPort", changed));
  EXPECT_FALSE(modificationMatches("'' ISA CIM_FCPort", changed));
  EXPECT_FALSE(modificationMatches("IndicationIdentifier ISA CIM_FCPort", changed));
}

TEST_F(FilterIsa, PathsOfAlertsThatNameNoClass) {
  const std::string condition = "AlertingManagedElement ISA CIM_FCPort";
  const auto matches = [&](const std::string& path, const std::string& format) {
    return world.alertMatches(condition, "AlertingManagedElement = \"" + path + "\"; " + format);
  };
  const std::string isPath = "AlertingElementFormat = 2;";
  EXPECT_TRUE(matches("//h/n:CIM_FCPort.Id=1", isPath));
  EXPECT_TRUE(matches("//h/n:cim_fcport.Id=1", isPath));
  for (const char* path : {"", "//", "//h/n", "//h/n:", "//h/n:.", "//h/n:CIM_FCPort", "/h/n:CIM_FCPort.Id=1",
                           "//h:80/n:CIM_FCPort.Id=1", "//h.x/n:CIM_Nothing.Id=1"}) {
    EXPECT_FALSE(matches(path, isPath)) << path;
  }
  EXPECT_FALSE(matches("//h/n:CIM_FCPort.Id=1", ""));
  EXPECT_FALSE(matches("//h/n:CIM_FCPort.Id=1", "AlertingElementFormat = 0;"));
  EXPECT_TRUE(world.alertMatches("alertingmanagedelement isa cim_managedelement",
                                 isPath + "AlertingManagedElement = \"//h/n:CIM_FCPort.Id=1\";"));
}

TEST_F(FilterIsa, ADottedHostBeforeTheColonDoesNotMatter) {
  EXPECT_TRUE(world.alertMatches("AlertingManagedElement ISA CIM_FCPort",
                                 "AlertingElementFormat = 2; "
                                 "AlertingManagedElement = \"//array.example.org/root/cimv2:CIM_FCPort.Id=1\";"));
}

}  // namespace
