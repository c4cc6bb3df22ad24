// Rows enough for whole runs of them and a part of one, with properties of all kinds.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_RUNSWORLD_H
#define QORQL_TESTS_UNIT_QORQL_RUNSWORLD_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QueryWorld.h"

inline constexpr char kNullAggregate[] = "parse 15 line 0: Aggregate functions must contain a valid expression.";

inline constexpr char kClasses[] = R"(
class N { [key] uint32 k; uint64 u; sint64 s; real64 r; string t; boolean b; uint16 g; uint16 a[]; };
class M { [key] uint32 k; sint64 s; real64 r; uint64 u; string t; };
class Sub : M { uint32 more; };
class Z { [key] uint32 k; };
)";

// 150 rows: two whole runs and a part of one.
inline std::string runsModel() {
  std::string mof = kClasses;
  for (int i = 0; i < 150; ++i) {
    const std::string k = std::to_string(i);
    const std::string odd = i % 2 != 0 ? "-" : "";
    mof += "instance of N { k = " + k + "; u = " + std::to_string(i * 37 % 101) + "; s = " + odd + k + "; r = " + odd +
           std::to_string(i / 4) + ".25; t = \"text" + std::to_string(i * 7 % 13) +
           "\"; b = " + (i % 3 == 0 ? "TRUE" : "FALSE") + "; g = " + std::to_string(i % 5) + "; };\n";
  }
  mof += "instance of N { k = 150; };\n";
  for (int i = 0; i < 40; ++i) {
    const std::string k = std::to_string(i);
    mof += "instance of " + std::string(i % 3 == 0 ? "Sub" : "M") + " { k = " + k + "; s = " + std::to_string(i - 20) +
           "; r = " + std::to_string(i - 20) + ".5; u = " + std::to_string(i * 11) + "; t = \"text" +
           std::to_string(i) + "\"; };\n";
  }
  return mof;
}

struct RunsWorld : testing::Test {
  QueryWorld world{runsModel()};
};

#endif
