// The whole public CIM schema, which is no part of this project: the environment
// variable QORQL_CIM_SCHEMA names its main file. Without it there is no such test.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>

#include "Cimom/Mof/MofCache.h"
#include "MofFixture.h"

namespace {

namespace fs = std::filesystem;
using moftest::MofTest;

// A line of the listing that an independent reading of the same files made:
// class, superclass, is-association, number of own properties, keys.
struct Listed {
  std::string name;
  std::string superClass;
  bool isAssociation = false;
  std::size_t ownProperties = 0;
  std::vector<std::string> keys;
};

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> fields;
  std::istringstream in(text);
  for (std::string field; std::getline(in, field, separator);) fields.push_back(field);
  return fields;
}

std::vector<Listed> readListing(const fs::path& path) {
  std::vector<Listed> listing;
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);  // the head
  while (std::getline(in, line)) {
    std::vector<std::string> fields = split(line, '\t');
    fields.resize(5);
    listing.push_back({fields[0], fields[1], fields[2] == "1", std::stoul(fields[3]), split(fields[4], ',')});
    std::sort(listing.back().keys.begin(), listing.back().keys.end());
  }
  return listing;
}

// The names that qualifier declarations have at the start of a line, beside the main file.
std::vector<std::string> qualifierNames(const fs::path& folder) {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() != ".mof") continue;
    std::ifstream in(entry.path());
    for (std::string word, line; std::getline(in, line);) {
      std::istringstream words(line);
      if (words >> word && word == "Qualifier" && words >> word) names.push_back(word);
    }
  }
  return names;
}

std::vector<std::string> schemas() {
  const char* const schema = std::getenv("QORQL_CIM_SCHEMA");
  if (schema != nullptr) return {schema};
  std::cout << "The test of the whole schema is left out: QORQL_CIM_SCHEMA does not name the schema's main file.\n";
  return {};
}

class MofSchema : public MofTest, public ::testing::WithParamInterface<std::string> {
 protected:
  std::vector<std::string> keysOf(const QORString& name) {
    std::vector<std::string> keys;
    for (const CimPropertyDeclaration& property : _manager.allProperties("root/cimv2", name)) {
      if (property.hasFlag("Key")) keys.emplace_back(property.name.view());
    }
    std::sort(keys.begin(), keys.end());
    return keys;
  }
};

TEST_P(MofSchema, LoadsWholeAndAgreesWithTheListingBesideIt) {
  const auto start = std::chrono::steady_clock::now();
  MofLoader(_manager.sink()).loadFile(GetParam());
  const auto spent = std::chrono::steady_clock::now() - start;
  const std::vector<Listed> listing =
      readListing(fs::path(GetParam()).parent_path().parent_path() / "classes-2.49.0.tsv");
  EXPECT_EQ(_manager.classNames("root/cimv2").size(), 1631U);
  EXPECT_EQ(listing.size(), 1631U);
  EXPECT_EQ(qualifierNames(fs::path(GetParam()).parent_path()).size(), 70U);
  for (const std::string& name : qualifierNames(fs::path(GetParam()).parent_path())) {
    CimQualifierDeclaration declared;
    EXPECT_TRUE(_manager.sink().describeQualifier("root/cimv2", QORString(name), declared)) << name;
  }
  EXPECT_EQ(std::count_if(listing.begin(), listing.end(), [](const Listed& listed) { return listed.isAssociation; }),
            643);
  EXPECT_EQ(std::count_if(listing.begin(), listing.end(),
                          [this](const Listed& listed) {
                            const QORSmrPtr<IQoriClass> found =
                                _manager.sink().findClass("root/cimv2", listed.name.c_str());
                            return !found.IsNull() && found->getQualifier("Indication", true) != nullptr;
                          }),
            24);
  for (const Listed& listed : listing) {
    const QORString name(listed.name.c_str());
    CimClassDeclaration declared;
    ASSERT_TRUE(_manager.describeClass("root/cimv2", name, declared)) << listed.name;
    EXPECT_EQ(std::string(declared.superClass.view()), listed.superClass) << listed.name;
    EXPECT_EQ(_manager.isAssociation("root/cimv2", name), listed.isAssociation) << listed.name;
    EXPECT_EQ(declared.properties.size(), listed.ownProperties) << listed.name;
    EXPECT_EQ(keysOf(name), listed.keys) << listed.name;
  }
#ifdef NDEBUG
  EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(spent).count(), 3000);
#else
  EXPECT_LT(std::chrono::duration_cast<std::chrono::seconds>(spent).count(), 60);
#endif
}

TEST_P(MofSchema, ReopensFromACacheAndIsTheSame) {
  const std::string file =
      (fs::temp_directory_path() / ("qorql-schema-" + std::to_string(std::random_device()()))).string();
  EmbeddedObjectManager first;
  EXPECT_FALSE(MofCache(file).loadFiles(first.sink(), "root/cimv2", {GetParam()}).isFromCache);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(MofCache(file).loadFiles(_manager.sink(), "root/cimv2", {GetParam()}).isFromCache);
  const auto spent = std::chrono::steady_clock::now() - start;
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(spent).count();
  std::cout << "reopened in " << milliseconds << " ms, " << fs::file_size(file) << " bytes\n";
  fs::remove(file);
  for (const QORString& name : first.classNames("root/cimv2")) {
    EXPECT_EQ(first.classMof("root/cimv2", name, false), _manager.classMof("root/cimv2", name, false)) << name.c_str();
  }
  EXPECT_LT(milliseconds, 5000);
}

TEST_P(MofSchema, TheTextOfAClassLoadsAgainByItself) {
  MofLoader(_manager.sink()).loadFile(GetParam());
  const std::vector<QORString> names = _manager.classNames("root/cimv2");
  for (std::size_t i = 0; i < names.size(); i += 25) {
    const QORString text = _manager.classMof("root/cimv2", names[i], true);
    EmbeddedObjectManager again;
    MofLoader(again.sink()).loadText(text.view(), "again.mof");
    EXPECT_EQ(again.classMof("root/cimv2", names[i], true), text) << names[i].c_str();
  }
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(MofSchema);
INSTANTIATE_TEST_SUITE_P(Given, MofSchema, ::testing::ValuesIn(schemas()));

}  // namespace
