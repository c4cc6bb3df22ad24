// What an error says of itself besides its message: its kind, the name that it
// is about, and the place of the word at fault, whatever else is spelled like it.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Fault.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "FaultWorld.h"
#include "MarkedStatement.h"

namespace {

using Fault = QORQL_Fault;

constexpr char kModel[] = R"(
class Host { [key] string Name; uint32 Memory; uint16 Ports[]; };
class Disk { [key] string Name; uint64 Size; string HostName; [EmbeddedObject] string Held; };
[association] class On { [key] Host REF Where; [key] Disk REF What; };
instance of Host { Name = "a"; Memory = 1; };
instance of Disk { Name = "d"; Size = 1; HostName = "a"; };
)";

class Faults : public testing::Test {
 protected:
  Fault faultOf(const std::string& statement) const { return _world.faultOf(statement); }

 private:
  FaultWorld _world{kModel};
};

struct Row {
  const char* about;
  const char* statement;  // "^" stands before the word at fault
  Fault::Kind kind;
  const char* name;
};

constexpr Row kRows[] = {
    // Names that resolution cannot bind.
    {"a name of the select list", "SELECT Name, ^Wheels FROM Disk", Fault::kPropertyUnknown, "Wheels"},
    {"an alias is spelled like it", "SELECT Name AS Wheels FROM Disk WHERE ^Wheels = 1", Fault::kPropertyUnknown,
     "Wheels"},
    {"a text is spelled like it", "SELECT Name FROM Disk WHERE Name = 'Wheels' AND ^Wheels = 1",
     Fault::kPropertyUnknown, "Wheels"},
    {"a qualified property is spelled like it", "SELECT d.Wheels FROM Disk AS d WHERE ^Wheels = 1",
     Fault::kPropertyUnknown, "Wheels"},
    {"a word begins like it", "SELECT Name AS WheelsOn FROM Disk WHERE ^Wheels = 1", Fault::kPropertyUnknown, "Wheels"},
    {"the first of two", "SELECT Name FROM Disk WHERE ^Wheels = 1 AND Wheels = 2", Fault::kPropertyUnknown, "Wheels"},
    {"in parentheses and a sum", "SELECT Name FROM Disk WHERE (Size + ^Wheels) = 1", Fault::kPropertyUnknown, "Wheels"},
    {"behind a minus", "SELECT Name FROM Disk WHERE Size = -^Wheels", Fault::kPropertyUnknown, "Wheels"},
    {"on the right", "SELECT Name FROM Disk WHERE Name = ^Wheels", Fault::kPropertyUnknown, "Wheels"},
    {"in an aggregate", "SELECT MAX(^Wheels) AS m FROM Disk", Fault::kPropertyUnknown, "Wheels"},
    {"a class for its path", "SELECT OBJECTPATH(^Fan) AS p FROM Disk", Fault::kPropertyUnknown, "Fan"},
    {"behind a scope", "SELECT Disk::^Wheels FROM Disk", Fault::kPropertyUnknown, "Wheels"},
    {"behind a scope of its name", "SELECT Name FROM Disk WHERE Wheels::^Wheels = 1", Fault::kPropertyUnknown,
     "Wheels"},
    {"in another line", "SELECT Name\n AS Wheels\nFROM Disk\n\tWHERE ^Wheels = 1", Fault::kPropertyUnknown, "Wheels"},
    {"behind other scripts", "SELECT Name FROM Disk WHERE Name = 'größe 日本 Wheels' AND ^Wheels = 1",
     Fault::kPropertyUnknown, "Wheels"},
    {"of two classes", "SELECT h.Name FROM Host AS h, Disk WHERE h.Name = 'Name' AND ^Name = 'x'",
     Fault::kPropertyAmbiguous, "Name"},
    {"of two classes, selected", "SELECT h.Name, ^Name FROM Host AS h, Disk", Fault::kPropertyAmbiguous, "Name"},
    {"a qualifier", "SELECT Name, ^x.Size FROM Disk", Fault::kFromNameUnknown, "x"},
    {"a qualifier like an alias of a column", "SELECT Name AS x, Size + ^x.Size AS s FROM Disk",
     Fault::kFromNameUnknown, "x"},
    {"a qualifier of all", "SELECT ^x.* FROM Disk", Fault::kFromNameUnknown, "x"},
    // What breaks a rule of the text.
    {"a sign", "SELECT Name FROM Disk WHERE ^, = 1", Fault::kSyntax, ","},
    {"the second of two words", "SELECT Name ^Name FROM Disk", Fault::kSyntax, ""},
    {"the end", "SELECT Name FROM Disk WHERE Name =^", Fault::kSyntax, ""},
    {"a class that is none", "SELECT Name FROM Disk, ^'Host'", Fault::kSyntax, "Host"},
    {"a call", "SELECT ^SUMS(Size) AS s FROM Disk", Fault::kFunctionUnknown, "SUMS"},
    {"the arguments of a call", "SELECT Size, ^SUM(Size, Size) AS s FROM Disk", Fault::kSyntax, "SUM"},
    {"the argument of OBJECTPATH", "SELECT OBJECTPATH(^Disk.Name) AS p FROM Disk", Fault::kSyntax, ""},
    {"an aggregate beside none", "SELECT COUNT(Name) AS n, ^Size FROM Disk", Fault::kColumnBesideAggregate, ""},
    {"FIRST beside aggregates", "SELECT ^FIRST 3 COUNT(Name) AS n FROM Disk", Fault::kSyntax, ""},
    {"an array in the select list", "SELECT ^Ports[1] FROM Host", Fault::kSyntax, ""},
    {"an array of a class in the select list", "SELECT h.^Ports[*] FROM Host AS h", Fault::kSyntax, ""},
    {"ANY of an element", "SELECT Name FROM Host WHERE 1 = ANY ^Ports [ 1 ]", Fault::kSyntax, ""},
    {"an array beside a single value", "SELECT Name FROM Host WHERE Memory = ^Ports[*] AND Memory = 1", Fault::kSyntax,
     ""},
    {"ANY beside a whole array", "SELECT Name FROM Host WHERE ANY Ports = ^Ports[*]", Fault::kSyntax, ""},
    {"ANY twice", "SELECT Name FROM Host WHERE ANY Ports = ^ANY Ports", Fault::kSyntax, ""},
    {"IS", "SELECT Name FROM Host WHERE Name IS ^5", Fault::kSyntax, ""},
    {"ISA", "SELECT Name FROM Host WHERE Name ISA ^5", Fault::kSyntax, ""},
    {"a column without its alias", "SELECT ^Size + 1 FROM Disk", Fault::kColumnUnnamed, ""},
    {"the second column without one", "SELECT Size + 1 AS s, ^Size * 2, Name FROM Disk", Fault::kColumnUnnamed, ""},
    {"the name behind AS", "SELECT Size AS ^Order FROM Disk", Fault::kNameExpected, ""},
    {"the name behind AS in FROM", "SELECT Size FROM Disk AS ^Order", Fault::kNameExpected, ""},
    {"AND in parentheses", "SELECT Size FROM Disk WHERE (Size = 1 ^AND Size = 2)", Fault::kParenthesisOpen, ""},
    {"a direction", "SELECT Size FROM Disk ORDER BY Size^", Fault::kDirectionMissing, ""},
    {"a form", "SELECT Size FROM Disk FORMAT AS ^JSON", Fault::kFormatUnknown, ""},
    {"half an association", "SELECT h.Name FROM Host AS h, Disk AS d WHERE On = h ^OR On = d", Fault::kHalfAssociation,
     ""},
    {"an association's other half", "SELECT h.Name FROM Host AS h, Disk AS d WHERE On = h AND ^Size = 1",
     Fault::kHalfAssociation, ""},
    {"a right outer association", "SELECT h.Name FROM Host AS h, Disk AS d WHERE On ^=* h AND On = d", Fault::kSyntax,
     ""},
    // What only running the statement finds.
    {"a property that an object lacks", "SELECT d.Name AS Wheels FROM Disk AS d WHERE d.^Wheels = 1",
     Fault::kPropertyMissing, "Wheels"},
    {"of the class that lacks it",
     "SELECT h.Name FROM Host AS h, Disk AS d WHERE h.Name = d.HostName AND d.Size = 1 AND h.^Size = 1",
     Fault::kPropertyMissing, "Size"},
    {"a number", "SELECT COUNT(Size) AS Name, SUM(^Name) AS s FROM Disk", Fault::kNumberExpected, ""},
    {"a number with its class", "SELECT MAX(^Disk.Name) AS s FROM Disk", Fault::kNumberExpected, ""},
    {"a class", "SELECT d.Name FROM Disk AS d, ^Fan AS f WHERE d.Name = 'Fan'", Fault::kClassUnknown, "FAN"},
    {"a name before a dot", "SELECT d.Name AS Held FROM Disk AS d WHERE d.Name = 'd' AND ^Held.Name = 'x'",
     Fault::kFromNameUnknown, "Held"},
    {"an association's end",
     "SELECT h.Name FROM Host AS h WHERE On.firstref = OBJECTPATH(h) AND "
     "On.secondref = OBJECTPATH(^Fan)",
     Fault::kFromNameUnknown, "FAN"},
};

TEST_F(Faults, HaveTheirKindNameAndPlace) {
  for (const Row& row : kRows) {
    const MarkedStatement marked(row.statement);
    const Fault fault = faultOf(marked.text);
    SCOPED_TRACE(row.about);
    EXPECT_EQ(fault.kind, row.kind);
    EXPECT_EQ(std::string(fault.name.view()), row.name);
    EXPECT_EQ(marked.markedAt(fault.offset), row.statement);
  }
}

TEST_F(Faults, OfAMissingPropertyNameTheClassAsTheStatementDoes) {
  EXPECT_EQ(faultOf("SELECT d.Name FROM Disk AS d WHERE d.Wheels = 1").className, "d");
  EXPECT_EQ(faultOf("SELECT d.Name FROM Disk AS d WHERE Disk.Wheels = 1").className, "Disk");
}

TEST_F(Faults, OfTheDataHaveNoPlace) {
  QORQL_Exception error(QORQL_Exception::QORQL_INTERNAL_ERROR, "Invalid factor");
  ASSERT_NE(QORQL_faultOf(error), nullptr);
  EXPECT_EQ(QORQL_faultOf(error)->kind, Fault::kOther);
  EXPECT_FALSE(QORQL_faultOf(error)->hasPlace());
  EXPECT_EQ(QORQL_faultOf(QoriBaseException()), nullptr);
}

// --- lines and columns ---------------------------------------------------------------

TEST(Place, CountsLinesAndCharactersFromOne) {
  struct {
    const char* marked;
    QORuint32 line;
    QORuint32 column;
  } const rows[] = {
      {"^", 1, 1},          {"^SELECT", 1, 1},          {"SELECT ^x", 1, 8},
      {"SELECT\n^x", 2, 1}, {"a\n\n\t^x", 3, 2},        {"'größe' ^x", 1, 9},
      {"'日本' ^x", 1, 6},  {"'e\u0301' ^x", 1, 6},     {"'\xFF\xFE' ^x", 1, 6},
      {"'a\xFC' ^x", 1, 6}, {"größe\nSELECT ^x", 2, 8}, {"SELECT x\n^", 2, 1},
  };
  for (const auto& row : rows) {
    const MarkedStatement marked(row.marked);
    const QORQL_Place place = QORQL_placeOf(marked.text, marked.offset);
    EXPECT_EQ(place.line, row.line) << row.marked;
    EXPECT_EQ(place.column, row.column) << row.marked;
  }
}

TEST(Place, BehindTheTextIsItsEnd) {
  EXPECT_EQ(QORQL_placeOf("SELECT\nab", 1000).line, 2U);
  EXPECT_EQ(QORQL_placeOf("SELECT\nab", 1000).column, 3U);
}

// --- what the places cost ---------------------------------------------------------------

// They lie where the nodes had room to spare: bytes of a pointer and of a node, 64-bit machines alone.
static_assert(sizeof(void*) != 8 || sizeof(QORQL_Evaluatable) == 16);
static_assert(sizeof(void*) != 8 || sizeof(QORQL_Factor) == 88);
static_assert(sizeof(void*) != 8 || sizeof(QORQL_Comparison) == 40);
static_assert(sizeof(void*) != 8 || sizeof(QORQL_Arithmetic) == 40);
static_assert(sizeof(void*) != 8 || sizeof(QORQL_Term) == 40);
static_assert(sizeof(void*) != 8 || sizeof(QORQL_Expression) == 40);
static_assert(sizeof(void*) != 8 || sizeof(QORQL_ExpressionTerm) == 40);
static_assert(sizeof(void*) != 8 || sizeof(QORQL_ExpressionFactor) == 48);
static_assert(sizeof(void*) != 8 || sizeof(QORQL_Function) == 32);
static_assert(sizeof(void*) != 8 || sizeof(QORQL_Association) == 64);
static_assert(sizeof(void*) != 8 || sizeof(QORQL_SelectedEntry) == 88);

}  // namespace
