// Name resolution: which class a name is bound to, what is requested of each
// class, and that entries, lists and factors agree afterwards.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "ParserSupport.h"
#include "cimom/CQoriType.h"

namespace {

using parsertest::leadingFactor;
using parsertest::plain;
using parsertest::print;
using parsertest::printFactor;
using parsertest::Statement;
using parsertest::statementError;

class Resolution : public testing::Test {
 protected:
  Resolution() {
    _manager.makeCurrent();
    CimDeclarationSink& sink = _manager.sink();
    sink.begin();
    sink.createNamespace("root/cimv2");
    sink.createNamespace("root/other");
    declare("root/cimv2", "CIM_Disk", "", {"Name", "Size", "Kind", "Emb", "Only"});
    declare("root/cimv2", "CIM_SubDisk", "CIM_Disk", {"Extra"});
    declare("root/cimv2", "CIM_Fan", "", {"Name", "Speed", "Emb"});
    declare("root/other", "CIM_Other", "", {"Place"});
    declare("root/cimv2", "CIM_InstModification", "", {"SourceInstance", "PreviousInstance"});
    sink.commit();
  }

 private:
  void declare(const char* nameSpace, const char* name, const char* superClass,
               std::initializer_list<const char*> properties) {
    CimClassDeclaration declaration;
    declaration.name = name;
    declaration.superClass = superClass;
    for (const char* property : properties) {
      CimPropertyDeclaration one;
      one.name = property;
      one.type = CQoriType::string;
      declaration.properties.push_back(one);
    }
    _manager.sink().declareClass(nameSpace, declaration);
  }

  EmbeddedObjectManager _manager;
};

// --- the select list ----------------------------------------------------------------

TEST_F(Resolution, BindsABareNameToTheOneClassThatHasIt) {
  const Statement statement("SELECT sIze, Speed FROM CIM_Disk, CIM_Fan");
  EXPECT_EQ(plain(statement.entry(0).getClassName()), "CIM_DISK");
  EXPECT_EQ(plain(statement.entry(0).getPropertyName()), "sIze");
  EXPECT_EQ(plain(statement.entry(1).getClassName()), "CIM_FAN");
  EXPECT_EQ(statement.requested("CIM_DISK"), "sIze");
  EXPECT_EQ(statement.requested("CIM_FAN"), "Speed");
  EXPECT_TRUE(statement.entry(0).isProperty());
  EXPECT_TRUE(statement.entry(0).isPlainProperty());
}

TEST_F(Resolution, EntryListAndFactorAgree) {
  const Statement statement("SELECT Size, Speed + Kind AS s FROM CIM_Disk, CIM_Fan");
  EXPECT_EQ(plain(*statement.entry(0).getClassNameList()->first()), "CIM_DISK");
  EXPECT_EQ(print(statement.entry(0).getExpression()), "CIM_DISK.Size");
  EXPECT_EQ(print(statement.entry(1).getExpression()), "(CIM_FAN.Speed + CIM_DISK.Kind)");
  EXPECT_EQ(plain(*statement.entry(1).getClassNameList()->at(0)), "CIM_FAN");
  EXPECT_EQ(plain(*statement.entry(1).getClassNameList()->at(1)), "CIM_DISK");
  EXPECT_TRUE(statement.entry(1).getClassName().isEmpty());
  const QORQL_Factor* const factor = leadingFactor(statement.entry(0).getExpression());
  EXPECT_TRUE(factor->getClassName() == statement.entry(0).getClassNameList()->first());
}

TEST_F(Resolution, FindsInheritedProperties) {
  const Statement statement("SELECT Name, Extra FROM CIM_SubDisk");
  EXPECT_EQ(plain(statement.entry(0).getClassName()), "CIM_SUBDISK");
  EXPECT_EQ(statement.requested("CIM_SUBDISK"), "Name,Extra");
}

TEST_F(Resolution, ALinkToAnAliasStaysAsWritten) {
  const Statement statement("SELECT d.Name, Size + 1 AS S FROM CIM_Disk AS d WHERE d.Kind = 3 ORDER BY Size DESC");
  EXPECT_EQ(plain(statement.entry(0).getClassName()), "d");
  EXPECT_EQ(plain(QORQL_SelectList::_getCellName(statement.entry(0))), "d.Name");
  EXPECT_EQ(statement.requested("CIM_DISK"), "Kind,Size,Name");
  EXPECT_EQ(statement.requested("D"), "Kind,Size,Name");
  EXPECT_EQ(plain(statement.symbols.lookup("D")->getClassInfo()->getClassName()), "CIM_DISK");
}

TEST_F(Resolution, RequestsAPropertyOnceHoweverItIsWritten) {
  const Statement statement(
      "SELECT Size, SIZE, d.size, CIM_Disk.Size FROM CIM_Disk AS d WHERE Size = 1 AND d.SIZE = 2");
  EXPECT_EQ(statement.requested("CIM_DISK"), "SIZE");
  EXPECT_EQ(plain(statement.entry(1).getClassName()), "CIM_DISK");
  EXPECT_EQ(plain(statement.entry(1).getPropertyName()), "SIZE");
}

TEST_F(Resolution, ANameOfAWholeObjectNeedsAllItsProperties) {
  const Statement statement("SELECT d, CIM_Fan FROM CIM_Disk AS d, CIM_Fan");
  EXPECT_EQ(plain(statement.entry(0).getClassName()), "d");
  EXPECT_EQ(plain(statement.entry(0).getPropertyName()), "");
  EXPECT_FALSE(statement.entry(0).isPlainProperty());
  EXPECT_EQ(print(statement.entry(0).getExpression()), "<d>");
  EXPECT_TRUE(leadingFactor(statement.entry(0).getExpression())->isKnownFromName());
  EXPECT_EQ(statement.requested("CIM_DISK"), "*");
  EXPECT_EQ(statement.requested("CIM_FAN"), "*");
}

TEST_F(Resolution, AWholeObjectInAFunctionNeedsNoProperties) {
  const Statement statement("SELECT INSTANCEOF(CIM_Disk) AS i, OBJECTPATH(d) AS p FROM CIM_Disk AS d");
  EXPECT_EQ(print(statement.entry(0).getExpression()), "{INSTANCEOF(<CIM_Disk>)}");
  EXPECT_EQ(plain(statement.entry(0).getClassName()), "CIM_Disk");
  EXPECT_EQ(plain(statement.entry(0).getPropertyName()), "");
  EXPECT_EQ(plain(statement.entry(1).getClassName()), "D");
  EXPECT_EQ(plain(statement.entry(1).getPropertyName()), "NONE");
  EXPECT_EQ(statement.requested("CIM_DISK"), "");
}

TEST_F(Resolution, AComparisonOfObjectsNeedsAllTheirProperties) {
  const Statement selected("SELECT CIM_Disk <> CIM_Fan AS b FROM CIM_Disk, CIM_Fan");
  EXPECT_EQ(selected.requested("CIM_DISK"), "*");
  EXPECT_EQ(selected.requested("CIM_FAN"), "*");
  const Statement filtered("SELECT Size FROM CIM_Disk, CIM_Fan WHERE CIM_Disk <> CIM_Fan");
  EXPECT_EQ(filtered.requested("CIM_FAN"), "*");
  const Statement tested("SELECT Size FROM CIM_Disk, CIM_Fan WHERE CIM_Fan IS NULL");
  EXPECT_EQ(tested.requested("CIM_FAN"), "");
}

TEST_F(Resolution, ABareNameInAPathIsBoundBesideOthers) {
  const Statement statement("SELECT OBJECTPATH(Kind) AS p, Size, Speed FROM CIM_Disk, CIM_Fan");
  EXPECT_EQ(statement.requested("CIM_FAN"), "Speed");
  EXPECT_EQ(statement.requested("CIM_DISK"), "Kind,Size");
}

TEST_F(Resolution, ABareNameInAnAggregateIsBound) {
  const Statement statement("SELECT COUNT(Size) AS n, MAX(Speed * 2) AS m FROM CIM_Disk, CIM_Fan");
  EXPECT_EQ(plain(statement.entry(0).getClassName()), "CIM_DISK");
  EXPECT_EQ(plain(statement.entry(0).getPropertyName()), "Size");
  EXPECT_EQ(print(statement.entry(1).getExpression()), "{MAX((CIM_FAN.Speed * 2))}");
  EXPECT_EQ(statement.requested("CIM_FAN"), "Speed");
}

TEST_F(Resolution, AScopedNameGetsItsClassInChainAndClass) {
  const Statement statement("SELECT CIM_Disk::Size FROM CIM_Disk, CIM_Fan");
  EXPECT_EQ(printFactor(*leadingFactor(statement.entry(0).getExpression())), "[CIM_DISK|Size|CIM_DISK|CIM_Disk|-1]");
  EXPECT_EQ(plain(statement.entry(0).getClassName()), "CIM_DISK");
  EXPECT_EQ(statement.requested("CIM_DISK"), "Size");
}

TEST_F(Resolution, AllOfAClassNeedsAllItsProperties) {
  const Statement statement("SELECT d.*, Speed FROM CIM_Disk AS d, CIM_Fan");
  EXPECT_EQ(statement.requested("CIM_DISK"), "*");
  EXPECT_EQ(statement.requested("CIM_FAN"), "Speed");
  EXPECT_TRUE(statement.entry(0).isClassAll());
}

TEST_F(Resolution, AMergeKeepsThatAllPropertiesAreNeeded) {
  EXPECT_EQ(Statement("SELECT CIM_Disk.Size, * FROM CIM_Disk").requested("CIM_DISK"), "*,Size");
  EXPECT_EQ(Statement("SELECT Size, * FROM CIM_Disk").requested("CIM_DISK"), "*,Size");
  EXPECT_EQ(Statement("SELECT d.*, CIM_Disk.Size FROM CIM_Disk AS d").requested("CIM_DISK"), "*,Size");
  EXPECT_EQ(Statement("SELECT CIM_Disk.*, d.Size FROM CIM_Disk AS d").requested("CIM_DISK"), "*,Size");
  EXPECT_EQ(Statement("SELECT d.*, Size FROM CIM_Disk AS d").requested("CIM_DISK"), "*,Size");
}

TEST_F(Resolution, AQualifierThatIsAPropertyIsRequestedItself) {
  const Statement statement("SELECT SourceInstance.CIM_Disk::Size, PreviousInstance.Size FROM CIM_InstModification");
  EXPECT_EQ(statement.requested("CIM_INSTMODIFICATION").size(), std::string("SourceInstance,PreviousInstance").size());
  EXPECT_NE(statement.requested("CIM_INSTMODIFICATION").find("SourceInstance"), std::string::npos);
  EXPECT_NE(statement.requested("CIM_INSTMODIFICATION").find("PreviousInstance"), std::string::npos);
  EXPECT_EQ(plain(statement.entry(0).getClassName()), "SourceInstance");
  EXPECT_EQ(plain(statement.entry(0).getPropertyName()), "Size");
}

TEST_F(Resolution, LooksInTheGivenNamespace) {
  EXPECT_EQ(Statement("SELECT Place FROM CIM_Other", "root/other").requested("CIM_OTHER"), "Place");
  EXPECT_EQ(statementError("SELECT Place FROM CIM_Other"), "parse 12@0: property 'Place' not found in any class");
}

TEST_F(Resolution, AnAssociationEndDoesNotHideAPropertyOfItsNameInAnotherCase) {
  const Statement statement(
      "SELECT d.Name FROM CIM_Disk AS d WHERE d.firstref IS NULL AND d.FirstRef = 1 ORDER BY d.secondref ASC");
  EXPECT_EQ(statement.requested("CIM_DISK"), "FirstRef,Name");
}

// --- faults ------------------------------------------------------------------------------

TEST_F(Resolution, ReportsANameThatSeveralClassesHave) {
  EXPECT_EQ(statementError("SELECT Name FROM CIM_Disk, CIM_Fan"),
            "parse 12@0: property 'Name' found in more than one class");
  EXPECT_EQ(statementError("SELECT Size\nFROM CIM_Disk, CIM_Fan\nWHERE nAme = 1"),
            "parse 12@0: property 'nAme' found in more than one class");
}

TEST_F(Resolution, ReportsANameThatNoClassHas) {
  EXPECT_EQ(statementError("SELECT Nowhere FROM CIM_Disk, CIM_Fan"),
            "parse 12@0: property 'Nowhere' not found in any class");
  EXPECT_EQ(statementError("SELECT COUNT(Nowhere) AS n FROM CIM_Disk"),
            "parse 12@0: property 'Nowhere' not found in any class");
  EXPECT_EQ(statementError("SELECT Size FROM CIM_Disk WHERE (-Nowhere) = 1"),
            "parse 12@0: property 'Nowhere' not found in any class");
  EXPECT_EQ(statementError("SELECT Name FROM CIM_Unknown"), "parse 12@0: property 'Name' not found in any class");
}

TEST_F(Resolution, ReportsAQualifierThatIsNoFromName) {
  EXPECT_EQ(statementError("SELECT Foo.x FROM CIM_Disk"),
            "runtime 4: Invalid symbol specified in the select clause -'Foo'");
  EXPECT_EQ(statementError("SELECT Emb.x FROM CIM_Disk, CIM_Fan"),
            "runtime 4: Invalid symbol specified in the select clause -'Emb'");
  EXPECT_EQ(statementError("SELECT Foo.* FROM CIM_Disk"),
            "runtime 4: Invalid symbol specified in the select clause -'Foo'");
}

TEST_F(Resolution, WithoutARepositoryNoBareNameIsFound) {
  EmbeddedObjectManager other;
  other.makeCurrent();
  EXPECT_EQ(statementError("SELECT Size FROM CIM_Disk"), "parse 12@0: property 'Size' not found in any class");
  EXPECT_EQ(statementError("SELECT CIM_Disk.Size FROM CIM_Disk"), "nothing");
}

// --- WHERE -----------------------------------------------------------------------------------

TEST_F(Resolution, BindsBareNamesOfWhereWhereverTheyStand) {
  const Statement statement(
      "SELECT CIM_Disk.Name FROM CIM_Disk, CIM_Fan "
      "WHERE Size + 1 = -Speed OR NOT (Kind * 2) IS NULL AND COUNT(Only OR Size) = 1");
  EXPECT_EQ(print(statement.where()),
            "(((CIM_DISK.Size + 1) = -{CIM_FAN.Speed}) OR ((NOT ({(CIM_DISK.Kind * 2)} IS NULL)) AND "
            "({COUNT((CIM_DISK.Only OR CIM_DISK.Size))} = 1)))");
}

TEST_F(Resolution, ANameOfAFromClassInWhereIsAnObject) {
  const Statement statement("SELECT Size FROM CIM_Disk AS d WHERE d ISA CIM_SubDisk AND CIM_Disk IS NOT NULL");
  EXPECT_EQ(print(statement.where()), "((<d> ISA CIM_SubDisk) AND (<CIM_Disk> IS NOT NULL))");
  EXPECT_EQ(statement.requested("CIM_DISK"), "Size");
}

TEST_F(Resolution, LeavesQualifiedNamesOfWhereAlone) {
  const Statement statement("SELECT CIM_Disk.Name FROM CIM_Disk WHERE cim_disk.sIze = 1 AND Foo.Kind = 2");
  EXPECT_EQ(print(statement.where()), "((cim_disk.sIze = 1) AND (Foo.Kind = 2))");
  EXPECT_EQ(statement.requested("CIM_DISK"), "sIze,Name");
}

TEST_F(Resolution, AQualifiedPropertyNamedLikeAClassIsNoObject) {
  const Statement statement("SELECT CIM_Disk.Name FROM CIM_Disk, CIM_Fan AS Kind WHERE CIM_Disk.Kind = 1");
  EXPECT_EQ(print(statement.where()), "(CIM_Disk.Kind = 1)");
}

TEST_F(Resolution, RequestsWhatOnlyWhereNames) {
  const Statement statement(
      "SELECT CIM_Disk.Name FROM CIM_Disk AS d, CIM_Fan "
      "WHERE (d.Size) = 1 AND -Kind = 2 AND COUNT(CIM_Fan.Emb) = 1 AND Speed > 1 AND d.Emb.x = 2");
  EXPECT_EQ(statement.requested("CIM_DISK"), "Size,Emb,Name,Kind");
  EXPECT_EQ(statement.requested("CIM_FAN"), "Emb,Speed");
}

TEST_F(Resolution, AllOfAClassInWhereNeedsAllItsProperties) {
  EXPECT_EQ(Statement("SELECT d.Name FROM CIM_Disk AS d WHERE COUNT(d.*) = 1").requested("CIM_DISK"), "*,Name");
}

TEST_F(Resolution, AssociationEndsAndPathsAreNotRequested) {
  const Statement statement(
      "SELECT CIM_Disk.Size FROM CIM_Disk, CIM_Fan WHERE CIM_Fan.firstref = OBJECTPATH(CIM_Disk) AND "
      "CIM_Fan.secondref = OBJECTPATH(CIM_Fan) AND Speed = OBJECTPATH(CIM_Disk) AND CIM_Disk.secondref = 1");
  EXPECT_EQ(statement.requested("CIM_DISK"), "Size");
  EXPECT_EQ(statement.requested("CIM_FAN"), "Speed");
}

TEST_F(Resolution, BindsANameUsedManyTimesOnce) {
  QORString text("SELECT Size FROM CIM_Disk WHERE Kind = 1");
  for (int i = 0; i < 100; ++i) text += " AND kind = 1";
  EXPECT_EQ(Statement(text).requested("CIM_DISK"), "Size,Kind");
}

TEST_F(Resolution, AnAssociationConditionHasNothingToBind) {
  const Statement statement("SELECT Size FROM CIM_Disk, CIM_Fan WHERE Assoc = CIM_Disk AND Assoc = CIM_Fan");
  EXPECT_EQ(print(statement.where()), "assoc(Assoc: CIM_Disk -> CIM_Fan)");
  EXPECT_EQ(statement.requested("CIM_FAN"), "");
}

// --- ORDER BY ----------------------------------------------------------------------------------

const QORQL_Factor* keyFactor(const Statement& statement) {
  return leadingFactor(static_cast<const QORQL_OrderByClause&>(*statement.query().getOrderByClause()).getExpression());
}

TEST_F(Resolution, ASortKeyMayBeAColumnsAlias) {
  const Statement statement("SELECT Size + 1 AS total FROM CIM_Disk ORDER BY Total ASC");
  EXPECT_EQ(keyFactor(statement)->getSelectedEntry().Get(), &statement.entry(0));
  EXPECT_EQ(statement.requested("CIM_DISK"), "Size");
}

TEST_F(Resolution, AColumnsAliasComesBeforeAPropertyAndAClass) {
  const Statement property("SELECT Name AS Size FROM CIM_Disk ORDER BY Size ASC");
  EXPECT_EQ(keyFactor(property)->getSelectedEntry().Get(), &property.entry(0));
  const Statement object("SELECT Size AS CIM_Disk FROM CIM_Disk ORDER BY CIM_Disk ASC");
  EXPECT_EQ(keyFactor(object)->getSelectedEntry().Get(), &object.entry(0));
}

TEST_F(Resolution, ASortKeyIsBoundLikeOtherNames) {
  const Statement bare("SELECT Name FROM CIM_Disk ORDER BY Size ASC");
  EXPECT_EQ(printFactor(*keyFactor(bare)), "[CIM_DISK|Size|~|~|-1]");
  EXPECT_TRUE(keyFactor(bare)->getSelectedEntry().IsNull());
  EXPECT_EQ(bare.requested("CIM_DISK"), "Name,Size");
  const Statement qualified("SELECT Name FROM CIM_Disk AS d ORDER BY d.Size + Kind ASC");
  EXPECT_EQ(qualified.requested("CIM_DISK"), "Size,Name,Kind");
}

TEST_F(Resolution, ASortKeyThatCannotBeBoundIsNoFault) {
  const Statement unknown("SELECT Size FROM CIM_Disk ORDER BY Nowhere ASC");
  EXPECT_EQ(printFactor(*keyFactor(unknown)), "[|Nowhere|~|~|-1]");
  const Statement ambiguous("SELECT Size FROM CIM_Disk, CIM_Fan ORDER BY Name ASC");
  EXPECT_EQ(printFactor(*keyFactor(ambiguous)), "[|Name|~|~|-1]");
  EXPECT_EQ(ambiguous.requested("CIM_FAN"), "");
}

// --- schema look-ups ------------------------------------------------------------------------------

TEST_F(Resolution, TheValidatorFindsClasses) {
  EXPECT_TRUE(CQLQueryValidator::findClass("root/cimv2", "cim_DISK"));
  EXPECT_FALSE(CQLQueryValidator::findClass("root/other", "CIM_Disk"));
  EXPECT_FALSE(CQLQueryValidator::findClass("root/none", "CIM_Disk"));
}

TEST_F(Resolution, TheValidatorFindsProperties) {
  EXPECT_TRUE(CQLQueryValidator::findProperty("root/cimv2", "CIM_SubDisk", "NAME", true));
  EXPECT_FALSE(CQLQueryValidator::findProperty("root/cimv2", "CIM_SubDisk", "Name", false));
  EXPECT_TRUE(CQLQueryValidator::findProperty("root/cimv2", "CIM_SubDisk", "Extra", false));
  EXPECT_FALSE(CQLQueryValidator::findProperty("root/cimv2", "CIM_None", "Name", true));
}

TEST_F(Resolution, TheValidatorFindsPropertiesInTheFirstNamespaceOfTheClass) {
  EXPECT_TRUE(CQLQueryValidator::findProperty("CIM_Other", "Place", true));
  EXPECT_FALSE(CQLQueryValidator::findProperty("CIM_Other", "Name", true));
  EXPECT_FALSE(CQLQueryValidator::findProperty("CIM_None", "Name", true));
}

TEST_F(Resolution, TheValidatorWalksTheSuperclasses) {
  EXPECT_TRUE(CQLQueryValidator::isSubClass("root/cimv2", "cim_subdisk", "CIM_Disk"));
  EXPECT_FALSE(CQLQueryValidator::isSubClass("root/cimv2", "CIM_Disk", "CIM_SubDisk"));
  EXPECT_FALSE(CQLQueryValidator::isSubClass("root/cimv2", "CIM_Fan", "CIM_Disk"));
  EXPECT_FALSE(CQLQueryValidator::isSubClass("root/other", "CIM_SubDisk", "CIM_Disk"));
  EXPECT_TRUE(CQLQueryValidator::isSubClass("root/none", "Same", "sAME"));
}

}  // namespace
