// The engine's answers over the worlds of World.h, and their comparison with the naive ones.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_ENGINEANSWER_H
#define QORQL_TESTS_ENGINEANSWER_H

#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Naive.h"

// A statement parsed once and executed over many worlds.
class EngineStatement {
 public:
  explicit EngineStatement(const Statement& statement);
  EngineStatement(const EngineStatement&) = delete;
  EngineStatement& operator=(const EngineStatement&) = delete;

  Answer answer(const World& world, QORQL_DataTable::ExecutionMode mode);

 private:
  const QORString _text;
  const QORString _language;
  QORQL_SymbolTable _symbols{nullptr};
  QORSmrPtr<QORQL_Query> _query;
};

// Judges one statement over many worlds, in both execution modes.
class Judge {
 public:
  explicit Judge(const Statement& statement) : _statement(statement), _engine(statement) {}

  // Whether both modes answer as the naive implementation does.
  testing::AssertionResult judge(const World& world);

 private:
  Statement _statement;
  EngineStatement _engine;
};

#endif
