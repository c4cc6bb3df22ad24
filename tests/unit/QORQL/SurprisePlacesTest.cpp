// Where the surprises of a statement point: the word that each is about.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/Explain/QORQL_Surprises.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "MarkedStatement.h"
#include "QueryWorld.h"

namespace {

constexpr char kModel[] = R"(
class Host { [key] string Name; uint32 Memory; real32 Heat; };
class Disk { [key] string Name; uint64 Size; uint16 Ports[]; string HostName; };
class Spare { [key] uint32 Id; };
)";

struct Row {
  const char* rule;
  const char* statement;  // "^" stands before the word
};

constexpr Row kRows[] = {
    {"WHERE-3", "SELECT Name FROM Disk WHERE Name = ' OR ' OR Name = 'b' ^OR Name = 'c'"},
    {"LIKE-1", "SELECT Name FROM Disk WHERE Name = 'LIKE' AND Name ^LIKE 'a%'"},
    {"ARR-4", "SELECT Name FROM Disk WHERE ANY Ports[*] ^< 3"},
    {"ARR-6", "SELECT Name FROM Disk WHERE ANY Ports ^<> 3"},
    {"ARR-7", "SELECT Name AS Ports FROM Disk WHERE 3 = ^Ports"},
    {"ARR-5", "SELECT Name FROM Disk WHERE Name = 'Size' AND 3 = ANY ^Size"},
    {"CMP-2", "SELECT Heat FROM Host WHERE 0.1 = ^Heat"},
    {"ARITH-2", "SELECT Name FROM Disk WHERE Size = 10 ^- 3 - 2"},
    {"ARITH-2", "SELECT Name FROM Disk WHERE Size = Size ^* 100 / 7 / 2"},
    {"ARITH-6", "SELECT Name FROM Disk WHERE Size = ^-Size"},
    {"LEX-6", "SELECT Name FROM Disk WHERE Size > -^9223372036854775809"},
    {"LEX-6", "SELECT Name FROM Disk WHERE 3 + ^18446744073709551616 > Size"},
    {"AGG-2", "SELECT Name FROM Disk WHERE Size = ^COUNT(Size = 1)"},
    {"NAME-6", "SELECT Name FROM Disk WHERE Disk::Name = '' AND ^Host::Name = 'x'"},
    {"ASSOC-6", "SELECT h.Name FROM Host AS h, Disk AS d WHERE ^Spare = h AND Spare = d"},
    {"AGG-4", "SELECT MAX(Size) AS AVG1, ^AVG(Size) AS a FROM Disk"},
    {"SEL-6", "SELECT ^*, Name FROM Disk"},
    {"FROM-5", "SELECT a.Name FROM Disk AS a, ^Disk AS b"},
    {"FROM-10", "SELECT h.Name FROM Disk AS h, Host AS ^h"},
    {"NAME-7", "SELECT h.Name FROM Host AS h, Disk AS ^Memory"},
    {"JOIN-4", "SELECT h.Name FROM Host AS h, Disk AS d WHERE h.Memory = 1 AND h.Name ^*= d.HostName"},
    {"JOIN-2", "SELECT h.Name FROM Host AS h, Disk AS d, Spare AS s WHERE h.Name ^=* d.HostName"},
};

TEST(SurprisePlaces, AreThoseOfTheirWords) {
  const QueryWorld world(kModel);
  for (const Row& row : kRows) {
    const MarkedStatement marked(row.statement);
    const QORString text(marked.text.data(), marked.text.size());
    const QORString nameSpace("root/cimv2");
    QORQL_Lexer lexer(text, false);
    QORQL_SymbolTable symbols(nullptr);
    const auto query = QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", nameSpace).StaticCast<QORQL_Query>();
    std::string found;
    for (const QORQL_Surprise& surprise : QORQL_findSurprises(*query, nameSpace)) {
      if (surprise.rule == std::string(row.rule)) found = marked.markedAt(surprise.offset);
    }
    EXPECT_EQ(found, row.statement) << row.rule;
  }
}

}  // namespace
