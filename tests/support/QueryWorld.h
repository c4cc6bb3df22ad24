// Queries run in both execution modes, which must agree in everything that shows.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_QUERYWORLD_H
#define QORQL_TESTS_QUERYWORLD_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QueryRun.h"

class QueryWorld : public QueryRun {
 public:
  using QueryRun::QueryRun;

  // Runs in both modes and expects the same outcome.
  QueryOutcome run(const std::string& query) {
    QueryOutcome lazy = runIn(query, QORQL_DataTable::kExecutionLazy);
    const QueryOutcome plain = runIn(query, QORQL_DataTable::kExecutionPlain);
    EXPECT_EQ(lazy, plain) << "the modes differ for: " << query;
    return lazy;
  }

  std::vector<std::string> rows(const std::string& query) {
    const QueryOutcome outcome = run(query);
    EXPECT_EQ(outcome.error, "") << query;
    return outcome.rows;
  }
  std::string error(const std::string& query) { return run(query).error; }
};

#endif
