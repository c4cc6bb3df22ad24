// Loading as a whole: texts, files, folders, transactions.
#include <gtest/gtest.h>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"

TEST(MofLoader, LoadsAClassAndItsInstance) {
  EmbeddedObjectManager manager;
  MofLoader loader(manager.sink());
  loader.loadText(
      "class T_Disk { [Key] string Name; uint64 Size = 5; };\n"
      "instance of T_Disk { Name = \"sda\"; };",
      "disk.mof");
  ASSERT_EQ(manager.classNames("root/cimv2").size(), 1U);
  EXPECT_STREQ(manager.classNames("root/cimv2")[0].c_str(), "T_Disk");
}
