// Three small classes and an empty one, to be filtered and joined.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_WHEREWORLD_H
#define QORQL_TESTS_UNIT_QORQL_WHEREWORLD_H

#include <gtest/gtest.h>

#include "QueryWorld.h"

inline constexpr char kWhereModel[] = R"(
class A { [key] uint32 Id; uint32 K; string Text; };
class B { [key] uint32 Id; uint32 K; };
class C { [key] uint32 Id; uint32 K; };
class E { [key] uint32 Id; uint32 K; };
instance of A { Id = 1; K = 10; Text = "x"; };
instance of A { Id = 2; K = 20; Text = "y"; };
instance of A { Id = 3; };
instance of B { Id = 1; K = 20; };
instance of B { Id = 2; K = 10; };
instance of B { Id = 3; K = 20; };
instance of B { Id = 4; };
instance of C { Id = 1; K = 20; };
instance of C { Id = 2; K = 99; };
)";

struct WhereWorld : testing::Test {
  QueryWorld world{kWhereModel};
};

#endif
