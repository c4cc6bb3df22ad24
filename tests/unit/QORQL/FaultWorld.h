// What a statement's error carries as its fault, in both execution modes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_FAULTWORLD_H
#define QORQL_TESTS_UNIT_QORQL_FAULTWORLD_H

#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_Fault.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "QueryWorld.h"

// A model, and statements that fail on it.
class FaultWorld {
 public:
  explicit FaultWorld(const char* model) : _world(model) {}

  // Parses and runs it in both modes, which must find the same.
  QORQL_Fault faultOf(const std::string& statement) const {
    const QORQL_Fault lazy = faultIn(statement, QORQL_DataTable::kExecutionLazy);
    const QORQL_Fault plain = faultIn(statement, QORQL_DataTable::kExecutionPlain);
    EXPECT_EQ(textOf(lazy), textOf(plain)) << statement;
    return lazy;
  }

  // All but the place.
  static std::string textOf(const QORQL_Fault& fault) {
    const auto text = [](const QORString& part) { return std::string(part.view()); };
    return std::to_string(fault.kind) + " " + text(fault.className) + "." + text(fault.name) + " of " +
           text(fault.object) + ": " + text(fault.type) + " " + text(fault.otherType) + " " +
           std::to_string(fault.length);
  }

 private:
  static QORQL_Fault faultIn(const std::string& statement, QORQL_DataTable::ExecutionMode mode) {
    const QORString text(statement.data(), statement.size());
    const QORString nameSpace("root/cimv2");
    QORQL_Lexer lexer(text, false);
    QORQL_SymbolTable symbols(nullptr);
    QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
    table->setExecutionMode(mode);
    try {
      const auto query = QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", nameSpace);
      query->execute(symbols, table, nullptr, nameSpace);
      ADD_FAILURE() << "nothing was thrown: " << statement;
    } catch (const QoriBaseException& error) {
      const QORQL_Fault* const fault = QORQL_faultOf(error);
      if (fault != nullptr) return *fault;
      ADD_FAILURE() << "without a fault: " << error.what();
    }
    return {};
  }

  QueryWorld _world;
};

#endif
