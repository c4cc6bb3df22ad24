// A second, naive implementation of the language's core, written from its
// rules, by which the engine is judged. It knows conditions, joins, sorting,
// projection and FIRST over the worlds of World.h.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_NAIVE_H
#define QORQL_TESTS_NAIVE_H

#include <optional>
#include <string>
#include <vector>

#include "World.h"

// A property of a table, or a number.
struct Operand {
  enum class Field { Id, K, V, Number };

  static Operand of(int table, Field field) { return {table, field, 0}; }
  static Operand of(int number) { return {-1, Field::Number, number}; }

  int table = -1;
  Field field = Field::Number;
  int number = 0;

  std::string toText() const;
};

struct Comparison {
  enum class Operator { Equal, NotEqual, Less, GreaterEqual, LeftJoin, RightJoin, FullJoin, IsNull, IsNotNull };

  Operand left;
  Operator op = Operator::Equal;
  Operand right;
  bool isNegated = false;

  std::string toText() const;
};

struct OrderKey {
  Operand key;
  bool isAscending = true;
};

// The operands of OR, each a chain of AND: all that WHERE can say.
using Condition = std::vector<std::vector<Comparison>>;

struct Statement {
  std::vector<Operand> select;
  std::vector<int> from;
  Condition where;
  std::optional<OrderKey> order;
  std::optional<unsigned> first;

  std::string toText() const;
};

// Rows of values as text, null as "-"; or a failure.
struct Answer {
  enum class Failure { None, Sort, Type };

  Failure failure = Failure::None;
  std::vector<std::vector<std::string>> rows;

  bool operator==(const Answer&) const = default;
  std::string toText() const;
};

Answer answerNaively(const Statement& statement, const World& world);

#endif
