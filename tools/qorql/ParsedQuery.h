// A statement from its text to the tree that the engine runs.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_PARSEDQUERY_H
#define QORQL_TOOL_PARSEDQUERY_H

#include <string>
#include <vector>

#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Statements.h"

// Keeps the texts that the tree refers to.
class ParsedQuery {
 public:
  explicit ParsedQuery(const Statement& statement)
      : _statement(statement), _text(_statement.text.data(), _statement.text.size()) {}
  ParsedQuery(const ParsedQuery&) = delete;
  ParsedQuery& operator=(const ParsedQuery&) = delete;

  // THROWS what the engine throws. The messages of the scanner are collected, not printed.
  void parse(const std::string& nameSpace);

  // REQUIRES that parse has succeeded.
  QORQL_Query& query() const { return *_query; }
  QORQL_SymbolTable& symbols() { return _symbols; }
  // What the scanner skipped until the end or the fault, a printable sentence each.
  const std::vector<std::string>& passedOver() const noexcept { return _passedOver; }
  const Statement& statement() const noexcept { return _statement; }

 private:
  void parseText(const QORString& nameSpace);

  const Statement _statement;
  const QORString _text;
  const QORString _language = "DMTF:CQL";
  QORQL_SymbolTable _symbols{nullptr};
  QORSmrPtr<QORQL_Query> _query;
  std::vector<std::string> _passedOver;
};

#endif
