// MOF text of declarations and instances.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/MofText.h"
#include "EmbeddedFixture.h"
#include "cimom/CQoriBaseObject.h"

namespace {

using embedded::NameMap;

CimQualifierDeclaration declaredAs(const char* name, const QORSmrPtr<IQoriType>& type, bool toSubclass,
                                   bool overridable, bool translatable) {
  CimQualifierDeclaration declaration;
  declaration.name = name;
  declaration.type = type;
  declaration.scopes = {"class", "property"};
  declaration.toSubclass = toSubclass;
  declaration.overridable = overridable;
  declaration.translatable = translatable;
  return declaration;
}

CimQualifier qualifierOf(const char* name, const QORSmrPtr<IQoriValue>& value = {}) {
  CimQualifier qualifier;
  qualifier.name = name;
  qualifier.value = value;
  return qualifier;
}

TEST(MofText, AQualifierDeclarationShowsTypeDefaultScopesAndFlavors) {
  CimQualifierDeclaration words = declaredAs("Words", CQoriType::arrayOf(CQoriType::string), false, true, true);
  EXPECT_STREQ(embedded::qualifierMofText(words).c_str(),
               "Qualifier Words : string[] = NULL, Scope(class, property), Flavor(EnableOverride, Restricted, "
               "Translatable);\n");
  words.arraySize = 3;
  words.toSubclass = true;
  words.overridable = words.translatable = false;
  EXPECT_STREQ(embedded::qualifierMofText(words).c_str(),
               "Qualifier Words : string[3] = NULL, Scope(class, property), Flavor(DisableOverride, ToSubclass);\n");
}

TEST(MofText, FlavorsStandWhereTheyDifferFromTheDeclaration) {
  NameMap<CimQualifierDeclaration> declared;
  declared.emplace("Level", declaredAs("Level", CQoriType::uint8, false, false, false));
  CimClassDeclaration declaration;
  declaration.name = "T";
  const QORSmrPtr<IQoriValue> three(new CQoriValue(3ULL, CQoriType::uint8));
  CimQualifier level = qualifierOf("level", three);
  CimQualifier usual = level;
  usual.toSubclass = usual.overridable = false;
  CimQualifier unknown = qualifierOf("Other");
  unknown.translatable = true;
  unknown.overridable = false;
  declaration.qualifiers = {level, unknown};
  EXPECT_STREQ(embedded::classMofText(declaration, declared).c_str(),
               "[level(3) : EnableOverride ToSubclass, Other : DisableOverride Translatable]\nclass T {\n};\n");
  declaration.qualifiers = {usual};
  EXPECT_STREQ(embedded::classMofText(declaration, declared).c_str(), "[level(3)]\nclass T {\n};\n");
}

TEST(MofText, TheElementsOfAnArrayStandBehindABlank) {
  CimClassDeclaration declaration;
  declaration.name = "T";
  const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List);
  for (const char* element : {"a", "b"}) elements->append(QORSmrPtr<IQoriValue>(new CQoriValue(QORString(element))));
  declaration.qualifiers = {qualifierOf("Values", QORSmrPtr<IQoriValue>(new CQoriValue(elements, CQoriType::string)))};
  EXPECT_STREQ(embedded::classMofText(declaration, {}).c_str(), "[Values {\"a\", \"b\"}]\nclass T {\n};\n");
}

TEST(MofText, ANullOfATypedQualifierIsToldFromAFlag) {
  NameMap<CimQualifierDeclaration> declared;
  declared.emplace("Level", declaredAs("Level", CQoriType::uint8, true, true, false));
  declared.emplace("On", declaredAs("On", CQoriType::boolean, true, true, false));
  CimClassDeclaration declaration;
  declaration.name = "T";
  const QORSmrPtr<IQoriValue> isOff(new CQoriValue(false, CQoriType::boolean));
  declaration.qualifiers = {qualifierOf("Level"), qualifierOf("On"), qualifierOf("Free"), qualifierOf("Off", isOff)};
  EXPECT_STREQ(embedded::classMofText(declaration, declared).c_str(),
               "[Level(NULL), On, Free, Off(FALSE)]\nclass T {\n};\n");
}

TEST(MofText, AnInstanceShowsEachPropertyOnALine) {
  const QORSmrPtr<IQoriValue> text(new CQoriValue(QORString("a \"b\"")));
  QORSmrPtr<QORValSlist<QORSmrPtr<IQoriProperty>>> properties(new QORValSlist<QORSmrPtr<IQoriProperty>>);
  properties->append(QORSmrPtr<IQoriProperty>(new CQoriProperty("Name", text, true)));
  properties->append(QORSmrPtr<IQoriProperty>(new CQoriProperty("Size", QORSmrPtr<IQoriValue>(), true)));
  const CQoriBaseObject object("root/cimv2", "T", "Name", properties);
  EXPECT_STREQ(embedded::instanceMofText(object).c_str(),
               "instance of T {\n    Name = \"a \\\"b\\\"\";\n    Size = NULL;\n};\n");
}

}  // namespace
