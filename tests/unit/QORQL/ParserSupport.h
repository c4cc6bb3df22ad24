// Short ways to parse, to catch what parsing throws, and to print a tree.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_PARSERSUPPORT_H
#define QORQL_TESTS_UNIT_QORQL_PARSERSUPPORT_H

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace parsertest {

using Node = QORSmrPtr<QORQL_Evaluatable>;

inline std::string plain(const QORString& text) { return std::string(text.view()); }

// What was thrown: "parse 2@1: message" or "runtime 6: message"; "nothing" when all went well.
template <class Action>
std::string thrownBy(const Action& action) {
  try {
    action();
  } catch (const QORQL_ParseException& error) {
    return "parse " + std::to_string(error.getCode()) + "@" + std::to_string(error.getLineNr()) + ": " +
           plain(error.getMessage());
  } catch (const QORQL_Exception& error) {
    return "runtime " + std::to_string(error.getCode()) + ": " + plain(error.getMessage());
  }
  return "nothing";
}

// The grammar levels that a text can be parsed at.
enum class Level { Expression, Comparison, Arithmetic, Factor };

// One parse of a text: its lexer, symbol table, projection map and tree.
struct Parsed {
  explicit Parsed(const QORString& source)
      : text(source), lexer(text, false), map(QORQL_newProjectionMap(lexer.slabs())) {}
  Parsed(const QORString& source, Level level) : Parsed(source) { parse(level); }

  void parse(Level level);
  // Enters class symbols, as FROM does.
  void know(std::initializer_list<const char*> names);
  // The record's names joined by ","; with "*" in front when all are needed; "-" when there is no record.
  std::string requested(const char* record) const;

  QORString text;
  QORQL_SymbolTable symbols{nullptr};
  QORQL_Lexer lexer;
  QORQL_ProjectionMap map;
  Node tree;
};

// "*" when all properties are needed, then the names joined by ","; "-" for a null pointer.
std::string describe(const QORSmrPtr<QORQL_ClassInfo>& info);

// The tree, fully parenthesised: ((a + b) = c).
std::string print(const Node& node);
// One factor: [class|property|chain|scope|index], "~" for an absent text.
std::string printFactor(const QORQL_Factor& factor);
// The leading factor of a tree, looked for through every level; null when there is none.
const QORQL_Factor* leadingFactor(const Node& node);

// A statement that is parsed and resolved in a namespace.
struct Statement {
  explicit Statement(const QORString& source, const QORString& space = "root/cimv2");

  const QORQL_Query& query() const { return static_cast<const QORQL_Query&>(*executable); }
  const QORQL_SelectList& selectList() const { return static_cast<const QORQL_SelectList&>(*query().getSelectList()); }
  const QORQL_SelectedEntry& entry(QORuint32 index) const { return *selectList().getSelectedEntries()->at(index); }
  // What is requested of a FROM name's class; see describe().
  std::string requested(const char* name) const;
  Node where() const;

  QORString text;
  QORString language{"CQL"};
  QORQL_SymbolTable symbols{nullptr};
  QORSmrPtr<QORQL_Executable> executable;

 private:
  QORString nameSpace;
};

// A select list alone.
struct Selected : Parsed {
  explicit Selected(const QORString& source) : Parsed(source) {
    executable = QORQL_SelectList::parse(symbols, lexer, map, text, "CQL");
  }
  const QORQL_SelectList& list() const { return static_cast<const QORQL_SelectList&>(*executable); }
  const QORQL_SelectedEntry& entry(QORuint32 index) const { return *list().getSelectedEntries()->at(index); }
  QORSmrPtr<QORQL_Executable> executable;
};

// A text that is refused, the name of its test, and what thrownBy() says.
struct Fault {
  const char* name;
  const char* text;
  const char* thrown;
};

// What parsing a statement throws; see thrownBy().
std::string statementError(const QORString& text);

}  // namespace parsertest

#endif
