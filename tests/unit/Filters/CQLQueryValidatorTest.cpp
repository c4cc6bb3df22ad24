// Classes and properties as the repository knows them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "FilterWorld.h"

namespace {

using CQLQueryValidators = Filter;

TEST_F(CQLQueryValidators, TheValidatorAsksTheRepository) {
  EXPECT_TRUE(CQLQueryValidator::findClass(kNameSpace, "cim_fcport"));
  EXPECT_FALSE(CQLQueryValidator::findClass(kNameSpace, "CIM_Nothing"));
  EXPECT_FALSE(CQLQueryValidator::findClass("root/nowhere", "CIM_FCPort"));
  EXPECT_TRUE(CQLQueryValidator::findProperty(kNameSpace, "CIM_FCPort", "id", false));
  EXPECT_TRUE(CQLQueryValidator::findProperty(kNameSpace, "CIM_FCPort", "Caption", true));
  EXPECT_FALSE(CQLQueryValidator::findProperty(kNameSpace, "CIM_FCPort", "Caption", false));
  EXPECT_FALSE(CQLQueryValidator::findProperty(kNameSpace, "CIM_Nothing", "Caption", true));
  EXPECT_TRUE(CQLQueryValidator::findProperty("CIM_FCPort", "Caption", true));
  EXPECT_FALSE(CQLQueryValidator::findProperty("CIM_Nothing", "Caption", true));
  EXPECT_TRUE(CQLQueryValidator::isSubClass(kNameSpace, "xyz_volume", "CIM_MANAGEDELEMENT"));
  EXPECT_FALSE(CQLQueryValidator::isSubClass(kNameSpace, "CIM_ManagedElement", "XYZ_Volume"));
  EXPECT_TRUE(CQLQueryValidator::isSubClass("root/nowhere", "Same", "SAME"));
  EXPECT_FALSE(CQLQueryValidator::isSubClass("root/nowhere", "XYZ_Volume", "CIM_ManagedElement"));
}

}  // namespace
