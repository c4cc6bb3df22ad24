// Classes and instances for tests of the select list at work, and the shape of the tables that it makes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_PROJECTIONWORLD_H
#define QORQL_TESTS_UNIT_QORQL_PROJECTIONWORLD_H

#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_SelectList.h"
#include "QueryWorld.h"

inline constexpr char kProjectionModel[] = R"(
class X { [key] uint32 Id; uint32 P; sint32 S; real32 R; string Name; uint64 Big; uint8 Small; boolean Flag; };
class XX : X { string Extra; };
class Y { [key] uint32 Id; uint32 Q; };
class None { [key] uint32 Id; uint32 P; };
instance of X { Id = 1; P = 10; S = -1; R = 0.5; Name = "one"; Big = 18446744073709551615; Small = 1; };
instance of X { Id = 2; P = 30; S = 2; Name = "two"; Big = 1; Small = 2; };
instance of XX { Id = 3; S = 3; R = 1.5; Name = "three"; Extra = "e"; Small = 3; };
instance of X { Id = 4; P = 20; Name = "two"; };
instance of Y { Id = 7; Q = 10; };
)";

struct Projection : testing::Test {
  QueryWorld world{kProjectionModel};

  // The projected table of a query, run in one mode.
  QORSmrPtr<QORQL_DataTable> tableOf(const char* text, QORQL_DataTable::ExecutionMode mode) {
    const QORString query(text);
    QORQL_Lexer lexer(query, false);
    QORQL_SymbolTable symbols(nullptr);
    const QORSmrPtr<QORQL_Executable> parsed(
        QORQL_Query::parse(symbols, lexer, false, query, "DMTF:CQL", "root/cimv2"));
    QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
    table->setExecutionMode(mode);
    parsed->execute(symbols, table, nullptr, "root/cimv2");
    return table;
  }
  static std::string cellText(const QORSmrPtr<IQoriObject>& object) {
    if (object.IsNull()) return "null";
    std::string text = QueryWorld::textOf(object->getClassName()) + "{";
    for (QORuint32 i = 0; i < object->getPropertyCount(); ++i) {
      text += (i == 0 ? "" : ",") + QueryWorld::textOf(object->getPropertyAt(i)->getName());
    }
    return text + "}";
  }
  // Headers as name/alias, then the first row's cells.
  std::string shapeOf(const char* query) {
    std::string lazy = shape(*tableOf(query, QORQL_DataTable::kExecutionLazy));
    EXPECT_EQ(lazy, shape(*tableOf(query, QORQL_DataTable::kExecutionPlain)));
    return lazy;
  }
  static std::string shape(QORQL_DataTable& table) {
    std::string text = "[";
    for (QORuint32 i = 0; i < table.getColumnCount(); ++i) {
      const QORSmrPtr<QORQL_TableHeader> header(table.getColumnHeader(i));
      text +=
          (i == 0 ? "" : " ") + QueryWorld::textOf(header->getName()) + "/" + QueryWorld::textOf(header->getAlias());
    }
    text += "]";
    const QORSmrPtr<QORQL_DataRow> row(table.getRow(0));
    for (QORuint32 i = 0; i < row->getCellCount(); ++i) text += " " + cellText(row->getCell(i));
    return text;
  }
};

#endif
