// One row with properties of all kinds, on which expressions and conditions are evaluated.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_EVALUATIONWORLD_H
#define QORQL_TESTS_UNIT_QORQL_EVALUATIONWORLD_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QueryWorld.h"

inline constexpr char kEvaluationModel[] = R"(
class Base { [key] uint32 Id; };
class V : Base {
  uint8 U8; uint32 U32; uint64 U64; sint64 S64; real64 R; string S; string T; boolean B; uint16 A[]; string SA[];
  uint32 Absent; uint16 None[]; datetime When; string Flag;
};
class W { [key] uint32 Id; };
instance of V {
  Id = 1; U8 = 10; U32 = 7; U64 = 18446744073709551615; S64 = -5; R = 2.5; S = "abcdef"; T = "cde"; B = TRUE;
  A = {1, 3, 5}; SA = {"x", NULL, "z"}; None = {}; When = "20260101000000.000000+000"; Flag = "true";
};
)";

class EvaluationWorld : public testing::Test {
 protected:
  std::string value(const std::string& expression) {
    const std::vector<std::string> rows = world.rows("SELECT " + expression + " AS X FROM V");
    return rows.size() == 1 ? rows.front() : "no row";
  }
  bool holds(const std::string& condition) { return world.rows("SELECT Id FROM V WHERE " + condition).size() == 1; }
  std::string error(const std::string& condition) { return world.error("SELECT Id FROM V WHERE " + condition); }

  QueryWorld world{kEvaluationModel};
};

#endif
